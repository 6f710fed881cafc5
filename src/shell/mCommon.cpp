#include "mCommon.h"

#include "AppError.h"
#include "PrintJob.h"
#include "SpreadGrid.h"
#include "UpdateDatabase.h"
#include "modExtendedMsgBox.h"

#include <QAbstractButton>
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
    if (!job.choose(grid.window()))
        return;
    // The grid's area: 300 twips in, 800 down, to the right edge and 1000 twips short of the bottom.
    const QRectF page = printer.pageLayout().paintRectPixels(printer.resolution());
    const QRectF area(job.twips(300), job.twips(800), page.width() - job.twips(300), page.height() - job.twips(1000) - job.twips(800));
    const int pages = grid.pageCount(area, &printer);
    if (!UserQuestion(QStringLiteral("Your printout is ") + QString::number(pages) + QStringLiteral(" page/s long. Do you want to continue?")))
        return;
    QPainter painter;
    if (!painter.begin(&printer))
        throw AppError(482, QStringLiteral("Printer error"));
    QFont font = grid.font();
    font.setPointSize(10);
    font.setBold(true);
    painter.setFont(QFont(font, &printer));
    painter.drawText(QPointF(job.twips(500), job.twips(50) + painter.fontMetrics().ascent()), SchoolName + QStringLiteral(" - ") + heading);
    for (int p = 1; p <= pages; ++p) {
        if (p > 1)
            printer.newPage();
        grid.printPage(painter, area, p);
    }
    painter.end();
}
