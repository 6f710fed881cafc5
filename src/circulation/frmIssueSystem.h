#pragma once

#include "LoanRules.h"
#include "clsDataObject.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmIssueSystem;
}

/// "Issue System": the circulation counter. Issues an item to a learner, educator or staff
/// member, returns or renews a scanned item, shows the loan rules in force and a learner's
/// photo, and lists the transactions done since it was opened. It starts on the loan type it is
/// given (long loans in the holiday period, else normal) and keeps the one last looked up.
class frmIssueSystem : public QDialog {
    Q_OBJECT
public:
    explicit frmIssueSystem(QWidget *parent = nullptr, const QString &loanType = QStringLiteral("N"));

    /// The loan type of the rules last looked up ("S", "N" or "L").
    QString loanType() const { return rules_.LoanType; }
    ~frmIssueSystem() override;

    /// The renewal limit the desk uses for every renewal (maxext of the last settings row).
    qint16 MaxRenewals = 0;

public Q_SLOTS:
    void optLearner_Click();
    void optEducator_Click();
    void optStaff_Click();
    void cboGrade_Click();
    void cboClass_Click();
    void cboMember_Click();
    void cmdValidate_Click();
    void cmdLoanProcess_Click();
    void cmdProcess_Click();
    void optReturn_Click();
    void optRenew_Click();
    void cmdPrint_Click();
    void cmdDone_Click();
    /// Enter in Member Number: shows who it is and moves on to the book box.
    void txtmemberID_Enter();

private:
    void memberTypeChosen(const QString &type);
    void LoadComboBox();
    void loadLearners();
    bool LoadLoanDefaults(const QString &accession, const QString &category);
    void LoadLoanGrid();
    bool FileExists(const QString &path) const;
    void LoadPhoto(const QString &path);
    void readyForScan(class QLineEdit *box);
    QString learnerFilter(class QComboBox *combo) const;
    /// Shows the member whose number is in Member Number in the member panel.
    /// Shows the member typed in the member panel; false when nobody current has that number.
    bool showMember();
    /// The one line that confirms the last transaction; attention colours a fine or a reservation.
    enum class Status { Done, Attention, Refused };
    void showStatus(const QString &text, Status state);
    /// A refusal: its message, the status line saying what was not done, the box ready for the next scan.
    void refuse(const QString &message, const QString &status, class QLineEdit *box);

    std::unique_ptr<Ui::frmIssueSystem> ui;
    clsDataObject data_;
    LoanRules rules_;
    QString memberType_ = QStringLiteral("L");
    QString action_; // "Issue", "Return" or "Renewal": the grid's Transaction column
    QString reservedFor_; // the member a returned copy is to be kept for, or empty
    int transaction_ = 0; // the loan the last issue, return or renewal wrote
};
