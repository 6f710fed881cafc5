// The Overdue Notices screen driven through its widgets on a small school with known loans: the
// preview's rows and fines (counted again here from the dates), the class lists and letters read
// back from their PDFs, the workbook read back, the wording kept, and the refusals.
#include "Clock.h"
#include "Money.h"
#include "ScreenDriver.h"
#include "TestDatabases.h"
#include "DatabaseLocations.h"
#include "frmOverdueNotices.h"
#include "ViewerPdf.h"
#include "frmReportViewer.h"

#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QPlainTextEdit>
#include <QRadioButton>

using namespace ScreenDriver;

namespace {

// A fine for every started interval, worked out here without the loan engine.
QString expectedFine(const char *due, const char *asAt, double amount, int interval)
{
    const qint64 days = QDate::fromString(due, Qt::ISODate).daysTo(QDate::fromString(asAt, Qt::ISODate));
    return QString::number(double((days + interval - 1) / interval) * amount, 'f', 2);
}

class OverdueNotices : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        Clock::setFixed(QDateTime(QDate(2026, 11, 20), QTime(10, 0)));
        SchoolName = "Hillview High";
        for (int g : {8, 9, 10})
            central(QString("Insert into SchoolGrades(ID, Name, schoolgrade) values (%1, 'Grade %1', 'Yes')").arg(g));
        central("Insert into Classes(ClassID, ClassName, Grade) values (1, '8A', 8)");
        central("Insert into Classes(ClassID, ClassName, Grade) values (2, '8B', 8)");
        central("Insert into Classes(ClassID, ClassName, Grade) values (3, '9A', 9)");
        const char *learners[][5] = {{"1", "Botha", "Anna", "8", "1"}, {"2", "Dube", "Sipho", "8", "2"}, {"3", "Nel", "Piet", "9", "3"},
                                     {"4", "Owen", "Lee", "9", "3"}};
        for (const auto &l : learners)
            central(QString("Insert into Learner_Info(ID, AccessionNo, SName, FName, Grade, Class, Status) values (%1, 'L%1', '%2', '%3', %4, %5, 'C')")
                        .arg(l[0], l[1], l[2], l[3], l[4]));
        central("Insert into Educators(EdID, SName, FName, IDNumber, Status) values (5, 'Naidoo', 'Ravi', '7001015000081', 'C')");
        for (int i = 1; i <= 6; ++i)
            library(QString("Insert into tblLibItems(ItemID, AccessionID, Title, LoanType) values (%1, 'F%1', 'Book %1', 'N')").arg(i));
        library("Insert into tblLibsettings(Loantype,UserCat,Loanperiod,FineAmount,FineInterval,Maxitems,ExtDays,MaxExt,MaxRes,MaxUserRes)"
                "VALUES('N','L',14,0.5,7,5,7,2,1,2)");
        library("Insert into tblLibsettings(Loantype,UserCat,Loanperiod,FineAmount,FineInterval,Maxitems,ExtDays,MaxExt,MaxRes,MaxUserRes)"
                "VALUES('N','E',21,1,1,5,7,0,1,2)");
        loan(1, "L", 1, "2026-10-10", "2026-11-01");
        loan(2, "L", 1, "2026-10-20", "2026-11-10");
        loan(3, "L", 2, "2026-10-25", "2026-11-15");
        loan(4, "L", 3, "2026-11-10", "2026-11-30"); // not yet due
        loan(5, "E", 5, "2026-10-15", "2026-11-05");
        loan(6, "L", 4, "2026-09-01", "2026-10-01", true); // returned
    }
    void TearDown() override
    {
        SchoolName.clear();
        DatabaseTest::TearDown();
    }
    void loan(int item, const char *type, int member, const char *issued, const char *due, bool returned = false)
    {
        library(QString("Insert into tblLibTransactions(AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate, Returned) "
                        "values ('F%1', '%2', %3, %1, #%4#, #%5#, %6)")
                    .arg(item).arg(type).arg(member).arg(issued, due, returned ? "true" : "false"));
    }
    QStringList grid(frmOverdueNotices &screen)
    {
        auto *g = child<SpreadGrid>(screen, "gridOverdue");
        QStringList rows;
        for (int r = 1; r <= g->maxRows(); ++r) {
            QStringList cells;
            for (int c = 1; c <= 7; ++c)
                cells << g->cellText(c, r);
            rows << cells.join('|');
        }
        return rows;
    }
    void choose(frmOverdueNotices &screen, const char *combo, const QString &text)
    {
        auto *box = child<QComboBox>(screen, combo);
        box->setCurrentIndex(box->findText(text));
        Q_EMIT box->activated(box->currentIndex());
    }
};

} // namespace

