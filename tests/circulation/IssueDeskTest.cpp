// The issue desk driven through its widgets, as a librarian with a barcode scanner uses it.
#include "SchoolDeskFixture.h"

#include "AppError.h"
#include "SettingsStore.h"
#include "CirculationScreens.h"
#include "ScreenRegistry.h"
#include "frmIssueSystem.h"
#include "frmMainMenu.h"

#include <QDir>
#include <QImage>
#include <QApplication>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

namespace {

class IssueDesk : public SchoolDesk {
protected:
    std::unique_ptr<frmIssueSystem> open(const QString &loanType = QStringLiteral("N"))
    {
        return std::make_unique<frmIssueSystem>(nullptr, loanType);
    }
    // Issues a scanned accession number to the member whose number is typed.
    void issue(frmIssueSystem &desk, const QString &memberNumber, const QString &accession)
    {
        type(desk, "txtmemberID", memberNumber);
        scan(desk, "txtLoanAccession", accession);
    }
    QStringList transactions(frmIssueSystem &desk) { return rows(desk, "gridtransactions"); }
};

} // namespace

TEST_F(IssueDesk, OpensWithLearnersTheSettingsAndTodaysDates)
{
    auto desk = open();
    EXPECT_EQ(desk->windowTitle(), "Issue System");
    EXPECT_EQ(desk->MaxRenewals, 2);
    QComboBox *members = child<QComboBox>(*desk, "cboMember");
    ASSERT_EQ(members->count(), 2);
    EXPECT_EQ(members->itemText(0), "Botha Anna L100 8A");
    EXPECT_EQ(members->itemData(0).toInt(), 12);
    EXPECT_EQ(child<QComboBox>(*desk, "cboGrade")->itemText(0), "All");
    EXPECT_EQ(child<QDateEdit>(*desk, "DTPicker1")->date(), QDate(2026, 11, 23));
    EXPECT_EQ(child<QDateEdit>(*desk, "dtreturnDate")->date(), QDate(2026, 11, 23));
    EXPECT_EQ(child<QAbstractButton>(*desk, "cmdProcess")->text(), "Return Item");
    click(*desk, "optRenew");
    EXPECT_EQ(child<QAbstractButton>(*desk, "cmdProcess")->text(), "Renew Item");
    EXPECT_FALSE(child<QDateEdit>(*desk, "dtreturnDate")->isEnabled());
    click(*desk, "optEducator");
    EXPECT_FALSE(child<QAbstractButton>(*desk, "cmdValidate")->isEnabled());
    EXPECT_EQ(members->itemText(0), "Naidoo Ravi");
    EXPECT_EQ(members->itemData(0).toInt(), 21);
}

