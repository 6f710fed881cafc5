#include "FrmuserloanHistory.h"
#include "ui_FrmuserloanHistory.h"

#include "AppError.h"
#include "Clock.h"
#include "LoanRoutines.h"
#include "MemberSummary.h"
#include "Recordset.h"
#include "SpreadGrid.h"
#include "TypedFields.h"
#include "ErrorReport.h"
#include "frmFinePayment.h"
#include "mCommon.h"
#include "modExtendedMsgBox.h"

namespace {
const QString Location = QStringLiteral("FrmUserLoanHistory");
constexpr int AccessionColumn = 4;

// This screen's words for each refusal of the issue check (they differ from the desk's).
QString historyRefusal(const IssueCheck &check)
{
    switch (check.refusal) {
    case IssueRefusal::UnknownMember: return QStringLiteral("This member number does not exist");
    case IssueRefusal::LoanLimit: return QStringLiteral("This member already has the maximum number of items on loan");
    case IssueRefusal::UnknownItem: return QStringLiteral("This accession number does not exist");
    case IssueRefusal::OnLoan: return QStringLiteral("This accession number is still out on loan and must be returned before it can be issued again");
    case IssueRefusal::ReservedForAnother: return QStringLiteral("This item has been reserved for ") + check.reservedFor + QStringLiteral(" and cannot be issued.");
    case IssueRefusal::None: break;
    }
    return QString();
}
} // namespace

FrmuserloanHistory::FrmuserloanHistory(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::FrmuserloanHistory>())
{
    ui->setupUi(this);
    GuardTypedFields(this);
    LimitToColumn(ui->txtAccNo, "tblLibItems", "AccessionID");
    ui->gridLoans->defineColumns({{"Issue Date", 11}, {"Author", 8}, {"Title", 36}, {"Accession No", 12}, {"Due Date", 11}, {"Return Date", 11}});
    ui->dtreturnDate->setDate(Clock::today());
    connect(ui->optCurrent, &QRadioButton::clicked, this, [this] { LoadLoanHistory(QStringLiteral("C")); });
    connect(ui->optHistory, &QRadioButton::clicked, this, [this] { LoadLoanHistory(QStringLiteral("H")); });
    connect(ui->gridLoans, &SpreadGrid::cellClicked, this, &FrmuserloanHistory::gridLoans_Click);
    connect(ui->cmdissue, &QPushButton::clicked, this, &FrmuserloanHistory::cmdissue_Click);
    connect(ui->cmdRenew, &QPushButton::clicked, this, &FrmuserloanHistory::cmdRenew_Click);
    connect(ui->cmdReturn, &QPushButton::clicked, this, &FrmuserloanHistory::cmdReturn_Click);
    connect(ui->cmdFine, &QPushButton::clicked, this, &FrmuserloanHistory::cmdFine_Click);
    connect(ui->cmdPrint, &QPushButton::clicked, this, &FrmuserloanHistory::cmdPrint_Click);
    connect(ui->cmdDone, &QPushButton::clicked, this, &QDialog::accept);
}

FrmuserloanHistory::~FrmuserloanHistory() = default;

void FrmuserloanHistory::setMember(const QString &memberType, int memberID, const QString &displayName)
{
    memberType_ = memberType;
    memberID_ = memberID;
    ui->txtUsr->setText(displayName);
    ui->optCurrent->setChecked(true);
    LoadLoanHistory(QStringLiteral("C"));
    showMember();
}

void FrmuserloanHistory::showMember()
{
    Trap(Location, QStringLiteral("Load Member Routine"), [&] {
        ui->memberPanel->showMember(MemberSummary::load(data_, memberType_, memberID_, Clock::today()));
    }, [&] { data_.CloseCompact(); });
}

void FrmuserloanHistory::LoadLoanHistory(const QString &mode)
{
    // Spelt unlike the screen's other reports ("FrmUserLoanHistory") on purpose: the label is kept as it was.
    Trap(QStringLiteral("FrmuserloanHistory"), QStringLiteral("Load Loan History Routine"), [&] {
        const QString select = mode == QLatin1String("C")
                                   ? QStringLiteral("SELECT tblLibTransactions.MemberType, tblLibTransactions.MemberID, tblLibTransactions.AccessionID, tblLibTransactions.IssueDate, tblLibTransactions.DueDate, tblLibTransactions.ReturnDate, tblLibItems.Author1, tblLibItems.Title")
                                   : QStringLiteral("SELECT tblLibTransactions.MemberType, tblLibTransactions.MemberID, tblLibTransactions.AccessionID, tblLibTransactions.IssueDate, tblLibTransactions.DueDate, tblLibTransactions.ReturnDate,  tblLibItems.Author1, tblLibItems.Title");
        const QString where = mode == QLatin1String("C") ? QStringLiteral(" where returned = false and memberid = ") : QStringLiteral(" where memberid = ");
        const int rows = data_.GetData(select + QStringLiteral(" FROM tblLibTransactions INNER JOIN tblLibItems ON tblLibTransactions.ItemID = tblLibItems.ItemID")
                                       + where + QString::number(memberID_) + QStringLiteral(" and membertype = '") + memberType_ + QStringLiteral("'"));
        SpreadGrid &grid = *ui->gridLoans;
        grid.beginFill();
        grid.setMaxRows(rows);
        int row = 0;
        const char *fields[] = {"issuedate", "author1", "title", "AccessionID", "DueDate", "ReturnDate"};
        for (Recordset &rs = *data_.rst; !rs.atEnd(); rs.MoveNext()) {
            ++row;
            for (int c = 1; c <= 6; ++c)
                grid.setCellText(c, row, rs.field(QLatin1String(fields[c - 1])).toString());
        }
        grid.endFill();
        data_.CloseCompact();
    }, [&] { data_.CloseCompact(); });
}

