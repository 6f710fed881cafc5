#include "frmLibraryUsers.h"
#include "mCombo.h"
#include "ui_frmLibraryUsers.h"

#include "AppError.h"
#include "DbConnection.h"
#include "Money.h"
#include "FrmuserloanHistory.h"
#include "MemberLists.h"
#include "Recordset.h"
#include "SpreadGrid.h"
#include "SqlText.h"
#include "TypedFields.h"
#include "ErrorReport.h"
#include "DatabaseLocations.h"
#include "mCommon.h"
#include "modExtendedMsgBox.h"
#include "SchoolDatabase.h"

#include <QDir>
#include <QHash>
#include <QStandardPaths>

namespace {

const QString Users = QStringLiteral("frmLibraryUsers");
const QString USers = QStringLiteral("frmLibraryUSers"); // the second spelling some handlers report under

const QString LearnerJoins = QStringLiteral("FROM ReasonCodes RIGHT JOIN ((Learner_Info INNER JOIN SchoolGrades ON Learner_Info.Grade = SchoolGrades.ID) LEFT JOIN Classes ON Learner_Info.Class = Classes.ClassId) ON ReasonCodes.ReasonCode = Learner_Info.TSReasonCode ");

// Fields read into the grid columns: column, field name.
const std::vector<std::pair<int, const char *>> LearnerFields = {{1, "ID"}, {2, "SName"}, {3, "FName"}, {4, "AccessionNo"}, {5, "Name"}, {6, "ClassName"}};
const std::vector<std::pair<int, const char *>> EducatorFields = {{1, "EdID"}, {2, "SName"}, {3, "FName"}, {4, "IDNumber"}};
const std::vector<std::pair<int, const char *>> StaffFields = {{1, "staffID"}, {2, "SName"}, {3, "FName"}, {4, "IDNumber"}};

} // namespace

frmLibraryUsers::frmLibraryUsers(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmLibraryUsers>())
{
    ui->setupUi(this);
    GuardTypedFields(this);
    ui->grdLearners->defineColumns({{"Library Number", 10}, {"Surname", 20}, {"First Name", 18}, {"Accession No", 12}, {"Grade", 10}, {"Class", 8},
                                    {"Fine", 6}});
    ui->grdEducators->defineColumns({{"Library Number", 10}, {"Surname", 20}, {"First Name", 18}, {"Identification Number", 18}, {"Register Class", 12},
                                     {"Fine", 6}});
    ui->grdLearners->setColumnMoney(7);
    ui->grdEducators->setColumnMoney(6);
    ui->gridStaff->defineColumns({{"Library Number", 10}, {"Surname", 20}, {"First Name", 18}, {"Identification Number", 18}});
    for (char letter = 'A'; letter <= 'Z'; ++letter)
        ui->cboFilter->addItem(QString(QLatin1Char(letter)));
    ui->cboFilter->setCurrentIndex(-1);
    Trap(Users, QStringLiteral("Form_Load"), [&] {
        const auto classes = SchoolQuery(QStringLiteral("Select classname,classid from classes order by grade,classname"));
        AddClassesInNaturalOrder(ui->cboClass, *classes, QStringLiteral("classname"), QStringLiteral("classid"));
        const auto grades = SchoolQuery(QStringLiteral("Select name,id from schoolgrades where schoolgrade ='Yes'"));
        for (; !grades->atEnd(); grades->MoveNext())
            ui->cboGrade->addItem(grades->field(QStringLiteral("name")).toString(), grades->field(QStringLiteral("id")).toInt());
    });
    ui->cboGrade->setCurrentIndex(-1);
    ui->cboClass->setCurrentIndex(-1);
    ui->tbApproval->setCurrentIndex(0);

    connect(ui->cmdShowAllLearners, &QPushButton::clicked, this, &frmLibraryUsers::cmdShowAllLearners_Click);
    connect(ui->cmdShowAllArchivedLearners, &QPushButton::clicked, this, &frmLibraryUsers::cmdShowAllArchivedLearners_Click);
    connect(ui->cboGrade, &QComboBox::activated, this, &frmLibraryUsers::cboGrade_Click);
    connect(ui->cboClass, &QComboBox::activated, this, &frmLibraryUsers::cboClass_Click);
    connect(ui->cmdShowAllEducators, &QPushButton::clicked, this, &frmLibraryUsers::cmdShowAllEducators_Click);
    connect(ui->cmdShowAllArchivedEducators, &QPushButton::clicked, this, &frmLibraryUsers::cmdShowAllArchivedEducators_Click);
    connect(ui->cboFilter, &QComboBox::activated, this, &frmLibraryUsers::cboFilter_Click);
    connect(ui->cmdStaff, &QPushButton::clicked, this, &frmLibraryUsers::cmdStaff_Click);
    connect(ui->cmdArchivedStaff, &QPushButton::clicked, this, &frmLibraryUsers::cmdArchivedStaff_Click);
    connect(ui->grdLearners, &SpreadGrid::cellDoubleClicked, this, [this](int, int row) { openLoanRecord(ui->grdLearners, QStringLiteral("L"), row); });
    connect(ui->grdEducators, &SpreadGrid::cellDoubleClicked, this, [this](int, int row) { openLoanRecord(ui->grdEducators, QStringLiteral("E"), row); });
    connect(ui->gridStaff, &SpreadGrid::cellDoubleClicked, this, [this](int, int row) { openLoanRecord(ui->gridStaff, QStringLiteral("S"), row); });
    connect(ui->cmdPrintLearners, &QPushButton::clicked, this,
            [this] { printGrid(ui->grdLearners, QStringLiteral("Library USers Learner Information "), Users); });
    connect(ui->cmdPrintEducators, &QPushButton::clicked, this,
            [this] { printGrid(ui->grdEducators, QStringLiteral("Library Users Educator Information"), USers); });
    connect(ui->cmdprintStaff, &QPushButton::clicked, this, [this] { printGrid(ui->gridStaff, QStringLiteral("Library Users Staff Information"), USers); });
    connect(ui->cmdExportExcelLearners, &QPushButton::clicked, this, [this] { exportGrid(ui->grdLearners, QStringLiteral("Learners")); });
    connect(ui->cmdExportExcelEducators, &QPushButton::clicked, this, [this] { exportGrid(ui->grdEducators, QStringLiteral("Educators")); });
    for (QPushButton *exit : {ui->cmdExit, ui->cmdExit1, ui->cmdExit2})
        connect(exit, &QPushButton::clicked, this, &QDialog::accept);
}

