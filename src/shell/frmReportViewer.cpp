#include "frmReportViewer.h"
#include "ui_frmReportViewer.h"

#include "AppError.h"
#include "PrintJob.h"
#include "TaskRunner.h"
#include "ErrorReport.h"
#include "modExtendedMsgBox.h"

#include <QFile>
#include <QFileInfo>
#include <QPageLayout>
#include <QPainter>
#include <QImage>
#include <QScrollArea>
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

// One page of the report on screen, drawn when it is painted, at the zoom chosen.
class ReportPageView : public QWidget {
public:
    ReportPageView(const PagedDocument &report, QWidget *parent) : QWidget(parent), report_(report)
    {
        QPrinter printer(QPrinter::ScreenResolution);
        setUp(printer);
        page_ = printer.pageLayout().paintRectPoints();
        pages_ = report_.pageCount(QRectF(QPointF(0, 0), page_.size()), 72.0);
        resizeToZoom();
    }
    int pageCount() const { return pages_; }
    int currentPage() const { return current_; }
    void setCurrentPage(int page)
    {
        current_ = std::clamp(page, 1, pages_);
        update();
    }
    void zoomBy(double factor)
    {
        zoom_ = std::clamp(zoom_ * factor, 0.25, 4.0);
        resizeToZoom();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        // Drawn into an image of the zoomed resolution, so type and lines scale together.
        const double dpi = zoom_ * logicalDpiX();
        const double scale = dpi / 72.0;
        QImage image(int(page_.width() * scale), int(page_.height() * scale), QImage::Format_RGB32);
        image.setDotsPerMeterX(int(dpi / 0.0254));
        image.setDotsPerMeterY(int(dpi / 0.0254));
        image.fill(Qt::white);
        {
            QPainter onPage(&image);
            report_.paintPage(onPage, QRectF(0, 0, image.width(), image.height()), current_);
        }
        QPainter painter(this);
        painter.fillRect(rect(), Qt::lightGray);
        painter.drawImage(QPointF(18 * scale, 18 * scale), image);
    }

private:
    void resizeToZoom()
    {
        const double scale = zoom_ * logicalDpiX() / 72.0;
        setFixedSize(QSize(int((page_.width() + 36) * scale), int((page_.height() + 36) * scale)));
        update();
    }

    const PagedDocument &report_;
    QRectF page_; // points
    int pages_ = 1;
    int current_ = 1;
    double zoom_ = 1.0;
};

frmReportViewer::frmReportViewer(const PagedDocument &report, QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::frmReportViewer>()), report_(report)
{
    ui->setupUi(this);
    setWindowTitle(report.title());
    auto *scroll = new QScrollArea(ui->viewerArea);
    scroll->setAlignment(Qt::AlignHCenter);
    CRViewer1 = new ReportPageView(report_, scroll);
    CRViewer1->setObjectName(QStringLiteral("CRViewer1"));
    scroll->setWidget(CRViewer1);
    ui->viewerArea->layout()->addWidget(scroll);
    connect(ui->cmdZoomIn, &QPushButton::clicked, this, [this] { CRViewer1->zoomBy(1.25); });
    connect(ui->cmdZoomOut, &QPushButton::clicked, this, [this] { CRViewer1->zoomBy(0.8); });
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
    showPageNumber();
}

frmReportViewer::~frmReportViewer() = default;

int frmReportViewer::pageCount() const { return CRViewer1->pageCount(); }

void frmReportViewer::showPageNumber()
{
    ui->lblPage->setText(QStringLiteral("Page %1 of %2").arg(CRViewer1->currentPage()).arg(CRViewer1->pageCount()));
}

void frmReportViewer::renderPages(QPrinter &printer, TaskProgress &progress) const
{
    QPainter painter;
    if (!painter.begin(&printer))
        throw AppError(482, QStringLiteral("Printer error"));
    const QRectF page = printer.pageLayout().paintRectPixels(printer.resolution()).translated(-printer.pageLayout().paintRectPixels(printer.resolution()).topLeft());
    const int pages = report_.pageCount(page, printer.resolution());
    progress.setMaximum(pages);
    for (int p = 1; p <= pages; ++p) {
        if (progress.cancelled()) {
            printer.abort();
            throw TaskCancelled{};
        }
        progress.setValue(p - 1);
        progress.setText(QStringLiteral("Page %1 of %2").arg(p).arg(pages));
        if (p > 1)
            printer.newPage();
        report_.paintPage(painter, page, p);
    }
    painter.end();
}

bool frmReportViewer::render(QPrinter &printer)
{
    if (!report_.paintsOffThread()) {
        TaskProgress unwatched;
        renderPages(printer, unwatched);
        return true;
    }
    return TaskRunner(this, QStringLiteral("Drawing the pages..."), TaskRunner::Cancel::Yes).run([&](TaskProgress &progress) {
        renderPages(printer, progress);
    });
}

frmReportViewer::Saved frmReportViewer::saveAsPdf(const QString &path)
{
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setResolution(300); // text stays vector; a finer grid only costs time
    printer.setOutputFileName(path);
    setUp(printer);
    try {
        if (!render(printer)) {
            QFile::remove(path);
            return Saved::Cancelled;
        }
    } catch (const AppError &) {
        return Saved::No;
    }
    return QFileInfo(path).size() > 0 ? Saved::Yes : Saved::No;
}

void frmReportViewer::cmdPrint_Click()
{
    Trap(QStringLiteral("frmReportViewer"), QStringLiteral("Print Routine"), [&] {
        PrintJob job;
        setUp(job.printer());
        if (job.choose(this))
            render(job.printer());
    });
}

void frmReportViewer::cmdSavePdf_Click()
{
    QString file = ShowSaveFileDialog(this, QStringLiteral("Save as PDF"), QStringLiteral("PDF Files (*.pdf)"));
    if (file.isEmpty())
        return;
    if (!file.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive))
        file += QStringLiteral(".pdf");
    if (saveAsPdf(file) == Saved::No)
        UserMessage(QStringLiteral("The report could not be saved to ") + file);
}