TEST_F(IssueDesk, ADayAtTheDesk)
{
    auto desk = open();
    // A learner found by grade and class.
    choose(*desk, "cboGrade", "Grade 8");
    EXPECT_EQ(child<QComboBox>(*desk, "cboClass")->itemText(1), "8A");
    EXPECT_EQ(child<QComboBox>(*desk, "cboMember")->count(), 1);
    choose(*desk, "cboClass", "8A");
    choose(*desk, "cboMember", "Botha Anna L100 8A");
    EXPECT_EQ(child<QLineEdit>(*desk, "txtmemberID")->text(), "L100");
    sent_.clear();
    scan(*desk, "txtLoanAccession", "A1");
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join('/').toStdString();
    EXPECT_TRUE(sent_.contains("Insert into tblLibTransactions(accessionId,MemberType,MemberId,ItemID,Issuedate,DueDate)VALUES('A1','L',12,1,#2026-11-23#,#2026-12-07#)"));
    EXPECT_TRUE(sent_.contains("Delete from tblLibreserves where itemid = 1 and membertype = 'L' and memberid = 12"));
    EXPECT_TRUE(sent_.filter("select transactionid from tblLibTransactions").isEmpty()); // the insert gives the loan's number
    EXPECT_EQ(transactions(*desk), QStringList{"A1|Book 1|Issue|L12|Botha, Anna 8A||2026-11-23|2026-12-07|0"});
    EXPECT_EQ(child<QLineEdit>(*desk, "txtLoanAccession")->text(), "");
    EXPECT_EQ(desk->focusWidget(), child<QLineEdit>(*desk, "txtLoanAccession"));
    EXPECT_EQ(rows(*desk, "gridloan"), QStringList{"Type of loan|N|Loan Period|14|Max Items|2|Fine Amount|0.50|Fine Interval|7|Extension|7"});

    // An educator by ID number, then a staff member.
    click(*desk, "optEducator");
    issue(*desk, "7001015000081", "A2");
    click(*desk, "optStaff");
    issue(*desk, "8002025000082", "A3");
    EXPECT_EQ(loans(), (QStringList{"A1|L|12|2026-11-23|2026-12-07|False|0", "A2|E|21|2026-11-23|2026-12-14|False|0",
                                    "A3|S|3|2026-11-23|2026-12-14|False|0"}));
    EXPECT_EQ(transactions(*desk).last(), "A3|Book 3|Issue|S3|Mokoena, Thabo||2026-11-23|2026-12-14|0");

    // Back at the counter a week later: A1 returned 8 days late is fined two intervals.
    Clock::setFixed(QDateTime(QDate(2026, 12, 15), QTime(9, 0)));
    child<QDateEdit>(*desk, "dtreturnDate")->setDate(QDate(2026, 12, 15));
    scan(*desk, "txtAccessionReturn", "A1");
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join('/').toStdString();
    EXPECT_EQ(transactions(*desk).last(), "A1|Book 1|Return|L12|Botha, Anna 8A|1.00|2026-12-15|2026-12-07|0");
    EXPECT_EQ(desk->focusWidget(), child<QLineEdit>(*desk, "txtAccessionReturn"));
    EXPECT_EQ(fines(), QStringList{"1|L|12|1||0|False"});
}

TEST_F(IssueDesk, EachRefusalShowsItsMessageAndWritesNothing)
{
    lend("A1", 1, "E", 21, QDate(2026, 11, 30));
    library("Insert into tblLibReserves(MemberType, MemberID, ItemID, ReserveDate) values ('E', 21, 4, #2026-11-01#)");
    const QStringList before = loans();
    auto desk = open();
    const struct {
        const char *member;
        const char *accession;
        const char *message;
    } cases[] = {
        {"L100", "", "Please enter item accession number to continue."},
        {"", "A3", "Please enter member number to continue."},
        {"L100", "R1", "This item is a restricted or reference item and is not availabe for loan."},
        {"X999", "A3", "This member ID does not exist"},
        {"L101", "A3", "This member ID does not exist"}, // left the school
        {"L100", "Z9", "This item accession number does not exist"},
        {"L100", "A1", "This item is still out on loan and must be returned before it can be issued again"},
        {"L100", "A4", "This item has been reserved for Ravi Naidoo and cannot be issued."},
        {"L100", "A1'; delete * from tblLibItems; --", "This item accession number does not exist"}, // typed text is only ever a value
    };
    for (const auto &c : cases) {
        messages_->clear();
        issue(*desk, QString::fromLatin1(c.member), QString::fromLatin1(c.accession));
        ASSERT_EQ(messages_->shown().size(), 1u) << c.accession;
        if (c.message)
            EXPECT_EQ(messages_->prompts().first(), c.message);
        else
            EXPECT_EQ(messages_->shown().front().title.left(8), "Error : ");
        // An unknown member is put right in the member box, anything else by the next book.
        const bool memberToMend = !c.member[0] || QString(c.message).startsWith("This member ID");
        EXPECT_EQ(desk->focusWidget(), child<QLineEdit>(*desk, memberToMend ? "txtmemberID" : "txtLoanAccession")) << c.accession;
    }
    EXPECT_EQ(loans(), before);
    EXPECT_EQ(libraryCount("select * from tblLibItems"), 6);

    // The maximum number of items: learners may hold two.
    messages_->clear();
    issue(*desk, "L100", "A3");
    library("Insert into tblLibItems(AccessionID, Title, LoanType) values ('A5', 'Book 5', 'N')");
    library("Insert into tblLibItems(AccessionID, Title, LoanType) values ('A6', 'Book 6', 'N')");
    issue(*desk, "L100", "A5");
    EXPECT_TRUE(messages_->shown().empty());
    issue(*desk, "L100", "A6");
    EXPECT_EQ(messages_->prompts(), QStringList{"This member already has the maximum number of items on loan"});
}

