#include "AppError.h"
#include "Clock.h"
#include "DbConnection.h"
#include "LoanRoutines.h"
#include "LoanRules.h"
#include "OverdueList.h"
#include "clsDataObject.h"
#include "TestDatabases.h"
#include "TestEngine.h"
#include "DatabaseLocations.h"
#include "clsBusinessRules.h"

#include "ConnectionPool.h"

#include <QDateTime>
#include <QProcess>

namespace {
const Money Fifty = Money::fromUnits(5000);
}

// A small school: learner 12 (admission 'L100', class 8A), educator 12 (ID '7001015000081'),
// staff member 3; copies A1..A3; loan settings for normal loans.
class LoanTest : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        central("Insert into Classes(ClassName, Grade) values ('8A', 8)");
        central("Insert into Learner_Info(ID, AccessionNo, SName, FName, Grade, Class, Status) values (12, 'L100', 'Botha', 'Anna', 8, 1, 'C')");
        central("Insert into Learner_Info(ID, AccessionNo, SName, FName, Grade, Class, Status) values (13, 'L101', 'Old', 'Boy', 8, 1, 'A')");
        central("Insert into Educators(EdID, SName, FName, IDNumber, Status) values (12, 'Naidoo', 'Ravi', '7001015000081', 'C')");
        central("Insert into StaffMembers(staffID, SName, FName, IDNumber, Status) values (3, 'Mokoena', 'Thabo', '8002025000082', 'C')");
        for (int i = 1; i <= 3; ++i)
            library(QString("Insert into tblLibItems(AccessionID, Title, ShelfNumber, LoanType) values ('A%1', 'Book %1', 'F%1', 'N')").arg(i));
        library("Insert into tblLibsettings(Loantype,UserCat,Loanperiod,FineAmount,FineInterval,Maxitems,ExtDays,MaxExt,MaxRes,MaxUserRes)"
                "VALUES('N','L',14,0.5,7,2,7,2,1,2)");
        library("Insert into tblLibsettings(Loantype,UserCat,Loanperiod,FineAmount,FineInterval,Maxitems,ExtDays,MaxExt,MaxRes,MaxUserRes)"
                "VALUES('N','E',21,1.25,1,5,7,0,1,2)");
        DbConnection::traceStatements(&sent_);
    }
    void TearDown() override
    {
        DbConnection::traceStatements(nullptr);
        DatabaseTest::TearDown();
    }

    void lend(const QString &accession, int itemID, const QString &type, int member, const QDate &due, int extensions = 0)
    {
        library(QString("Insert into tblLibTransactions(accessionId,MemberType,MemberId,ItemID,Issuedate,DueDate,Extensions)"
                        "VALUES('%1','%2',%3,%4,#%5#,#%6#,%7)")
                    .arg(accession, type).arg(member).arg(itemID)
                    .arg(due.addDays(-14).toString(Qt::ISODate), due.toString(Qt::ISODate)).arg(extensions));
    }
    QStringList fineRows() { return libraryRows("select TransactionID, MemberID, MemberType, FineAmount, DateFined from tblLibTransactionFines"); }
    QStringList loanRow() { return libraryRows("select ReturnDate, Returned, Extensions, DueDate from tblLibTransactions"); }
    QStringList sent_;
};

TEST_F(LoanTest, AnOnTimeReturnClosesTheLoanWithoutAFine)
{
    lend("A1", 1, "L", 12, QDate(2026, 11, 20), 1);
    LoanHandled handled;
    ASSERT_TRUE(ReturnOrRenewLoan("A1", QDate(2026, 11, 20), 0, "return", QDate(), Fifty, 7, &handled));
    EXPECT_TRUE(fineRows().isEmpty());
    EXPECT_EQ(loanRow(), QStringList{"2026-11-20|True|0|2026-11-20"});
    EXPECT_EQ(sent_.first(), "select * from tbllibtransactions where accessionid = 'A1' and returned =  false");
    EXPECT_EQ(sent_.last(), "Update tbllibtransactions set returndate =#2026-11-20#,extensions = 0, returned = true where accessionid = 'A1' and transactionid =1");
    // The caller is handed the loan.
    EXPECT_EQ(handled.transactionID, 1);
    EXPECT_EQ(handled.memberType, "L");
    EXPECT_EQ(handled.memberID, 12);
    EXPECT_TRUE(messages_->shown().empty());
}

