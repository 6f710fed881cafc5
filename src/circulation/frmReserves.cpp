#include "frmReserves.h"
#include "ui_frmReserves.h"

#include "AppError.h"
#include "Clock.h"
#include "LoanRoutines.h"
#include "LoanRules.h"
#include "MemberLists.h"
#include "Recordset.h"
#include "Reservations.h"
#include "SpreadGrid.h"
#include "SqlText.h"
#include "TypedFields.h"
#include "ErrorReport.h"
#include "mCombo.h"
#include "mCommon.h"
#include "modExtendedMsgBox.h"
#include "SchoolDatabase.h"
#include "GridFill.h"
#include "TaskRunner.h"

namespace {
const QString Location = QStringLiteral("frmReserves");
constexpr int ReserveColumn = 3, CancelColumn = 5;

// The copies an item search finds, as the upper grid shows them.
void readCopies(clsDataObject &data, const QString &sql, GridRows &out)
{
    data.GetData(sql);
    for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext())
        out.add({rs.field(QStringLiteral("ItemID")).toString(), rs.field(QStringLiteral("AccessionID")).toString(), rs.field(QStringLiteral("Title")).toString()});
    data.CloseCompact();
}

// The open reservations of a copy, as the lower grid shows them.
void readReserves(clsDataObject &data, const QString &accession, GridRows &out)
{
    data.GetData(QStringLiteral(" SELECT DISTINCT tblLibReserves.ReserveID, tblLibItems.AccessionID, tblLibReserves.MemberType, tblLibReserves.MemberID, tblLibReserves.ReserveDate, tblLibReserves.Canceled")
                 + QStringLiteral(" FROM (tblLibReserves") + QStringLiteral(" Inner join  tblLibItems on tblLibReserves.ItemID = tblLibItems.ItemID )")
                 + QStringLiteral(" where tblLibItems.AccessionID = '") + Safesql(accession) + QStringLiteral("'")
                 + QStringLiteral(" and tblLibReserves.canceled = false"));
    const std::shared_ptr<Recordset> rs = data.rst;
    data.CloseCompact();
    for (; !rs->atEnd(); rs->MoveNext()) {
        const QString type = rs->field(QStringLiteral("MemberType")).toString();
        out.add({rs->field(QStringLiteral("ReserveID")).toString(), rs->field(QStringLiteral("AccessionID")).toString(),
                 GetMemberIDNo(rs->field(QStringLiteral("MemberID")).toInt(), type).toString(), type, rs->field(QStringLiteral("ReserveDate")).toString(),
                 rs->field(QStringLiteral("Canceled")).toBool() ? QStringLiteral("1") : QStringLiteral("0")});
    }
}

} // namespace

frmReserves::frmReserves(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmReserves>())
{
    ui->setupUi(this);
    GuardTypedFields(this);
    LimitToColumn(ui->txtAccessionNo, "tblLibItems", "AccessionID");
    LimitToColumn(ui->txtTitle, "tblLibItems", "Title");
    members_ = new MemberPicker(ui->optLearner, ui->optEducator, ui->optStaff, ui->cboMembers, ui->txtMemberID, FillReservationMembers, Location);
    members_->setNameLabel(ui->lblMemberName);
    ui->fpSpreadSearch->defineColumns({{"Item Accssn #", 14}, {"Title", 44}, {"Reserve", 9}});
    ui->fpSpreadSearch->setColumnType(ReserveColumn, SpreadModel::CellType::Button, QStringLiteral("Reserve"));
    ui->fpSpreadReserves->defineColumns({{"Item Accssn #", 14}, {"Member ID", 16}, {"Type", 6}, {"Date Reserved", 13}, {"Cancel", 7}});
    ui->fpSpreadReserves->setColumnType(CancelColumn, SpreadModel::CellType::CheckBox);
    connect(ui->cmdFind, &QPushButton::clicked, this, &frmReserves::cmdFind_Click);
    connect(ui->txtAccessionNo, &QLineEdit::returnPressed, this, &frmReserves::cmdFind_Click);
    connect(ui->txtTitle, &QLineEdit::returnPressed, this, &frmReserves::cmdFind_Click);
    connect(ui->fpSpreadSearch, &SpreadGrid::buttonClicked, this, &frmReserves::fpSpreadSearch_ButtonClicked);
    connect(ui->cmdProceessCancelation, &QPushButton::clicked, this, &frmReserves::cmdProceessCancelation_Click);
    connect(ui->cmdPrint, &QPushButton::clicked, this, &frmReserves::cmdPrint_Click);
    connect(ui->cmdDone, &QPushButton::clicked, this, &QDialog::accept);
    ClearGrids();
    members_->FillMembers();
}

frmReserves::~frmReserves() = default;

void frmReserves::ClearGrids()
{
    ui->fpSpreadSearch->clearRows();
    ui->fpSpreadReserves->clearRows();
}

