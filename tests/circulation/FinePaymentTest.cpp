// Paying and cancelling fines through the fine payment screen.
#include "SchoolDeskFixture.h"

#include "frmFinePayment.h"

#include <QLabel>

namespace {

class FinePayment : public SchoolDesk {
protected:
    void SetUp() override
    {
        SchoolDesk::SetUp();
        // Learner 12 owes for three loans; one fine of hers is already paid, one cancelled.
        for (int i = 1; i <= 4; ++i) {
            lend(QString("A%1").arg(i), i, "L", 12, QDate(2026, 10, i));
            library(QString("Update tblLibTransactions set Returned = true, ReturnDate = #2026-11-0%1# where TransactionID = %1").arg(i));
        }
        lend("L1", 6, "L", 14, QDate(2026, 10, 1));
        const char *fines[] = {"1, 12, 'L', 2.5", "2, 12, 'L', 1.25", "3, 12, 'L', 4", "5, 14, 'L', 9"};
        for (const char *f : fines)
            library(QString("Insert into tblLibTransactionFines(TransactionID, MemberID, MemberType, FineAmount) values (%1)").arg(QLatin1String(f)));
        library("Insert into tblLibTransactionFines(TransactionID, MemberID, MemberType, FineAmount, PaymentDate, PaymentAmount) values (4, 12, 'L', 3, #2026-11-10#, 3)");
        library("Update tblLibTransactionFines set FineCancelled = true where TransactionID = 3");
    }
    std::unique_ptr<frmFinePayment> findFor(const QString &number)
    {
        auto screen = std::make_unique<frmFinePayment>();
        type(*screen, "txtmemberID", number);
        click(*screen, "cmdFind");
        return screen;
    }
    static void tick(frmFinePayment &screen, int col, int row) { child<SpreadGrid>(screen, "fpSpreadFined")->toggleCheck(col, row); }
    static QString total(frmFinePayment &screen) { return child<QLineEdit>(screen, "txtTotal")->text(); }
};

} // namespace

TEST_F(FinePayment, ListsOnlyOpenFinesOfTheMember)
{
    sent_.clear();
    auto screen = findFor("L100");
    EXPECT_EQ(screen->windowTitle(), "Fine Payments");
    EXPECT_EQ(sent_.last(), "SELECT tblLibTransactionFines.transactionid,tblLibTransactionFines.FineAmount, tblLibTransactions.DueDate, tblLibTransactions.ReturnDate, tblLibItems.Title, tblLibItems.AccessionID FROM (tblLibTransactionFines INNER JOIN tblLibTransactions ON tblLibTransactionFines.TransactionID = tblLibTransactions.TransactionID) INNER JOIN tblLibItems ON tblLibTransactions.ItemID = tblLibItems.ItemID where tblLibTransactionFines.MemberType = 'L' and tblLibTransactionFines.MemberID = 12 and (finecancelled = false and isnull(paymentdate) = -1) order by tblLibItems.Title");
    EXPECT_EQ(rows(*screen, "fpSpreadFined"), (QStringList{"A1|Book 1|2026-10-01|2026-11-01|2.5|0|0", "A2|Book 2|2026-10-02|2026-11-02|1.25|0|0"}));
    // Chosen from the list instead of typed.
    choose(*screen, "cboMembers", "Dlamini Sipho 9B L102");
    EXPECT_EQ(child<QLineEdit>(*screen, "txtmemberID")->text(), "L102");
    EXPECT_TRUE(rows(*screen, "fpSpreadFined").isEmpty());
    click(*screen, "cmdFind");
    EXPECT_EQ(rows(*screen, "fpSpreadFined"), QStringList{"L1|Holiday Reader|2026-10-01||9|0|0"});

    auto nobody = findFor("nobody");
    EXPECT_TRUE(rows(*nobody, "fpSpreadFined").isEmpty());
    type(*nobody, "txtmemberID", "");
    click(*nobody, "cmdFind");
    EXPECT_EQ(messages_->prompts(), QStringList{"Please enter a member number to search for a fine record"});
}

TEST_F(FinePayment, TickingMovesAFineToTheListAndTheTotalLeavesCancellationsOut)
{
    auto screen = findFor("L100");
    QAbstractButton *process = child<QAbstractButton>(*screen, "cmdPaymentProcess");
    tick(*screen, 7, 2); // cancel Book 2
    EXPECT_TRUE(process->property("pending").toBool());
    EXPECT_EQ(total(*screen), "0.00");
    tick(*screen, 6, 1); // pay Book 1
    EXPECT_TRUE(rows(*screen, "fpSpreadFined").isEmpty());
    EXPECT_EQ(rows(*screen, "fpSpreadPayCancel"), (QStringList{"A2|1.25|2026-11-23|1", "A1|2.5|2026-11-23|0"}));
    EXPECT_EQ(total(*screen), "2.50");

    // Remove by row number puts the fine back above.
    type(*screen, "txtRow", "0");
    click(*screen, "btnRemove");
    EXPECT_EQ(rows(*screen, "fpSpreadPayCancel").size(), 2);
    type(*screen, "txtRow", "2");
    click(*screen, "btnRemove");
    EXPECT_EQ(rows(*screen, "fpSpreadPayCancel"), QStringList{"A2|1.25|2026-11-23|1"});
    EXPECT_EQ(rows(*screen, "fpSpreadFined"), QStringList{"A1|Book 1|2026-10-01|2026-11-01|2.5|0|0"});
    EXPECT_EQ(child<QLineEdit>(*screen, "txtRow")->text(), "");
    EXPECT_EQ(total(*screen), "0.00");
}

