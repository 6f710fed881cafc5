#include "frmFinePayment.h"
#include "ui_frmFinePayment.h"

#include "AppError.h"
#include "Clock.h"
#include "LoanRoutines.h"
#include "LoanRules.h"
#include "MemberLists.h"
#include "Money.h"
#include "Recordset.h"
#include "SpreadGrid.h"
#include "TypedFields.h"
#include "ErrorReport.h"
#include "mCombo.h"
#include "mCommon.h"
#include "modExtendedMsgBox.h"

namespace {
const QString Location = QStringLiteral("frmFinePayment");
constexpr int PaymentColumn = 6, CancelColumn = 7;

// A cell read as a number, as the old runtime converted it: an empty or non-numeric cell is a type mismatch.
double number(const QString &text)
{
    bool ok = false;
    const double value = text.trimmed().toDouble(&ok);
    if (!ok)
        throw AppError(AppError::TypeMismatch, QStringLiteral("Type mismatch"));
    return value;
}
} // namespace

frmFinePayment::frmFinePayment(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmFinePayment>())
{
    ui->setupUi(this);
    GuardTypedFields(this);
    members_ = new MemberPicker(ui->optLearner, ui->optEducator, ui->optStaff, ui->cboMembers, ui->txtmemberID, FillFinePaymentMembers, Location);
    members_->setNameLabel(ui->lblMemberName);
    connect(members_, &MemberPicker::memberChosen, this, &frmFinePayment::ClearSpreads);
    ui->fpSpreadFined->defineColumns({{"AccessionNo", 12}, {"Title", 34}, {"Due Date", 11}, {"Returned Date", 12}, {"Fine Amount", 10},
                                      {"Payment", 8}, {"Cancel", 7}});
    ui->fpSpreadFined->setColumnType(PaymentColumn, SpreadModel::CellType::CheckBox);
    ui->fpSpreadFined->setColumnType(CancelColumn, SpreadModel::CellType::CheckBox);
    ui->fpSpreadPayCancel->defineColumns({{"AccessionNo", 12}, {"Amount", 10}, {"Payment Date", 12}, {"Cancel", 7}});
    ui->fpSpreadFined->setColumnMoney(5);
    ui->fpSpreadPayCancel->setColumnMoney(2);
    connect(ui->cmdFind, &QPushButton::clicked, this, &frmFinePayment::cmdFind_Click);
    connect(ui->txtmemberID, &QLineEdit::returnPressed, this, &frmFinePayment::cmdFind_Click);
    connect(ui->fpSpreadFined, &SpreadGrid::cellEdited, this, &frmFinePayment::GetTicked);
    connect(ui->btnRemove, &QPushButton::clicked, this, &frmFinePayment::btnRemove_Click);
    connect(ui->cmdPaymentProcess, &QPushButton::clicked, this, &frmFinePayment::cmdPaymentProcess_Click);
    connect(ui->cmdPrint, &QPushButton::clicked, this, &frmFinePayment::cmdPrint_Click);
    connect(ui->cmdDone, &QPushButton::clicked, this, &QDialog::accept);
    members_->FillMembers();
    ClearSpreads();
}

frmFinePayment::~frmFinePayment() = default;

void frmFinePayment::openFor(const QString &memberKind, int memberID)
{
    Trap(Location, QStringLiteral("openFor"), [&] { members_->choose(memberKind, memberID); });
    cmdFind_Click();
}

QString frmFinePayment::finesOfMember() const
{
    return QStringLiteral("SELECT tblLibTransactionFines.transactionid,tblLibTransactionFines.FineAmount, tblLibTransactions.DueDate, tblLibTransactions.ReturnDate, tblLibItems.Title, tblLibItems.AccessionID")
           + QStringLiteral(" FROM (tblLibTransactionFines INNER JOIN tblLibTransactions ON tblLibTransactionFines.TransactionID = tblLibTransactions.TransactionID) INNER JOIN tblLibItems ON tblLibTransactions.ItemID = tblLibItems.ItemID")
           + QStringLiteral(" where tblLibTransactionFines.MemberType = '") + kind_ + QStringLiteral("' and tblLibTransactionFines.MemberID = ") + member_
           + QStringLiteral(" and (finecancelled = false and isnull(paymentdate) = -1)");
}

void frmFinePayment::cmdFind_Click()
{
    Trap(Location, QStringLiteral("cmdFind_Click"), [&] {
        ClearSpreads();
        const QString number = ui->txtmemberID->text();
        if (number.isEmpty()) {
            UserMessage(QStringLiteral("Please enter a member number to search for a fine record"));
            return;
        }
        kind_ = members_->kind();
        const QVariant member = GetMemberByIDNo(number, kind_);
        member_ = QString::number(member.isNull() ? 0 : member.toInt());
        members_->showName();
        LoadFines(finesOfMember() + QStringLiteral(" order by tblLibItems.Title"));
    });
}

