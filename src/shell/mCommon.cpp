#include "mCommon.h"

#include "AppError.h"
#include "PrintJob.h"
#include "SpreadGrid.h"
#include "DatabaseLocations.h"
#include "modExtendedMsgBox.h"

#include <QAbstractButton>
#include <QDir>
#include <QStandardPaths>
#include <QPageLayout>
#include <QPainter>
#include <QWidget>

void ConfirmUnsavedClose(QAbstractButton *saveButton, QWidget *screen)
{
    if (saveButton && saveButton->isEnabled()) {
        const int answer = ShowHookedBox(QStringLiteral("You have NOT saved your data. Are you sure you want to exit without saving?"),
                                         260, QStringLiteral("Data has NOT been Saved"), MessagePicture::picStop);
        if (answer == 7)
            return;
    }
    screen->close();
}

void PrintGridWithHeading(int orientation, const QString &heading, SpreadGrid &grid)
{
    PrintJob job;
    QPrinter &printer = job.printer();
    printer.setPageOrientation(orientation == PrintLandscape ? QPageLayout::Landscape : QPageLayout::Portrait);
    // The grid's area: 300 twips in, 800 down, to the right edge and 1000 twips short of the bottom.
    const auto gridArea = [&] {
        const QRectF page = printer.pageLayout().paintRectPixels(printer.resolution());
        return QRectF(job.twips(300), job.twips(800), page.width() - job.twips(300), page.height() - job.twips(1000) - job.twips(800));
    };
    // The length is asked before the print dialog, so a long list is not sent by mistake.
    if (!UserQuestion(QStringLiteral("Your printout is ") + QString::number(grid.pageCount(gridArea(), &printer))
                      + QStringLiteral(" page/s long. Do you want to continue?")))
        return;
    if (!job.choose(grid.window()))
        return;
    const QRectF area = gridArea(); // the paper chosen in the dialog
    const int pages = grid.pageCount(area, &printer);
    QPainter painter;
    if (!painter.begin(&printer))
        throw AppError(482, QStringLiteral("Printer error"));
    QFont font = grid.font();
    font.setPointSize(10);
    font.setBold(true);
    const QFont headingFont(font, &printer);
    font.setBold(false);
    const QFont footFont(font, &printer);
    const QRectF page = printer.pageLayout().paintRectPixels(printer.resolution());
    for (int p = 1; p <= pages; ++p) {
        if (p > 1)
            printer.newPage();
        // Every sheet names the school and the list and counts its pages, so a dropped pile sorts again.
        painter.setFont(headingFont);
        painter.drawText(QPointF(job.twips(500), job.twips(50) + painter.fontMetrics().ascent()), SchoolName + QStringLiteral(" - ") + heading);
        painter.setFont(footFont);
        painter.drawText(QRectF(0, page.height() - job.twips(700), page.width(), job.twips(400)), Qt::AlignRight | Qt::AlignVCenter,
                         QStringLiteral("Page %1 of %2").arg(p).arg(pages));
        grid.printPage(painter, area, p);
    }
    painter.end();
}

QString WorkbookExportLog()
{
#ifdef Q_OS_WIN
    return QStringLiteral("C:\\LOGFILE.TXT");
#else
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation)).filePath(QStringLiteral("LOGFILE.TXT"));
#endif
}

void ExportGridToWorkbook(QWidget *parent, const SpreadGrid &grid, const QString &sheetName)
{
    QString file = ShowSaveFileDialog(parent, QStringLiteral("Export to Excel"), QStringLiteral("Excel Files (*.xlsx *.xls)"));
    if (file.isEmpty()) {
        UserMessage(QStringLiteral("You must provide a path and name for your export file."));
        return;
    }
    // The workbook is written in today's format, whatever ending the name was given.
    if (!file.endsWith(QLatin1String(".xlsx"), Qt::CaseInsensitive)) {
        if (file.endsWith(QLatin1String(".xls"), Qt::CaseInsensitive))
            file.chop(4);
        file += QStringLiteral(".xlsx");
    }
    UserMessage(grid.ExportToExcel(file, sheetName, WorkbookExportLog()) ? QStringLiteral("Export complete.") : QStringLiteral("Export did not succeed."));
}
