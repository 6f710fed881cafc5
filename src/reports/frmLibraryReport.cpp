#include "frmLibraryReport.h"
#include "ui_frmLibraryReport.h"

#include "AppError.h"
#include "Clock.h"
#include "LoanRoutines.h"
#include "LoanRules.h"
#include "MemberLists.h"
#include "Recordset.h"
#include "SqlText.h"
#include "TypedFields.h"
#include "ErrorReport.h"
#include "TaskRunner.h"
#include "DatabaseLocations.h"
#include "clsTSQL.h"
#include "frmReportViewer.h"
#include "mCombo.h"
#include "modExtendedMsgBox.h"
#include "SchoolDatabase.h"

#include <QHash>

namespace {

// The lists report under the issue desk's name on purpose: the screen borrowed them from there.
const QString ListsLocation = QStringLiteral("FrmissueSystem");
const QString LearnerStatement = QStringLiteral(" SELECT Learner_Info.ID as MemberID, Learner_Info.AccessionNo, Learner_Info.sName & ', ' & Learner_Info.fName as mName,SchoolGrades.ID, SchoolGrades.Name, Classes.ClassID, Classes.ClassName ")
                                 + QStringLiteral(" FROM (Learner_Info INNER JOIN SchoolGrades ON Learner_Info.Grade = SchoolGrades.ID)")
                                 + QStringLiteral(" INNER JOIN Classes ON SchoolGrades.ID = Classes.Grade ")
                                 + QStringLiteral(" WHERE Status = 'C' AND SchoolGrades.schoolgrade ='Yes' ") + QStringLiteral(" AND Classes.ClassID = Learner_Info.Class ");
} // namespace

frmLibraryReport::frmLibraryReport(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmLibraryReport>())
{
    ui->setupUi(this);
    GuardTypedFields(this);
    LimitToColumn(ui->txtAccessionNo, "tblLibItems", "AccessionID");
    LimitToColumn(ui->txtTitle, "tblLibItems", "Title");
    new ComboTypeAhead(ui->cboMember);
    for (QRadioButton *option : {ui->optIssuedItems, ui->optOSItems, ui->optOSFines, ui->optPaidFines, ui->optReservedItems})
        connect(option, &QRadioButton::clicked, this, &frmLibraryReport::reportChosen);
    for (QRadioButton *option : {ui->optLearner, ui->optEducator, ui->optStaff})
        connect(option, &QRadioButton::clicked, this, &frmLibraryReport::memberKindChosen);
    connect(ui->cboGrade, &QComboBox::activated, this, &frmLibraryReport::cboGrade_Click);
    connect(ui->cboMember, &QComboBox::activated, this, &frmLibraryReport::cboMember_Click);
    connect(ui->cmdView, &QPushButton::clicked, this, &frmLibraryReport::cmdView_Click);
    connect(ui->cmdClear, &QPushButton::clicked, this, &frmLibraryReport::cmdClear_Click);
    connect(ui->cmdDone, &QPushButton::clicked, this, &QDialog::accept);
    learnerStatement_ = LearnerStatement;
    cmdClear_Click();
    reportChosen();
}

frmLibraryReport::~frmLibraryReport() = default;

QString frmLibraryReport::kind() const { return MemberKind(ui->optLearner, ui->optEducator); }

void frmLibraryReport::cmdClear_Click()
{
    ui->dtFrom->setDate(Clock::today().addMonths(-3));
    ui->dtTo->setDate(Clock::today());
    ui->optLearner->setChecked(true);
    ui->txtMemberID->clear();
    ui->txtAccessionNo->clear();
    ui->txtTitle->clear();
    FillGrades();
    FillClasses();
    FillMembers();
}

void frmLibraryReport::ShowSome()
{
    for (QWidget *w : std::initializer_list<QWidget *>{ui->txtTitle, ui->lblTitle, ui->txtMemberID, ui->lblMemberID, ui->cboGrade, ui->lblGrade, ui->cboClass, ui->lblClass})
        w->show();
}