void FrmuserloanHistory::gridLoans_Click(int col, int row)
{
    if (col == AccessionColumn && row >= 1 && row <= ui->gridLoans->maxRows())
        ui->txtAccNo->setText(ui->gridLoans->cellText(AccessionColumn, row));
}

bool FrmuserloanHistory::GetLoanDefaults(const QString &accession)
{
    return Trap(
        Location, QStringLiteral("Get Loan Defaults Routine"),
        [&] {
            rules_.load(data_, accession, memberType_);
            maxItems_ = rules_.shown.value(2).toShort();
            maxRenewals_ = LoanRules::maxRenewals(data_);
        },
        [&] { data_.CloseCompact(); });
}

bool FrmuserloanHistory::readyForLoanAction(const QString &accession, const QString &action)
{
    if (!GetItemByAccession(accession, &ItemID)) {
        UserMessage(QStringLiteral("This accession number does not exist"));
        return false;
    }
    if (ItemAvailable(accession)) {
        UserMessage(QStringLiteral("This accession number is not on loan and cannot be ") + action);
        return false;
    }
    return GetLoanDefaults(accession);
}

void FrmuserloanHistory::actionDone(const QString &message)
{
    UserMessage(message);
    ui->optCurrent->setChecked(true);
    LoadLoanHistory(QStringLiteral("C"));
    showMember();
}

void FrmuserloanHistory::cmdissue_Click()
{
    Trap(Location, QStringLiteral("Issue Item Routine"), [&] {
        const QString accession = ui->txtAccNo->text().trimmed();
        if (!GetLoanDefaults(accession))
            return;
        if (rules_.ReferenceItem || rules_.RestrictedItem) {
            UserMessage(QStringLiteral("This item is a restricted or reference item and is not availabe for loan."));
            return;
        }
        const QDate due = Clock::today().addDays(rules_.LoanPeriod);
        const IssueCheck check = CheckIssue(memberID_, memberType_, maxItems_, accession);
        ItemID = check.itemID;
        if (check.refusal != IssueRefusal::None) {
            UserMessage(historyRefusal(check));
            return;
        }
        if (RecordIssue(accession, memberType_, memberID_, ItemID, due) == LentElsewhere) {
            UserMessage(historyRefusal(IssueCheck{IssueRefusal::OnLoan, ItemID, QString()}));
            return;
        }
        actionDone(QStringLiteral("Your item has been issued"));
    }, [&] { data_.CloseCompact(); });
}

void FrmuserloanHistory::cmdRenew_Click()
{
    Trap(Location, QStringLiteral("Renew Item Routine"), [&] {
        const QString accession = ui->txtAccNo->text().trimmed();
        if (!readyForLoanAction(accession, QStringLiteral("renewed")))
            return;
        // Unlike the desk, a reserved item may be renewed here.
        const QDate due = Clock::today().addDays(rules_.ExtensionDays);
        if (ReturnOrRenewLoan(accession, Clock::today(), maxRenewals_, QStringLiteral("renewal"), due, rules_.FineAmount, rules_.FineInterval))
            actionDone(QStringLiteral("Your item has been renewed"));
    });
}

void FrmuserloanHistory::cmdReturn_Click()
{
    Trap(Location, QStringLiteral("Return Item Routine"), [&] {
        const QString accession = ui->txtAccNo->text().trimmed();
        if (!readyForLoanAction(accession, QStringLiteral("returned")))
            return;
        if (!ReturnOrRenewLoan(accession, ui->dtreturnDate->date(), 0, QStringLiteral("return"), QDate(), rules_.FineAmount, rules_.FineInterval))
            return;
        // The reservation is looked at once the loan is closed.
        QString reservedFor;
        if (GetNextReservation(ItemID, memberID_, memberType_, &reservedFor))
            UserMessage(QStringLiteral("This item has been reserved for ") + reservedFor + QStringLiteral(" and must be kept aside."));
        actionDone(QStringLiteral("Your item has been returned"));
    });
}

void FrmuserloanHistory::cmdFine_Click()
{
    frmFinePayment fines(this);
    fines.openFor(memberType_, memberID_);
    fines.exec();
    showMember(); // a payment changes what the member owes
}

void FrmuserloanHistory::cmdPrint_Click()
{
    Trap(Location, QStringLiteral("Print Routine"), [&] {
        PrintGridWithHeading(PrintPortrait, QStringLiteral("User Loan History"), *ui->gridLoans);
    });
}
