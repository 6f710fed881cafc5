// The stock list driven through its widgets on a catalogue the test makes.
#include "DbConnection.h"
#include "ScreenDriver.h"
#include "ScreenRegistry.h"
#include "TestDatabases.h"
#include "TestEngine.h"
#include "DatabaseLocations.h"
#include "frmItemList.h"

#include <QTest>
#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QTimer>
#include <QComboBox>

using namespace ScreenDriver;

namespace {

class ItemList : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        library("Insert into tblLibCategories (Category) values ('Fiction')");
        library("Insert into tblLibSubCategories (CategoryID, SubCategory) values (1, 'Novels')");
        library("Insert into tblLibAuthors (AuthorSurname, AuthorFirstName) values ('Van Wyk', 'Chris')"); // 1
        library("Insert into tblLibAuthors (AuthorSurname, AuthorFirstName) values ('de Van', 'Piet')");   // 2
        library("Insert into tblLibAuthors (AuthorSurname, AuthorFirstName) values ('Vanne', 'Third')");   // 3
        library("Insert into tblLibItems (AccessionID, Title, CategoryID, SubCategoryID, Author1, ShelfNumber, ISBN, ClassificationNo, Cost, ReferenceItem) "
                "values ('A1', 'Dune', 1, 1, 2, 'F DEV', '978-1', '813', 120.5, true)");
        library("Insert into tblLibItems (AccessionID, Title, CategoryID, SubCategoryID, Author1, Author2, ShelfNumber, LoanType, Cost) "
                "values ('A2', 'Anthology', 1, 1, 2, 1, 'F VAN', 'S', 80)");
        library("Insert into tblLibItems (AccessionID, Title, CategoryID, Author1, Author3, ShelfNumber, Cost) values ('A3', 'Orphan', 9, 2, 3, 'F ORP', 10)");
        library("Insert into tblLibItems (AccessionID, Title, CategoryID, PhasedOut) values ('A4', 'Gone', 1, true)");
        DbConnection::traceStatements(&sent_);
    }
    void TearDown() override
    {
        DbConnection::traceStatements(nullptr);
        DatabaseTest::TearDown();
    }
    static QStringList titles(frmItemList &screen) { return column(screen, "fpSpreadStock", 5); }
    ScreenRegistry screens_;
    QStringList sent_;
};

} // namespace

TEST_F(ItemList, ShowAllListsLiveItemsWithTheirCategoryAndTotals)
{
    frmItemList screen(screens_);
    EXPECT_EQ(screen.windowTitle(), "Library Catalogue");
    click(screen, "cmdAll");
    EXPECT_EQ(rows(screen, "fpSpreadStock"), (QStringList{"A2|F VAN||de Van, Piet; Van Wyk, Chris|Anthology||0|S||80|",
                                                          "A1|F DEV|813|de Van, Piet|Dune|R|0|N|978-1|120.5|"}));
    EXPECT_EQ(child<QLineEdit>(screen, "txtTotalItems")->text(), "2");
    EXPECT_EQ(child<QLineEdit>(screen, "txtTotalCost")->text(), "200.50");
    // A search includes the item whose category row is missing.
    type(screen, "txtTitle", "r");
    click(screen, "cmdSearch");
    EXPECT_EQ(titles(screen), (QStringList{"Orphan"}));
}

TEST_F(ItemList, EveryCriterionInItsPlace)
{
    frmItemList screen(screens_);
    click(screen, "cmdSearch");
    EXPECT_EQ(messages_->prompts(), QStringList{"Please enter or select at least one search criteria"});
    child<QCheckBox>(screen, "chShortLoan")->setChecked(true);
    click(screen, "cmdSearch");
    EXPECT_TRUE(sent_.last().endsWith(" Where i.PhasedOut = False And  i.Loantype = 'S' Order By Title, AccessionID")) << sent_.last().toStdString();
    EXPECT_EQ(titles(screen), QStringList{"Anthology"});
    child<QCheckBox>(screen, "chShortLoan")->setChecked(false);
    QComboBox *category = child<QComboBox>(screen, "cmbCategory");
    category->setCurrentIndex(0);
    Q_EMIT category->activated(0);
    type(screen, "txtAccessionNo", "A");
    type(screen, "txtAuthorSurname", "Van");
    type(screen, "txtTitle", "o");
    type(screen, "txtClassificationNo", "");
    click(screen, "cmdSearch");
    EXPECT_TRUE(sent_.last().endsWith(" Where i.PhasedOut = False And  i.CategoryID = 1 and  i.AccessionID like '%A%' and  (a1.AuthorSurname like 'Van%' or "
                                      "a2.AuthorSurname like 'Van%' ) and  i.Title like '%o%' Order By Title, AccessionID"))
        << sent_.last().toStdString();
    // Van finds Van Wyk as second author, never "de Van", nor Vanne as third author.
    EXPECT_EQ(titles(screen), QStringList{"Anthology"});
}

