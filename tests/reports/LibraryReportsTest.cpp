// The library reports on a school the test makes: each report's rows, the statements sent, the
// by-class grouping, and the PDF saved from the viewer read back with pdftotext.
#include "Clock.h"
#include "DbConnection.h"
#include "LibraryReport.h"
#include "ScreenDriver.h"
#include "TestDatabases.h"
#include "DatabaseLocations.h"
#include "frmLibraryReport.h"
#include "frmReportViewer.h"

#include <QComboBox>
#include <QDateEdit>
#include <QRegularExpression>

using namespace ScreenDriver;

namespace {

class LibraryReports : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        Clock::setFixed(QDateTime(QDate(2026, 11, 23), QTime(9, 0)));
        SchoolName = QStringLiteral("Hillview High");
        central("Insert into SchoolGrades(ID, Name, schoolgrade) values (8, 'Grade 8', 'Yes')");
        central("Insert into SchoolGrades(ID, Name, schoolgrade) values (9, 'Grade 9', 'Yes')");
        central("Insert into Classes(ClassID, ClassName, Grade) values (1, '8A', 8)");
        central("Insert into Classes(ClassID, ClassName, Grade) values (2, '9B', 9)");
        central("Insert into Classes(ClassID, ClassName, Grade) values (3, '9C', 9)");
        central("Insert into Learner_Info(ID, AccessionNo, SName, FName, Grade, Class, Status) values (12, 'L100', 'Botha', 'Anna', 8, 1, 'C')");
        central("Insert into Learner_Info(ID, AccessionNo, SName, FName, Grade, Class, Status) values (14, 'L102', 'Dlamini', 'Sipho', 9, 2, 'C')");
        central("Insert into Educators(EdID, SName, FName, IDNumber, Status) values (21, 'Naidoo', 'Ravi', '7001015000081', 'C')");
        for (int i = 1; i <= 6; ++i)
            library(QString("Insert into tblLibItems(AccessionID, Title, ShelfNumber) values ('A%1', 'Book %1', 'F%1')").arg(i));
        // Loans: A1 issued in the period, A2 before it (both out), A3 returned, A4 out to the educator.
        loan("A1", 1, "L", 12, "2026-11-01", false);
        loan("A2", 2, "L", 14, "2026-06-01", false);
        loan("A3", 3, "L", 12, "2026-11-05", true);
        loan("A4", 4, "E", 21, "2026-10-10", false);
        loan("A5", 5, "L", 12, "2026-06-01", true);
        loan("A6", 6, "L", 14, "2026-09-01", true);
        // Fines of learner 12: paid, fined before the period (A5); paid, fined in it (A3); learner 14: cancelled (A6), open (A2).
        fine(5, 12, "2026-07-01", "2026-11-01", 2, false);
        fine(3, 12, "2026-10-01", "2026-11-20", 1.5, false);
        fine(6, 14, "2026-10-10", "", 0, true);
        fine(2, 14, "2026-10-12", "", 0, false);
        library("Insert into tblLibReserves(MemberType, MemberID, ItemID, ReserveDate) values ('L', 14, 1, #2026-11-10#)");
        library("Insert into tblLibReserves(MemberType, MemberID, ItemID, ReserveDate, Canceled) values ('L', 12, 2, #2026-11-11#, true)");
        library("Insert into tblLibReserves(MemberType, MemberID, ItemID, ReserveDate) values ('E', 21, 2, #2026-11-12#)");
    }
    void TearDown() override
    {
        SchoolName.clear();
        DatabaseTest::TearDown();
    }
    void loan(const char *accession, int item, const char *type, int member, const char *issued, bool returned)
    {
        library(QString("Insert into tblLibTransactions(AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate, Returned) values ('%1', '%2', %3, %4, #%5#, #%5#, %6)")
                    .arg(accession, type).arg(member).arg(item).arg(issued).arg(returned ? "true" : "false"));
    }
    void fine(int transaction, int member, const char *fined, const char *paid, double amount, bool cancelled)
    {
        library(QString("Insert into tblLibTransactionFines(TransactionID, MemberID, MemberType, FineAmount, DateFined, PaymentDate, PaymentAmount, FineCancelled) "
                        "values (%1, %2, 'L', 2, #%3#, %4, %5, %6)")
                    .arg(transaction).arg(member).arg(fined)
                    .arg(QString(paid).isEmpty() ? QString("Null") : "#" + QString(paid) + "#")
                    .arg(amount).arg(cancelled ? "true" : "false"));
    }
    // Views the report as set up on the screen; the viewer saves its PDF and is closed.
    QStringList view(frmLibraryReport &screen, const QString &pdf = QString())
    {
        int pages = -1;
        // When no viewer opens (an error), the watch ends with this call.
        const auto watch = ScreenDriver::whenModal<frmReportViewer>([&](frmReportViewer *viewer) {
            pages = viewer->pageCount();
            if (!pdf.isEmpty()) {
                EXPECT_EQ(viewer->saveAsPdf(pdf), frmReportViewer::Saved::Yes);
            }
            viewer->close();
        });
        click(screen, "cmdView");
        viewerPages_ = pages;
        QStringList out;
        const LibraryReport &r = screen.lastReport();
        for (int i = 0; i < r.rowCount(); ++i)
            out << (r.definition().byClass ? r.classOf(i) + ": " : QString()) + r.row(i).join('|');
        return out;
    }
    int viewerPages_ = 0;
};

} // namespace

