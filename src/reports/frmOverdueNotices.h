#pragma once

#include "OverdueList.h"

#include <QDialog>

#include <memory>
#include <optional>

namespace Ui {
class frmOverdueNotices;
}

/// "Overdue Notices": who has books past their due date at a day (learners by grade and class,
/// educators or staff), with the fine so far; class lists for the class teachers and letters to
/// parents drawn into the report viewer, and the list as a workbook. The letter's wording is kept
/// in the library database.
class frmOverdueNotices : public QDialog {
    Q_OBJECT
public:
    explicit frmOverdueNotices(QWidget *parent = nullptr);
    ~frmOverdueNotices() override;

    /// The rows last shown (tests read them).
    const std::vector<OverdueRow> &rows() const { return rows_; }

public Q_SLOTS:
    void Form_Load();
    void cboGrade_Click();
    void optKind_Click();
    void cmdShow_Click();
    void cmdClassLists_Click();
    void cmdLetters_Click();
    void cmdExport_Click();
    void cmdSaveTemplate_Click();
    void cmdDefaultTemplate_Click();

private:
    /// The choice on the screen checked and its overdue rows read; nothing (after a message) when
    /// the choice is not usable or nobody is overdue.
    std::optional<std::vector<OverdueRow>> overdue();
    void showRows();
    QString kind() const;

    std::unique_ptr<Ui::frmOverdueNotices> ui;
    std::vector<OverdueRow> rows_;
    QString savedWording_; // the wording as kept in the library database
};