TEST_F(IssueDesk, ReturnsAreFinedPerStartedInterval)
{
    const std::pair<int, const char *> cases[] = {{0, ""}, {1, "0.50"}, {7, "0.50"}, {8, "1.00"}, {15, "1.50"}};
    auto desk = open();
    int item = 0;
    for (const auto &[late, fine] : cases) {
        ++item;
        library(QString("Insert into tblLibItems(AccessionID, Title, LoanType) values ('F%1', 'Late %1', 'N')").arg(late));
        lend(QString("F%1").arg(late), 6 + item, "L", 12, QDate(2026, 11, 23).addDays(-late));
        scan(*desk, "txtAccessionReturn", QString("F%1").arg(late));
        EXPECT_EQ(transactions(*desk).last().section('|', 5, 5), fine) << late << " days late";
        EXPECT_EQ(transactions(*desk).last().section('|', 2, 2), "Return");
    }
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join('/').toStdString();
    EXPECT_EQ(libraryCount("select * from tblLibTransactions where Returned = true"), 5);

    // Nothing on loan, or no such copy.
    scan(*desk, "txtAccessionReturn", "A3");
    scan(*desk, "txtAccessionReturn", "nope");
    EXPECT_EQ(messages_->prompts(), (QStringList{"This item accession number is not on loan and cannot be returned.",
                                                 "This item accession number does not exist."}));
    EXPECT_EQ(child<QLineEdit>(*desk, "txtAccessionReturn")->selectedText(), "nope"); // ready for the next scan

    // A crafted number is only a number: it closes no other loan.
    lend("A1", 1, "L", 14, QDate(2026, 12, 1));
    const QStringList before = loans();
    messages_->clear();
    scan(*desk, "txtAccessionReturn", "zzz' or '1'='1");
    EXPECT_EQ(messages_->prompts(), QStringList{"This item accession number does not exist."});
    EXPECT_EQ(loans(), before);
    // And a quote in a real accession number is no obstacle.
    library("Insert into tblLibItems(AccessionID, Title, LoanType) values ('O''B1', 'Quoted', 'N')");
    lend("O''B1", 12, "L", 12, QDate(2026, 12, 1)); // the fixture writes SQL: the quote doubled by hand
    messages_->clear();
    scan(*desk, "txtAccessionReturn", "O'B1");
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join('/').toStdString();
    EXPECT_EQ(libraryValue("select Returned from tblLibTransactions where AccessionID = 'O''B1'"), "True");
}

TEST_F(IssueDesk, RenewalsCountFromTodayUpToTheLimit)
{
    lend("A1", 1, "L", 12, QDate(2026, 11, 20));
    auto desk = open();
    click(*desk, "optRenew");
    scan(*desk, "txtAccessionReturn", "A1"); // 3 days late: fined to the picker's date
    EXPECT_EQ(loans(), QStringList{"A1|L|12|2026-11-06|2026-11-30|False|1"});
    EXPECT_EQ(transactions(*desk).last(), "A1|Book 1|Renewal|L12|Botha, Anna 8A|0.50|2026-11-23|2026-11-30|1");
    scan(*desk, "txtAccessionReturn", "A1");
    EXPECT_EQ(loans(), QStringList{"A1|L|12|2026-11-06|2026-11-30|False|2"});
    EXPECT_TRUE(messages_->shown().empty());
    scan(*desk, "txtAccessionReturn", "A1");
    EXPECT_EQ(messages_->prompts(), QStringList{"This item has been renewed for the maximum number of times for this user and must be returned"});
    EXPECT_EQ(loans(), QStringList{"A1|L|12|2026-11-06|2026-11-30|False|2"});
    EXPECT_EQ(transactions(*desk).size(), 2);
}

