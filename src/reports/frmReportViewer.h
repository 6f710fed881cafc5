#pragma once

#include "LibraryReport.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmReportViewer;
}
class QPrinter;
class QPrintPreviewWidget;

/// The report viewer: a print preview of a report, with zoom, paging, printing through the print
/// dialog and saving as PDF.
class frmReportViewer : public QDialog {
    Q_OBJECT
public:
    frmReportViewer(const LibraryReport &report, QWidget *parent = nullptr);
    ~frmReportViewer() override;

    /// Writes the whole report as a PDF file; false when the file cannot be written.
    bool saveAsPdf(const QString &path) const;
    /// Draws every page onto printer.
    void render(QPrinter &printer) const;
    int pageCount() const;

public Q_SLOTS:
    void cmdPrint_Click();
    void cmdSavePdf_Click();

private:
    void showPageNumber();

    std::unique_ptr<Ui::frmReportViewer> ui;
    const LibraryReport &report_;
    QPrintPreviewWidget *CRViewer1 = nullptr;
    std::unique_ptr<QPrinter> previewPrinter_;
};