TEST_F(LoanTest, AnOverdueReturnWritesTheFineRowFirst)
{
    lend("A1", 1, "L", 12, QDate(2026, 11, 1));
    ASSERT_TRUE(ReturnOrRenewLoan("A1", QDate(2026, 11, 9), 0, "return", QDate(), Fifty, 7)); // 8 days: two intervals
    EXPECT_EQ(fineRows(), QStringList{"1|12|L|1|2026-11-09"});
    ASSERT_EQ(sent_.size(), 4);
    EXPECT_EQ(sent_[1], "SELECT * FROM tbllibtransactionfines WHERE transactionid = 1 AND memberid = 12 AND membertype = 'L'");
    EXPECT_EQ(sent_[2], "Insert into tbllibtransactionfines(transactionid,memberid,membertype,fineamount,datefined)VALUES(1,12,'L',1,#2026-11-09#)");
    EXPECT_TRUE(sent_[3].startsWith("Update tbllibtransactions set returndate =#2026-11-09#"));
}

TEST_F(LoanTest, AnOverdueRenewalThenAnOverdueReturnAddUpOnOneFineRow)
{
    lend("A1", 1, "L", 12, QDate(2026, 11, 1));
    ASSERT_TRUE(ReturnOrRenewLoan("A1", QDate(2026, 11, 2), 2, "renewal", QDate(2026, 11, 9), Fifty, 7));
    EXPECT_EQ(loanRow(), QStringList{"|False|1|2026-11-09"});
    EXPECT_EQ(sent_.last(), "Update tbllibtransactions set duedate =#2026-11-09#,extensions = 1 where accessionid = 'A1' and transactionid =1");
    EXPECT_EQ(fineRows(), QStringList{"1|12|L|0.5|2026-11-02"});

    sent_.clear();
    ASSERT_TRUE(ReturnOrRenewLoan("A1", QDate(2026, 11, 24), 0, "return", QDate(), Fifty, 7)); // 15 days: three intervals
    EXPECT_EQ(fineRows(), QStringList{"1|12|L|2|2026-11-24"});
    EXPECT_EQ(sent_[2], "UPDATE tbllibtransactionfines Set fineamount = 2, datefined = #2026-11-24# WHERE transactionid = 1 AND memberid = 12 AND membertype = 'L'");
}

TEST_F(LoanTest, RenewalsStopAtTheLimitAndAreUnlimitedAtZero)
{
    lend("A1", 1, "L", 12, QDate(2026, 11, 1), 2);
    EXPECT_FALSE(ReturnOrRenewLoan("A1", QDate(2026, 11, 5), 2, "renewal", QDate(2026, 11, 12), Fifty, 7));
    EXPECT_EQ(messages_->prompts(), QStringList{"This item has been renewed for the maximum number of times for this user and must be returned"});
    EXPECT_EQ(loanRow(), QStringList{"|False|2|2026-11-01"});
    EXPECT_TRUE(fineRows().isEmpty());

    messages_->clear();
    EXPECT_TRUE(ReturnOrRenewLoan("A1", QDate(2026, 11, 1), 0, "renewal", QDate(2026, 11, 12), Fifty, 7));
    EXPECT_EQ(loanRow(), QStringList{"|False|3|2026-11-12"});
    EXPECT_TRUE(messages_->shown().empty());
}

// Renewing early never shortens a loan (a departure from the old routine, which wrote the renewal
// date plus the extension days even when that was sooner): the later of the two dates is kept.
TEST_F(LoanTest, ARenewalNeverShortensTheLoan)
{
    lend("A1", 1, "L", 12, QDate(2026, 12, 8));
    LoanHandled handled;
    ASSERT_TRUE(ReturnOrRenewLoan("A1", QDate(2026, 11, 24), 0, "renewal", QDate(2026, 12, 1), Fifty, 7, &handled));
    EXPECT_EQ(loanRow(), QStringList{"|False|1|2026-12-08"});
    EXPECT_EQ(handled.dueDate, QDate(2026, 12, 8));
    ASSERT_TRUE(ReturnOrRenewLoan("A1", QDate(2026, 12, 6), 0, "renewal", QDate(2026, 12, 13), Fifty, 7, &handled));
    EXPECT_EQ(loanRow(), QStringList{"|False|2|2026-12-13"});
    EXPECT_EQ(handled.dueDate, QDate(2026, 12, 13));
    EXPECT_TRUE(fineRows().isEmpty());
}

