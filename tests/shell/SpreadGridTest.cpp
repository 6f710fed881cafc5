#include "mCombo.h"
#include "AppError.h"
#include "SpreadGrid.h"
#include "TestDatabases.h"
#include "clsDataObject.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QHeaderView>
#include <QSignalSpy>
#include <QTableView>

class SpreadGridTest : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        tester_ = std::make_unique<QAbstractItemModelTester>(grid_.model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
        library("Insert into tblLibAuthors(AuthorSurname, AuthorFirstName, AuthorCode) values ('Smit', 'Jan', Null)");
        library("Insert into tblLibAuthors(AuthorSurname, AuthorFirstName, AuthorCode) values ('Mokoena-Wolhuter', Null, 'MOK')");
        library("Insert into tblLibAuthors(AuthorSurname, AuthorFirstName, AuthorCode) values ('Ng', 'Lee', 'NG1')");
    }
    SpreadGrid grid_;
    std::unique_ptr<QAbstractItemModelTester> tester_;
    clsDataObject data_;
};

TEST_F(SpreadGridTest, FillSpreadWritesKeysCaptionsAndValuesAndLeavesNullsAlone)
{
    data_.FillSpread(grid_, "select AuthorID, AuthorSurname, AuthorFirstName, AuthorCode from tblLibAuthors order by AuthorID");
    EXPECT_EQ(grid_.maxCols(), 3);
    EXPECT_EQ(grid_.maxRows(), 3);
    EXPECT_EQ(grid_.cellText(1, 0), "AuthorSurname");
    EXPECT_EQ(grid_.cellText(3, 0), "AuthorCode");
    EXPECT_EQ(grid_.cellText(0, 2), "2"); // the key, in the row-header column
    EXPECT_EQ(grid_.cellText(1, 2), "Mokoena-Wolhuter");
    EXPECT_EQ(grid_.cellText(2, 2), "");
    EXPECT_EQ(grid_.cellText(3, 1), "");
    EXPECT_EQ(grid_.model()->headerData(0, Qt::Horizontal, Qt::DisplayRole).toString(), "AuthorSurname");
    EXPECT_EQ(grid_.model()->headerData(1, Qt::Vertical, Qt::DisplayRole).toInt(), 2); // row numbers, not keys
    EXPECT_EQ(grid_.model()->index(1, 0).data().toString(), "Mokoena-Wolhuter");
    // Widened to the longest text plus one.
    EXPECT_GE(grid_.colWidth(1), grid_.textWidthUtf8("Mokoena-Wolhuter") + 1);
    EXPECT_DOUBLE_EQ(grid_.colWidth(3), 8.0);
    EXPECT_EQ(grid_.activeCol(), 3);
    EXPECT_EQ(grid_.activeRow(), 3);
    EXPECT_FALSE(data_.connectionOpen());

    // A Null leaves what was in the cell before.
    grid_.setCellText(3, 1, "kept");
    data_.FillSpread(grid_, "select AuthorID, AuthorSurname, AuthorFirstName, AuthorCode from tblLibAuthors order by AuthorID");
    EXPECT_EQ(grid_.cellText(3, 1), "kept");
}

TEST_F(SpreadGridTest, AnEmptyResultLeavesOnlyTheCaptions)
{
    data_.FillSpread(grid_, "select AuthorID, AuthorSurname from tblLibAuthors where AuthorID = 99");
    EXPECT_EQ(grid_.maxRows(), 0);
    EXPECT_EQ(grid_.maxCols(), 1);
    EXPECT_EQ(grid_.cellText(1, 0), "AuthorSurname");
}

