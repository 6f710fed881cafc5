// The desk as a busy counter works it from the keyboard: member first, then books, the member in
// view, one status line per transaction, and no key that throws the day's work away.
#include "SchoolDeskFixture.h"

#include "FrmuserloanHistory.h"
#include "frmFinePayment.h"
#include "frmIssueSystem.h"
#include "DatabaseLocations.h"

#include <QApplication>
#include <QLabel>
#include <QRadioButton>
#include <QTimer>

namespace {

class DeskFlow : public SchoolDesk {
protected:
    std::unique_ptr<frmIssueSystem> open()
    {
        auto desk = std::make_unique<frmIssueSystem>();
        desk->show();
        QApplication::setActiveWindow(desk.get());
        return desk;
    }
    static QString label(QWidget &screen, const char *name) { return child<QLabel>(screen, name)->text(); }
    static bool attention(QWidget &screen, const char *name) { return child<QLabel>(screen, name)->property("attention").toBool(); }
};

} // namespace

TEST_F(DeskFlow, MemberFirstThenBooksWithTheMemberInView)
{
    lend("A2", 2, "L", 12, QDate(2026, 11, 20)); // overdue since three days
    library("Insert into tblLibTransactionFines(TransactionID, MemberID, MemberType, FineAmount, DateFined, PaymentAmount, FineCancelled) "
            "values (1, 12, 'L', 1.5, #2026-11-01#, 0, false)");
    library("Insert into tblLibReserves(MemberType, MemberID, ItemID, ReserveDate) values ('L', 12, 4, #2026-11-01#)");
    auto desk = open();
    QLineEdit *member = child<QLineEdit>(*desk, "txtmemberID");
    QLineEdit *book = child<QLineEdit>(*desk, "txtLoanAccession");
    EXPECT_EQ(desk->focusWidget(), member);
    QTest::keyClick(member, Qt::Key_Tab);
    EXPECT_EQ(desk->focusWidget(), book);
    QTest::keyClick(book, Qt::Key_Tab);
    EXPECT_EQ(desk->focusWidget(), child<QWidget>(*desk, "cmdLoanProcess"));

    scan(*desk, "txtmemberID", "L100");
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join('/').toStdString();
    EXPECT_EQ(desk->focusWidget(), book);
    EXPECT_EQ(label(*desk, "lblMemberName"), "Botha, Anna");
    EXPECT_EQ(label(*desk, "lblMemberStanding"), "Grade 8, class 8A");
    EXPECT_EQ(label(*desk, "lblItemsOut"), "Items out: 1");
    EXPECT_EQ(label(*desk, "lblOverdue"), "Overdue: 1");
    EXPECT_TRUE(attention(*desk, "lblOverdue"));
    EXPECT_EQ(label(*desk, "lblFines"), "Open fines: 1 (1.50)");
    EXPECT_EQ(label(*desk, "lblReservations"), "Reservations: 1, 1 ready to collect"); // A4 is on the shelf
    EXPECT_TRUE(attention(*desk, "lblReservations"));

    scan(*desk, "txtLoanAccession", "A1");
    EXPECT_EQ(label(*desk, "lblStatus"), "Issued A1 Book 1 to Botha, Anna 8A, due 2026-12-07");
    EXPECT_EQ(child<QLabel>(*desk, "lblStatus")->property("state").toString(), "done");
    EXPECT_EQ(label(*desk, "lblItemsOut"), "Items out: 2"); // the panel follows every transaction

    // A return with a fine is named and coloured.
    Clock::setFixed(QDateTime(QDate(2026, 12, 15), QTime(9, 0)));
    child<QDateEdit>(*desk, "dtreturnDate")->setDate(QDate(2026, 12, 15));
    scan(*desk, "txtAccessionReturn", "A1");
    EXPECT_EQ(label(*desk, "lblStatus"), "Returned A1 Book 1 from Botha, Anna 8A - fine 1.00");
    EXPECT_EQ(child<QLabel>(*desk, "lblStatus")->property("state").toString(), "attention");
    EXPECT_EQ(label(*desk, "lblFines"), "Open fines: 2 (2.50)");

    // An unknown number says so in the panel, without a box, and stays selected in its own box to be
    // scanned again; a book scanned all the same is refused and sends the cursor back there too.
    messages_->clear();
    scan(*desk, "txtmemberID", "209999999");
    EXPECT_TRUE(messages_->shown().empty());
    EXPECT_EQ(label(*desk, "lblMemberName"), "No member with number 209999999");
    EXPECT_EQ(desk->focusWidget(), member);
    EXPECT_EQ(member->selectedText(), "209999999");
    scan(*desk, "txtLoanAccession", "A3");
    EXPECT_EQ(messages_->prompts(), QStringList{"This member ID does not exist"});
    EXPECT_EQ(desk->focusWidget(), member);
    EXPECT_EQ(member->selectedText(), "209999999");
    EXPECT_EQ(label(*desk, "lblStatus"), "Not issued: A3 - This member ID does not exist");
    EXPECT_EQ(child<QLabel>(*desk, "lblStatus")->property("state").toString(), "refused");
    // Escape in the member box clears the member from view as well.
    QTest::keyClick(member, Qt::Key_Escape);
    EXPECT_EQ(member->text(), "");
    EXPECT_EQ(label(*desk, "lblMemberName"), "No member chosen");
}