TEST_F(LoanTest, NothingOnLoanIsRefusedForReturnAndRenewal)
{
    for (const QString mode : {"return", "renewal"}) {
        messages_->clear();
        EXPECT_FALSE(ReturnOrRenewLoan("A2", QDate(2026, 11, 5), 0, mode, QDate(2026, 11, 12), Fifty, 7));
        EXPECT_EQ(messages_->prompts(), QStringList{"This accession number is not out on loan and cannot be returned or renewed"});
        EXPECT_EQ(messages_->shown()[0].title, "User Message");
    }
}

TEST_F(LoanTest, FinesChargeEveryStartedInterval)
{
    const QDate due(2026, 11, 1);
    const std::pair<int, qint64> cases[] = {{0, 0}, {1, 5000}, {7, 5000}, {8, 10000}, {14, 10000}, {15, 15000}};
    for (const auto &[late, units] : cases)
        EXPECT_EQ(OverdueFine(due.addDays(late), due, Fifty, 7).units(), units) << late << " days late";
    EXPECT_EQ(OverdueFine(due.addDays(-3), due, Fifty, 7), Money());
    EXPECT_EQ(OverdueFine(due.addDays(3), due, Money::fromUnits(12345), 1).units(), 37035);
}

TEST_F(LoanTest, AZeroIntervalAndAHugeDelayRaiseAndWriteNothing)
{
    lend("A1", 1, "L", 12, QDate(2026, 11, 1));
    try {
        ReturnOrRenewLoan("A1", QDate(2026, 11, 3), 0, "return", QDate(), Fifty, 0);
        FAIL();
    } catch (const AppError &e) {
        EXPECT_EQ(e.number(), AppError::DivisionByZero);
    }
    // Due in 1900, returned today: more than 32,767 days.
    library("Update tbllibtransactions set duedate = #1900-01-01# where transactionid = 1");
    try {
        ReturnOrRenewLoan("A1", QDate(2026, 11, 3), 0, "return", QDate(), Fifty, 7);
        FAIL();
    } catch (const AppError &e) {
        EXPECT_EQ(e.number(), AppError::Overflow);
    }
    EXPECT_TRUE(fineRows().isEmpty());
    EXPECT_EQ(loanRow(), QStringList{"|False|0|1900-01-01"});
    EXPECT_NO_THROW(library("Update tblLibItems set Title = 'Book 3' where ItemID = 3")); // no transaction left open
}

TEST_F(LoanTest, AvailabilityHolderAndLimits)
{
    lend("A1", 1, "E", 12, QDate(2026, 11, 30));
    QString borrower;
    EXPECT_FALSE(ItemAvailable("A1", &borrower));
    EXPECT_EQ(borrower, "E");
    EXPECT_TRUE(ItemAvailable("A2"));

    QString type;
    QVariant member;
    GetItemHolder(2, &type, &member);
    EXPECT_TRUE(type.isEmpty());
    EXPECT_FALSE(member.isValid());
    GetItemHolder(1, &type, &member);
    EXPECT_EQ(type, "E");
    EXPECT_EQ(member.toInt(), 12);

    // Learner 12 and educator 12 are different people.
    EXPECT_TRUE(MemberCanBorrow(12, "L", 1));
    EXPECT_FALSE(MemberCanBorrow(12, "E", 1));
    EXPECT_TRUE(MemberCanBorrow(12, "E", 2));
    EXPECT_FALSE(MemberCanBorrow(12, "L", 0));
    EXPECT_EQ(sent_.last(), "Select Count(transactionid) as total from tbllibtransactions where memberid = 12 and membertype = 'L' and returned = false");
}

TEST_F(LoanTest, ItemLookUpGivesTheItemID)
{
    int item = 0;
    EXPECT_TRUE(GetItemByAccession("A2", &item));
    EXPECT_EQ(item, 2);
    EXPECT_TRUE(GetItemByAccession("a2", &item)); // accession numbers compare without regard to case
    library("Update tblLibItems set PhasedOut = true where ItemID = 3");
    EXPECT_FALSE(GetItemByAccession("A3", &item));
    EXPECT_EQ(item, 2);
    EXPECT_FALSE(GetItemByAccession("O'Brien", &item)); // a quote is doubled: just a number nobody has
    library("Insert into tblLibItems(AccessionID, Title) values ('O''B1', 'Quoted')");
    EXPECT_TRUE(GetItemByAccession("O'B1", &item));
}