TEST_F(SpreadGridTest, FillSpreadWithHeaderKeepsTheScreensCaptionsAndWidths)
{
    grid_.setMaxCols(2);
    grid_.setCellText(1, 0, "Surname");
    grid_.setCellText(2, 0, "First name");
    grid_.setColWidth(1, 3);
    data_.FillSpreadWithHeader(grid_, "select AuthorID, AuthorSurname, AuthorFirstName from tblLibAuthors order by AuthorID");
    EXPECT_EQ(grid_.cellText(1, 0), "Surname");
    EXPECT_EQ(grid_.cellText(2, 0), "First name");
    EXPECT_DOUBLE_EQ(grid_.colWidth(1), 3);
    EXPECT_EQ(grid_.cellText(1, 3), "Ng");
}

TEST_F(SpreadGridTest, AppendSpreadGrowsByExactlyOneRow)
{
    data_.FillSpread(grid_, "select AuthorID, AuthorSurname from tblLibAuthors where AuthorID = 1");
    ASSERT_EQ(grid_.maxRows(), 1);
    data_.AppendSpread(grid_, "select AuthorID, AuthorSurname from tblLibAuthors where AuthorID > 1 order by AuthorID");
    EXPECT_EQ(grid_.maxRows(), 2);
    EXPECT_EQ(grid_.model()->rowCount(), 2);
    EXPECT_EQ(grid_.cellText(1, 2), "Mokoena-Wolhuter");
    // The second record went past the last row: kept, but not shown.
    EXPECT_EQ(grid_.cellText(1, 3), "Ng");
    grid_.setMaxRows(3);
    EXPECT_EQ(grid_.model()->index(2, 0).data().toString(), "Ng");
}

TEST_F(SpreadGridTest, CheckBoxAndButtonCells)
{
    data_.FillSpread(grid_, "select ItemID, Title, Restricted, LoanType from tblLibItems");
    library("Insert into tblLibItems(AccessionID, Title, ShelfNumber, Restricted) values ('A1', 'One', 'S', true)");
    library("Insert into tblLibItems(AccessionID, Title, ShelfNumber, Restricted) values ('A2', 'Two', 'S', false)");
    grid_.setMaxCols(4);
    grid_.setColumnType(2, SpreadModel::CellType::CheckBox);
    grid_.setColumnType(4, SpreadModel::CellType::Button, "Return");
    data_.FillSpreadWithHeader(grid_, "select ItemID, Title, Restricted, LoanType, Null as Action from tblLibItems order by ItemID");
    EXPECT_TRUE(grid_.isChecked(2, 1));
    EXPECT_FALSE(grid_.isChecked(2, 2));
    EXPECT_EQ(grid_.cellText(2, 1), "1");
    const QModelIndex box = grid_.model()->index(1, 1);
    EXPECT_TRUE(grid_.model()->flags(box) & Qt::ItemIsUserCheckable);
    grid_.model()->setData(box, Qt::Checked, Qt::CheckStateRole);
    EXPECT_EQ(grid_.cellText(2, 2), "1");
    EXPECT_EQ(grid_.model()->index(0, 3).data().toString(), "Return");

    QSignalSpy buttons(&grid_, &SpreadGrid::buttonClicked);
    QSignalSpy cells(&grid_, &SpreadGrid::cellClicked);
    grid_.clickCell(4, 2);
    grid_.clickCell(1, 2);
    ASSERT_EQ(buttons.count(), 1);
    EXPECT_EQ(buttons[0][0].toInt(), 4);
    EXPECT_EQ(buttons[0][1].toInt(), 2);
    EXPECT_EQ(cells.count(), 2);

    grid_.selectGridRow(2);
    EXPECT_EQ(grid_.selectedRow(), 2);
    QSignalSpy headers(&grid_, &SpreadGrid::headerClicked);
    Q_EMIT grid_.view()->horizontalHeader()->sectionClicked(2);
    EXPECT_EQ(headers[0][0].toInt(), 3);
}

TEST_F(SpreadGridTest, PagesFollowTheArea)
{
    grid_.setMaxCols(2);
    grid_.setMaxRows(100);
    QImage page(800, 1000, QImage::Format_RGB32);
    const int tall = grid_.pageCount(QRectF(0, 0, 800, 1000), &page);
    const int short_ = grid_.pageCount(QRectF(0, 0, 800, 300), &page);
    EXPECT_GE(tall, 1);
    EXPECT_GT(short_, tall);
    grid_.setMaxRows(0);
    EXPECT_EQ(grid_.pageCount(QRectF(0, 0, 800, 1000), &page), 1);
}