TEST_F(OverdueNotices, ThePreviewListsWhoIsOverdueWithTheFineSoFar)
{
    frmOverdueNotices screen;
    EXPECT_EQ(child<QDateEdit>(screen, "dtAsAt")->date(), QDate(2026, 11, 20));
    click(screen, "cmdShow");
    EXPECT_EQ(grid(screen), (QStringList{"Botha, Anna|8A|F1|Book 1|2026-11-01|19|" + expectedFine("2026-11-01", "2026-11-20", 0.5, 7),
                                         "Botha, Anna|8A|F2|Book 2|2026-11-10|10|" + expectedFine("2026-11-10", "2026-11-20", 0.5, 7),
                                         "Dube, Sipho|8B|F3|Book 3|2026-11-15|5|" + expectedFine("2026-11-15", "2026-11-20", 0.5, 7)}));
    EXPECT_EQ(child<QLabel>(screen, "lblCount")->text(), "3 overdue books, 2 members");

    // One grade, then one class of it.
    choose(screen, "cboGrade", "Grade 8");
    EXPECT_EQ(child<QComboBox>(screen, "cboClass")->count(), 3); // All classes, 8A, 8B
    choose(screen, "cboClass", "8B");
    click(screen, "cmdShow");
    EXPECT_EQ(grid(screen).size(), 1);
    EXPECT_TRUE(grid(screen).first().startsWith("Dube, Sipho|8B|F3"));

    // Educators: their own loan rules.
    child<QRadioButton>(screen, "optEducators")->click();
    EXPECT_FALSE(child<QComboBox>(screen, "cboGrade")->isEnabled());
    click(screen, "cmdShow");
    EXPECT_EQ(grid(screen), QStringList{"Naidoo, Ravi||F5|Book 5|2026-11-05|15|" + expectedFine("2026-11-05", "2026-11-20", 1, 1)});
    EXPECT_TRUE(messages_->shown().empty());
}

TEST_F(OverdueNotices, AChoiceThatCannotGiveANoticeIsRefusedPlainly)
{
    frmOverdueNotices screen;
    auto *asAt = child<QDateEdit>(screen, "dtAsAt");
    asAt->setDate(QDate(2026, 11, 21));
    click(screen, "cmdShow");
    EXPECT_EQ(messages_->prompts().last(), "The 'as at' date cannot be later than today.");
    asAt->setDate(QDate(2026, 8, 31));
    click(screen, "cmdShow");
    EXPECT_EQ(messages_->prompts().last(), "The first book was lent on 2026-09-01: please choose an 'as at' date from then on.");
    asAt->setDate(QDate(2026, 10, 25));
    click(screen, "cmdShow");
    EXPECT_EQ(messages_->prompts().last(), "Nobody has an overdue book on 2026-10-25.");
    EXPECT_EQ(ViewPdf(screen, "cmdClassLists", path("none.pdf")), -1); // no empty document
    asAt->setDate(QDate(2026, 11, 20));
    choose(screen, "cboGrade", "Grade 10");
    click(screen, "cmdShow");
    EXPECT_EQ(messages_->prompts().last(), "Grade 10 has no classes.");
    EXPECT_TRUE(grid(screen).isEmpty());
    child<QRadioButton>(screen, "optStaff")->click();
    click(screen, "cmdShow");
    EXPECT_EQ(messages_->prompts().last(), "Nobody has an overdue book on 2026-11-20.");
}

TEST_F(OverdueNotices, ClassListsHaveAPagePerClassWithItsLearnersAndASignatureLine)
{
    frmOverdueNotices screen;
    EXPECT_EQ(ViewPdf(screen, "cmdClassLists", path("lists.pdf")), 2);
    const QString text = pdfText(path("lists.pdf"));
    const QStringList pages = text.split('\f', Qt::SkipEmptyParts);
    ASSERT_GE(pages.size(), 2);
    EXPECT_TRUE(pages[0].contains("Hillview High"));
    EXPECT_TRUE(pages[0].contains("Class 8A"));
    EXPECT_TRUE(pages[0].contains("Botha, Anna"));
    EXPECT_TRUE(pages[0].contains("F1") && pages[0].contains("F2"));
    EXPECT_FALSE(pages[0].contains("Dube"));
    EXPECT_TRUE(pages[0].contains("Class teacher's signature"));
    EXPECT_TRUE(pages[1].contains("Class 8B"));
    EXPECT_TRUE(pages[1].contains("Dube, Sipho") && pages[1].contains("F3"));
    EXPECT_TRUE(text.contains("As at 20 November 2026"));
}