// The removed-items list is narrowed by what was typed (a departure from the old list, which ignored
// it), says why and when each copy went, and prints under its own title; it and the flag ticks
// exclude each other.
TEST_F(ItemList, RemovedItemsHonourTheCriteriaAndShowWhyAndWhen)
{
    library("Update tblLibItems set PhasedOutReason = 'Lost', PhasedOutDate = #2026-11-24# where AccessionID = 'A4'");
    library("Insert into tblLibItems (AccessionID, Title, CategoryID, PhasedOut, PhasedOutReason) values ('A5', 'Weeded', 1, true, 'Weed')");
    frmItemList screen(screens_);
    QCheckBox *removed = child<QCheckBox>(screen, "chRemoved");
    QCheckBox *restricted = child<QCheckBox>(screen, "chRestricted");
    restricted->click();
    removed->click();
    EXPECT_FALSE(restricted->isChecked());
    EXPECT_EQ(child<QAbstractButton>(screen, "cmdSearch")->palette().color(QPalette::Button), QColor(255, 255, 0));
    click(screen, "cmdSearch");
    EXPECT_EQ(titles(screen), (QStringList{"Gone", "Weeded"}));
    type(screen, "txtAccessionNo", "A4");
    click(screen, "cmdSearch");
    EXPECT_EQ(titles(screen), QStringList{"Gone"});
    SpreadGrid *grid = child<SpreadGrid>(screen, "fpSpreadStock");
    EXPECT_EQ(grid->cellText(12, 0) + "|" + grid->cellText(13, 0), "Removed Because|Removed On");
    EXPECT_EQ(grid->cellText(12, 1) + "|" + grid->cellText(13, 1), "Lost|2026-11-24");
    messages_->setPrintToPdf(path("removed.pdf"));
    click(screen, "cmdPrint");
    EXPECT_TRUE(pdfText(path("removed.pdf")).contains("Items Removed from the Catalogue"));
    restricted->click();
    EXPECT_FALSE(removed->isChecked());
    type(screen, "txtAccessionNo", "");
    click(screen, "cmdAll");
    EXPECT_EQ(grid->cellText(12, 0), ""); // the live list has no removal columns
}

TEST_F(ItemList, MarksAreWrittenBackByProcessAndSortingTogglesDirection)
{
    frmItemList screen(screens_);
    click(screen, "cmdAll");
    SpreadGrid *grid = child<SpreadGrid>(screen, "fpSpreadStock");
    Q_EMIT grid->headerClicked(1);
    EXPECT_EQ(grid->cellText(1, 1), "A1");
    EXPECT_TRUE(sent_.last().endsWith(" Order By i.AccessionID ASC"));
    Q_EMIT grid->headerClicked(1);
    EXPECT_EQ(grid->cellText(1, 1), "A2");
    EXPECT_TRUE(sent_.last().endsWith(" Order By i.AccessionID DESC"));
    click(screen, "chRestrictAll");
    grid->model()->setData(grid->model()->index(0, 7), "L", Qt::EditRole); // loan type of A2
    sent_.clear();
    click(screen, "cmdprocess");
    EXPECT_EQ(sent_, (QStringList{" update tblLibItems set Restricted = True   ,LoanType = 'L' where ItemID = 2",
                                  " update tblLibItems set Restricted = True   ,LoanType = 'N' where ItemID = 1"}));
    EXPECT_EQ(messages_->prompts(), QStringList{"Your data has been saved."});
    EXPECT_EQ(libraryRows("select AccessionID, Restricted, LoanType from tblLibItems where PhasedOut = false order by ItemID"),
              (QStringList{"A1|True|N", "A2|True|L", "A3|False|N"}));
}

