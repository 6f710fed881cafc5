// The grid as a reader sees it: whole dates, captions and amounts on screen and on paper, money
// as money, sheets that tab between the cells one fills in, and classes in counting order.
#include "MessageScript.h"
#include "NaturalOrder.h"
#include "ScreenDriver.h"
#include "SpreadGrid.h"
#include "TestDatabases.h"
#include "DatabaseLocations.h"
#include "mCommon.h"

#include <QFontMetricsF>
#include <QProcess>
#include <QRegularExpression>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

namespace {

// Fills a loan-like list whose set widths are too narrow for its captions and values.
void fillNarrowList(SpreadGrid &grid)
{
    grid.defineColumns({{"AccessionNo", 4}, {"Due Date", 3}, {"Returned Date", 3}, {"Fine Amount", 2}});
    grid.setColumnMoney(4);
    grid.setMaxRows(3);
    const char *rows[][4] = {{"F000007", "2026-11-23", "2026-12-01", "1.5"}, {"F000123", "2027-01-18", "", "12"}, {"A1", "2026-02-08", "", "0.25"}};
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 4; ++c)
            grid.setCellText(c + 1, r + 1, QString::fromLatin1(rows[r][c]));
}

} // namespace

TEST(GridReadability, ColumnsHoldTheirCaptionsAndWholeValuesAtAnyFontSize)
{
    SpreadGrid grid;
    fillNarrowList(grid);
    ScreenDriver::expectColumnsHoldTheirText(grid, "list");
    QFont larger = grid.font();
    larger.setPointSizeF(larger.pointSizeF() * 1.25);
    grid.setFont(larger);
    ScreenDriver::expectColumnsHoldTheirText(grid, "list");

    // A longer value widens its column; removing it gives the room back.
    const int before = grid.view()->columnWidth(0);
    grid.setCellText(1, 3, "A very long accession number");
    EXPECT_GT(grid.view()->columnWidth(0), before);
    grid.removeRow(3);
    EXPECT_EQ(grid.view()->columnWidth(0), before);
}

TEST(GridReadability, MoneyShowsTwoDecimalsRightAligned)
{
    SpreadGrid grid;
    fillNarrowList(grid);
    const QAbstractItemModel *model = grid.model();
    EXPECT_EQ(model->data(model->index(0, 3), Qt::DisplayRole).toString(), "1.50");
    EXPECT_EQ(model->data(model->index(1, 3), Qt::DisplayRole).toString(), "12.00");
    EXPECT_EQ(model->data(model->index(0, 3), Qt::TextAlignmentRole).toInt(), int(Qt::AlignRight | Qt::AlignVCenter));
    EXPECT_EQ(grid.cellText(4, 1), "1.5"); // the stored value is untouched
    EXPECT_FALSE(model->data(model->index(0, 1), Qt::TextAlignmentRole).isValid());
    // Amounts are written without Qt's number routines; what they read differently still shows as Qt reads it.
    const std::pair<const char *, const char *> amounts[] = {{"2.675", "2.67"}, {"0.005", "0.01"}, {"-3", "-3.00"}, {"1e3", "1000.00"},
                                                             {" 12", "12.00"}, {"+4.1", "4.10"}, {"abc", "abc"}, {"", ""}};
    for (const auto &[stored, shown] : amounts) {
        grid.setCellText(4, 1, QString::fromLatin1(stored));
        EXPECT_EQ(model->data(model->index(0, 3), Qt::DisplayRole).toString(), shown) << stored;
        ScreenDriver::expectColumnsHoldTheirText(grid, stored);
    }
    grid.setCellText(4, 1, "1.5");

    // In a workbook, money is a number cell shown with two decimals; other numbers keep theirs.
    QTemporaryDir dir;
    ASSERT_TRUE(grid.ExportToExcel(dir.filePath("fines.xlsx"), "Fines", QString()));
    auto part = [&](const char *name) {
        QProcess unzip;
        unzip.start("unzip", {"-p", dir.filePath("fines.xlsx"), QLatin1String(name)});
        EXPECT_TRUE(unzip.waitForFinished(30000));
        return QString::fromUtf8(unzip.readAllStandardOutput());
    };
    const QString styles = part("xl/styles.xml"), sheet = part("xl/worksheets/sheet1.xml");
    const QRegularExpression format(QStringLiteral("numFmtId=\"(\\d+)\" formatCode=\"0.00\""));
    ASSERT_TRUE(format.match(styles).hasMatch()) << styles.toStdString();
    EXPECT_TRUE(sheet.contains(QRegularExpression(QStringLiteral("<c r=\"D2\" s=\"\\d+\"><v>1.5</v>")))) << sheet.toStdString();
    EXPECT_FALSE(sheet.contains(QRegularExpression(QStringLiteral("<c r=\"A2\" s=")))) << sheet.toStdString();
}