void frmLibraryReport::HideSome()
{
    ui->txtTitle->show();
    ui->lblTitle->show();
    for (QWidget *w : std::initializer_list<QWidget *>{ui->cboGrade, ui->lblGrade, ui->cboClass, ui->lblClass})
        w->hide();
}

void frmLibraryReport::ShowDateRange(bool show)
{
    for (QWidget *w : std::initializer_list<QWidget *>{ui->frmFrom, ui->lblFrom, ui->frmTo, ui->lblTo})
        w->setVisible(show);
}

void frmLibraryReport::reportChosen()
{
    if (ui->optReservedItems->isChecked()) {
        HideSome();
        ShowDateRange(false);
        return;
    }
    ShowSome();
    const bool period = ui->optIssuedItems->isChecked() || ui->optPaidFines->isChecked();
    if (period)
        cmdClear_Click();
    ShowDateRange(period);
}

void frmLibraryReport::FillGrades()
{
    Trap(ListsLocation, QStringLiteral("Load ComboBox Routine"), [&] {
        ui->cboGrade->clear();
        const auto rs = SchoolQuery(QStringLiteral("Select name,id from schoolgrades where schoolgrade ='Yes'"));
        for (; !rs->atEnd(); rs->MoveNext())
            ui->cboGrade->addItem(rs->field(QStringLiteral("name")).toString(), rs->field(QStringLiteral("id")).toInt());
        ui->cboGrade->setCurrentIndex(-1);
    });
}

void frmLibraryReport::FillClasses()
{
    Trap(ListsLocation, QStringLiteral("Load ComboBox Routine"), [&] {
        ui->cboClass->clear();
        const QString sql = ui->cboGrade->currentIndex() < 0
                                ? QStringLiteral("Select classname,classid from classes order by grade,classname")
                                : QStringLiteral("Select classname,classid from classes where Grade = ") + QString::number(ui->cboGrade->currentData().toInt())
                                      + QStringLiteral("  order by grade,classname");
        const auto rs = SchoolQuery(sql);
        AddClassesInNaturalOrder(ui->cboClass, *rs, QStringLiteral("classname"), QStringLiteral("classid"));
        ui->cboClass->setCurrentIndex(-1);
    });
}

void frmLibraryReport::FillMembers()
{
    Trap(ListsLocation, QStringLiteral("Load ComboBox Routine"), [&] {
        const QString k = kind();
        if (k == QLatin1String("L"))
            FillMemberCombo(ui->cboMember, QStringLiteral("Select Learner_Info.id,sname,fname,accessionno,classname   FROM ((Learner_Info INNER JOIN SchoolGrades ON Learner_Info.Grade = SchoolGrades.ID) LEFT JOIN Classes ON Learner_Info.Class = Classes.ClassId) where status = 'C' order by sname,fname"),
                            QStringLiteral("id"), {QStringLiteral("sname"), QStringLiteral("fname"), QStringLiteral("classname"), QStringLiteral("accessionno")});
        else
            FillFinePaymentMembers(ui->cboMember, k);
    });
}

void frmLibraryReport::memberKindChosen()
{
    if (kind() == QLatin1String("L"))
        learnerStatement_ = LearnerStatement;
    FillMembers();
}

void frmLibraryReport::cboGrade_Click() { FillClasses(); }

void frmLibraryReport::cboMember_Click()
{
    if (ui->cboMember->currentIndex() < 0)
        return;
    Trap(ListsLocation, QStringLiteral("Load ComboBox Routine"), [&] {
        ui->txtMemberID->setText(GetMemberIDNo(ui->cboMember->currentData().toInt(), kind()).toString());
    });
}

