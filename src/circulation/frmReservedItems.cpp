#include "frmReservedItems.h"
#include "ui_frmReservedItems.h"

#include "AppError.h"
#include "Clock.h"
#include "DbConnection.h"
#include "LoanRoutines.h"
#include "LoanRules.h"
#include "MemberLists.h"
#include "Recordset.h"
#include "SpreadGrid.h"
#include "TypedFields.h"
#include "ErrorReport.h"
#include "mCombo.h"
#include "mCommon.h"
#include "modExtendedMsgBox.h"
#include "SchoolDatabase.h"

namespace {
// The print routine of both reservation screens reports as "frmReserves".
const QString Location = QStringLiteral("frmReserves");
constexpr int CancelColumn = 6;
const QString ListHead = QStringLiteral(" SELECT r.ReserveID, i.AccessionID, i.Title, r.ReserveDate, r.MemberType, r.MemberID")
                         + QStringLiteral(" FROM tblLibReserves r ") + QStringLiteral(" INNER JOIN tblLibItems i ON r.ItemID = i.ItemID");
} // namespace

frmReservedItems::frmReservedItems(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmReservedItems>())
{
    ui->setupUi(this);
    GuardTypedFields(this);
    LimitToColumn(ui->txtAccessionNo, "tblLibItems", "AccessionID");
    LimitToColumn(ui->txtTitle, "tblLibItems", "Title");
    members_ = new MemberPicker(ui->optLearner, ui->optEducator, ui->optStaff, ui->cboMembers, ui->txtMemberID, FillReservationMembers, Location);
    members_->setNameLabel(ui->lblMemberName);
    connect(ui->txtMemberID, &QLineEdit::returnPressed, this, &frmReservedItems::cmdFind_Click);
    ui->fpSpreadReserves->defineColumns({{"Item Accssn #", 14}, {"Title", 36}, {"Date Res", 11}, {"Member", 26}, {"Type", 6}, {"Cancel", 7}});
    ui->fpSpreadReserves->setColumnType(CancelColumn, SpreadModel::CellType::CheckBox);
    ui->dtFrom->setDate(Clock::today().addMonths(-3));
    ui->dtTo->setDate(Clock::today());
    connect(ui->cmdFind, &QPushButton::clicked, this, &frmReservedItems::cmdFind_Click);
    connect(ui->cmdFindAll, &QPushButton::clicked, this, &frmReservedItems::cmdFindAll_Click);
    connect(ui->chCancelAll, &QCheckBox::clicked, this, &frmReservedItems::chCancelAll_Click);
    connect(ui->fpSpreadReserves, &SpreadGrid::cellEdited, this, [this](int col, int row) {
        if (col == CancelColumn && row >= 1)
            markPending(true);
    });
    connect(ui->cmdProceessCancelation, &QPushButton::clicked, this, &frmReservedItems::cmdProceessCancelation_Click);
    connect(ui->cmdPrint, &QPushButton::clicked, this, &frmReservedItems::cmdPrint_Click);
    connect(ui->cmdDone, &QPushButton::clicked, this, &QDialog::accept);
    ui->fpSpreadReserves->clearRows();
    members_->FillMembers();
}

frmReservedItems::~frmReservedItems() = default;

void frmReservedItems::cmdFind_Click()
{
    Trap(Location, QStringLiteral("cmdFind_Click"), [&] {
        // Accession number and title go in as typed, their quotes doubled.
        QString criteria;
        if (!ui->txtAccessionNo->text().isEmpty())
            criteria += QStringLiteral(" and i.AccessionID = '") + Safesql(ui->txtAccessionNo->text()) + QStringLiteral("'");
        else if (!ui->txtTitle->text().isEmpty())
            criteria += QStringLiteral(" and (i.Title Like '%") + Safesql(ui->txtTitle->text()) + QStringLiteral("%')");
        if (!ui->txtMemberID->text().isEmpty()) {
            const QVariant member = GetMemberByIDNo(ui->txtMemberID->text(), members_->kind());
            criteria += QStringLiteral(" and (r.memberid = ") + QString::number(member.isNull() ? 0 : member.toInt())
                        + QStringLiteral(" and MemberType = '") + members_->kind() + QStringLiteral("')");
        }
        criteria += QStringLiteral(" and (r.ReserveDate between #") + SqlDate(ui->dtFrom->date()) + QStringLiteral("# and #")
                    + SqlDate(ui->dtTo->date()) + QStringLiteral("#)");
        FindReservedItems(ListHead + QStringLiteral(" WHERE (r.Canceled=False) ") + criteria + QStringLiteral(" order by i.Title,i.AccessionID"));
    }, [&] { data_.CloseCompact(); });
}