TEST_F(LibraryReports, IssuedAndOutstandingItemsDifferOnlyByThePeriod)
{
    frmLibraryReport screen;
    EXPECT_EQ(screen.windowTitle(), "Library Reports");
    EXPECT_EQ(child<QDateEdit>(screen, "dtFrom")->date(), QDate(2026, 8, 23));
    EXPECT_EQ(view(screen), QStringList{"8A: A1|Book 1|F1|12|Botha, Anna|L|2026-11-01|2026-11-01"});
    EXPECT_EQ(screen.lastReport().definition().name, "crdIssuedItemsByClass");
    EXPECT_EQ(screen.reportStatement(),
              " SELECT tblLibItems.AccessionID, tblLibItems.Title, tblLibItems.ShelfNumber, tblLibTransactions.MemberID, tblLibTransactions.MemberType, "
              "tblLibTransactions.IssueDate, tblLibTransactions.DueDate FROM tblLibItems INNER JOIN tblLibTransactions ON tblLibItems.ItemID = tblLibTransactions.ItemID "
              "Where (tblLibTransactions.Returned = 0) and (tblLibTransactions.MemberType= 'L')  and (tblLibTransactions.IssueDate between #2026-08-23# and #2026-11-23# )"
              " and (tblLibTransactions.Returned = false) and tblLibTransactions.MemberID in (12,14)");
    click(screen, "optOSItems");
    EXPECT_FALSE(child<QDateEdit>(screen, "dtFrom")->isVisibleTo(&screen));
    EXPECT_EQ(view(screen), (QStringList{"8A: A1|Book 1|F1|12|Botha, Anna|L|2026-11-01|2026-11-01",
                                         "9B: A2|Book 2|F2|14|Dlamini, Sipho|L|2026-06-01|2026-06-01"}));
    click(screen, "optEducator");
    EXPECT_EQ(view(screen), QStringList{"A4|Book 4|F4|21|Naidoo, Ravi|E|2026-10-10|2026-10-10"});
    EXPECT_EQ(screen.lastReport().definition().name, "crdOutstandingItems");
}

TEST_F(LibraryReports, FinesByWhenTheyArose)
{
    frmLibraryReport screen;
    click(screen, "optPaidFines");
    EXPECT_EQ(view(screen), QStringList{"8A: A3|Book 3|12|Botha, Anna|L|2.00|2026-10-01|2026-11-20|False"});
    EXPECT_EQ(screen.lastReport().summaryLines(),
              (QStringList{"Class: 8A", "Learners' items in 8A: 1", "Total fines in 8A: 2.00", "Total fines: 2.00"}));
    click(screen, "optOSFines");
    EXPECT_EQ(view(screen), QStringList{"9B: A2|Book 2|14|Dlamini, Sipho|L|2.00|2026-10-12"});
    // The member filter is the loan's member.
    child<QLineEdit>(screen, "txtMemberID")->setText("L100");
    view(screen);
    EXPECT_TRUE(screen.reportStatement().contains(" And tblLibTransactions.MemberID = 12"));
    EXPECT_EQ(screen.lastReport().rowCount(), 0);
}