void frmFinePayment::LoadFines(const QString &sql)
{
    SpreadGrid &grid = *ui->fpSpreadFined;
    data_.GetData(sql);
    for (Recordset &rs = *data_.rst; !rs.atEnd(); rs.MoveNext()) {
        const int row = grid.maxRows() + 1;
        grid.setMaxRows(row);
        grid.setCellText(0, row, rs.field(QStringLiteral("transactionid")).toString());
        grid.setCellText(1, row, rs.field(QStringLiteral("AccessionID")).toString());
        grid.setCellText(2, row, rs.field(QStringLiteral("Title")).toString());
        grid.setCellText(3, row, rs.field(QStringLiteral("DueDate")).toString());
        grid.setCellText(4, row, rs.field(QStringLiteral("ReturnDate")).toString());
        grid.setCellText(5, row, rs.field(QStringLiteral("FineAmount")).toString());
        grid.setChecked(PaymentColumn, row, false);
        grid.setChecked(CancelColumn, row, false);
    }
    data_.CloseCompact();
}

void frmFinePayment::GetTicked(int col, int row)
{
    SpreadGrid &grid = *ui->fpSpreadFined;
    if ((col != PaymentColumn && col != CancelColumn) || row < 1 || row > grid.maxRows() || !grid.isChecked(col, row))
        return;
    AddToProcessList(grid.cellText(0, row), grid.cellText(1, row), grid.cellText(5, row), col == CancelColumn);
    grid.removeRow(row);
    GetTotal();
    markPending(true);
}

void frmFinePayment::AddToProcessList(const QString &transactionID, const QString &accession, const QString &amount, bool cancel)
{
    ui->fpSpreadPayCancel->appendRow({transactionID, accession, amount, SqlDate(Clock::today()), cancel ? QStringLiteral("1") : QStringLiteral("0")}, 0);
    GetTotal();
}

void frmFinePayment::GetTotal()
{
    const SpreadGrid &grid = *ui->fpSpreadPayCancel;
    Money total;
    for (int row = 1; row <= grid.maxRows(); ++row) {
        Money amount;
        if (grid.cellText(4, row) != QLatin1String("1") && Money::parse(grid.cellText(2, row), &amount))
            total += amount;
    }
    ui->txtTotal->setText(total.toDisplayText());
}

void frmFinePayment::ClearSpreads()
{
    ui->fpSpreadFined->clearRows();
    ui->fpSpreadPayCancel->clearRows();
}

void frmFinePayment::btnRemove_Click()
{
    Trap(Location, QStringLiteral("btnRemove_Click"), [&] {
        SpreadGrid &list = *ui->fpSpreadPayCancel;
        const int row = ui->txtRow->text().trimmed().toInt();
        if (row == 0 || list.maxRows() == 0 || row > list.maxRows())
            return;
        const QString transaction = QString::number(list.cellText(0, row).toInt());
        list.removeRow(row);
        LoadFines(finesOfMember() + QStringLiteral(" ") + QStringLiteral(" and (tblLibTransactionFines.transactionid = ") + transaction + QStringLiteral(")"));
        ui->txtRow->clear();
        GetTotal();
    }, [&] { data_.CloseCompact(); });
}

void frmFinePayment::markPending(bool pending)
{
    ui->cmdPaymentProcess->setPalette(pending ? QPalette(QColor(255, 255, 128)) : QPalette());
    ui->cmdPaymentProcess->setProperty("pending", pending);
}

void frmFinePayment::cmdPaymentProcess_Click()
{
    Trap(Location, QStringLiteral("Process"), [&] {
        SpreadGrid &list = *ui->fpSpreadPayCancel;
        if (list.maxRows() == 0) {
            UserMessage(QStringLiteral("Please select an item to process"));
            return;
        }
        // Every ticked fine is paid or cancelled together, or none is.
        QStringList updates;
        for (int row = 1; row <= list.maxRows(); ++row) {
            const qint64 transaction = qint64(number(list.cellText(0, row)));
            const double amount = number(list.cellText(2, row));
            const QDate paid = QDate::fromString(list.cellText(3, row), QStringLiteral("yyyy-MM-dd"));
            if (number(list.cellText(4, row)) == 1)
                updates << QStringLiteral(" Update tblLibTransactionFines") + QStringLiteral(" Set FineCancelled = true")
                               + QStringLiteral(" Where TransactionID = ") + QString::number(transaction);
            else
                updates << QStringLiteral(" Update tblLibTransactionFines") + QStringLiteral(" Set PaymentDate = #") + SqlDate(paid)
                               + QStringLiteral("#") + QStringLiteral(" , PaymentAmount = ") + QString::number(amount, 'g', 15)
                               + QStringLiteral(" Where TransactionID = ") + QString::number(transaction);
        }
        data_.RunTransaction([&] {
            for (const QString &sql : updates)
                data_.ExecuteNonQuery(sql);
            return true;
        });
        ClearSpreads();
        ui->txtTotal->setText(Money().toDisplayText()); // money looks like money: "0.00"
        if (!member_.isEmpty())
            LoadFines(finesOfMember() + QStringLiteral(" order by tblLibItems.Title")); // what is still open
        markPending(false);
        UserMessage(QStringLiteral("Processed Successfully"));
    }, [&] { data_.CloseCompact(); });
}

void frmFinePayment::cmdPrint_Click()
{
    Trap(Location, QStringLiteral("Print Routine"), [&] {
        PrintGridWithHeading(PrintPortrait, QStringLiteral("FinePayment"), *ui->fpSpreadPayCancel);
    });
}
