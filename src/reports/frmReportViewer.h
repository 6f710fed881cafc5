#pragma once

#include "PagedDocument.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmReportViewer;
}
class QPrinter;
class ReportPageView;

/// The report viewer: the report's pages as they will print, drawn one at a time as they are
/// shown (a long report opens at once), with zoom, paging, printing through the print dialog and
/// saving as PDF.
class frmReportViewer : public QDialog {
    Q_OBJECT
public:
    frmReportViewer(const PagedDocument &report, QWidget *parent = nullptr);
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
    const PagedDocument &report_;
    ReportPageView *CRViewer1 = nullptr;
};
