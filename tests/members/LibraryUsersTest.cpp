// The library users screen on a school database the test makes, driven through its widgets;
// its spreadsheet export opened again by an independent reader (unzip and the sheet's XML).
#include "ScreenDriver.h"
#include "TestDatabases.h"
#include "DatabaseLocations.h"
#include "frmLibraryUsers.h"

#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QTimer>

using namespace ScreenDriver;

namespace {

class LibraryUsers : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        SchoolName = QStringLiteral("Hillview High");
        central("Insert into SchoolGrades(ID, Name, schoolgrade) values (8, 'Grade 8', 'Yes')");
        central("Insert into SchoolGrades(ID, Name, schoolgrade) values (9, 'Grade 9', 'Yes')");
        central("Insert into SchoolGrades(ID, Name, schoolgrade) values (15, 'Alumni', 'No')");
        central("Insert into Classes(ClassID, ClassName, Grade) values (1, '8A', 8)");
        central("Insert into Classes(ClassID, ClassName, Grade) values (2, '9B', 9)");
        central("Insert into ReasonCodes(ReasonCode, ReasonDescription) values (1, 'Transferred')");
        const char *learners[] = {"12, 'L100', 'Botha', 'Anna', 8, 1, 'C', 1", "14, 'L102', 'Dlamini', 'Sipho', 9, 2, 'C', 1",
                                  "15, 'L103', 'Adams', 'Zoe', 8, 1, 'C', 0", // not counted by the school this term
                                  "13, 'L101', 'Old', 'Boy', 15, Null, 'A', 1"};
        for (const char *l : learners)
            central(QString("Insert into Learner_Info(ID, AccessionNo, SName, FName, Grade, Class, Status, TSStatusFlag) values (%1)").arg(QLatin1String(l)));
        central("Insert into Educators(EdID, SName, FName, IDNumber, Status) values (21, 'Naidoo', 'Ravi', '7001015000081', 'C')");
        central("Insert into Educators(EdID, SName, FName, IDNumber, Status) values (22, 'Nel', 'Ina', '7202025000082', 'C')");
        central("Insert into Educators(EdID, SName, FName, IDNumber, Status) values (23, 'Pillay', 'Dev', '6803035000083', 'C')");
        central("Insert into Educators(EdID, SName, FName, IDNumber, Status) values (24, 'Retired', 'Rita', '5004045000084', 'A')");
        central("Insert into StaffMembers(staffID, SName, FName, IDNumber, Status) values (3, 'Mokoena', 'Thabo', '8002025000082', 'C')");
        library("Insert into tblLibItems(AccessionID, Title) values ('A1', 'Book 1')");
        library("Insert into tblLibTransactions(AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate) values ('A1', 'E', 21, 1, #2026-11-01#, #2026-11-22#)");
        // Learner 12 owes 1.00 (a paid and a cancelled fine do not count); educator 12 is someone else.
        for (const char *fine : {"1, 12, 'L', 1, Null, false", "2, 12, 'L', 5, #2026-11-02#, false", "3, 12, 'L', 7, Null, true", "4, 12, 'E', 2.5, Null, false"})
            library(QString("Insert into tblLibTransactionFines(TransactionID, MemberID, MemberType, FineAmount, PaymentDate, FineCancelled) values (%1)").arg(fine));
    }
    void TearDown() override
    {
        SchoolName.clear();
        DatabaseTest::TearDown();
    }
    static QString total(QWidget &screen, const char *box) { return child<QLineEdit>(screen, box)->text(); }
    static void choose(QWidget &screen, const char *combo, const QString &text)
    {
        QComboBox *box = child<QComboBox>(screen, combo);
        box->setCurrentIndex(box->findText(text));
        Q_EMIT box->activated(box->currentIndex());
    }
};

} // namespace

TEST_F(LibraryUsers, CurrentLearnersNeedTheSchoolsCountButGradeAndClassListsDoNot)
{
    frmLibraryUsers screen;
    EXPECT_EQ(screen.windowTitle(), "Library Users");
    EXPECT_TRUE(rows(screen, "grdLearners").isEmpty());
    click(screen, "cmdShowAllLearners");
    EXPECT_EQ(rows(screen, "grdLearners"), (QStringList{"12|Botha|Anna|L100|Grade 8|8A|1.00", "14|Dlamini|Sipho|L102|Grade 9|9B|"}));
    EXPECT_EQ(total(screen, "txtTotalLearners"), "2");
    EXPECT_EQ(child<QGroupBox>(screen, "frLearnerInformation")->title(), "All Current Learners");
    EXPECT_EQ(child<QLabel>(screen, "lblTotalLeaners")->text(), "Current Learners:");

    choose(screen, "cboClass", "8A");
    EXPECT_EQ(rows(screen, "grdLearners"), (QStringList{"15|Adams|Zoe|L103|Grade 8|8A|", "12|Botha|Anna|L100|Grade 8|8A|1.00"}));
    EXPECT_EQ(child<QGroupBox>(screen, "frLearnerInformation")->title(), "Learners: 8A");
    choose(screen, "cboGrade", "Grade 8"); // a grade after a class clears the class
    EXPECT_EQ(child<QComboBox>(screen, "cboClass")->currentIndex(), -1);
    EXPECT_EQ(total(screen, "txtTotalLearners"), "2");
    EXPECT_EQ(child<QLabel>(screen, "lblTotalLeaners")->text(), "Learners in Grade 8:");
    choose(screen, "cboClass", "9B");
    EXPECT_EQ(child<QComboBox>(screen, "cboGrade")->currentIndex(), -1);

    click(screen, "cmdShowAllArchivedLearners");
    EXPECT_EQ(rows(screen, "grdLearners"), QStringList{"13|Old|Boy|L101|Alumni||"});
    EXPECT_EQ(total(screen, "txtTotalLearners"), "1");
    EXPECT_EQ(child<QLabel>(screen, "lblTotalLeaners")->text(), "Archived Learners:");
}