frmLibraryUsers::~frmLibraryUsers() = default;

namespace {

// Each member's open fines (neither paid nor cancelled) added up, by internal number.
QHash<int, Money> openFines(const QString &memberType)
{
    QHash<int, Money> totals;
    const std::unique_ptr<DbConnection> library = OpenLibraryDatabase(true);
    const auto rs = library->Execute(QStringLiteral("select MemberID, sum(FineAmount) as total from tblLibTransactionFines where MemberType = '")
                                     + memberType + QStringLiteral("' and FineCancelled = false and PaymentDate is null group by MemberID"));
    for (; !rs->atEnd(); rs->MoveNext())
        totals.insert(rs->field(0).toInt(), rs->field(1).toMoney());
    return totals;
}

} // namespace

void frmLibraryUsers::load(SpreadGrid *grid, QLineEdit *total, const QString &sql, const std::vector<std::pair<int, const char *>> &fields,
                           const QString &memberType, int fineColumn)
{
    const QHash<int, Money> fines = fineColumn > 0 ? openFines(memberType) : QHash<int, Money>();
    const auto rs = SchoolQuery(sql);
    std::vector<std::pair<int, int>> present; // grid column, field index
    for (const auto &[col, name] : fields) {
        const int index = rs->fieldIndex(QLatin1String(name));
        if (index >= 0)
            present.emplace_back(col, index);
    }
    grid->beginFill();
    grid->setMaxRows(0);
    grid->setMaxRows(rs->RecordCount());
    int row = 0;
    for (; !rs->atEnd(); rs->MoveNext()) {
        ++row;
        for (const auto &[col, index] : present)
            if (!rs->field(index).isNull())
                grid->setCellText(col, row, rs->field(index).toString());
        grid->setCellText(0, row, grid->cellText(1, row));
        if (const auto fine = fines.constFind(grid->cellText(1, row).toInt()); fine != fines.constEnd() && *fine > Money())
            grid->setCellText(fineColumn, row, fine->toDisplayText());
    }
    grid->endFill();
    total->setText(QString::number(row));
}