// After a refusal the status line no longer shows the last success; a reserved book is not renewed
// and the line says to take it back and keep it aside. A renewal never shortens the loan, and the
// title and due date boxes show the item in hand.
TEST_F(DeskFlow, RefusalsShowInTheStatusLine)
{
    lend("A2", 2, "L", 12, QDate(2026, 12, 20));
    lend("A3", 3, "L", 12, QDate(2026, 11, 30));
    library("Insert into tblLibReserves(MemberType, MemberID, ItemID, ReserveDate) values ('E', 21, 3, #2026-11-01#)");
    auto desk = open();
    EXPECT_EQ(child<QLineEdit>(*desk, "txtTitle")->text(), "");
    child<QRadioButton>(*desk, "optRenew")->click();
    scan(*desk, "txtAccessionReturn", "A2"); // renewed on 2026-11-23 with 7 days: still due 2026-12-20
    EXPECT_EQ(label(*desk, "lblStatus"), "Renewed A2 Book 2 for Botha, Anna 8A, due 2026-12-20");
    EXPECT_EQ(child<QLineEdit>(*desk, "txtDueDate")->text(), "2026-12-20");
    EXPECT_EQ(child<QLineEdit>(*desk, "txtTitle")->text(), "Book 2");
    scan(*desk, "txtAccessionReturn", "A3");
    EXPECT_EQ(messages_->prompts(), QStringList{"This item has been reserved for Ravi Naidoo and must be kept aside."});
    EXPECT_EQ(label(*desk, "lblStatus"), "Not renewed: A3 is reserved for Ravi Naidoo - take it back and keep it aside");
    EXPECT_EQ(child<QLabel>(*desk, "lblStatus")->property("state").toString(), "refused");
    EXPECT_EQ(libraryValue("select DueDate from tblLibTransactions where AccessionID = 'A3'"), "2026-11-30");

    // A return shows the returned loan's title and due date; a new member clears the item in hand.
    child<QRadioButton>(*desk, "optReturn")->click();
    scan(*desk, "txtAccessionReturn", "A2");
    EXPECT_EQ(child<QLineEdit>(*desk, "txtTitle")->text(), "Book 2");
    EXPECT_EQ(child<QLineEdit>(*desk, "txtDueDate")->text(), "2026-12-20");
    EXPECT_EQ(rows(*desk, "gridloan").value(0).section('|', 1, 1), "N");
    scan(*desk, "txtmemberID", "L102");
    EXPECT_EQ(child<QLineEdit>(*desk, "txtTitle")->text(), "");
    EXPECT_EQ(child<QLineEdit>(*desk, "txtDueDate")->text(), "");
    EXPECT_EQ(rows(*desk, "gridloan").value(0).section('|', 1, 1), "");
    scan(*desk, "txtLoanAccession", "A2");
    EXPECT_EQ(child<QLineEdit>(*desk, "txtTitle")->text(), "Book 2");
    EXPECT_EQ(child<QLineEdit>(*desk, "txtDueDate")->text(), "2026-12-07");

    // The loan limit (two for learners): the third book is refused in the line too.
    lend("A4", 4, "L", 12, QDate(2026, 12, 20));
    scan(*desk, "txtmemberID", "L100");
    scan(*desk, "txtLoanAccession", "A1");
    EXPECT_EQ(label(*desk, "lblStatus"), "Not issued: A1 - This member already has the maximum number of items on loan");
    EXPECT_EQ(child<QLabel>(*desk, "lblStatus")->property("state").toString(), "refused");
}