TEST_F(LoanTest, AReservationByAnotherMemberBlocksAndNamesTheHolder)
{
    library("insert into tblLibReserves(MemberType,MemberID,ItemID,ReserveDate) values ('E', 12, 1, #2026-11-02#)");
    library("insert into tblLibReserves(MemberType,MemberID,ItemID,ReserveDate) values ('L', 12, 1, #2026-11-01#)");
    library("insert into tblLibReserves(MemberType,MemberID,ItemID,ReserveDate,Canceled) values ('S', 3, 1, #2026-10-01#, true)");

    // The oldest open reservation is the learner's: the learner may take it.
    QString holder;
    EXPECT_FALSE(GetNextReservation(1, 12, "L", &holder));
    // Staff member 3 may not, and is told who holds it.
    EXPECT_TRUE(GetNextReservation(1, 3, "S", &holder));
    EXPECT_EQ(holder, "Anna Botha 8A");

    // Educator 12 is another person than learner 12: the learner's number does not let the educator take it.
    EXPECT_TRUE(GetNextReservation(1, 12, "E", &holder));
    EXPECT_EQ(holder, "Anna Botha 8A");

    library("Update tblLibReserves set Canceled = true where MemberType = 'L'");
    EXPECT_TRUE(GetNextReservation(1, 3, "S", &holder));
    EXPECT_EQ(holder, "Ravi Naidoo");
    // ...and the other way round: learner 12 may not take what educator 12 reserved.
    EXPECT_TRUE(GetNextReservation(1, 12, "L", &holder));
    EXPECT_EQ(holder, "Ravi Naidoo");
    EXPECT_EQ(CheckIssue(12, "L", 2, "A1").refusal, IssueRefusal::ReservedForAnother);
    EXPECT_FALSE(GetNextReservation(1, 12, "E", &holder));
    EXPECT_FALSE(GetNextReservation(2, 3, "S", &holder));
    EXPECT_TRUE(sent_.contains(" select top 1 * from tbllibreserves  where (itemid = 2 and ([canceled] <> true or [canceled] = false)) order by [reservedate]"));
}

TEST_F(LoanTest, MembersAreLookedUpInBothDirections)
{
    EXPECT_EQ(GetMemberByIDNo("L100", "L").toInt(), 12);
    EXPECT_EQ(GetMemberIDNo(12, "L").toString(), "L100");
    EXPECT_EQ(GetMemberByIDNo("7001015000081", "E").toInt(), 12);
    EXPECT_EQ(GetMemberIDNo(12, "E").toString(), "7001015000081");
    EXPECT_EQ(GetMemberByIDNo("8002025000082", "S").toInt(), 3);
    EXPECT_EQ(GetMemberIDNo(3, "S").toString(), "8002025000082");
    // Archived members are not current.
    EXPECT_FALSE(GetMemberByIDNo("L101", "L").isValid());
    EXPECT_FALSE(GetMemberIDNo(13, "L").isValid());
    EXPECT_TRUE(MemberExists(12, "L"));
    EXPECT_FALSE(MemberExists(13, "L"));
    EXPECT_TRUE(MemberExists(3, "S"));
    EXPECT_FALSE(MemberExists(4, "S"));
    EXPECT_TRUE(sent_.contains("Select edid  as IDNo,sname,fname,IDNumber from Educators where status = 'C'and IDNumber = '7001015000081'  order by sname,fname"));
}

TEST_F(LoanTest, TheLoanHolderWarningNamesTheLearnersClass)
{
    messages_->queueAnswer(MessageScript::No);
    EXPECT_FALSE(GetLoanHolderMessage(12, "L"));
    ASSERT_EQ(messages_->shown().size(), 1u);
    EXPECT_EQ(messages_->shown()[0].prompt,
              "This book is currently on loan to Anna Botha in the 8A class and will be marked as returned before it is removed "
              "from the library stock.\r\nAre you sure you want to continue?");
    EXPECT_EQ(messages_->shown()[0].title, "User Warning");
    EXPECT_EQ(messages_->shown()[0].style, 260);
    EXPECT_TRUE(GetLoanHolderMessage(12, "E"));
    EXPECT_TRUE(messages_->shown()[1].prompt.startsWith("This book is currently on loan to Ravi Naidoo and will"));
}