void frmLibraryUsers::LoadLearners(const QString &sql) { load(ui->grdLearners, ui->txtTotalLearners, sql, LearnerFields, QStringLiteral("L"), 7); }
void frmLibraryUsers::LoadEducators(const QString &sql) { load(ui->grdEducators, ui->txtTotalEducators, sql, EducatorFields, QStringLiteral("E"), 6); }
void frmLibraryUsers::LoadStaff(const QString &sql) { load(ui->gridStaff, ui->txttotalStaff, sql, StaffFields, QStringLiteral("S"), 0); }

void frmLibraryUsers::learnerList(const QString &caption, const QString &totalLabel, const QString &sql, const QString &procedure, const QString &location)
{
    Trap(location, procedure, [&] {
        ui->frLearnerInformation->setTitle(caption);
        ui->lblTotalLeaners->setText(totalLabel);
        LoadLearners(sql);
    });
}

void frmLibraryUsers::cmdShowAllLearners_Click()
{
    ui->cboGrade->setCurrentIndex(-1);
    ui->cboClass->setCurrentIndex(-1);
    learnerList(QStringLiteral("All Current Learners"), QStringLiteral("Current Learners:"),
                QStringLiteral("SELECT Learner_Info.LuritsIndicator, learner_info.luritsflag,Learner_Info.LuritsNumber, Learner_Info.TSStatusFlag, Learner_Info.ID, Learner_Info.AccessionNo, Learner_Info.SName, Learner_Info.FName, Learner_Info.Grade, SchoolGrades.Name, Classes.ClassName")
                    + QStringLiteral(" ") + LearnerJoins + QStringLiteral(" WHERE learner_info.TSStatusFlag > 0 AND status = 'C'  ORDER BY sname,fname"),
                QStringLiteral("Show All Current Learners"), USers);
}

void frmLibraryUsers::cmdShowAllArchivedLearners_Click()
{
    learnerList(QStringLiteral("All Archived Learners"), QStringLiteral("Archived Learners:"),
                QStringLiteral("SELECT  Learner_Info.ID, Learner_Info.AccessionNo, Learner_Info.SName, Learner_Info.FName, Learner_Info.Grade, SchoolGrades.Name ")
                    + QStringLiteral("FROM Learner_Info INNER JOIN SchoolGrades ON Learner_Info.Grade = SchoolGrades.ID ")
                    + QStringLiteral("WHERE learner_info.status = 'A' ORDER BY sname,fname"),
                QStringLiteral("Show All Archived Learners"), USers);
}

void frmLibraryUsers::cboGrade_Click()
{
    if (ui->cboGrade->currentIndex() < 0) {
        UserMessage(QStringLiteral("Please select a grade for the filter."));
        return;
    }
    const QString grade = ui->cboGrade->currentText();
    ui->cboClass->setCurrentIndex(-1);
    learnerList(QStringLiteral("Learners: ") + grade, QStringLiteral("Learners in ") + grade + QStringLiteral(":"),
                QStringLiteral("SELECT Learner_Info.ID, Learner_Info.AccessionNo, Learner_Info.SName, Learner_Info.FName, Learner_Info.Grade, SchoolGrades.Name, Classes.ClassName, ReasonCodes.ReasonDescription ")
                    + LearnerJoins + QStringLiteral("WHERE learner_info.grade=") + QString::number(ui->cboGrade->currentData().toInt())
                    + QStringLiteral(" AND status = 'C' ORDER BY sname,fname"),
                QStringLiteral("cboGrade_Click"), Users);
}

void frmLibraryUsers::cboClass_Click()
{
    if (ui->cboClass->currentIndex() < 0) {
        UserMessage(QStringLiteral("Please select a class for the filter."));
        return;
    }
    const QString className = ui->cboClass->currentText();
    ui->cboGrade->setCurrentIndex(-1);
    learnerList(QStringLiteral("Learners: ") + className, QStringLiteral("Learners in ") + className + QStringLiteral(":"),
                QStringLiteral("SELECT Learner_Info.ID, Learner_Info.AccessionNo, Learner_Info.SName, Learner_Info.FName, Learner_Info.Grade, SchoolGrades.Name, Classes.ClassName, ReasonCodes.ReasonDescription ")
                    + QStringLiteral("FROM ((Learner_Info INNER JOIN SchoolGrades ON Learner_Info.Grade = SchoolGrades.ID) LEFT JOIN Classes ON Learner_Info.Class = Classes.ClassId) LEFT JOIN ReasonCodes ON Learner_Info.TSReasonCode = ReasonCodes.ReasonCode ")
                    + QStringLiteral(" WHERE learner_info.Class=") + QString::number(ui->cboClass->currentData().toInt())
                    + QStringLiteral(" and status = 'C'  ORDER BY sname,fname"),
                QStringLiteral("cboClass_Click"), Users);
}