TEST_F(FinePayment, ProcessingOneFineWritesTheTickDate)
{
    auto screen = findFor("L100");
    tick(*screen, 6, 1);
    Clock::setFixed(QDateTime(QDate(2026, 11, 24), QTime(8, 0))); // processed the next morning
    sent_.clear();
    click(*screen, "cmdPaymentProcess");
    EXPECT_EQ(messages_->prompts(), QStringList{"Processed Successfully"});
    EXPECT_EQ(sent_.first(), " Update tblLibTransactionFines Set PaymentDate = #2026-11-23# , PaymentAmount = 2.5 Where TransactionID = 1");
    EXPECT_EQ(fines().first(), "1|L|12|2.5|2026-11-23|2.5|False");
    EXPECT_TRUE(rows(*screen, "fpSpreadPayCancel").isEmpty());
    EXPECT_EQ(total(*screen), "0.00");
    // A paid fine is never listed again.
    EXPECT_EQ(rows(*screen, "fpSpreadFined"), QStringList{"A2|Book 2|2026-10-02|2026-11-02|1.25|0|0"});
    click(*screen, "cmdFind");
    EXPECT_EQ(rows(*screen, "fpSpreadFined"), QStringList{"A2|Book 2|2026-10-02|2026-11-02|1.25|0|0"});
    messages_->clear();
    click(*screen, "cmdPaymentProcess");
    EXPECT_EQ(messages_->prompts(), QStringList{"Please select an item to process"});
}

// Payment for two late books and a cancellation at once: all written in one transaction, the
// lists refilled with what is still open (a departure from the old screen, which stopped after
// the first row with "Error : 13").
TEST_F(FinePayment, ProcessingSeveralWritesThemAllTogether)
{
    lend("A3", 3, "L", 12, QDate(2026, 10, 5));
    library("Update tblLibTransactions set Returned = true where TransactionID = 6");
    library("Insert into tblLibTransactionFines(TransactionID, MemberID, MemberType, FineAmount) values (6, 12, 'L', 0.75)");
    auto screen = findFor("L100");
    ASSERT_EQ(rows(*screen, "fpSpreadFined").size(), 3);
    tick(*screen, 7, 2); // cancel Book 2
    tick(*screen, 6, 1); // pay Book 1
    click(*screen, "cmdPaymentProcess");
    EXPECT_EQ(messages_->prompts(), QStringList{"Processed Successfully"});
    EXPECT_EQ(fines()[0], "1|L|12|2.5|2026-11-23|2.5|False");
    EXPECT_EQ(fines()[1], "2|L|12|1.25||0|True");
    EXPECT_TRUE(rows(*screen, "fpSpreadPayCancel").isEmpty());
    EXPECT_EQ(rows(*screen, "fpSpreadFined"), QStringList{"A3|Book 3|2026-10-05||0.75|0|0"}); // the fine still open, listed again
    EXPECT_EQ(total(*screen), "0.00");
}

// "Pay Fine" in a member's loan history opens the payments on that member, fines listed, the
// member's name shown; a number typed shows its member's name too.
TEST_F(FinePayment, OpensOnTheMemberOfTheLoanHistory)
{
    frmFinePayment screen;
    screen.openFor("L", 12);
    EXPECT_EQ(child<QLineEdit>(screen, "txtmemberID")->text(), "L100");
    EXPECT_EQ(child<QLabel>(screen, "lblMemberName")->text(), "Botha, Anna (8A)");
    EXPECT_EQ(rows(screen, "fpSpreadFined").size(), 2);
    auto typed = findFor("L102");
    EXPECT_EQ(child<QLabel>(*typed, "lblMemberName")->text(), "Dlamini, Sipho (9B)");
    auto nobody = findFor("Z1");
    EXPECT_EQ(child<QLabel>(*nobody, "lblMemberName")->text(), "No member with number Z1");
}

TEST_F(FinePayment, PrintsUnderTheSchoolName)
{
    auto screen = findFor("L100");
    tick(*screen, 6, 1);
    messages_->setPrintToPdf(path("fines.pdf"));
    click(*screen, "cmdPrint");
    const QString text = pdfText(path("fines.pdf"));
    EXPECT_TRUE(text.contains("Hillview High - FinePayment")) << text.toStdString();
    EXPECT_TRUE(text.contains("2026-11-23"));
}

TEST_F(FinePayment, UnusualTextEndsInAMessageOrAnEmptyList)
{
    const QStringList before = fines();
    frmFinePayment screen;
    for (const QString &text : {QString(10000, 'x'), QString("ê ë ï ô 📚"), QString("'"), QString("\"; drop table x"), QString("12abc")}) {
        type(screen, "txtmemberID", text);
        click(screen, "cmdFind");
        EXPECT_TRUE(rows(screen, "fpSpreadFined").isEmpty());
        type(screen, "txtRow", text);
        click(screen, "btnRemove");
        click(screen, "cmdPaymentProcess");
    }
    for (const ShownMessage &m : messages_->shown())
        EXPECT_TRUE(m.title == "User Message" || m.title.startsWith("Error : ")) << m.title.toStdString();
    EXPECT_EQ(fines(), before);
}