TEST_F(OverdueNotices, LettersArePagePerLearnerInTheKeptWording)
{
    {
        frmOverdueNotices screen;
        EXPECT_TRUE(child<QPlainTextEdit>(screen, "txtTemplate")->toPlainText().startsWith("Dear Parent or Guardian of {learner}"));
        child<QPlainTextEdit>(screen, "txtTemplate")->setPlainText("To the parents of {learner} ({class}) at {school}:\n{items}\nBring them back by Friday.");
        click(screen, "cmdSaveTemplate");
        EXPECT_EQ(messages_->prompts().last(), "The letter's wording has been saved.");
    }
    frmOverdueNotices screen; // the wording is kept in the library database
    EXPECT_TRUE(child<QPlainTextEdit>(screen, "txtTemplate")->toPlainText().startsWith("To the parents of {learner}"));
    EXPECT_EQ(ViewPdf(screen, "cmdLetters", path("letters.pdf")), 2);
    const QStringList pages = pdfText(path("letters.pdf")).split('\f', Qt::SkipEmptyParts);
    ASSERT_GE(pages.size(), 2);
    EXPECT_TRUE(pages[0].contains("To the parents of Anna Botha (8A) at Hillview High:"));
    EXPECT_TRUE(pages[0].contains("F1") && pages[0].contains("Book 2") && pages[0].contains("Total fine so far"));
    EXPECT_FALSE(pages[0].contains("Sipho"));
    EXPECT_TRUE(pages[1].contains("To the parents of Sipho Dube (8B)") && pages[1].contains("F3"));
    EXPECT_TRUE(pages[1].contains("Bring them back by Friday."));

    // An empty wording is neither kept nor used; letters are for learners only.
    child<QPlainTextEdit>(screen, "txtTemplate")->setPlainText("  ");
    click(screen, "cmdSaveTemplate");
    EXPECT_EQ(messages_->prompts().last(), "The letter's wording is empty; nothing was saved.");
    EXPECT_EQ(ViewPdf(screen, "cmdLetters", path("none.pdf")), -1);
    click(screen, "cmdDefaultTemplate");
    child<QRadioButton>(screen, "optStaff")->click();
    EXPECT_FALSE(child<QAbstractButton>(screen, "cmdLetters")->isEnabled());
}

TEST_F(OverdueNotices, TheOverdueRowsGoToAWorkbook)
{
    frmOverdueNotices screen;
    messages_->queueFileName(path("overdue"));
    click(screen, "cmdExport");
    EXPECT_EQ(messages_->prompts().last(), "Export complete.");
    const QStringList rows = workbookRows(path("overdue.xlsx"));
    ASSERT_EQ(rows.size(), 4);
    EXPECT_EQ(rows[0], "Member|Class|Accession No|Title|Due Date|Days Overdue|Fine So Far");
    EXPECT_TRUE(rows[1].startsWith("Botha, Anna|8A|F1|Book 1|2026-11-01|#19|"));
    EXPECT_TRUE(rows[3].startsWith("Dube, Sipho|8B|F3|Book 3"));
}