void frmReservedItems::cmdFindAll_Click()
{
    Trap(Location, QStringLiteral("cmdFindAll_Click"), [&] {
        FindReservedItems(ListHead + QStringLiteral(" WHERE (r.Canceled=False) order by i.Title,i.AccessionID "));
    }, [&] { data_.CloseCompact(); });
}

void frmReservedItems::FindReservedItems(const QString &sql)
{
    ui->fpSpreadReserves->clearRows();
    data_.GetData(sql);
    const std::shared_ptr<Recordset> rs = data_.rst;
    data_.CloseCompact();
    for (; !rs->atEnd(); rs->MoveNext()) {
        const QString type = rs->field(QStringLiteral("MemberType")).toString();
        const QString id = QString::number(rs->field(QStringLiteral("MemberID")).toInt());
        const QString lookUp = type == QLatin1String("L")
                                   ? QStringLiteral("Select id,sname,fname,accessionno,classname from Learner_info left join classes On learner_info.class = classes.classid where status = 'C'and [id] = ") + id + QStringLiteral(" order by sname,fname")
                               : type == QLatin1String("E") ? QStringLiteral("Select edid,sname,fname from Educators where status = 'C' and edid = ") + id
                                                            : QStringLiteral("Select staffid,sname,fname from staffmembers where status = 'C' and staffid = ") + id;
        const auto who = SchoolQuery(lookUp);
        const QString name = who->atEnd() ? QString() : who->field(QStringLiteral("sname")).toString() + QLatin1Char(' ') + who->field(QStringLiteral("fname")).toString();
        PopulateSpread(rs->field(QStringLiteral("ReserveID")).toString(), rs->field(QStringLiteral("AccessionID")).toString(),
                       rs->field(QStringLiteral("Title")).toString(), rs->field(QStringLiteral("ReserveDate")).toString(), name, type);
    }
}

void frmReservedItems::PopulateSpread(const QString &reserveID, const QString &accession, const QString &title, const QString &date,
                                      const QString &name, const QString &type)
{
    const int row = ui->fpSpreadReserves->appendRow({reserveID, accession, title, date, name, type}, 0);
    ui->fpSpreadReserves->setChecked(CancelColumn, row, false);
}

void frmReservedItems::chCancelAll_Click()
{
    SpreadGrid &grid = *ui->fpSpreadReserves;
    for (int row = 1; row <= grid.maxRows(); ++row)
        grid.setChecked(CancelColumn, row, ui->chCancelAll->isChecked());
    markPending(true);
}

void frmReservedItems::markPending(bool pending)
{
    ui->cmdProceessCancelation->setPalette(pending ? QPalette(QColor(255, 255, 128)) : QPalette());
    ui->cmdProceessCancelation->setProperty("pending", pending);
}

void frmReservedItems::cmdProceessCancelation_Click()
{
    Trap(Location, QStringLiteral("cmdProceessCancelation_Click"), [&] {
        SpreadGrid &grid = *ui->fpSpreadReserves;
        if (grid.maxRows() > 0) {
            int cancelled = 0;
            for (int row = 1; row <= grid.maxRows(); ++row) {
                if (!grid.isChecked(CancelColumn, row))
                    continue;
                data_.ExecuteNonQuery(QStringLiteral("update tblLibReserves set canceled = true where ReserveID = ")
                                      + QString::number(grid.cellText(0, row).toInt()));
                ++cancelled;
            }
            cmdFind_Click();
            UserMessage(cancelled > 0 ? QStringLiteral("The reservation has been cancelled.") : QStringLiteral("Please select an item."));
        }
        ui->chCancelAll->setChecked(false);
        markPending(false);
    });
}

void frmReservedItems::cmdPrint_Click()
{
    Trap(Location, QStringLiteral("Print Routine"), [&] {
        PrintGridWithHeading(PrintPortrait, QStringLiteral("Reserved Items"), *ui->fpSpreadReserves);
    });
}
