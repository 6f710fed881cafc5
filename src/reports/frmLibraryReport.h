#pragma once

#include "LibraryReport.h"
#include "clsDataObject.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmLibraryReport;
}

/// "Library Reports": issued items, outstanding items, outstanding fines, paid fines and live
/// reservations, narrowed by member kind, member, item or title and, for learners, grade and
/// class; shown in the report viewer.
class frmLibraryReport : public QDialog {
    Q_OBJECT
public:
    explicit frmLibraryReport(QWidget *parent = nullptr);
    ~frmLibraryReport() override;

    /// The report last built by "View Report" (what the viewer showed).
    const LibraryReport &lastReport() const { return report_; }
    /// The statement last sent for the report's rows.
    const QString &reportStatement() const { return reportSql_; }

public Q_SLOTS:
    void cmdView_Click();
    void cmdClear_Click();
    void reportChosen();
    void memberKindChosen();
    void cboGrade_Click();
    void cboMember_Click();

public:
    void ShowSome();
    void HideSome();
    void ShowDateRange(bool show);
    void FillGrades();
    void FillClasses();
    void FillMembers();

private:
    QString kind() const;
    std::unique_ptr<Ui::frmLibraryReport> ui;
    clsDataObject data_;
    QString learnerStatement_;
    QString reportSql_;
    LibraryReport report_;
};
