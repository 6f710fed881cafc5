#pragma once

#include "clsDataObject.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmFinePayment;
}

/// "Fine Payments": lists one member's open fines, takes ticked ones into a processing list
/// (payment or cancellation), totals what is to be paid and writes the outcome.
class frmFinePayment : public QDialog {
    Q_OBJECT
public:
    explicit frmFinePayment(QWidget *parent = nullptr);
    ~frmFinePayment() override;

    /// Opens on one member's fines (from the member's loan history).
    void openFor(const QString &memberKind, int memberID);

public Q_SLOTS:
    void cmdFind_Click();
    void GetTicked(int col, int row);
    void GetTotal();
    void btnRemove_Click();
    void cmdPaymentProcess_Click();
    void cmdPrint_Click();

public:
    void LoadFines(const QString &sql);
    void ClearSpreads();

private:
    void AddToProcessList(const QString &transactionID, const QString &accession, const QString &amount, bool cancel);
    void markPending(bool pending);
    QString finesOfMember() const;

    std::unique_ptr<Ui::frmFinePayment> ui;
    clsDataObject data_;
    class MemberPicker *members_;
    QString kind_ = QStringLiteral("L");
    QString member_ = QStringLiteral("0");
};
