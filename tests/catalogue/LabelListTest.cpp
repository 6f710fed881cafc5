// The label screen driven through its widgets: finding items, ticking them, the merge data file
// and printing onto a chosen label stock.
#include "DbConnection.h"
#include "ScreenDriver.h"
#include "SettingsStore.h"
#include "SpreadGrid.h"
#include "TestDatabases.h"
#include "frmLabelList.h"

#include <QTest>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>

using namespace ScreenDriver;

namespace {

class LabelList : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        SetApplicationFolder(path("app"));
        QDir().mkpath(path("app"));
        library("Insert into tblLibCategories (Category) values ('Fiction')");
        library("Insert into tblLibSubCategories (CategoryID, SubCategory) values (1, 'Novels')");
        library("Insert into tblLibSubCategories (CategoryID, SubCategory) values (1, 'Drama')");
        library("Insert into tblLibAuthors (AuthorSurname, AuthorFirstName) values ('Herbert', 'Frank')");
        library("Insert into tblLibAuthors (AuthorSurname, AuthorFirstName) values ('Brink', 'Andre')");
        library("Insert into tblLibItems (AccessionID, Title, CategoryID, SubCategoryID, Author1, Author2, ShelfNumber, ISBN, ClassificationNo) values ('A1', 'Dune', 1, 1, 1, 2, 'F HER', '978-1', '813')");
        library("Insert into tblLibItems (AccessionID, Title, CategoryID, SubCategoryID, Author1, ShelfNumber, LoanType) values ('B*2', 'Anthology', 1, 2, 2, 'F BRI', 'S')");
        library("Insert into tblLibItems (AccessionID, Title, CategoryID, ShelfNumber, PhasedOut) values ('C3', 'Gone', 1, 'X', true)");
        library("Insert into tblLibItems (AccessionID, Title, CategoryID, ShelfNumber) values ('D4', 'Orphan', 9, 'F ORP')"); // no such category
        DbConnection::traceStatements(&sent_);
        settings_ = std::make_unique<SettingsStore>(path("shelvora.ini"));
    }
    void TearDown() override
    {
        DbConnection::traceStatements(nullptr);
        SetApplicationFolder(QString());
        DatabaseTest::TearDown();
    }
    static QStringList grid(QWidget &screen) { return ScreenDriver::rows(screen, "fpSpreadStock"); }
    static void tick(QWidget &screen, int row) { child<SpreadGrid>(screen, "fpSpreadStock")->toggleCheck(7, row); }
    QStringList sent_;
    std::unique_ptr<SettingsStore> settings_;
};

} // namespace

TEST_F(LabelList, ShowAllListsLiveItemsWithACategory)
{
    frmLabelList screen(*settings_);
    EXPECT_EQ(screen.windowTitle(), "Label Printing");
    click(screen, "cmdAll");
    EXPECT_EQ(grid(screen), (QStringList{"B*2|F BRI||Brink, Andre|Anthology||0", "A1|F HER|813|Herbert, Frank; Brink, Andre|Dune|978-1|0"}));
    EXPECT_TRUE(sent_.last().endsWith(" where i.PhasedOut=False   Order By Title, AccessionID"));
}

TEST_F(LabelList, SearchJoinsEveryCriterionInOrder)
{
    frmLabelList screen(*settings_);
    click(screen, "cmdSearch");
    EXPECT_EQ(messages_->prompts(), QStringList{"Please enter or select at least one search criteria"});
    QComboBox *category = child<QComboBox>(screen, "cmbCategory");
    category->setCurrentIndex(0);
    Q_EMIT category->activated(0);
    EXPECT_EQ(child<QComboBox>(screen, "cmbSubCategory")->itemText(0), "Drama");
    child<QLineEdit>(screen, "txtTitle")->setText("u");
    child<QLineEdit>(screen, "txtAuthorSurname")->setText("Bri");
    child<QLineEdit>(screen, "txtShelf")->setText("F");
    child<QCheckBox>(screen, "chShortLoan")->setChecked(false);
    sent_.clear();
    click(screen, "cmdSearch");
    EXPECT_TRUE(sent_.last().endsWith(" Where i.PhasedOut = False And  i.CategoryID = 1 and  (a1.AuthorSurname like 'Bri%' or a2.AuthorSurname like 'Bri%' ) and  i.Title like '%u%' and  i.ShelfNumber like '%F%' Order By Title, AccessionID"))
        << sent_.last().toStdString();
    EXPECT_EQ(grid(screen).size(), 1); // Dune, by its second author
    // Left joins: an item whose category row is missing is found by a search.
    category->setCurrentIndex(-1);
    child<QLineEdit>(screen, "txtAuthorSurname")->clear();
    child<QLineEdit>(screen, "txtTitle")->setText("Orph");
    click(screen, "cmdSearch");
    EXPECT_EQ(grid(screen), QStringList{"D4|F ORP|||Orphan||0"});
}