TEST_F(IssueDesk, AReservedItemIsKeptAsideNotRenewed)
{
    lend("A1", 1, "L", 12, QDate(2026, 11, 30));
    library("Insert into tblLibReserves(MemberType, MemberID, ItemID, ReserveDate) values ('E', 21, 1, #2026-11-02#)");
    auto desk = open();
    click(*desk, "optRenew");
    scan(*desk, "txtAccessionReturn", "A1");
    EXPECT_EQ(messages_->prompts(), QStringList{"This item has been reserved for Ravi Naidoo and must be kept aside."});
    EXPECT_EQ(loans(), QStringList{"A1|L|12|2026-11-16|2026-11-30|False|0"});

    messages_->clear();
    click(*desk, "optReturn");
    scan(*desk, "txtAccessionReturn", "A1");
    EXPECT_EQ(messages_->prompts(), QStringList{"This item has been reserved for Ravi Naidoo and must be kept aside."});
    EXPECT_EQ(loans(), QStringList{"A1|L|12|2026-11-16|2026-11-30|True|0"});
}

TEST_F(IssueDesk, AnIssueToTheReservationHolderConsumesTheReservation)
{
    library("Insert into tblLibReserves(MemberType, MemberID, ItemID, ReserveDate) values ('L', 12, 2, #2026-11-02#)");
    library("Insert into tblLibReserves(MemberType, MemberID, ItemID, ReserveDate) values ('E', 21, 2, #2026-11-05#)");
    auto desk = open();
    issue(*desk, "L100", "A2");
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join('/').toStdString();
    EXPECT_EQ(libraryRows("select MemberType, MemberID from tblLibReserves"), QStringList{"E|21"});
}

TEST_F(IssueDesk, ALongLoanStaysInForceAndAnEarlierPickerMovesOnlyTheDueDate)
{
    auto desk = open();
    issue(*desk, "L100", "L1");
    issue(*desk, "L102", "A1"); // a normal item after a long one keeps the long rules
    EXPECT_EQ(desk->loanType(), "L");
    child<QDateEdit>(*desk, "DTPicker1")->setDate(QDate(2026, 11, 16));
    issue(*desk, "L102", "A2");
    EXPECT_EQ(loans(), (QStringList{"L1|L|12|2026-11-23|2026-12-23|False|0", "A1|L|14|2026-11-23|2026-12-23|False|0",
                                    "A2|L|14|2026-11-23|2026-12-16|False|0"}));
    EXPECT_EQ(rows(*desk, "gridloan").first().section('|', 1, 1), "L");

    // The holiday period chosen on the main menu starts the desk on long loans.
    auto holiday = open("L");
    issue(*holiday, "L102", "A3");
    EXPECT_EQ(loans().last(), "A3|L|14|2026-11-23|2026-12-23|False|0");
}

TEST_F(IssueDesk, WithoutASettingsRowTheDeskUsesItsDefaults)
{
    library("Insert into tblLibItems(AccessionID, Title, LoanType) values ('S1', 'Short One', 'S')");
    auto desk = open();
    issue(*desk, "L100", "S1");
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join('/').toStdString();
    EXPECT_EQ(rows(*desk, "gridloan"), QStringList{"Type of loan|S|Loan Period|1|Max Items|1|Fine Amount|0.00|Fine Interval|1|Extension|1"});
    EXPECT_EQ(loans().last(), "S1|L|12|2026-11-23|2026-11-24|False|0");
}