// Loads one list of educators or staff under its frame caption; errors are reported as the handler's.
void frmLibraryUsers::showList(QGroupBox *frame, const QString &caption, bool educators, const QString &sql, const QString &location,
                               const QString &procedure)
{
    Trap(location, procedure, [&] {
        frame->setTitle(caption);
        if (educators)
            LoadEducators(sql);
        else
            LoadStaff(sql);
    });
}

void frmLibraryUsers::cmdShowAllEducators_Click()
{
    showList(ui->frEducatorInformation, QStringLiteral("All Current Educators"), true,
             QStringLiteral("SELECT educators.SName, educators.FName, educators.EdID, educators.IDNumber") + QStringLiteral(" FROM educators ")
                 + QStringLiteral("WHERE status = 'C' ORDER BY sname, fname"),
             Users, QStringLiteral("Show All Current Educators"));
}

void frmLibraryUsers::cmdShowAllArchivedEducators_Click()
{
    showList(ui->frEducatorInformation, QStringLiteral("All Archived Educators"), true,
             QStringLiteral("SELECT educators.SName, educators.FName, educators.Key, educators.EdID, educators.IDNumber ")
                 + QStringLiteral(" FROM educators  ") + QStringLiteral("WHERE  status = 'A' ORDER BY sname, fname"),
             USers, QStringLiteral("Show All Archived Educators"));
}

void frmLibraryUsers::cboFilter_Click()
{
    const QString letter = ui->cboFilter->currentText();
    showList(ui->frEducatorInformation, QStringLiteral("Educators Filter By: ") + letter, true,
             QStringLiteral("SELECT  educators.SName, educators.FName, educators.Key, educators.EdID, educators.IDNumber ")
                 + QStringLiteral("FROM  educators  ") + QStringLiteral("WHERE status = 'C' AND SName LIKE '") + Safesql(letter)
                 + QStringLiteral("%") + QStringLiteral("' ORDER BY sname, fname"),
             Users, QStringLiteral("cboFilter_Click"));
}

void frmLibraryUsers::cmdStaff_Click()
{
    showList(ui->frStaffInformation, QStringLiteral("All Current Staff"), false,
             QStringLiteral("SELECT staffmembers.SName, staffmembers.FName, staffmembers.staffID, staffmembers.IDNumber")
                 + QStringLiteral(" FROM staffmembers ") + QStringLiteral("WHERE status = 'C' ORDER BY sname, fname"),
             Users, QStringLiteral("Show All Current Staff"));
}

void frmLibraryUsers::cmdArchivedStaff_Click()
{
    // Reported under the current-staff label, as it always was.
    showList(ui->frStaffInformation, QStringLiteral("All Archived Staff"), false,
             QStringLiteral("SELECT staffmembers.SName, staffmembers.FName, staffmembers.staffID, staffmembers.IDNumber")
                 + QStringLiteral(" FROM staffmembers ") + QStringLiteral("WHERE status = 'A' ORDER BY sname, fname"),
             Users, QStringLiteral("Show All Current Staff"));
}

void frmLibraryUsers::openLoanRecord(SpreadGrid *grid, const QString &memberType, int row)
{
    if (row < 1 || row > grid->maxRows())
        return;
    FrmuserloanHistory history(this);
    history.setMember(memberType, grid->cellText(1, row).toInt(), grid->cellText(2, row) + QLatin1Char(' ') + grid->cellText(3, row));
    history.exec();
}

QString frmLibraryUsers::ExportLogFile() { return WorkbookExportLog(); }

void frmLibraryUsers::exportGrid(SpreadGrid *grid, const QString &sheetName) { ExportGridToWorkbook(this, *grid, sheetName); }

void frmLibraryUsers::printGrid(SpreadGrid *grid, const QString &heading, const QString &location)
{
    Trap(location, QStringLiteral("Print Routine"), [&] {
        PrintGridWithHeading(PrintPortrait, heading, *grid);
    });
}
