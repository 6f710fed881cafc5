// The Stocktake screen driven through its widgets: starting one for a category, scanning with the
// scanner's Enter, every kind of scan shown, the counts, resuming after closing, returning a copy
// found on the shelf although on loan, the result printed and exported, and missing copies marked lost.
#include "Clock.h"
#include "ScreenDriver.h"
#include "SpreadGrid.h"
#include "TestDatabases.h"
#include "DatabaseLocations.h"
#include "frmReportViewer.h"
#include "frmStocktake.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

using namespace ScreenDriver;

namespace {

class StocktakeScreen : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        Clock::setFixed(QDateTime(QDate(2026, 11, 24), QTime(9, 0)));
        SchoolName = "Hillview High";
        library("Insert into tblLibCategories(CategoryID, Category) values (1, 'Fiction')");
        library("Insert into tblLibCategories(CategoryID, Category) values (2, 'Science')");
        for (int i = 1; i <= 5; ++i)
            library(QString("Insert into tblLibItems(ItemID, AccessionID, Title, CategoryID, LoanType) values (%1, 'S%1', 'Title %1', %2, 'N')")
                        .arg(i).arg(i <= 4 ? 1 : 2));
        library("Insert into tblLibsettings(Loantype,UserCat,Loanperiod,FineAmount,FineInterval,Maxitems,ExtDays,MaxExt,MaxRes,MaxUserRes)"
                "VALUES('N','L',14,0.5,1,5,7,2,1,2)");
        library("Insert into tblLibTransactions(AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate) values ('S3', 'L', 1, 3, #2026-11-01#, #2026-11-20#)");
    }
    void TearDown() override
    {
        SchoolName.clear();
        DatabaseTest::TearDown();
    }
    // A scan with the scanner's Enter leaves the box empty for the next.
    void scan(frmStocktake &screen, const QString &number)
    {
        ScreenDriver::scan(screen, "txtScan", number);
        EXPECT_TRUE(child<QLineEdit>(screen, "txtScan")->text().isEmpty());
    }
    QString label(frmStocktake &screen, const char *name) { return child<QLabel>(screen, name)->text(); }
    // Starts "Fiction 2026" over the Fiction category: S1 to S4, S3 on loan.
    void begin(frmStocktake &screen)
    {
        type(screen, "txtName", "Fiction 2026");
        child<QCheckBox>(screen, "chkWhole")->setChecked(false);
        child<QListWidget>(screen, "lstScope")->item(0)->setCheckState(Qt::Checked);
        click(screen, "cmdStart");
    }
    // Finishes with Yes to the question; the result is saved as a PDF when a name is given.
    int finish(frmStocktake &screen, const QString &pdf = QString())
    {
        int pages = -1;
        const auto watch = whenModal<frmReportViewer>([&](frmReportViewer *viewer) {
            pages = viewer->pageCount();
            EXPECT_TRUE(pdf.isEmpty() || viewer->saveAsPdf(pdf) == frmReportViewer::Saved::Yes);
            viewer->close();
        });
        messages_->queueAnswer(MessageScript::Yes);
        click(screen, "cmdFinish");
        return pages;
    }
};

} // namespace

TEST_F(StocktakeScreen, StartsOnlyWithAScopeAndShowsEveryKindOfScan)
{
    frmStocktake screen;
    EXPECT_FALSE(child<QLineEdit>(screen, "txtScan")->isEnabled());
    type(screen, "txtName", "Fiction 2026");
    child<QCheckBox>(screen, "chkWhole")->setChecked(false);
    click(screen, "cmdStart");
    EXPECT_EQ(messages_->prompts().last(), "Please tick the categories to count, or choose the whole catalogue.");
    ASSERT_EQ(child<QListWidget>(screen, "lstScope")->item(0)->text(), "Fiction");
    begin(screen);
    EXPECT_TRUE(child<QLineEdit>(screen, "txtScan")->isEnabled());
    EXPECT_EQ(label(screen, "lblCount"), "Scanned 0 of 4");

    scan(screen, "S1");
    EXPECT_EQ(label(screen, "lblLastScan"), "S1: On the shelf");
    EXPECT_EQ(label(screen, "lblCount"), "Scanned 1 of 4");
    scan(screen, "S1");
    EXPECT_EQ(label(screen, "lblLastScan"), "S1: Already scanned");
    for (const char *number : {"S5", "Z999", "S3"})
        scan(screen, number);
    EXPECT_EQ(label(screen, "lblCount"), "Scanned 2 of 4");
    EXPECT_EQ(rows(screen, "gridScans"), (QStringList{"Already scanned|S1|Title 1", "Outside the scope|S5|Title 5", "Unknown number|Z999|", "On loan|S3|Title 3"}));
}