TEST_F(LabelList, SelectAllAndOrderingByAColumn)
{
    frmLabelList screen(*settings_);
    click(screen, "cmdAll");
    click(screen, "chkAll");
    EXPECT_TRUE(grid(screen).filter("|0").isEmpty());
    click(screen, "chkAll");
    EXPECT_EQ(grid(screen).filter(QRegularExpression("\\|1$")).size(), 0);
    SpreadGrid *g = child<SpreadGrid>(screen, "fpSpreadStock");
    Q_EMIT g->headerClicked(2); // Shelf No, ascending
    EXPECT_EQ(g->cellText(2, 1), "F BRI");
    EXPECT_TRUE(sent_.last().endsWith(" Order By i.ShelfNumber ASC"));
    Q_EMIT g->headerClicked(2); // then descending
    EXPECT_EQ(g->cellText(2, 1), "F HER");
    EXPECT_TRUE(sent_.last().endsWith(" Order By i.ShelfNumber DESC"));
}

TEST_F(LabelList, TheMergeFileIsExactlyAsAWordProcessorReadsIt)
{
    frmLabelList screen(*settings_);
    click(screen, "cmdAll");
    tick(screen, 1);
    tick(screen, 2);
    auto bytes = [&] {
        QFile f(screen.CreateList());
        EXPECT_TRUE(f.open(QIODevice::ReadOnly));
        EXPECT_EQ(QFileInfo(f).fileName(), "libdata1.txt");
        return f.readAll();
    };
    EXPECT_EQ(bytes(), QByteArray("AccessionID\t\r\n*B*2*\t\r\n*A1*\t\r\n"));
    click(screen, "optSpine");
    EXPECT_EQ(bytes(), QByteArray("ShelfNumber\t\r\nF BRI\t\r\nF HER\t\r\n"));
}

TEST_F(LabelList, PrintingNeedsTickedItemsAndAKnownStock)
{
    frmLabelList screen(*settings_);
    click(screen, "cmdPrint");
    click(screen, "cmdAll");
    click(screen, "cmdPrint");
    tick(screen, 2);
    click(screen, "cmdPrint"); // no stock chosen or remembered
    settings_->setValue(frmLabelList::LabelStockKey, "Nobody N0000");
    click(screen, "cmdPrint");
    EXPECT_EQ(messages_->prompts(), (QStringList{"There are NO items in the list for printing.", "There are NO items selected for label printing",
                                                 "Please choose the label stock to print on.",
                                                 "The label stock \"Nobody N0000\" is not among the label templates installed on this computer. Please choose another label stock."}));
    EXPECT_FALSE(QFile::exists(path("app/libdata1.txt")));

    QComboBox *stock = child<QComboBox>(screen, "cboLabelStock");
    stock->setCurrentIndex(stock->findData("Avery L7160"));
    messages_->clear();
    messages_->setPrintToPdf(path("labels.pdf"));
    click(screen, "cmdPrint");
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join('/').toStdString();
    EXPECT_TRUE(QFile::exists(path("labels.pdf")));
    EXPECT_FALSE(QFile::exists(path("app/libdata1.txt")));
    EXPECT_TRUE(pdfText(path("labels.pdf")).contains("A1"));
    EXPECT_EQ(settings_->value(frmLabelList::LabelStockKey), "Avery L7160");
}

TEST_F(LabelList, EnterSearchesAndEscapeKeepsTheTicks)
{
    frmLabelList screen(*settings_);
    screen.show();
    QLineEdit *title = child<QLineEdit>(screen, "txtTitle");
    title->setText("Dune");
    QTest::keyClick(title, Qt::Key_Return);
    ASSERT_EQ(grid(screen), QStringList{"A1|F HER|813|Herbert, Frank; Brink, Andre|Dune|978-1|0"});
    tick(screen, 1);
    QTest::keyClick(&screen, Qt::Key_Escape);
    EXPECT_TRUE(screen.isVisible());
    EXPECT_EQ(grid(screen), QStringList{"A1|F HER|813|Herbert, Frank; Brink, Andre|Dune|978-1|1"});
}
