#pragma once

#include "LoanRules.h"
#include "clsDataObject.h"

#include <QDialog>

#include <memory>

namespace Ui {
class FrmuserloanHistory;
}

/// "User Loan History": one member's current loans or every loan the member had, and issue,
/// renewal and return for that member without going to the desk.
class FrmuserloanHistory : public QDialog {
    Q_OBJECT
public:
    explicit FrmuserloanHistory(QWidget *parent = nullptr);
    ~FrmuserloanHistory() override;

    /// The member whose loans are shown: kind ("L", "E", "S"), internal number and display name.
    /// Shows the current loans.
    void setMember(const QString &memberType, int memberID, const QString &displayName);

    /// The copy of the last transaction (its internal number).
    int ItemID = 0;

public Q_SLOTS:
    void LoadLoanHistory(const QString &mode);
    void gridLoans_Click(int col, int row);
    void cmdissue_Click();
    void cmdRenew_Click();
    void cmdReturn_Click();
    void cmdFine_Click();
    void cmdPrint_Click();

private:
    void showMember();
    bool GetLoanDefaults(const QString &accession);
    /// The copy exists and is out on loan ("renewed"/"returned" name the refusal), and its rules are loaded.
    bool readyForLoanAction(const QString &accession, const QString &action);
    void actionDone(const QString &message);

    std::unique_ptr<Ui::FrmuserloanHistory> ui;
    clsDataObject data_;
    LoanRules rules_;
    QString memberType_;
    int memberID_ = 0;
    qint16 maxItems_ = 0;
    qint16 maxRenewals_ = 0;
};