void frmLibraryReport::cmdView_Click()
{
    // The handler's name stands where the screen's would: kept as the report has always read.
    Trap(QStringLiteral("cmdViewClick"), QStringLiteral("View Report"), [&] {
        const QString k = kind();
        const bool learners = k == QLatin1String("L");
        const QString from = SqlDate(ui->dtFrom->date());
        const QString to = SqlDate(ui->dtTo->date());
        const QString itemsAndLoans = QStringLiteral(" SELECT tblLibItems.AccessionID, tblLibItems.Title, tblLibItems.ShelfNumber, tblLibTransactions.MemberID, tblLibTransactions.MemberType, tblLibTransactions.IssueDate, tblLibTransactions.DueDate")
                                      + QStringLiteral(" FROM tblLibItems INNER JOIN tblLibTransactions ON tblLibItems.ItemID = tblLibTransactions.ItemID")
                                      + QStringLiteral(" Where (tblLibTransactions.Returned = 0) and (tblLibTransactions.MemberType= '") + k + QStringLiteral("') ");
        QString sql, definition;
        const bool reserves = !ui->optIssuedItems->isChecked() && !ui->optOSItems->isChecked() && !ui->optOSFines->isChecked() && !ui->optPaidFines->isChecked();
        if (ui->optIssuedItems->isChecked()) {
            sql = itemsAndLoans + QStringLiteral(" and (tblLibTransactions.IssueDate between #") + from + QStringLiteral("# and #") + to + QStringLiteral("# )")
                  + QStringLiteral(" and (tblLibTransactions.Returned = false)");
            definition = QStringLiteral("crdIssuedItems");
        } else if (ui->optOSItems->isChecked()) {
            sql = itemsAndLoans + QStringLiteral(" and (tblLibTransactions.Returned = false)");
            definition = QStringLiteral("crdOutstandingItems");
        } else if (ui->optOSFines->isChecked()) {
            sql = QStringLiteral(" SELECT tblLibItems.AccessionID, tblLibItems.Title, tblLibTransactionFines.MemberID, tblLibTransactionFines.MemberType, tblLibTransactionFines.FineAmount, tblLibTransactionFines.DateFined")
                  + QStringLiteral(" FROM tblLibItems INNER JOIN (tblLibTransactionFines INNER JOIN tblLibTransactions ON tblLibTransactionFines.TransactionID = tblLibTransactions.TransactionID) ON tblLibItems.ItemID = tblLibTransactions.ItemID")
                  + QStringLiteral(" Where ((tblLibTransactionFines.FineCancelled = 0) and (tblLibTransactionFines.PaymentAmount = 0)) ")
                  + QStringLiteral(" and (tblLibTransactionFines.MemberType= '") + k + QStringLiteral("') ");
            definition = QStringLiteral("crdOutstandingFines");
        } else if (ui->optPaidFines->isChecked()) {
            sql = QStringLiteral(" SELECT tblLibItems.AccessionID, tblLibItems.Title, tblLibTransactionFines.MemberID, tblLibTransactionFines.MemberType, tblLibTransactionFines.FineAmount, tblLibTransactionFines.DateFined, tblLibTransactionFines.PaymentDate, tblLibTransactionFines.FineCancelled")
                  + QStringLiteral(" FROM (tblLibItems") + QStringLiteral(" INNER JOIN tblLibTransactions ON tblLibItems.ItemID = tblLibTransactions.ItemID)")
                  + QStringLiteral(" INNER JOIN tblLibTransactionFines ON tblLibTransactionFines.TransactionID = tblLibTransactions.TransactionID")
                  + QStringLiteral(" Where ((tblLibTransactionFines.FineCancelled = 0) and (tblLibTransactionFines.PaymentAmount <> 0)) ")
                  + QStringLiteral(" and (tblLibTransactionFines.MemberType= '") + k + QStringLiteral("') ")
                  + QStringLiteral(" and (tblLibTransactionFines.DateFined between #") + from + QStringLiteral("# and #") + to + QStringLiteral("# )");
            definition = QStringLiteral("crdFinesPaid");
        } else {
            sql = QStringLiteral(" SELECT tblLibItems.AccessionID, tblLibItems.Title, tblLibItems.ShelfNumber, tblLibReserves.MemberID, tblLibReserves.MemberType, tblLibReserves.ReserveDate, tblLibReserves.Canceled")
                  + QStringLiteral(" FROM tblLibItems INNER JOIN tblLibReserves ON tblLibItems.ItemID = tblLibReserves.ItemID ")
                  + QStringLiteral(" Where (tblLibReserves.Canceled = 0) And (tblLibReserves.MemberType= '") + k + QStringLiteral("') ");
        }
        if (reserves)
            definition = QStringLiteral("crdReservesList");
        else if (learners)
            definition += QStringLiteral("ByClass");

        if (!ui->txtMemberID->text().isEmpty()) {
            const QVariant member = GetMemberByIDNo(ui->txtMemberID->text(), k);
            sql += QStringLiteral(" And ") + (reserves ? QStringLiteral("tblLibReserves.") : QStringLiteral("tblLibTransactions."))
                   + QStringLiteral("MemberID = ") + QString::number(member.isNull() ? 0 : member.toInt()); // unknown: an empty report
        }
        if (!ui->txtAccessionNo->text().isEmpty())
            sql += QStringLiteral(" And tblLibItems.AccessionID = '") + Safesql(ui->txtAccessionNo->text()) + QStringLiteral("'");
        else if (!ui->txtTitle->text().isEmpty())
            sql += QStringLiteral(" And tblLibItems.Title like '%") + Safesql(ui->txtTitle->text()) + QStringLiteral("%'");

        // The members the report may name: learners currently in a school grade (and the chosen grade and class).
        QString list = learnerStatement_;
        if (!reserves && ui->cboGrade->currentIndex() >= 0)
            list += QStringLiteral(" And (SchoolGrades.ID = ") + QString::number(ui->cboGrade->currentData().toInt()) + QStringLiteral(")");
        if (!reserves && ui->cboClass->currentIndex() >= 0)
            list += QStringLiteral(" And (Classes.ClassID = ") + QString::number(ui->cboClass->currentData().toInt()) + QStringLiteral(")");
        auto made = TaskRunner(this, QStringLiteral("Gathering the report..."), TaskRunner::Cancel::Yes).compute<LibraryReport>([&](TaskProgress &progress) {
            QHash<int, std::pair<QString, QString>> members; // id -> name, class
            if (learners) {
                const auto rs = SchoolQuery(list);
                QStringList ids;
                for (; !rs->atEnd(); rs->MoveNext()) {
                    const int id = rs->field(QStringLiteral("MemberID")).toInt();
                    ids << QString::number(id);
                    members.insert(id, {rs->field(QStringLiteral("mName")).toString(), rs->field(QStringLiteral("ClassName")).toString()});
                }
                // On the reservations' own member column for the reservations report (it has no loan to join).
                // A grade or class without learners gives an empty report (no member has number 0).
                sql += (reserves ? QStringLiteral(" and tblLibReserves.MemberID in (") : QStringLiteral(" and tblLibTransactions.MemberID in ("))
                       + (ids.isEmpty() ? QStringLiteral("0") : ids.join(QLatin1Char(','))) + QStringLiteral(")");
            }
            progress.check();
            clsDataObject reader;
            reader.GetData(sql);
            const std::shared_ptr<Recordset> rows = reader.rst;
            LibraryReport report(ReportDefinition::named(definition), SchoolName, QStringLiteral("Items Issued between ") + from + QStringLiteral(" and ") + to);
            const clsTSQL catalogue;
            progress.setMaximum(rows->RecordCount());
            for (int n = 0; !rows->atEnd(); rows->MoveNext(), ++n) {
                progress.setValue(n);
                const int id = rows->field(QStringLiteral("MemberID")).toInt();
                if (!members.contains(id) && !learners) {
                    progress.check();
                    const auto who = SchoolQuery(catalogue.getMemberNameES(rows->field(QStringLiteral("MemberType")).toString(), id));
                    members.insert(id, {who->atEnd() ? QString() : who->field(QStringLiteral("mName")).toString(), QString()});
                }
                const auto member = members.value(id);
                report.addRow(*rows, member.first, member.second);
            }
            report.finish();
            return report;
        });
        if (!made)
            return;
        reportSql_ = sql;
        report_ = std::move(*made);
        frmReportViewer viewer(report_, this);
        viewer.exec();
    }, [&] { data_.CloseCompact(); });
}