TEST_F(DeskFlow, AReturnKeptForAnotherMemberCannotBeMissed)
{
    lend("A1", 1, "L", 12, QDate(2026, 11, 30));
    library("Insert into tblLibReserves(MemberType, MemberID, ItemID, ReserveDate) values ('E', 21, 1, #2026-11-01#)");
    auto desk = open();
    scan(*desk, "txtAccessionReturn", "A1");
    EXPECT_EQ(messages_->prompts(), QStringList{"This item has been reserved for Ravi Naidoo and must be kept aside."});
    EXPECT_EQ(label(*desk, "lblStatus"), "Returned A1 Book 1 from Botha, Anna 8A - keep aside: reserved for Ravi Naidoo");
    EXPECT_EQ(child<QLabel>(*desk, "lblStatus")->property("state").toString(), "attention");
}

TEST_F(DeskFlow, NeitherAStrayScanNorEscapeThrowsWorkAway)
{
    auto desk = open();
    choose(*desk, "cboMember", "Botha Anna L100 8A");
    EXPECT_EQ(child<QLineEdit>(*desk, "txtmemberID")->text(), "L100");
    EXPECT_EQ(label(*desk, "lblMemberName"), "Botha, Anna");
    scan(*desk, "txtLoanAccession", "A1");
    ASSERT_EQ(rows(*desk, "gridtransactions").size(), 1);

    // A book scanned into the member list by mistake.
    QComboBox *members = child<QComboBox>(*desk, "cboMember");
    members->setFocus();
    members->lineEdit()->clear();
    QTest::keyClicks(members->lineEdit(), "A2");
    QTest::keyClick(members->lineEdit(), Qt::Key_Return);
    EXPECT_EQ(members->currentText(), "Botha Anna L100 8A");
    EXPECT_EQ(child<QLineEdit>(*desk, "txtmemberID")->text(), "L100");

    // Escape in a box clears only that box; anywhere else it does nothing; the desk stays open.
    QLineEdit *book = child<QLineEdit>(*desk, "txtLoanAccession");
    book->setFocus();
    book->setText("A3");
    QTest::keyClick(book, Qt::Key_Escape);
    EXPECT_EQ(book->text(), "");
    EXPECT_EQ(child<QLineEdit>(*desk, "txtmemberID")->text(), "L100");
    child<QWidget>(*desk, "cmdPrint")->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_TRUE(desk->isVisible());
    EXPECT_EQ(rows(*desk, "gridtransactions").size(), 1);
    EXPECT_TRUE(messages_->shown().empty()) << messages_->prompts().join('/').toStdString();
}

TEST_F(DeskFlow, TheLoanHistoryShowsItsMemberAndFollowsItsTransactions)
{
    lend("A2", 2, "L", 12, QDate(2026, 11, 30));
    FrmuserloanHistory history;
    history.setMember(QStringLiteral("L"), 12, QStringLiteral("Botha, Anna"));
    EXPECT_EQ(label(history, "lblMemberName"), "Botha, Anna");
    EXPECT_EQ(label(history, "lblItemsOut"), "Items out: 1");
    EXPECT_EQ(label(history, "lblOverdue"), "Overdue: 0");
    EXPECT_FALSE(attention(history, "lblOverdue"));
    type(history, "txtAccNo", "A1");
    click(history, "cmdissue");
    EXPECT_EQ(label(history, "lblItemsOut"), "Items out: 2");

    // "Pay Fine" opens the payments on this member.
    QString shownMember;
    QObject scope;
    QTimer::singleShot(0, &scope, [&] {
        if (auto *fines = qobject_cast<frmFinePayment *>(QApplication::activeModalWidget())) {
            shownMember = child<QLineEdit>(*fines, "txtmemberID")->text() + "|" + label(*fines, "lblMemberName");
            fines->close();
        }
    });
    click(history, "cmdFine");
    EXPECT_EQ(shownMember, "L100|Botha, Anna (8A)");
}

// The library's server is down: a scan gives one plain message naming the server and why, nothing else.
TEST_F(DeskFlow, AServerThatIsDownIsOneMessageAScan)
{
    auto desk = open();
    LibraryDatabasePath = "postgresql://shelvora@127.0.0.1:1/library";
    messages_->clear();
    scan(*desk, "txtAccessionReturn", "A1");
    ASSERT_EQ(messages_->shown().size(), 1u) << messages_->prompts().join(" | ").toStdString();
    const ShownMessage &m = messages_->shown().front();
    EXPECT_TRUE(m.prompt.startsWith("The database server 127.0.0.1:1/library cannot be reached: nothing answers at that address and port"))
        << m.prompt.toStdString();
    EXPECT_FALSE(m.title.startsWith("Error"));
    EXPECT_EQ(desk->focusWidget(), child<QLineEdit>(*desk, "txtAccessionReturn"));
}