class ComboFillTest : public SpreadGridTest {};

TEST_F(ComboFillTest, FillcomboKeepsItemDataAndAnEmptyResultChangesNothing)
{
    QComboBox combo;
    Fillcombo(data_, &combo, "select AuthorID, AuthorSurname from tblLibAuthors order by AuthorSurname", 0, 1, true);
    ASSERT_EQ(combo.count(), 3);
    EXPECT_EQ(combo.itemText(0), "Mokoena-Wolhuter");
    EXPECT_EQ(combo.itemData(0).toInt(), 2);
    Fillcombo(data_, &combo, "select AuthorID, AuthorSurname from tblLibAuthors where AuthorID = 77", 0, 1, false);
    EXPECT_EQ(combo.count(), 3);
    Fillcombo(data_, &combo, "select AuthorID, AuthorSurname from tblLibAuthors where AuthorID = 3", 0, 1);
    EXPECT_EQ(combo.count(), 1);
    EXPECT_EQ(combo.itemData(0).toInt(), 3);
}

TEST_F(SpreadGridTest, SheetCellsHaveTheirOwnComboDateAndCheckEditors)
{
    grid_.setMaxCols(2);
    grid_.setMaxRows(3);
    grid_.setCellText(1, 1, "Label:");
    grid_.setCellType(2, 1, SpreadModel::CellType::Combo);
    grid_.setCellList(2, 1, {"Book", "Magazine"});
    grid_.setCellType(2, 2, SpreadModel::CellType::Date);
    grid_.setCellText(2, 3, "True");
    grid_.setCellType(2, 3, SpreadModel::CellType::CheckBox);
    grid_.setCellLocked(1, 2, false);
    EXPECT_EQ(grid_.cellText(2, 3), "1"); // a check cell keeps "1" / "0"
    EXPECT_EQ(grid_.model()->columnType(2), SpreadModel::CellType::Text);
    EXPECT_FALSE(grid_.model()->flags(grid_.model()->index(0, 0)) & Qt::ItemIsEditable); // a locked label
    EXPECT_TRUE(grid_.model()->flags(grid_.model()->index(1, 0)) & Qt::ItemIsEditable);  // a cell unlocked on its own
    EXPECT_TRUE(grid_.model()->flags(grid_.model()->index(2, 1)) & Qt::ItemIsUserCheckable);
    EXPECT_EQ(grid_.editCell(1, 1), nullptr);

    QSignalSpy edited(&grid_, &SpreadGrid::cellEdited);
    auto *combo = qobject_cast<QComboBox *>(grid_.editCell(2, 1));
    ASSERT_NE(combo, nullptr);
    EXPECT_EQ(combo->count(), 2);
    EXPECT_TRUE(combo->isEditable());
    combo->setCurrentIndex(1);
    Q_EMIT combo->activated(1); // choosing from the list commits at once
    EXPECT_EQ(grid_.cellText(2, 1), "Magazine");
    ASSERT_EQ(edited.count(), 1);
    EXPECT_EQ(edited[0][1].toInt(), 1);

    auto *date = qobject_cast<QDateEdit *>(grid_.editCell(2, 2));
    ASSERT_NE(date, nullptr);
    EXPECT_EQ(date->date(), QDate::currentDate()); // an empty date cell offers today
    date->setDate(QDate(2026, 2, 28));
    grid_.view()->setCurrentIndex(grid_.model()->index(0, 0)); // leaving the cell commits
    QApplication::processEvents();
    EXPECT_EQ(grid_.cellText(2, 2), "2026-02-28");

    grid_.toggleCheck(2, 3);
    EXPECT_FALSE(grid_.isChecked(2, 3));
}