TEST_F(LibraryReports, ReservationsIgnoreGradeAndClassAndNeverListCancelledOnes)
{
    frmLibraryReport screen;
    click(screen, "optReservedItems");
    EXPECT_FALSE(child<QComboBox>(screen, "cboGrade")->isVisibleTo(&screen));
    QComboBox *grade = child<QComboBox>(screen, "cboGrade");
    grade->setCurrentIndex(grade->findText("Grade 8"));
    EXPECT_EQ(view(screen), QStringList{"A1|Book 1|F1|14|Dlamini, Sipho|L|2026-11-10|False"});
    EXPECT_EQ(screen.lastReport().definition().name, "crdReservesList");
    click(screen, "optEducator");
    child<QLineEdit>(screen, "txtMemberID")->setText("7001015000081");
    EXPECT_EQ(view(screen), QStringList{"A2|Book 2|F2|21|Naidoo, Ravi|E|2026-11-12|False"});
    EXPECT_TRUE(screen.reportStatement().contains(" And tblLibReserves.MemberID = 21"));
}

TEST_F(LibraryReports, AClassWithNoLearnersOrAnUnknownMemberGivesAnEmptyReport)
{
    frmLibraryReport screen;
    click(screen, "optOSItems");
    QComboBox *cls = child<QComboBox>(screen, "cboClass");
    cls->setCurrentIndex(cls->findText("9C"));
    EXPECT_TRUE(view(screen).isEmpty());
    EXPECT_TRUE(messages_->shown().empty());
    cls->setCurrentIndex(-1);
    child<QLineEdit>(screen, "txtMemberID")->setText("NO-SUCH-LEARNER");
    EXPECT_TRUE(view(screen).isEmpty());
    EXPECT_TRUE(messages_->shown().empty());
    child<QLineEdit>(screen, "txtMemberID")->clear();
    // A period with nothing in it still opens the viewer, with an empty report.
    cls->setCurrentIndex(-1);
    click(screen, "optIssuedItems");
    child<QDateEdit>(screen, "dtFrom")->setDate(QDate(2026, 11, 20));
    EXPECT_TRUE(view(screen).isEmpty());
    EXPECT_EQ(viewerPages_, 1);
}

TEST_F(LibraryReports, TheSavedPdfHoldsTheHeadingThePeriodAndEveryRow)
{
    frmLibraryReport screen;
    click(screen, "optOSItems");
    click(screen, "optIssuedItems");
    child<QDateEdit>(screen, "dtFrom")->setDate(QDate(2026, 5, 1));
    view(screen, path("issued.pdf"));
    const QString text = pdfText(path("issued.pdf"));
    EXPECT_TRUE(text.contains("Hillview High - Issued Items")) << text.toStdString();
    EXPECT_TRUE(text.contains("Items Issued between 2026-05-01 and 2026-11-23"));
    EXPECT_TRUE(text.contains("Class: 8A"));
    EXPECT_TRUE(text.contains("Class: 9B"));
    for (const char *accession : {"A1", "A2"})
        EXPECT_TRUE(text.contains(accession)) << accession;
    EXPECT_TRUE(text.contains("Page 1 of 1"));
}

TEST_F(LibraryReports, AReportOf5000RowsPaginates)
{
    // 5,000 outstanding loans of 5,000 copies for learners of two classes.
    library("Delete * from tblLibTransactions where Returned = false");
    {
        DbConnection c;
        c.DataSource = libraryPath_;
        c.Open();
        c.BeginTrans();
        for (int i = 0; i < 5000; ++i) {
            c.Execute(QString("Insert into tblLibItems(AccessionID, Title) values ('B%1', 'Long list')").arg(i, 4, 10, QChar('0')));
            c.Execute(QString("Insert into tblLibTransactions(AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate) values ('B%1', 'L', %2, %3, #2026-11-01#, #2026-11-15#)")
                          .arg(i, 4, 10, QChar('0')).arg(i % 2 ? 12 : 14).arg(i + 7));
        }
        c.CommitTrans();
    }
    frmLibraryReport screen;
    click(screen, "optOSItems");
    view(screen, path("long.pdf"));
    EXPECT_EQ(screen.lastReport().rowCount(), 5000);
    const QString text = pdfText(path("long.pdf"));
    const QStringList pages = text.split(QChar('\f'), Qt::SkipEmptyParts);
    EXPECT_GT(pages.size(), 50);
    EXPECT_EQ(viewerPages_, pages.size());
    for (int p = 0; p < pages.size(); ++p)
        EXPECT_TRUE(pages[p].contains(QString("Page %1 of %2").arg(p + 1).arg(pages.size()))) << p + 1;
    EXPECT_EQ(text.count(QRegularExpression("\\bB\\d{4}\\b")), 5000);
    EXPECT_TRUE(text.contains("Learners' items in 8A: 2500"));
}