TEST_F(StocktakeScreen, ACopyOnLoanFoundOnTheShelfIsReturnedAsTheDeskReturnsIt)
{
    frmStocktake screen;
    begin(screen);
    scan(screen, "S3");
    child<SpreadGrid>(screen, "gridScans")->selectGridRow(1);
    click(screen, "cmdReturn");
    // Four days late at 0.50 a day.
    EXPECT_EQ(messages_->prompts().last(), "S3 has been returned - fine 2.00.");
    EXPECT_EQ(libraryRows("select Returned, ReturnDate from tblLibTransactions"), QStringList{"True|2026-11-24"});
    EXPECT_EQ(libraryValue("select FineAmount from tblLibTransactionFines"), "2");
}

// Opened again (and shown, so the scanner's Enter could reach a button), a stocktake resumes with
// the scope it was started with and the scans that needed attention; Enter only records the scan.
TEST_F(StocktakeScreen, AClosedStocktakeResumesWithItsScopeAndScans)
{
    {
        frmStocktake screen;
        begin(screen);
        scan(screen, "S3");
        scan(screen, "Z9");
    }
    frmStocktake screen;
    screen.show();
    QApplication::setActiveWindow(&screen);
    EXPECT_EQ(child<QLineEdit>(screen, "txtName")->text(), "Fiction 2026");
    EXPECT_FALSE(child<QCheckBox>(screen, "chkWhole")->isChecked());
    EXPECT_EQ(child<QListWidget>(screen, "lstScope")->item(0)->checkState(), Qt::Checked);
    EXPECT_EQ(child<QListWidget>(screen, "lstScope")->item(1)->checkState(), Qt::Unchecked);
    EXPECT_EQ(rows(screen, "gridScans"), (QStringList{"On loan|S3|Title 3", "Unknown number|Z9|"}));
    messages_->clear();
    scan(screen, "S1");
    scan(screen, "S2");
    scan(screen, "S1");
    EXPECT_EQ(label(screen, "lblLastScan"), "S1: Already scanned");
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join('/').toStdString();
    EXPECT_EQ(label(screen, "lblCount"), "Scanned 3 of 4");
    EXPECT_EQ(libraryValue("select count(*) from tblLibStocktakeScans where AccessionID in ('S1', 'S2')"), "2");
}

TEST_F(StocktakeScreen, TheResultIsExportedMissingCopiesMarkedLostAndTheFinishPrinted)
{
    frmStocktake screen;
    begin(screen);
    for (const char *number : {"S1", "S5", "Z999"})
        scan(screen, number);
    messages_->queueFileName(path("result"));
    click(screen, "cmdExport");
    EXPECT_EQ(workbookRows(path("result.xlsx")), (QStringList{"Result|Accession No|Title", "Missing|S2|Title 2", "Missing|S4|Title 4",
                                                              "Unknown number|Z999", "Outside the scope|S5|Title 5"}));

    messages_->queueAnswer(MessageScript::Yes);
    click(screen, "cmdMarkLost");
    EXPECT_TRUE(messages_->shown()[messages_->shown().size() - 2].prompt.startsWith("Mark the 2 missing copies as lost"));
    EXPECT_EQ(libraryRows("select AccessionID, PhasedOutReason from tblLibItems where PhasedOut = true order by AccessionID"),
              (QStringList{"S2|Lost", "S4|Lost"}));

    EXPECT_EQ(finish(screen, path("stocktake.pdf")), 1);
    const QString text = pdfText(path("stocktake.pdf"));
    for (const char *expected : {"Hillview High - Stocktake \"Fiction 2026\"", "Copies in the scope: 2", "Unknown numbers (1)", "Z999",
                                 "Outside the scope (1)", "S5"})
        EXPECT_TRUE(text.contains(expected)) << expected;
    EXPECT_FALSE(child<QLineEdit>(screen, "txtScan")->isEnabled()); // finished: a new one may start
    EXPECT_TRUE(child<QPushButton>(screen, "cmdStart")->isEnabled());
}

// Finished, the result stays at hand with the counts at finishing, also after the screen is opened again.
TEST_F(StocktakeScreen, AFinishedStocktakeKeepsItsResult)
{
    {
        frmStocktake screen;
        begin(screen);
        for (const char *number : {"S3", "Z9", "S1", "S2"})
            scan(screen, number);
        finish(screen);
        EXPECT_TRUE(child<QPushButton>(screen, "cmdExport")->isEnabled());
        EXPECT_TRUE(child<QPushButton>(screen, "cmdMarkLost")->isEnabled());
        messages_->queueAnswer(MessageScript::Yes);
        click(screen, "cmdMarkLost");
        EXPECT_EQ(libraryRows("select AccessionID from tblLibItems where PhasedOutReason = 'Lost'"), QStringList{"S4"});
    }
    frmStocktake again;
    EXPECT_EQ(label(again, "lblCount"), "Scanned 3 of 4");
    EXPECT_TRUE(child<QPushButton>(again, "cmdExport")->isEnabled());
    messages_->queueFileName(path("finished"));
    click(again, "cmdExport");
    EXPECT_EQ(workbookRows(path("finished.xlsx")), (QStringList{"Result|Accession No|Title", "Missing|S4|Title 4", "On loan|S3|Title 3", "Unknown number|Z9"}));
}
