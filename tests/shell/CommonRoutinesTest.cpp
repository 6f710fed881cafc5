#include "MessageScript.h"
#include "SpreadGrid.h"
#include "DatabaseLocations.h"
#include "mCombo.h"
#include "mCommon.h"
#include "modExtendedMsgBox.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QDialog>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

TEST(CommonRoutines, SafesqlAndNullIfZero)
{
    EXPECT_EQ(Safesql("O'Brien"), "O''Brien");
    EXPECT_EQ(Safesql(""), "");
    EXPECT_EQ(Safesql("''"), "''''");
    EXPECT_EQ(NullIfZero(0), "Null");
    EXPECT_EQ(NullIfZero(7), "7");
    EXPECT_EQ(NullIfZero(-3), "-3");
}

TEST(CommonRoutines, QuestionsAreYesUnlessAnsweredNo)
{
    MessageScript script;
    script.queueAnswer(MessageScript::Yes);
    script.queueAnswer(MessageScript::Cancel);
    script.queueAnswer(MessageScript::No);
    EXPECT_TRUE(UserQuestion("Continue?"));
    EXPECT_TRUE(UserQuestion("Continue?"));
    EXPECT_FALSE(UserWarning("Remove?"));
    ASSERT_EQ(script.shown().size(), 3u);
    EXPECT_EQ(script.shown()[0].title, "User Question?");
    EXPECT_EQ(script.shown()[0].style, 260);
    EXPECT_EQ(script.shown()[0].picture, MessagePicture::picQuestion);
    EXPECT_EQ(script.shown()[2].title, "User Warning");
    EXPECT_EQ(script.shown()[2].picture, MessagePicture::picStop);
    UserMessage("Saved");
    EXPECT_EQ(script.shown()[3].style, 0);
    EXPECT_EQ(script.shown()[3].title, "User Message");
}

TEST(CommonRoutines, ClosingAScreenAsksOnlyWithUnsavedChanges)
{
    MessageScript script;
    QDialog screen;
    QPushButton save(&screen);
    screen.show();
    save.setEnabled(false);
    ConfirmUnsavedClose(&save, &screen);
    EXPECT_FALSE(screen.isVisible());
    EXPECT_TRUE(script.shown().empty());

    screen.show();
    save.setEnabled(true);
    script.queueAnswer(MessageScript::No);
    ConfirmUnsavedClose(&save, &screen);
    EXPECT_TRUE(screen.isVisible());
    ASSERT_EQ(script.shown().size(), 1u);
    EXPECT_EQ(script.shown()[0].prompt, "You have NOT saved your data. Are you sure you want to exit without saving?");
    EXPECT_EQ(script.shown()[0].title, "Data has NOT been Saved");
    EXPECT_EQ(script.shown()[0].picture, MessagePicture::picStop);
    script.queueAnswer(MessageScript::Yes);
    ConfirmUnsavedClose(&save, &screen);
    EXPECT_FALSE(screen.isVisible());
}

TEST(ComboRoutines, TypeAheadCompletesAndSelectsTheRest)
{
    QComboBox combo;
    combo.setEditable(true);
    combo.addItems({"Apple", "Banana", "Blueberry", "cherry"});
    combo.setEditText(QString());
    new ComboTypeAhead(&combo);
    combo.show();
    QTest::keyClicks(combo.lineEdit(), "b");
    EXPECT_EQ(combo.lineEdit()->text(), "Banana");
    EXPECT_EQ(combo.lineEdit()->selectedText(), "anana");
    EXPECT_TRUE(combo.view()->isVisible()); // the list opens as the user types
    // With the list open, keys reach its view; they go on completing the text.
    QTest::keyClicks(combo.view(), "l");
    EXPECT_EQ(combo.lineEdit()->text(), "Blueberry");
    EXPECT_EQ(combo.lineEdit()->selectedText(), "ueberry");
    EXPECT_EQ(combo.currentIndex(), 2);
    // No match: the typed text stays as typed.
    QTest::keyClicks(combo.lineEdit(), "x");
    EXPECT_EQ(combo.lineEdit()->text(), "Blx");
    // Matching ignores case, as the list search does.
    combo.setEditText(QString());
    QTest::keyClicks(combo.lineEdit(), "C");
    EXPECT_EQ(combo.lineEdit()->text(), "cherry");

    int enter = 13;
    ComboAutoComplete(&combo, enter);
    EXPECT_EQ(enter, 13);
}

TEST(ComboRoutines, ComboSelectByItemDataOrText)
{
    QComboBox combo;
    combo.addItem("12", 5);
    combo.addItem("Fiction", 12);
    combo.addItem("Reference", 7);
    ComboSelect(&combo, 12);
    EXPECT_EQ(combo.currentIndex(), 1);
    ComboSelect(&combo, "Reference");
    EXPECT_EQ(combo.currentIndex(), 2);
    ComboSelect(&combo, "Missing");
    EXPECT_EQ(combo.currentIndex(), 2);
}

namespace {
// Page objects of a PDF file: "/Type /Page" (not "/Pages").
int pdfPages(const QString &file)
{
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly))
        return -1;
    int pages = 0;
    auto it = QRegularExpression("/Type\\s*/Page[^s]").globalMatch(QString::fromLatin1(f.readAll()));
    for (; it.hasNext(); it.next())
        ++pages;
    return pages;
}
} // namespace

TEST(Printing, PrintGridWithHeadingWritesAsManyPagesAsItAnnounced)
{
    QTemporaryDir dir;
    MessageScript script;
    script.setPrintToPdf(dir.filePath("grid.pdf"));
    SchoolName = "Hillview High";
    SpreadGrid grid;
    grid.setMaxCols(3);
    grid.setMaxRows(250);
    grid.setCellText(1, 0, "Accession");
    for (int r = 1; r <= 250; ++r) {
        grid.setCellText(1, r, QString("A%1").arg(r));
        grid.setCellText(2, r, "A title that is long enough to need a wide column");
    }
    grid.setColWidth(2, 40);
    PrintGridWithHeading(PrintPortrait, "Catalogue", grid);
    ASSERT_EQ(script.shown().size(), 1u);
    const QRegularExpressionMatch m = QRegularExpression("^Your printout is (\\d+) page/s long\\. Do you want to continue\\?$").match(script.shown()[0].prompt);
    ASSERT_TRUE(m.hasMatch()) << script.shown()[0].prompt.toStdString();
    const int announced = m.captured(1).toInt();
    EXPECT_GT(announced, 1);
    EXPECT_EQ(pdfPages(dir.filePath("grid.pdf")), announced);

    // Landscape takes fewer pages; declining prints nothing.
    script.clear();
    script.setPrintToPdf(dir.filePath("none.pdf"));
    script.queueAnswer(MessageScript::No);
    PrintGridWithHeading(PrintLandscape, "Catalogue", grid);
    EXPECT_FALSE(QFile::exists(dir.filePath("none.pdf")));
    SchoolName.clear();
}
