#include "frmReportViewer.h"
#include "ui_frmReportViewer.h"

#include "AppError.h"
#include "PrintJob.h"
#include "UpdateDatabase.h"
#include "modExtendedMsgBox.h"

#include <QFileInfo>
#include <QPageLayout>
#include <QPainter>
#include <QPrintPreviewWidget>
#include <QPrinter>

namespace {
// The page as the report lays it out: A4 portrait with half-inch margins.
void setUp(QPrinter &printer)
{
    printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setPageOrientation(QPageLayout::Portrait);
    printer.setPageMargins(QMarginsF(36, 36, 36, 36), QPageLayout::Point);
}
} // namespace

frmReportViewer::frmReportViewer(const LibraryReport &report, QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::frmReportViewer>()), report_(report), previewPrinter_(std::make_unique<QPrinter>(QPrinter::ScreenResolution))
{
    ui->setupUi(this);
    setWindowTitle(report.definition().title);
    setUp(*previewPrinter_);
    CRViewer1 = new QPrintPreviewWidget(previewPrinter_.get(), ui->viewerArea);
    CRViewer1->setObjectName(QStringLiteral("CRViewer1"));
    ui->viewerArea->layout()->addWidget(CRViewer1);
    connect(CRViewer1, &QPrintPreviewWidget::paintRequested, this, [this](QPrinter *printer) { render(*printer); });
    connect(CRViewer1, &QPrintPreviewWidget::previewChanged, this, &frmReportViewer::showPageNumber);
    connect(ui->cmdZoomIn, &QPushButton::clicked, CRViewer1, [this] { CRViewer1->zoomIn(); });
    connect(ui->cmdZoomOut, &QPushButton::clicked, CRViewer1, [this] { CRViewer1->zoomOut(); });
    connect(ui->cmdNext, &QPushButton::clicked, this, [this] {
        CRViewer1->setCurrentPage(CRViewer1->currentPage() + 1);
        showPageNumber();
    });
    connect(ui->cmdPrevious, &QPushButton::clicked, this, [this] {
        CRViewer1->setCurrentPage(CRViewer1->currentPage() - 1);
        showPageNumber();
    });
    connect(ui->cmdPrint, &QPushButton::clicked, this, &frmReportViewer::cmdPrint_Click);
    connect(ui->cmdSavePdf, &QPushButton::clicked, this, &frmReportViewer::cmdSavePdf_Click);
    connect(ui->cmdClose, &QPushButton::clicked, this, &QDialog::accept);
    CRViewer1->fitToWidth();
    CRViewer1->updatePreview();
}

frmReportViewer::~frmReportViewer() = default;

int frmReportViewer::pageCount() const { return CRViewer1->pageCount(); }

void frmReportViewer::showPageNumber()
{
    ui->lblPage->setText(QStringLiteral("Page %1 of %2").arg(CRViewer1->currentPage()).arg(CRViewer1->pageCount()));
}

void frmReportViewer::render(QPrinter &printer) const
{
    QPainter painter;
    if (!painter.begin(&printer))
        throw AppError(482, QStringLiteral("Printer error"));
    const QRectF page = printer.pageLayout().paintRectPixels(printer.resolution()).translated(-printer.pageLayout().paintRectPixels(printer.resolution()).topLeft());
    const int pages = report_.pageCount(page, printer.resolution());
    for (int p = 1; p <= pages; ++p) {
        if (p > 1)
            printer.newPage();
        report_.paintPage(painter, page, p);
    }
    painter.end();
}

bool frmReportViewer::saveAsPdf(const QString &path) const
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path);
    setUp(printer);
    try {
        render(printer);
    } catch (const AppError &) {
        return false;
    }
    return QFileInfo(path).size() > 0;
}

void frmReportViewer::cmdPrint_Click()
{
    try {
        PrintJob job;
        setUp(job.printer());
        if (job.choose(this))
            render(job.printer());
    } catch (const AppError &e) {
        ReportError(QStringLiteral("frmReportViewer"), QStringLiteral("Print Routine"), e);
    }
}

void frmReportViewer::cmdSavePdf_Click()
{
    QString file = ShowSaveFileDialog(this, QStringLiteral("Save as PDF"), QStringLiteral("PDF Files (*.pdf)"));
    if (file.isEmpty())
        return;
    if (!file.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive))
        file += QStringLiteral(".pdf");
    if (!saveAsPdf(file))
        UserMessage(QStringLiteral("The report could not be saved to ") + file);
}
