// A member's loan history, opened for a member as the library users screen does.
#include "SchoolDeskFixture.h"

#include "FrmuserloanHistory.h"
#include "frmIssueSystem.h"

#include <QApplication>
#include <QRadioButton>
#include <QTimer>

namespace {

class LoanHistory : public SchoolDesk {
protected:
    std::unique_ptr<FrmuserloanHistory> open(const QString &type, int id, const QString &name)
    {
        auto screen = std::make_unique<FrmuserloanHistory>();
        screen->setMember(type, id, name);
        return screen;
    }
    void act(FrmuserloanHistory &screen, const QString &accession, const char *button)
    {
        type(screen, "txtAccNo", accession);
        click(screen, button);
    }
};

} // namespace

TEST_F(LoanHistory, ShowsCurrentLoansOrTheWholeHistory)
{
    lend("A1", 1, "L", 12, QDate(2026, 11, 30));
    lend("A2", 2, "L", 12, QDate(2026, 10, 30));
    library("Update tblLibTransactions set Returned = true, ReturnDate = #2026-10-29# where AccessionID = 'A2'");
    lend("A3", 3, "E", 21, QDate(2026, 11, 30));
    sent_.clear();
    auto screen = open("L", 12, "Botha, Anna");
    EXPECT_EQ(screen->windowTitle(), "User Loan History");
    EXPECT_EQ(child<QLineEdit>(*screen, "txtUsr")->text(), "Botha, Anna");
    ASSERT_FALSE(sent_.isEmpty()); // the member panel's look-ups follow the list's statement
    EXPECT_EQ(sent_.first(), "SELECT tblLibTransactions.MemberType, tblLibTransactions.MemberID, tblLibTransactions.AccessionID, tblLibTransactions.IssueDate, tblLibTransactions.DueDate, tblLibTransactions.ReturnDate, tblLibItems.Author1, tblLibItems.Title FROM tblLibTransactions INNER JOIN tblLibItems ON tblLibTransactions.ItemID = tblLibItems.ItemID where returned = false and memberid = 12 and membertype = 'L'");
    EXPECT_EQ(rows(*screen, "gridLoans"), QStringList{"2026-11-16||Book 1|A1|2026-11-30|"});
    sent_.clear();
    click(*screen, "optHistory");
    EXPECT_EQ(sent_, QStringList{"SELECT tblLibTransactions.MemberType, tblLibTransactions.MemberID, tblLibTransactions.AccessionID, tblLibTransactions.IssueDate, tblLibTransactions.DueDate, tblLibTransactions.ReturnDate,  tblLibItems.Author1, tblLibItems.Title FROM tblLibTransactions INNER JOIN tblLibItems ON tblLibTransactions.ItemID = tblLibItems.ItemID where memberid = 12 and membertype = 'L'"});
    EXPECT_EQ(rows(*screen, "gridLoans").size(), 2);
    // Clicking an accession number picks the item.
    child<SpreadGrid>(*screen, "gridLoans")->clickCell(4, 2);
    EXPECT_EQ(child<QLineEdit>(*screen, "txtAccNo")->text(), rows(*screen, "gridLoans")[1].section('|', 3, 3));
    child<SpreadGrid>(*screen, "gridLoans")->clickCell(3, 1);
    EXPECT_EQ(child<QLineEdit>(*screen, "txtAccNo")->text(), rows(*screen, "gridLoans")[1].section('|', 3, 3));
}