// A learner who has left the school and still holds a book is in the preview and the workbook
// marked so, and on no class list; a letter longer than a page goes on over the next one under
// the learner's name.
TEST_F(OverdueNotices, LeaversAreMarkedAndLongLettersGoOn)
{
    central("Update Learner_Info set Status = 'A' where ID = 4");
    library("Insert into tblLibItems(ItemID, AccessionID, Title, LoanType) values (7, 'F7', 'Book 7', 'N')");
    loan(7, "L", 4, "2026-10-01", "2026-10-15");
    frmOverdueNotices screen;
    click(screen, "cmdShow");
    ASSERT_EQ(grid(screen).size(), 4);
    EXPECT_TRUE(grid(screen).contains("Owen, Lee|Left the school|F7|Book 7|2026-10-15|36|" + expectedFine("2026-10-15", "2026-11-20", 0.5, 7)));
    messages_->queueFileName(path("overdue"));
    click(screen, "cmdExport");
    EXPECT_TRUE(workbookRows(path("overdue.xlsx")).filter("Owen, Lee|Left the school|F7").size() == 1);

    ViewPdf(screen, "cmdClassLists", path("lists.pdf"));
    const QString lists = pdfText(path("lists.pdf"));
    EXPECT_TRUE(lists.contains("Botha, Anna"));
    EXPECT_FALSE(lists.contains("Owen")) << lists.toStdString();
    EXPECT_FALSE(lists.contains("Class 9A"));

    QString wording = "Dear Parent or Guardian of {learner} ({class}),\n{items}\n";
    for (int i = 1; i <= 90; ++i)
        wording += QString("Paragraph %1 of a long letter.\n").arg(i);
    child<QPlainTextEdit>(screen, "txtTemplate")->setPlainText(wording + "THE END");
    const int pages = ViewPdf(screen, "cmdLetters", path("long.pdf"));
    const QStringList text = pdfText(path("long.pdf")).split('\f', Qt::SkipEmptyParts);
    ASSERT_EQ(text.size(), pages);
    ASSERT_GE(pages, 6); // three learners, two pages or more each
    EXPECT_TRUE(text[0].contains("Botha, Anna") && text[0].contains("Paragraph 1 of"));
    EXPECT_TRUE(text[1].contains("Learner: Botha, Anna") && text[1].contains("(continued)"));
    EXPECT_EQ(pdfText(path("long.pdf")).count("THE END"), 3);
    EXPECT_EQ(pdfText(path("long.pdf")).count("Paragraph 90 of"), 3);
}

// Letters read like letters: first name first, one book or several, amounts with the currency and
// two decimals, dates written out. Close asks before unsaved wording is thrown away; a refused
// choice leaves no old list on the screen.
TEST_F(OverdueNotices, LettersReadLikeLettersAndNothingIsLostOnClose)
{
    frmOverdueNotices screen;
    click(screen, "cmdDefaultTemplate");
    ViewPdf(screen, "cmdLetters", path("letters.pdf"));
    const QStringList pages = pdfText(path("letters.pdf")).split('\f', Qt::SkipEmptyParts);
    ASSERT_EQ(pages.size(), 2);
    const QString anna = pages[0].simplified(), sipho = pages[1].simplified();
    EXPECT_TRUE(anna.contains("Dear Parent or Guardian of Anna Botha (8A)")) << anna.toStdString();
    EXPECT_TRUE(anna.contains("the following library books, borrowed by Anna Botha, were due back and have not yet been returned"));
    EXPECT_TRUE(anna.contains("bring them back"));
    EXPECT_TRUE(anna.contains("Book 1 (due 1 November 2026, fine R 1.50)")) << anna.toStdString();
    EXPECT_TRUE(anna.contains("Total fine so far: R 2.50"));
    EXPECT_TRUE(sipho.contains("the following library book, borrowed by Sipho Dube, was due back and has not yet been returned"));
    EXPECT_TRUE(sipho.contains("bring it back"));

    // Unsaved wording: Close asks, and No keeps the screen open with the text.
    child<QPlainTextEdit>(screen, "txtTemplate")->setPlainText("Changed wording {learner}");
    screen.show();
    messages_->clear();
    messages_->queueAnswer(MessageScript::No);
    click(screen, "cmdClose");
    EXPECT_EQ(messages_->prompts(), QStringList{"You have NOT saved your data. Are you sure you want to exit without saving?"});
    EXPECT_TRUE(screen.isVisible());
    click(screen, "cmdSaveTemplate");
    messages_->clear();
    click(screen, "cmdClose");
    EXPECT_TRUE(messages_->shown().empty());
    EXPECT_FALSE(screen.isVisible());

    // A refused choice clears the list shown before.
    central("Insert into SchoolGrades(ID, Name, schoolgrade) values (12, 'Adult Education', 'Yes')");
    frmOverdueNotices again;
    click(again, "cmdShow");
    ASSERT_EQ(grid(again).size(), 3);
    choose(again, "cboGrade", "Adult Education");
    messages_->clear();
    click(again, "cmdShow");
    EXPECT_EQ(messages_->prompts(), QStringList{"Adult Education has no classes."});
    EXPECT_TRUE(grid(again).isEmpty());
    EXPECT_EQ(child<QLabel>(again, "lblCount")->text(), "");
}