TEST_F(LibraryUsers, EducatorsByLetterAndStaff)
{
    frmLibraryUsers screen;
    click(screen, "cmdShowAllEducators");
    EXPECT_EQ(total(screen, "txtTotalEducators"), "3");
    choose(screen, "cboFilter", "N");
    EXPECT_EQ(rows(screen, "grdEducators"), (QStringList{"21|Naidoo|Ravi|7001015000081||", "22|Nel|Ina|7202025000082||"}));
    EXPECT_EQ(child<QGroupBox>(screen, "frEducatorInformation")->title(), "Educators Filter By: N");
    EXPECT_EQ(total(screen, "txtTotalEducators"), "2");
    click(screen, "cmdShowAllArchivedEducators");
    EXPECT_EQ(rows(screen, "grdEducators"), QStringList{"24|Retired|Rita|5004045000084||"});
    click(screen, "cmdStaff");
    EXPECT_EQ(rows(screen, "gridStaff"), QStringList{"3|Mokoena|Thabo|8002025000082"});
    EXPECT_EQ(total(screen, "txttotalStaff"), "1");
    click(screen, "cmdArchivedStaff");
    EXPECT_EQ(total(screen, "txttotalStaff"), "0");
}

TEST_F(LibraryUsers, ADoubleClickOpensTheMembersLoanRecord)
{
    frmLibraryUsers screen;
    click(screen, "cmdShowAllEducators");
    QString shown;
    QStringList loans;
    QTimer::singleShot(0, &screen, [&] {
        if (QWidget *modal = QApplication::activeModalWidget()) {
            shown = modal->windowTitle() + ": " + child<QLineEdit>(*modal, "txtUsr")->text();
            loans = rows(*modal, "gridLoans");
            modal->close();
        }
    });
    Q_EMIT child<SpreadGrid>(screen, "grdEducators")->cellDoubleClicked(2, 1);
    EXPECT_EQ(shown, "User Loan History: Naidoo Ravi");
    EXPECT_EQ(loans, QStringList{"2026-11-01||Book 1|A1|2026-11-22|"});
}

TEST_F(LibraryUsers, ExportsAWorkbookWithTheGridsCells)
{
    frmLibraryUsers screen;
    click(screen, "cmdShowAllLearners");
    click(screen, "cmdExportExcelLearners"); // no file chosen
    messages_->queueFileName(path("learners.xls"));
    click(screen, "cmdExportExcelLearners");
    EXPECT_EQ(messages_->prompts(), (QStringList{"You must provide a path and name for your export file.", "Export complete."}));
    EXPECT_EQ(workbookRows(path("learners.xlsx")), (QStringList{"Library Number|Surname|First Name|Accession No|Grade|Class|Fine",
                                                                "#12|Botha|Anna|L100|Grade 8|8A|#1", "#14|Dlamini|Sipho|L102|Grade 9|9B"}));
    click(screen, "cmdShowAllEducators");
    messages_->queueFileName(path("educators.xlsx"));
    click(screen, "cmdExportExcelEducators");
    EXPECT_EQ(workbookRows(path("educators.xlsx")).value(1), "#21|Naidoo|Ravi|7001015000081"); // an ID number stays text
    EXPECT_TRUE(QFile(frmLibraryUsers::ExportLogFile()).size() > 0);

    messages_->clear();
    messages_->queueFileName(path("no/such/folder/x.xlsx"));
    click(screen, "cmdExportExcelEducators");
    EXPECT_EQ(messages_->prompts(), QStringList{"Export did not succeed."});
}

TEST_F(LibraryUsers, PrintsEachListUnderItsHeading)
{
    frmLibraryUsers screen;
    click(screen, "cmdShowAllLearners");
    messages_->setPrintToPdf(path("learners.pdf"));
    click(screen, "cmdPrintLearners");
    EXPECT_TRUE(pdfText(path("learners.pdf")).contains("Hillview High - Library USers Learner Information"));
    click(screen, "cmdStaff");
    messages_->setPrintToPdf(path("staff.pdf"));
    click(screen, "cmdprintStaff");
    EXPECT_TRUE(pdfText(path("staff.pdf")).contains("Hillview High - Library Users Staff Information")) << pdfText(path("staff.pdf")).toStdString();
}
