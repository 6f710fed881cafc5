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
#include <QTimer>

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
    void scan(frmStocktake &screen, const QString &number)
    {
        auto *box = child<QLineEdit>(screen, "txtScan");
        box->setText(number);
        QTest::keyClick(box, Qt::Key_Return);
        EXPECT_TRUE(box->text().isEmpty());
    }
    QString label(frmStocktake &screen, const char *name) { return child<QLabel>(screen, name)->text(); }
};

} // namespace

TEST_F(StocktakeScreen, ScansAreShownCountedAndKeptUntilTheStocktakeIsFinished)
{
    {
        frmStocktake screen;
        EXPECT_FALSE(child<QLineEdit>(screen, "txtScan")->isEnabled());
        child<QLineEdit>(screen, "txtName")->setText("Fiction 2026");
        child<QCheckBox>(screen, "chkWhole")->setChecked(false);
        click(screen, "cmdStart");
        EXPECT_EQ(messages_->prompts().last(), "Please tick the categories to count, or choose the whole catalogue.");
        auto *scope = child<QListWidget>(screen, "lstScope");
        ASSERT_EQ(scope->item(0)->text(), "Fiction");
        scope->item(0)->setCheckState(Qt::Checked);
        click(screen, "cmdStart");
        EXPECT_TRUE(child<QLineEdit>(screen, "txtScan")->isEnabled());
        EXPECT_EQ(label(screen, "lblCount"), "Scanned 0 of 4");

        scan(screen, "S1");
        EXPECT_EQ(label(screen, "lblLastScan"), "S1: On the shelf");
        EXPECT_EQ(label(screen, "lblCount"), "Scanned 1 of 4");
        scan(screen, "S1");
        EXPECT_EQ(label(screen, "lblLastScan"), "S1: Already scanned");
        scan(screen, "S5");
        scan(screen, "Z999");
        scan(screen, "S3");
        EXPECT_EQ(label(screen, "lblCount"), "Scanned 2 of 4");
        auto *grid = child<SpreadGrid>(screen, "gridScans");
        QStringList rows;
        for (int r = 1; r <= grid->maxRows(); ++r)
            rows << grid->cellText(1, r) + "|" + grid->cellText(2, r) + "|" + grid->cellText(3, r);
        EXPECT_EQ(rows, (QStringList{"Already scanned|S1|Title 1", "Outside the scope|S5|Title 5", "Unknown number|Z999|", "On loan|S3|Title 3"}));

        // The copy on loan but on the shelf is returned as the desk returns it: four days late at 0.50 a day.
        grid->selectGridRow(4);
        click(screen, "cmdReturn");
        EXPECT_EQ(messages_->prompts().last(), "S3 has been returned - fine 2.00.");
        EXPECT_EQ(libraryRows("select Returned, ReturnDate from tblLibTransactions"), QStringList{"True|2026-11-24"});
        EXPECT_EQ(libraryValue("select FineAmount from tblLibTransactionFines"), "2");
    }
    // Closed and opened again: the stocktake resumes where it was.
    frmStocktake screen;
    EXPECT_EQ(child<QLineEdit>(screen, "txtName")->text(), "Fiction 2026");
    EXPECT_EQ(label(screen, "lblCount"), "Scanned 2 of 4");
    scan(screen, "S1");
    EXPECT_EQ(label(screen, "lblLastScan"), "S1: Already scanned");

    messages_->queueFileName(path("result"));
    click(screen, "cmdExport");
    EXPECT_EQ(workbookRows(path("result.xlsx")), (QStringList{"Result|Accession No|Title", "Missing|S2|Title 2", "Missing|S4|Title 4",
                                                              "Unknown number|Z999", "Outside the scope|S5|Title 5"}));

    messages_->queueAnswer(MessageScript::Yes);
    click(screen, "cmdMarkLost");
    EXPECT_TRUE(messages_->shown()[messages_->shown().size() - 2].prompt.startsWith("Mark the 2 missing copies as lost"));
    EXPECT_EQ(libraryRows("select AccessionID, PhasedOutReason from tblLibItems where PhasedOut = true order by AccessionID"),
              (QStringList{"S2|Lost", "S4|Lost"}));

    int pages = -1;
    const auto watch = whenModal<frmReportViewer>([&](frmReportViewer *viewer) {
        pages = viewer->pageCount();
        EXPECT_EQ(viewer->saveAsPdf(path("stocktake.pdf")), frmReportViewer::Saved::Yes);
        viewer->close();
    });
    messages_->queueAnswer(MessageScript::Yes);
    click(screen, "cmdFinish");
    EXPECT_EQ(pages, 1);
    const QString text = pdfText(path("stocktake.pdf"));
    for (const char *expected : {"Hillview High - Stocktake \"Fiction 2026\"", "Copies in the scope: 2", "Unknown numbers (1)", "Z999",
                                 "Outside the scope (1)", "S5"})
        EXPECT_TRUE(text.contains(expected)) << expected;
    EXPECT_FALSE(child<QLineEdit>(screen, "txtScan")->isEnabled()); // finished: a new one may start
    EXPECT_TRUE(child<QPushButton>(screen, "cmdStart")->isEnabled());
}