TEST_F(IssueDesk, ValidateShowsTheLearnerAndHisPhoto)
{
    SetApplicationFolder(path("app"));
    QDir().mkpath(path("app/LearnerPhotos"));
    QImage photo(40, 50, QImage::Format_RGB32);
    photo.fill(Qt::darkCyan);
    ASSERT_TRUE(photo.save(path("app/LearnerPhotos/L100.png")));
    auto desk = open();
    type(*desk, "txtLoanAccession", "A2");
    type(*desk, "txtmemberID", "L100");
    click(*desk, "cmdValidate");
    EXPECT_EQ(messages_->prompts(), QStringList{" => Item found, and \r\n => Learner information has been validated"});
    EXPECT_EQ(child<QLineEdit>(*desk, "txtTitle")->text(), "Book 2");
    EXPECT_EQ(child<QLineEdit>(*desk, "txtName")->text(), "Anna Botha");
    EXPECT_EQ(child<QLineEdit>(*desk, "txtClass")->text(), "8A");
    EXPECT_EQ(child<QComboBox>(*desk, "cboMember")->currentData().toInt(), 12);

    messages_->clear();
    type(*desk, "txtLoanAccession", "none");
    type(*desk, "txtmemberID", "L102");
    click(*desk, "cmdValidate");
    type(*desk, "txtmemberID", "nobody");
    click(*desk, "cmdValidate");
    type(*desk, "txtLoanAccession", "");
    type(*desk, "txtmemberID", " ");
    click(*desk, "cmdValidate");
    EXPECT_EQ(messages_->prompts(), (QStringList{" => The item was not found, and \r\n => The learner exists, but the identity photo was not found.",
                                                 " => The item was not found, and \r\n => Learner not found.",
                                                 "Please enter either a Book or Learner Accession number to continue."}));
    SetApplicationFolder(QString());
}

TEST_F(IssueDesk, PrintsTheTransactionsUnderTheSchoolName)
{
    auto desk = open();
    issue(*desk, "L100", "A1");
    messages_->setPrintToPdf(path("desk.pdf"));
    click(*desk, "cmdPrint");
    EXPECT_EQ(messages_->prompts().last(), "Your printout is 1 page/s long. Do you want to continue?");
    const QString text = pdfText(path("desk.pdf"));
    EXPECT_TRUE(text.contains("Hillview High - Issue System")) << text.toStdString();
    EXPECT_TRUE(text.contains("Botha, Anna 8A"));
}

TEST_F(IssueDesk, UnusualTextEndsInAMessageOrAReportNeverACrash)
{
    auto desk = open();
    const QString texts[] = {QString(10000, 'x'), "ê ë ï ô 📚", "'", "\"", "12abc", "   "};
    for (const QString &text : texts) {
        issue(*desk, text, text);
        scan(*desk, "txtAccessionReturn", text);
    }
    for (const ShownMessage &m : messages_->shown())
        EXPECT_TRUE(m.title == "User Message" || m.title.startsWith("Error : ")) << m.title.toStdString();
    EXPECT_EQ(libraryCount("select * from tblLibTransactions"), 0);
}

TEST_F(IssueDesk, TheMainMenuOpensEveryCirculationScreen)
{
    ScreenRegistry screens;
    registerCirculationScreens(screens);
    SettingsStore settings(path("shelvora.ini"));
    settings.setValue("LibraryDatabase", libraryPath_);
    settings.setValue("Database", centralPath_);
    frmMainMenu menu(settings, screens);
    menu.Form_Load();
    QStringList opened;
    QString deskLoanType;
    auto closeWhenShown = [&] {
        QTimer::singleShot(0, &menu, [&] {
            if (QWidget *modal = QApplication::activeModalWidget()) {
                opened << QString::fromLatin1(modal->metaObject()->className()) + ": " + modal->windowTitle();
                if (auto *desk = qobject_cast<frmIssueSystem *>(modal))
                    deskLoanType = desk->loanType();
                modal->close();
            }
        });
    };
    menu.optLong->setChecked(true);
    for (QAbstractButton *button : std::initializer_list<QAbstractButton *>{menu.cmdissues, menu.cmdReserve, menu.cmdViewReservation, menu.cmdFines, menu.cmdSettings}) {
        closeWhenShown();
        button->click();
    }
    EXPECT_EQ(opened, (QStringList{"frmIssueSystem: Issue System", "frmReserves: Reserve an Item", "frmReservedItems: View Reserved Items",
                                   "frmFinePayment: Fine Payments", "frmSystemSettings: Library System Settings"}));
    EXPECT_EQ(deskLoanType, "L"); // the holiday period reaches the desk as it opens
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join('/').toStdString();
}