// Process after Show All writes only the rows whose marks the librarian changed, in one
// transaction: another desk's change to a row left alone is kept, and a failure writes none.
TEST_F(ItemList, ProcessWritesOnlyTheChangedRowsTogether)
{
    for (int i = 10; i < 40; ++i)
        library(QString("Insert into tblLibItems (AccessionID, Title, CategoryID, SubCategoryID) values ('B%1', 'Book %1', 1, 1)").arg(i));
    frmItemList screen(screens_);
    click(screen, "cmdAll");
    SpreadGrid *grid = child<SpreadGrid>(screen, "fpSpreadStock");
    ASSERT_EQ(grid->maxRows(), 32);
    auto rowOf = [&](const QString &accession) {
        for (int row = 1; row <= grid->maxRows(); ++row)
            if (grid->cellText(1, row) == accession)
                return row;
        return 0;
    };
    grid->toggleCheck(7, rowOf("B11"));
    grid->model()->setData(grid->model()->index(rowOf("B12") - 1, 7), "S", Qt::EditRole);
    grid->model()->setData(grid->model()->index(rowOf("B13") - 1, 7), "L", Qt::EditRole);
    grid->toggleCheck(7, rowOf("B14"));
    grid->toggleCheck(7, rowOf("B14")); // ticked and unticked again: unchanged
    library("Update tblLibItems set LoanType = 'S' where AccessionID = 'B20'"); // another desk, meanwhile

    // The third change fails: nothing of the three is kept.
    TestEngine::refuse(libraryPath_, "tblLibItems", "UPDATE", "NEW.LoanType = 'L'");
    click(screen, "cmdprocess");
    EXPECT_EQ(messages_->shown().size(), 1u);
    EXPECT_EQ(libraryRows("select AccessionID from tblLibItems where Restricted = true or LoanType <> 'N' order by AccessionID"),
              (QStringList{"A2", "B20"}));

    TestEngine::unrefuse(libraryPath_, "tblLibItems", "UPDATE");
    messages_->clear();
    sent_.clear();
    click(screen, "cmdprocess");
    EXPECT_EQ(messages_->prompts(), QStringList{"Your data has been saved."});
    EXPECT_EQ(sent_.filter("update tblLibItems").size(), 3);
    EXPECT_EQ(libraryRows("select AccessionID, Restricted, LoanType from tblLibItems where Restricted = true or LoanType <> 'N' order by AccessionID"),
              (QStringList{"A2|False|S", "B11|True|N", "B12|False|S", "B13|False|L", "B20|False|S"}));
    // Written once: a second Process has nothing to write.
    sent_.clear();
    click(screen, "cmdprocess");
    EXPECT_TRUE(sent_.filter("update tblLibItems").isEmpty());
}

TEST_F(ItemList, HandOffsToTheEditorNeedASelectedItem)
{
    frmItemList screen(screens_);
    click(screen, "cmdAddExisting");
    click(screen, "cmdEdit");
    EXPECT_EQ(messages_->prompts(), (QStringList{"First select an item to add.", "Select an item before clicking Edit."}));
    // The editor is handed the mode and the clicked item.
    ScreenOptions handed;
    screens_.addWithOptions("frmItemAddModify", [&](QWidget *parent, const ScreenOptions &options) {
        handed = options;
        auto *editor = new QDialog(parent);
        QTimer::singleShot(0, editor, &QDialog::reject);
        return editor;
    });
    click(screen, "cmdAll");
    child<SpreadGrid>(screen, "fpSpreadStock")->clickCell(5, 2);
    messages_->clear();
    click(screen, "cmdEdit");
    EXPECT_EQ(handed.itemEditMode, 2);
    EXPECT_EQ(handed.itemID, 1);
    click(screen, "cmdAddExisting");
    EXPECT_EQ(handed.itemEditMode, 1);
    EXPECT_TRUE(messages_->prompts().isEmpty());
}