// Resumed on a shown screen, the scanner's Enter only ever records the scan (no button answers it);
// the screen shows the scope it was started with and the scans that needed attention. Finished,
// its result stays at hand with the counts at finishing, also after the screen is opened again.
TEST_F(StocktakeScreen, AResumedStocktakeKeepsEveryScanAndAFinishedOneItsResult)
{
    {
        frmStocktake screen;
        child<QLineEdit>(screen, "txtName")->setText("Fiction 2026");
        child<QCheckBox>(screen, "chkWhole")->setChecked(false);
        child<QListWidget>(screen, "lstScope")->item(0)->setCheckState(Qt::Checked);
        click(screen, "cmdStart");
        scan(screen, "S3");
        scan(screen, "Z9");
    }
    frmStocktake screen;
    screen.show();
    QApplication::setActiveWindow(&screen);
    EXPECT_FALSE(child<QCheckBox>(screen, "chkWhole")->isChecked());
    EXPECT_EQ(child<QListWidget>(screen, "lstScope")->item(0)->checkState(), Qt::Checked);
    EXPECT_EQ(child<QListWidget>(screen, "lstScope")->item(1)->checkState(), Qt::Unchecked);
    auto *grid = child<SpreadGrid>(screen, "gridScans");
    ASSERT_EQ(grid->maxRows(), 2);
    EXPECT_EQ(grid->cellText(1, 1) + "|" + grid->cellText(2, 1) + "|" + grid->cellText(3, 1), "On loan|S3|Title 3");
    EXPECT_EQ(grid->cellText(1, 2) + "|" + grid->cellText(2, 2), "Unknown number|Z9");
    messages_->clear();
    scan(screen, "S1");
    scan(screen, "S2");
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join('/').toStdString();
    EXPECT_EQ(label(screen, "lblCount"), "Scanned 3 of 4");
    EXPECT_EQ(libraryValue("select count(*) from tblLibStocktakeScans where AccessionID in ('S1', 'S2')"), "2");

    const auto watch = whenModal<frmReportViewer>([](frmReportViewer *viewer) { viewer->close(); });
    messages_->queueAnswer(MessageScript::Yes);
    click(screen, "cmdFinish");
    EXPECT_TRUE(child<QPushButton>(screen, "cmdExport")->isEnabled());
    EXPECT_TRUE(child<QPushButton>(screen, "cmdMarkLost")->isEnabled());
    messages_->queueAnswer(MessageScript::Yes);
    click(screen, "cmdMarkLost");
    EXPECT_EQ(libraryRows("select AccessionID from tblLibItems where PhasedOutReason = 'Lost'"), QStringList{"S4"});

    frmStocktake again;
    EXPECT_EQ(label(again, "lblCount"), "Scanned 3 of 4"); // as at finishing
    EXPECT_TRUE(child<QPushButton>(again, "cmdExport")->isEnabled());
    messages_->queueFileName(path("finished"));
    click(again, "cmdExport");
    EXPECT_EQ(workbookRows(path("finished.xlsx")), (QStringList{"Result|Accession No|Title", "Missing|S4|Title 4", "On loan|S3|Title 3", "Unknown number|Z9"}));
}