TEST_F(LibraryReports, TypedQuotesAreValuesNotStatements)
{
    library("Insert into tblLibItems(AccessionID, Title, ShelfNumber) values ('T1', 'Tom''s Trip', 'F TOM')");
    loan("T1", 7, "L", 12, "2026-11-02", false);
    frmLibraryReport screen;
    click(screen, "optOSItems");
    child<QLineEdit>(screen, "txtTitle")->setText("Tom's");
    EXPECT_EQ(view(screen), QStringList{"8A: T1|Tom's Trip|F TOM|12|Botha, Anna|L|2026-11-02|2026-11-02"});
    EXPECT_TRUE(messages_->shown().empty());
    // An accession filter made to match everything matches nothing: it is one accession number.
    child<QLineEdit>(screen, "txtTitle")->clear();
    child<QLineEdit>(screen, "txtAccessionNo")->setText("x' OR '1'='1");
    EXPECT_TRUE(view(screen).isEmpty());
    EXPECT_TRUE(messages_->shown().empty());
}

TEST_F(LibraryReports, ClassesComeInCountingOrderAndEachClassIsTotalled)
{
    // Classes 10A and 1B besides 8A and 9B: 1B first, 10A last, never 10A before 1B.
    central("Insert into SchoolGrades(ID, Name, schoolgrade) values (1, 'Grade 1', 'Yes')");
    central("Insert into SchoolGrades(ID, Name, schoolgrade) values (10, 'Grade 10', 'Yes')");
    central("Insert into Classes(ClassID, ClassName, Grade) values (4, '10A', 10)");
    central("Insert into Classes(ClassID, ClassName, Grade) values (5, '1B', 1)");
    central("Insert into Learner_Info(ID, AccessionNo, SName, FName, Grade, Class, Status) values (15, 'L103', 'Cele', 'Zola', 10, 4, 'C')");
    central("Insert into Learner_Info(ID, AccessionNo, SName, FName, Grade, Class, Status) values (16, 'L104', 'Adams', 'Lee', 1, 5, 'C')");
    library("Insert into tblLibItems(AccessionID, Title, ShelfNumber) values ('A7', 'Book 7', 'F7')");
    library("Insert into tblLibItems(AccessionID, Title, ShelfNumber) values ('A8', 'Book 8', 'F8')");
    loan("A7", 7, "L", 15, "2026-09-01", true);
    loan("A8", 8, "L", 16, "2026-09-01", true);
    fine(7, 15, "2026-10-01", "", 0, false); // each fine is 2.00, unpaid
    fine(8, 16, "2026-10-02", "", 0, false);
    frmLibraryReport screen;
    QComboBox *classes = child<QComboBox>(screen, "cboClass");
    QStringList names;
    for (int i = 0; i < classes->count(); ++i)
        names << classes->itemText(i);
    EXPECT_EQ(names, (QStringList{"1B", "8A", "9B", "9C", "10A"}));
    click(screen, "optOSFines");
    const QStringList rows = view(screen);
    ASSERT_EQ(rows.size(), 3);
    EXPECT_TRUE(rows[0].startsWith("1B: ")) << rows.join('/').toStdString();
    EXPECT_TRUE(rows[2].startsWith("10A: ")) << rows.join('/').toStdString();
    const QStringList summary = screen.lastReport().summaryLines();
    EXPECT_TRUE(summary.contains("Total fines in 1B: 2.00"));
    EXPECT_TRUE(summary.contains("Total fines in 10A: 2.00"));
    EXPECT_EQ(summary.last(), "Total fines: 6.00");
}

TEST_F(LibraryReports, ListsThatCannotBeReadReportUnderTheIssueDesksName)
{
    CentralDatabasePath = path("no-school.db");
    frmLibraryReport screen;
    QStringList reports;
    for (const QString &prompt : messages_->prompts())
        if (prompt.contains("\r\nProcedure: Load ComboBox Routine"))
            reports << prompt.section("\r\nLocation: ", 1);
    ASSERT_FALSE(reports.isEmpty()) << messages_->prompts().join('/').toStdString();
    for (const QString &where : reports)
        EXPECT_EQ(where, "FrmissueSystem\r\nProcedure: Load ComboBox Routine"); // the borrowed label, on purpose
}
