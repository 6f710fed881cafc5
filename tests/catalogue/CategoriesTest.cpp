// The category tree driven through its widgets.
#include "Clock.h"
#include "DbConnection.h"
#include "ScreenDriver.h"
#include "TestDatabases.h"
#include "frmCategories.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QFocusEvent>
#include <QLineEdit>
#include <QTreeWidget>

using namespace ScreenDriver;

namespace {

class Categories : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        library("Insert into tblLibCategories (Category) values ('Fiction')");     // 1
        library("Insert into tblLibCategories (Category) values ('Non-Fiction')"); // 2
        library("Insert into tblLibSubCategories (CategoryID, SubCategory) values (1, 'Novels')");  // 1
        library("Insert into tblLibSubCategories (CategoryID, SubCategory) values (2, 'History')"); // 2
        library("Insert into tblLibSubCategories (CategoryID, SubCategory) values (2, 'Science')"); // 3
    }
    static void type(QWidget &screen, const char *box, const QString &text)
    {
        QLineEdit *edit = child<QLineEdit>(screen, box);
        QFocusEvent in(QEvent::FocusIn);
        QCoreApplication::sendEvent(edit, &in); // the box worked in decides the level
        edit->setText(text);
    }
    // The tree as text: categories and, indented, their sub-categories, each with its key.
    static QStringList tree(frmCategories &screen)
    {
        QStringList out;
        const QTreeWidget *t = child<QTreeWidget>(screen, "tvwCategories");
        for (int i = 0; i < t->topLevelItemCount(); ++i) {
            const QTreeWidgetItem *c = t->topLevelItem(i);
            out << c->data(0, Qt::UserRole).toString() + " " + c->text(0);
            for (int j = 0; j < c->childCount(); ++j)
                out << "  " + c->child(j)->data(0, Qt::UserRole).toString() + " " + c->child(j)->text(0);
        }
        return out;
    }
    static void clickNode(frmCategories &screen, const QString &text)
    {
        const auto found = child<QTreeWidget>(screen, "tvwCategories")->findItems(text, Qt::MatchExactly | Qt::MatchRecursive);
        ASSERT_EQ(found.size(), 1) << text.toStdString();
        screen.tvwCategories_NodeClick(found.first());
    }
};

} // namespace

TEST_F(Categories, ShowsTheTreeAndFiltersByCategory)
{
    frmCategories screen;
    EXPECT_EQ(screen.windowTitle(), "Maintain Stock Categories");
    EXPECT_EQ(tree(screen), (QStringList{"c1 Fiction", "  s1 Novels", "c2 Non-Fiction", "  s2 History", "  s3 Science"}));
    QComboBox *filter = child<QComboBox>(screen, "cboCategory");
    filter->setCurrentIndex(1);
    Q_EMIT filter->activated(1);
    EXPECT_EQ(tree(screen), (QStringList{"c2 Non-Fiction", "  s2 History", "  s3 Science"}));
    filter->setCurrentIndex(-1);
    Q_EMIT filter->activated(-1);
    EXPECT_EQ(messages_->prompts(), QStringList{"Please select a grade."});
    click(screen, "optAllCat");
    EXPECT_EQ(tree(screen).size(), 5);
}

TEST_F(Categories, SelectingANodeSetsTheLevel)
{
    frmCategories screen;
    clickNode(screen, "History");
    EXPECT_EQ(screen.level(), 2);
    EXPECT_EQ(child<QLineEdit>(screen, "txtCategory")->text(), "Non-Fiction");
    EXPECT_EQ(child<QLineEdit>(screen, "txtSubCategory")->text(), "History");
    // Add with a sub-category node chosen adds to its parent.
    type(screen, "txtSubCategory", "Biography");
    click(screen, "cmdCatAdd");
    EXPECT_EQ(messages_->prompts(), QStringList{"Sub-Category added successfully."});
    EXPECT_TRUE(tree(screen).contains("  s4 Biography"));
    EXPECT_EQ(tree(screen).indexOf("  s4 Biography"), 3); // under Non-Fiction, in order
    clickNode(screen, "Fiction");
    EXPECT_EQ(screen.level(), 1);
    EXPECT_EQ(child<QLineEdit>(screen, "txtSubCategory")->text(), "");
}

TEST_F(Categories, NamesAreUniqueAmongLiveRowsOfTheirLevel)
{
    library("Insert into tblLibCategories (Category, PhasedOut) values ('Reference', true)");
    frmCategories screen;
    type(screen, "txtCategory", "  ");
    click(screen, "cmdCatAdd");
    type(screen, "txtCategory", "Fiction");
    click(screen, "cmdCatAdd");
    type(screen, "txtCategory", "Reference"); // phased out earlier: added again
    click(screen, "cmdCatAdd");
    type(screen, "txtCategory", "O'Reilly ê📚");
    click(screen, "cmdCatAdd");
    clickNode(screen, "Fiction");
    type(screen, "txtSubCategory", "History"); // the same name under another category
    click(screen, "cmdCatAdd");
    clickNode(screen, "Fiction");
    type(screen, "txtSubCategory", "History");
    click(screen, "cmdCatAdd");
    EXPECT_EQ(messages_->prompts(), (QStringList{"Blanks are not allowed", "'Fiction' has already been added to the category list.",
                                                 "Category added successfully", "Category added successfully", "Sub-Category added successfully.",
                                                 "'History' has already been added to the Sub Category list of the selected Category."}));
    EXPECT_EQ(libraryRows("select Category from tblLibCategories where PhasedOut = false order by CategoryID"),
              (QStringList{"Fiction", "Non-Fiction", "Reference", "O'Reilly ê📚"}));
}

TEST_F(Categories, RenamesAndPhaseOuts)
{
    library("Insert into tblLibItems (AccessionID, Title, CategoryID, SubCategoryID) values ('A1', 'Dune', 1, 1)");
    library("Insert into tblLibItems (AccessionID, Title, CategoryID, SubCategoryID, PhasedOut) values ('A2', 'Lost', 2, 2, true)");
    frmCategories screen;
    click(screen, "cmdCatUpdate");
    clickNode(screen, "Fiction");
    type(screen, "txtCategory", "Stories");
    click(screen, "cmdCatUpdate");
    clickNode(screen, "Stories");
    click(screen, "cmdCatDelete"); // a live item uses it
    clickNode(screen, "Novels");
    click(screen, "cmdCatDelete");
    clickNode(screen, "Non-Fiction"); // only a phased-out item: it goes, with its sub-categories
    messages_->queueAnswer(MessageScript::Yes);
    click(screen, "cmdCatDelete");
    EXPECT_EQ(messages_->prompts(), (QStringList{"No item selected.", "Category was updated successfully.",
                                                 "There are records already linked to this category and it cannot be deleted",
                                                 "There are records already linked to this sub-category and cannot be deleted",
                                                 "Do you want to delete the selected Category Item and all its sub-categories?"}));
    EXPECT_EQ(tree(screen), (QStringList{"c1 Stories", "  s1 Novels"}));
    const QString today = Clock::today().toString(Qt::ISODate);
    EXPECT_EQ(libraryRows("select SubCategory, PhasedOut, PhasedOutDate from tblLibSubCategories where CategoryID = 2"),
              (QStringList{"History|True|" + today, "Science|True|" + today}));
}