TEST(GridReadability, PrintedPagesAreNumberedAndHeadedAndTheLengthIsAskedFirst)
{
    QTemporaryDir dir;
    MessageScript script;
    SchoolName = "Hillview High";
    SpreadGrid grid;
    fillNarrowList(grid);
    grid.setMaxRows(150);
    for (int r = 4; r <= 150; ++r) {
        grid.setCellText(1, r, QString("B%1").arg(r));
        grid.setCellText(2, r, "2026-11-23");
    }
    // No printer chosen (the dialog cancelled): the length was still asked before it.
    PrintGridWithHeading(PrintPortrait, "Fines", grid);
    ASSERT_EQ(script.shown().size(), 1u);
    EXPECT_TRUE(script.shown()[0].prompt.startsWith("Your printout is "));

    script.clear();
    script.setPrintToPdf(dir.filePath("fines.pdf"));
    PrintGridWithHeading(PrintPortrait, "Fines", grid);
    const QString text = pdfText(dir.filePath("fines.pdf"));
    const QStringList pages = text.split(QChar('\f'), Qt::SkipEmptyParts);
    const int count = int(text.count("Hillview High - Fines"));
    ASSERT_GT(count, 1);
    for (int p = 1; p <= count; ++p)
        EXPECT_TRUE(pages.value(p - 1).contains(QString("Page %1 of %2").arg(p).arg(count))) << p;
    EXPECT_TRUE(text.contains("2026-11-23")); // whole dates on paper
    EXPECT_TRUE(text.contains("12.00"));
    EXPECT_TRUE(text.contains("Returned Date"));
    SchoolName.clear();
}

TEST(GridReadability, ASheetTabsBetweenItsEditableCellsAndEditsOnOneClick)
{
    SpreadGrid grid;
    grid.setMaxCols(3);
    grid.setMaxRows(2);
    grid.setColumnLocked(2, false);
    grid.setColumnLocked(3, false);
    grid.setCellLocked(3, 1, true);
    grid.setCellText(1, 1, "Label:");
    grid.setSheetEditing();
    grid.resize(400, 200);
    grid.show();
    QTableView *view = grid.view();
    view->setFocus();
    view->setCurrentIndex(grid.model()->index(0, 1)); // (2, 1): editing starts as the cell becomes current
    QWidget *editor = view->indexWidget(grid.model()->index(0, 1));
    ASSERT_NE(editor, nullptr);
    QTest::keyClick(editor, Qt::Key_Tab); // past the locked (3, 1) and the label (1, 2)
    EXPECT_EQ(view->currentIndex(), grid.model()->index(1, 1));
    editor = view->indexWidget(grid.model()->index(1, 1));
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor, "14");
    QTest::keyClick(editor, Qt::Key_Tab);
    EXPECT_EQ(grid.cellText(2, 2), "14");
    EXPECT_EQ(view->currentIndex(), grid.model()->index(1, 2));
}

TEST(GridReadability, AWrappedSheetKeepsItsLongLabelsInNarrowColumns)
{
    SpreadGrid grid;
    grid.setMaxCols(2);
    grid.setMaxRows(1);
    grid.setColWidth(1, 10);
    grid.setCellText(1, 1, "Maximum number of reservations per user");
    grid.setWrapText();
    const QFontMetricsF fm(grid.view()->font());
    EXPECT_LT(grid.view()->columnWidth(0), fm.horizontalAdvance("Maximum number of reservations per user"));
    EXPECT_GE(grid.view()->columnWidth(0), fm.horizontalAdvance("reservations"));
}

TEST(NaturalOrder, ClassesAsPeopleCountThem)
{
    QStringList classes{"10A", "1B", "12B", "2A", "1A", "11B", "10a", "Grade 9", "Grade 10", "02C"};
    std::sort(classes.begin(), classes.end(), NaturalLess);
    EXPECT_EQ(classes, (QStringList{"1A", "1B", "2A", "02C", "10A", "10a", "11B", "12B", "Grade 9", "Grade 10"}));
    EXPECT_EQ(NaturalCompare("8A", "8A"), 0);
}