TEST_F(LoanHistory, IssuesDueFromTodayAndReturnsToTheCurrentList)
{
    auto screen = open("L", 12, "Botha, Anna");
    click(*screen, "optHistory");
    sent_.clear();
    act(*screen, "A2", "cmdissue");
    EXPECT_EQ(messages_->prompts(), QStringList{"Your item has been issued"});
    EXPECT_TRUE(sent_.contains("Insert into tblLibTransactions(accessionId,MemberType,MemberId,ItemID,Issuedate,DueDate)VALUES('A2','L',12,2,#2026-11-23#,#2026-12-07#)"));
    EXPECT_EQ(loans(), QStringList{"A2|L|12|2026-11-23|2026-12-07|False|0"});
    EXPECT_TRUE(child<QRadioButton>(*screen, "optCurrent")->isChecked());
    EXPECT_EQ(rows(*screen, "gridLoans").size(), 1);

    messages_->clear();
    for (const char *accession : {"Z9", "R1", "A2"})
        act(*screen, accession, "cmdissue");
    EXPECT_EQ(messages_->prompts(), (QStringList{"This accession number does not exist",
                                                 "This item is a restricted or reference item and is not availabe for loan.",
                                                 "This accession number is still out on loan and must be returned before it can be issued again"}));
    auto gone = open("L", 13, "Old, Boy");
    messages_->clear();
    act(*gone, "A3", "cmdissue");
    EXPECT_EQ(messages_->prompts(), QStringList{"This member number does not exist"});
}

TEST_F(LoanHistory, AReservedItemMayBeRenewedHereButNotAtTheDesk)
{
    lend("A1", 1, "L", 12, QDate(2026, 11, 30));
    library("Insert into tblLibReserves(MemberType, MemberID, ItemID, ReserveDate) values ('S', 3, 1, #2026-11-02#)");
    {
        frmIssueSystem desk;
        click(desk, "optRenew");
        scan(desk, "txtAccessionReturn", "A1");
        EXPECT_EQ(messages_->prompts(), QStringList{"This item has been reserved for Thabo Mokoena and must be kept aside."});
        EXPECT_EQ(loans(), QStringList{"A1|L|12|2026-11-16|2026-11-30|False|0"});
    }
    messages_->clear();
    auto screen = open("L", 12, "Botha, Anna");
    act(*screen, "A1", "cmdRenew");
    EXPECT_EQ(messages_->prompts(), QStringList{"Your item has been renewed"});
    EXPECT_EQ(loans(), QStringList{"A1|L|12|2026-11-16|2026-11-30|False|1"});

    // Returned here, the reservation is looked at after the loan is closed.
    messages_->clear();
    act(*screen, "A1", "cmdReturn");
    EXPECT_EQ(messages_->prompts(), (QStringList{"This item has been reserved for Thabo Mokoena and must be kept aside.", "Your item has been returned"}));
    EXPECT_EQ(loans(), QStringList{"A1|L|12|2026-11-16|2026-11-30|True|0"});
    EXPECT_TRUE(rows(*screen, "gridLoans").isEmpty());

    messages_->clear();
    act(*screen, "A1", "cmdRenew");
    act(*screen, "A1", "cmdReturn");
    act(*screen, "nope", "cmdReturn");
    EXPECT_EQ(messages_->prompts(), (QStringList{"This accession number is not on loan and cannot be renewed",
                                                 "This accession number is not on loan and cannot be returned",
                                                 "This accession number does not exist"}));
}

TEST_F(LoanHistory, PrintsUnderTheSchoolName)
{
    lend("A1", 1, "L", 12, QDate(2026, 11, 30));
    auto screen = open("L", 12, "Botha, Anna");
    messages_->setPrintToPdf(path("history.pdf"));
    click(*screen, "cmdPrint");
    const QString text = pdfText(path("history.pdf"));
    EXPECT_TRUE(text.contains("Hillview High - User Loan History")) << text.toStdString();
    EXPECT_TRUE(text.contains("Book 1"));
}

TEST_F(LoanHistory, PayFineOpensTheFinePaymentScreen)
{
    auto screen = open("L", 12, "Botha, Anna");
    QString opened;
    QTimer::singleShot(0, screen.get(), [&] {
        if (QWidget *modal = QApplication::activeModalWidget()) {
            opened = modal->windowTitle();
            modal->close();
        }
    });
    click(*screen, "cmdFine");
    EXPECT_EQ(opened, "Fine Payments");
}
