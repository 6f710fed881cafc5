#pragma once

#include "PagedDocument.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmReportViewer;
}
class QPrinter;
class TaskProgress;
class ReportPageView;

/// The report viewer: the report's pages as they will print, drawn one at a time as they are
/// shown (a long report opens at once), with zoom, paging, printing through the print dialog and
/// saving as PDF.
class frmReportViewer : public QDialog {
    Q_OBJECT
public:
    frmReportViewer(const PagedDocument &report, QWidget *parent = nullptr);
    ~frmReportViewer() override;

    enum class Saved { Yes, No, Cancelled };
    /// Writes the whole report as a PDF file, page by page with progress; a cancelled file is removed.
    Saved saveAsPdf(const QString &path);
    /// Draws every page onto printer (off the GUI thread where the document allows); false when cancelled.
    bool render(QPrinter &printer);
    int pageCount() const;

public Q_SLOTS:
    void cmdPrint_Click();
    void cmdSavePdf_Click();

private:
    void showPageNumber();
    void renderPages(QPrinter &printer, TaskProgress &progress) const;

    std::unique_ptr<Ui::frmReportViewer> ui;
    const PagedDocument &report_;
    ReportPageView *CRViewer1 = nullptr;
};