void frmReserves::cmdFind_Click()
{
    Trap(Location, QStringLiteral("cmdFind_Click"), [&] {
        ClearGrids();
        const QString accession = ui->txtAccessionNo->text();
        if (accession.isEmpty() && ui->txtTitle->text().isEmpty()) {
            UserMessage(QStringLiteral("Please enter an accession number or title"));
            return;
        }
        sql_ = !accession.isEmpty()
                   ? QStringLiteral("select ItemID, AccessionID,Title from tblLibItems where (ReferenceItem = false) and (Restricted = false) and AccessionID = '")
                         + Safesql(accession) + QStringLiteral("' order by Title,AccessionID")
                   : QStringLiteral("select ItemID, AccessionID,Title from tblLibItems where ((ReferenceItem = false) and (Restricted = false) and  (Title like '%")
                         + Safesql(ui->txtTitle->text()) + QStringLiteral("%'))");
        // A title can find thousands of copies, each with its reservations to read: off the window.
        GridRows copies(2), reserved(CancelColumn);
        const bool read = TaskRunner(this, QStringLiteral("Finding the copies...")).run([&](TaskProgress &) {
            clsDataObject data;
            readCopies(data, sql_, copies);
            if (!accession.isEmpty())
                readReserves(data, accession, reserved);
            else
                for (int row = 1; row <= copies.count(); ++row)
                    readReserves(data, copies.cell(1, row), reserved);
        });
        if (!read)
            return;
        if (accession.isEmpty() && copies.count() == 0) {
            UserMessage(QStringLiteral("Item not found"));
            return;
        }
        copies.appendTo(*ui->fpSpreadSearch);
        if (accession.isEmpty() && !ui->txtMemberID->text().isEmpty())
            memberByNumber();
        reserved.appendTo(*ui->fpSpreadReserves);
    }, [&] { data_.CloseCompact(); });
}

// The member of the typed number, read as the screen always has; nothing of it is shown.
QVariant frmReserves::memberByNumber()
{
    const QVariant found = GetMemberByIDNo(ui->txtMemberID->text(), members_->kind());
    const QString id = QString::number(found.isNull() ? 0 : found.toInt());
    const QString kind = members_->kind();
    const QString sql = kind == QLatin1String("L")
                            ? QStringLiteral("Select id  as IDNo,sname,fname,accessionno,classname from Learner_info left join classes On learner_info.class = classes.classid where status = 'C' and [ID] = ") + id + QStringLiteral(" order by sname,fname")
                        : kind == QLatin1String("E") ? QStringLiteral("Select edid as IDNo,sname,fname,IDNumber from Educators where status = 'C'and EdID = ") + id + QStringLiteral("  order by sname,fname")
                                                     : QStringLiteral("Select staffid as IDNo,sname,fname, IDNumber from staffmembers where status = 'C' and StaffID = ") + id + QStringLiteral("  order by sname,fname");
    const auto rs = SchoolQuery(sql);
    return rs->atEnd() ? QVariant() : rs->field(QStringLiteral("IDNo")).value();
}

bool frmReserves::Validate()
{
    if (data_.GetData(QStringLiteral("select ItemID from tblLibItems where AccessionID = '") + Safesql(ui->txtAccessionNo->text()) + QStringLiteral("'")) < 1) {
        data_.CloseCompact();
        UserMessage(QStringLiteral("Item was not found"));
        return false;
    }
    data_.CloseCompact();
    if (memberByNumber().isNull()) {
        UserMessage(QStringLiteral("Member not found"));
        return false;
    }
    return true;
}

void frmReserves::LoadReservationLimits()
{
    ReservationLimits(&maxItemReservations_, &maxMemberReservations_);
}

void frmReserves::fpSpreadSearch_ButtonClicked(int col, int row)
{
    if (col != ReserveColumn || row < 1)
        return;
    Trap(Location, QStringLiteral("fpSpreadSearch_ButtonClicked"), [&] {
        reserveFoundRow(row);
    }, [&] { data_.CloseCompact(); });
}

void frmReserves::reserveFoundRow(int row)
{
    kind_ = members_->kind();
    if (ui->txtMemberID->text().isEmpty()) {
        UserMessage(QStringLiteral("Please enter Member ID"));
        ui->txtMemberID->setFocus();
        return;
    }
    const QVariant found = GetMemberByIDNo(ui->txtMemberID->text(), kind_);
    const int member = found.isNull() ? 0 : found.toInt();
    if (!MemberExists(member, kind_)) {
        UserMessage(QStringLiteral("Member does not exist"));
        return;
    }
    SpreadGrid &search = *ui->fpSpreadSearch;
    ui->txtAccessionNo->setText(search.cellText(1, row));
    const int itemID = search.cellText(0, row).toInt();
    LoadReservationLimits();
    const QString refusal = PlaceReservation({kind_, member, itemID, ui->txtAccessionNo->text(), maxItemReservations_, maxMemberReservations_});
    if (!refusal.isEmpty()) {
        UserMessage(refusal);
        return;
    }
    search.removeRow(row);
    members_->showName();
    UserMessage(QStringLiteral("The item has been reserved") + QStringLiteral(" for ") + MemberName(kind_, member) + QLatin1Char('.'));
    cmdFind_Click();
}

void frmReserves::cmdProceessCancelation_Click()
{
    Trap(Location, QStringLiteral("cmdProceessCancelation_Click"), [&] {
        SpreadGrid &grid = *ui->fpSpreadReserves;
        if (grid.maxRows() == 0)
            return;
        int cancelled = 0;
        for (int row = 1; row <= grid.maxRows(); ++row) {
            if (!grid.isChecked(CancelColumn, row))
                continue;
            data_.ExecuteNonQuery(QStringLiteral("update tblLibReserves set canceled = true where ReserveID = ") + QString::number(grid.cellText(0, row).toInt()));
            ++cancelled;
        }
        if (cancelled == 0) {
            UserMessage(QStringLiteral("No item selected."));
            return;
        }
        UserMessage(QStringLiteral("Item Canceled."));
        ClearGrids();
        cmdFind_Click();
    });
}

void frmReserves::cmdPrint_Click()
{
    Trap(Location, QStringLiteral("Print Routine"), [&] {
        PrintGridWithHeading(PrintPortrait, QStringLiteral("Reserved Items"), *ui->fpSpreadReserves);
    });
}