TEST_F(LoanTest, FineSettingsFollowTheCopysLoanTypeAndTheCategory)
{
    Money amount;
    qint16 interval = -1;
    GetFineSettings("A1", "E", &amount, &interval);
    EXPECT_EQ(amount, Money::fromUnits(12500));
    EXPECT_EQ(interval, 1);
    GetFineSettings("A1", "S", &amount, &interval); // no row: values stay
    EXPECT_EQ(interval, 1);
}

TEST_F(LoanTest, BusinessRulesTellIssuedAndReservedItems)
{
    clsBusinessRules rules;
    bool flag = true;
    QString text;
    rules.ItemIssued(1, flag, text);
    EXPECT_FALSE(flag);
    lend("A1", 1, "L", 12, QDate(2026, 11, 30));
    rules.ItemIssued(1, flag, text);
    EXPECT_TRUE(flag);
    EXPECT_EQ(text, "Item is already issued");
    rules.ItemReserved(1, flag, text);
    EXPECT_FALSE(flag);
    library("insert into tblLibReserves(MemberType,MemberID,ItemID,ReserveDate) values ('E', 12, 1, #2026-11-02#)");
    rules.ItemReserved(1, flag, text);
    EXPECT_TRUE(flag);
    EXPECT_EQ(text, "Reserved Items can't be issued");

    LibraryDatabasePath = path("missing.db");
    messages_->clear();
    rules.ItemReserved(1, flag, text);
    EXPECT_FALSE(flag);
    ASSERT_EQ(messages_->shown().size(), 2u); // the failed open, then the report
    EXPECT_TRUE(messages_->shown()[1].prompt.endsWith("Location: Business Rules\r\nProcedure: ItemReserved"));
}

TEST_F(LoanTest, AFineBeyondTheCurrencyRangeOverflowsAndWritesNothing)
{
    lend("A1", 1, "L", 12, QDate(2026, 11, 1));
    const Money huge = Money::fromUnits(999999999999999990LL); // 99,999,999,999,999.999 a day
    try {
        ReturnOrRenewLoan("A1", QDate(2026, 11, 23), 0, "return", QDate(), huge, 1);
        FAIL();
    } catch (const AppError &e) {
        EXPECT_EQ(e.number(), AppError::Overflow);
    }
    EXPECT_TRUE(fineRows().isEmpty());
    EXPECT_EQ(loanRow(), QStringList{"|False|0|2026-11-01"});
}

// Two desks (two processes) return the same overdue loan at the same moment: exactly one
// succeeds, the other is told the copy is not out, and the fine is charged once.
TEST_F(LoanTest, TwoDesksReturningOneLoanAtOnceFineItOnce)
{
    lend("A1", 1, "L", 12, QDate(2026, 11, 1));
    for (int round = 0; round < 8; ++round) {
        library("Update tblLibTransactions set Returned = false, ReturnDate = Null");
        library("Delete * from tblLibTransactionFines");
        ConnectionPool::shared().clear();
        const QString start = QString::number(QDateTime::currentMSecsSinceEpoch() + 400);
        QProcess desks[2];
        for (QProcess &desk : desks)
            desk.start(RETURN_RACE_HELPER, {libraryPath_, "A1", "2026-11-05", start});
        QStringList answers;
        for (QProcess &desk : desks) {
            ASSERT_TRUE(desk.waitForFinished(30000));
            answers << QString::fromLatin1(desk.readAllStandardOutput()).trimmed();
        }
        answers.sort();
        EXPECT_EQ(answers, (QStringList{"false", "true"})) << "round " << round;
        EXPECT_EQ(fineRows(), QStringList{"1|12|L|2|2026-11-05"}) << "round " << round;
        EXPECT_EQ(loanRow(), QStringList{"2026-11-05|True|0|2026-11-01"});
    }
}