TEST_F(ItemList, TheTermSearchesOpenOverTheList)
{
    frmItemList screen(screens_);
    QStringList opened;
    for (const char *button : {"cmdSubjectSearch", "cmdKeywordSearch"}) {
        QTimer::singleShot(0, &screen, [&opened] {
            QWidget *search = QApplication::activeModalWidget();
            opened << (search ? search->objectName() : QString());
            if (auto *dialog = qobject_cast<QDialog *>(search))
                dialog->reject();
        });
        click(screen, button);
    }
    EXPECT_EQ(opened, (QStringList{"frmSubjectSearch", "frmKeywordSearch"}));
}

TEST_F(ItemList, PrintsUnderStockItemList)
{
    SchoolName = "Hillview High";
    frmItemList screen(screens_);
    click(screen, "cmdAll");
    messages_->setPrintToPdf(path("stock.pdf"));
    click(screen, "cmdPrint");
    EXPECT_TRUE(pdfText(path("stock.pdf")).contains("Hillview High - Stock Item List"));
    EXPECT_TRUE(pdfText(path("stock.pdf")).contains("120.50")); // the price as money
    SchoolName.clear();
}

TEST_F(ItemList, TheLoanTypeIsAPickListAndTypedQuotesStayValues)
{
    library("Insert into tblLibItems (AccessionID, Title, Author1, ShelfNumber) values ('B''1', 'O''Brien''s Day', 3, 'F OBR')");
    frmItemList screen(screens_);
    click(screen, "cmdAll");
    SpreadGrid *grid = child<SpreadGrid>(screen, "fpSpreadStock");
    const int a2 = int(column(screen, "fpSpreadStock", 1).indexOf("A2")) + 1;
    ASSERT_GT(a2, 0);
    SpreadModel *model = grid->model();
    const QModelIndex loanType = model->index(a2 - 1, 7);
    EXPECT_EQ(grid->model()->cellType(8, a2), SpreadModel::CellType::Combo);
    EXPECT_EQ(grid->model()->cellList(8, a2), (QStringList{"S", "N", "L"}));
    // Anything but a code leaves the cell as it was; a code is taken in either case.
    for (const char *typed : {"N', Title = 'INJECTED', Cost = '0", "x", "Short"})
        EXPECT_FALSE(model->setData(loanType, QString::fromUtf8(typed), Qt::EditRole)) << typed;
    EXPECT_EQ(grid->cellText(8, a2), "S");
    EXPECT_TRUE(model->setData(loanType, "l", Qt::EditRole));
    EXPECT_EQ(grid->cellText(8, a2), "L");
    click(screen, "cmdprocess");
    EXPECT_EQ(messages_->prompts(), QStringList{"Your data has been saved."});
    EXPECT_EQ(libraryRows("select Title, LoanType, Cost from tblLibItems where AccessionID = 'A2'"), QStringList{"Anthology|L|80"});

    // A name with a quote finds its book in every box; a crafted title finds nothing extra.
    for (const auto &[box, text] : std::vector<std::pair<const char *, const char *>>{
             {"txtTitle", "O'Brien"}, {"txtAccessionNo", "B'1"}, {"txtAuthorSurname", "Vanne"}, {"txtAuthorSurname", "O'"}}) {
        messages_->clear();
        for (const char *other : {"txtTitle", "txtAccessionNo", "txtAuthorSurname"})
            type(screen, other, QString());
        type(screen, box, QString::fromUtf8(text));
        click(screen, "cmdSearch");
        EXPECT_TRUE(messages_->shown().empty() || messages_->shown().front().title == "User Message") << text;
        EXPECT_EQ(titles(screen), QString(text) == "O'" ? QStringList{} : QStringList{"O'Brien's Day"}) << box << " " << text;
    }
    type(screen, "txtAuthorSurname", QString());
    type(screen, "txtTitle", "%' or i.PhasedOut=true or i.Title like '");
    click(screen, "cmdSearch");
    EXPECT_FALSE(titles(screen).contains("Gone"));
}

TEST_F(ItemList, EnterInACriterionBoxSearches)
{
    frmItemList screen(screens_);
    QLineEdit *title = child<QLineEdit>(screen, "txtTitle");
    title->setText("r");
    QTest::keyClick(title, Qt::Key_Return);
    EXPECT_EQ(titles(screen), (QStringList{"Orphan"}));
    EXPECT_TRUE(messages_->shown().empty());
}