// Another desk lends the copy between this desk's checks and its insert: the database keeps one open
// loan per copy, and this desk is told the copy is out instead of being shown an engine error.
TEST_F(LoanTest, AnIssueBeatenByAnotherDeskWritesNothing)
{
    Clock::setFixed(QDateTime(QDate(2026, 11, 10), QTime(9, 0)));
    const IssueCheck check = CheckIssue(12, "L", 2, "A2");
    ASSERT_EQ(check.refusal, IssueRefusal::None);
    lend("A2", check.itemID, "E", 12, QDate(2026, 11, 24)); // the other desk
    EXPECT_EQ(RecordIssue("A2", "L", 12, check.itemID, QDate(2026, 11, 24)), LentElsewhere);
    EXPECT_EQ(libraryRows("select MemberType from tblLibTransactions where AccessionID = 'A2'"), QStringList{"E"});
    EXPECT_TRUE(messages_->shown().empty());
}

// An issue is one transaction (each engine): the loan and the removal of the member's own
// reservation together, the loan's number taken from the insert itself (no read-back by member,
// copy and day, which could find another loan); a failure part way leaves neither.
TEST_F(LoanTest, AnIssueIsWrittenWholeAndKnowsItsOwnLoanNumber)
{
    Clock::setFixed(QDateTime(QDate(2026, 11, 10), QTime(9, 0)));
    // Loans of the same member, copy and day before: an earlier one returned, so a read-back could meet it.
    lend("A2", 2, "L", 12, QDate(2026, 11, 24));
    library("Update tblLibTransactions set Returned = true, IssueDate = #2026-11-10#");
    library("Insert into tblLibReserves(ItemID, MemberType, MemberID, ReserveDate) values (2, 'L', 12, #2026-11-01#)");
    library("Insert into tblLibReserves(ItemID, MemberType, MemberID, ReserveDate) values (2, 'E', 12, #2026-11-02#)");
    sent_.clear();
    const int loan = RecordIssue("A2", "L", 12, 2, QDate(2026, 11, 24));
    EXPECT_EQ(QString::number(loan), libraryValue("select TransactionID from tblLibTransactions where Returned = false"));
    EXPECT_EQ(loan, 2);
    EXPECT_EQ(sent_, (QStringList{"Insert into tblLibTransactions(accessionId,MemberType,MemberId,ItemID,Issuedate,DueDate)VALUES('A2','L',12,2,#2026-11-10#,#2026-11-24#)",
                                  "Delete from tblLibreserves where itemid = 2 and membertype = 'L' and memberid = 12"}));
    EXPECT_EQ(libraryRows("select MemberType, MemberID from tblLibReserves"), QStringList{"E|12"}); // the educator's stays

    // The reservation's removal fails: the loan is not kept either.
    library("Update tblLibTransactions set Returned = true");
    library("Insert into tblLibReserves(ItemID, MemberType, MemberID, ReserveDate) values (2, 'L', 12, #2026-11-03#)");
    TestEngine::refuse(libraryPath_, "tblLibReserves", "DELETE");
    EXPECT_THROW(RecordIssue("A2", "L", 12, 2, QDate(2026, 11, 24)), AppError);
    EXPECT_EQ(libraryCount("select * from tblLibTransactions where Returned = false"), 0);
    EXPECT_EQ(libraryCount("select * from tblLibReserves"), 2);
}

// The overdue list (each engine): open loans past their due date at the day, with the learner's
// class and the fine so far, a fine for every started interval of the loan rules.
TEST_F(LoanTest, TheOverdueListNamesTheLearnerClassAndFineSoFar)
{
    lend("A1", 1, "L", 12, QDate(2026, 11, 1));
    lend("A2", 2, "L", 12, QDate(2026, 11, 25)); // not yet due
    lend("A3", 3, "E", 12, QDate(2026, 11, 2));  // an educator's
    OverdueQuery query;
    query.asAt = QDate(2026, 11, 20);
    const std::vector<OverdueRow> rows = OverdueList::load(query);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].memberName, "Botha, Anna");
    EXPECT_EQ(rows[0].className, "8A");
    EXPECT_EQ(rows[0].accession, "A1");
    EXPECT_EQ(rows[0].daysOverdue, 19);
    EXPECT_EQ(rows[0].fine.toDisplayText(), "1.50"); // 19 days: three started weeks at 0.50
    query.memberType = "E";
    const std::vector<OverdueRow> educators = OverdueList::load(query);
    ASSERT_EQ(educators.size(), 1u);
    EXPECT_EQ(educators[0].fine.toDisplayText(), "22.50"); // 18 days at 1.25 a day
    EXPECT_EQ(OverdueList::firstLoanDay(), QDate(2026, 10, 18));
}
