// The library's statistics for a quarter on a small school whose every loan and fine is known:
// each figure is the count worked out by hand from the rows below (on each engine).
#include "LibraryStatistics.h"
#include "TestDatabases.h"

namespace {

class Statistics : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        if (IsSkipped())
            return;
        for (int g : {8, 10})
            central(QString("Insert into SchoolGrades(ID, Name, schoolgrade) values (%1, 'Grade %1', 'Yes')").arg(g));
        central("Insert into Classes(ClassID, ClassName, Grade) values (1, '8A', 8)");
        central("Insert into Classes(ClassID, ClassName, Grade) values (2, '8B', 8)");
        central("Insert into Classes(ClassID, ClassName, Grade) values (3, '10A', 10)");
        central("Insert into Learner_Info(ID, SName, FName, Grade, Class, Status) values (1, 'Botha', 'Anna', 8, 1, 'C')");
        central("Insert into Learner_Info(ID, SName, FName, Grade, Class, Status) values (2, 'Dube', 'Sipho', 8, 2, 'C')");
        central("Insert into Learner_Info(ID, SName, FName, Grade, Class, Status) values (3, 'Nel', 'Piet', 10, 3, 'C')");
        library("Insert into tblLibCategories(CategoryID, Category) values (1, 'Fiction')");
        library("Insert into tblLibCategories(CategoryID, Category) values (2, 'Science')");
        for (int i = 1; i <= 6; ++i)
            library(QString("Insert into tblLibItems(ItemID, AccessionID, Title, CategoryID, PhasedOut) values (%1, 'F%1', 'Book %1', %2, %3)")
                        .arg(i).arg(i <= 4 ? 1 : 2).arg(i == 6 ? "true" : "false"));
        loan(1, "L", 1, 1, "2026-01-05", "2026-01-19", "2026-01-25"); // late
        loan(2, "L", 1, 2, "2026-01-10", "2026-01-24", "2026-01-20");
        loan(3, "L", 2, 1, "2026-02-03", "2026-02-17", nullptr);      // still out past its due date
        loan(4, "L", 3, 3, "2026-02-14", "2026-02-28", "2026-02-27");
        loan(5, "E", 5, 3, "2026-03-02", "2026-03-23", "2026-03-30"); // late
        loan(6, "L", 1, 2, "2025-12-20", "2026-01-03", "2026-01-02"); // before the period
        loan(7, "L", 3, 5, "2026-04-02", "2026-04-16", nullptr);      // after it
        fine(1, 1, "2026-01-25", 3, "2026-02-02", 3, false);
        fine(5, 5, "2026-03-30", 1.5, nullptr, 0, true);
        fine(6, 1, "2025-12-28", 2, nullptr, 0, false);
    }
    void loan(int id, const char *type, int member, int item, const char *issued, const char *due, const char *returned)
    {
        library(QString("Insert into tblLibTransactions(TransactionID, AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate, ReturnDate, Returned) "
                        "values (%1, 'F%2', '%3', %4, %2, #%5#, #%6#, %7, %8)")
                    .arg(id).arg(item).arg(type).arg(member).arg(issued, due, returned ? QString("#%1#").arg(returned) : QString("Null"),
                                                                 returned ? "true" : "false"));
    }
    void fine(int transaction, int member, const char *fined, double amount, const char *paidOn, double paid, bool cancelled)
    {
        library(QString("Insert into tblLibTransactionFines(TransactionID, MemberID, MemberType, FineAmount, DateFined, PaymentDate, PaymentAmount, FineCancelled) "
                        "values (%1, %2, 'L', %3, #%4#, %5, %6, %7)")
                    .arg(transaction).arg(member).arg(amount).arg(fined).arg(paidOn ? QString("#%1#").arg(paidOn) : QString("Null"))
                    .arg(paid).arg(cancelled ? "true" : "false"));
    }
    static QStringList counts(const std::vector<LibraryStatistics::Count> &list)
    {
        QStringList out;
        for (const auto &c : list)
            out << c.name + "=" + QString::number(c.count);
        return out;
    }
};

} // namespace

TEST_F(Statistics, EveryFigureOfAQuarterMatchesTheLoansAndFines)
{
    const LibraryStatistics s = LibraryStatistics::compute(QDate(2026, 1, 1), QDate(2026, 3, 31));
    QStringList months;
    for (const auto &m : s.months)
        months << QString("%1 L%2 E%3 S%4 overdue %5 charged %6 paid %7 cancelled %8")
                      .arg(m.month).arg(m.learners).arg(m.educators).arg(m.staff).arg(m.overdue)
                      .arg(m.charged.toDisplayText(), m.paid.toDisplayText(), m.cancelled.toDisplayText());
    EXPECT_EQ(months, (QStringList{"2026-01 L2 E0 S0 overdue 1 charged 3.00 paid 0.00 cancelled 0.00",
                                   "2026-02 L2 E0 S0 overdue 1 charged 0.00 paid 3.00 cancelled 0.00",
                                   "2026-03 L0 E1 S0 overdue 1 charged 1.50 paid 0.00 cancelled 1.50"}));
    EXPECT_DOUBLE_EQ(s.months[0].overdueRate(), 0.5);
    EXPECT_EQ(counts(s.loansByGrade), (QStringList{"Grade 8=3", "Grade 10=1"}));
    EXPECT_EQ(counts(s.loansByClass), (QStringList{"8A=2", "8B=1", "10A=1"}));
    EXPECT_EQ(counts(s.topClasses), (QStringList{"8A=2", "8B=1", "10A=1"}));
    EXPECT_EQ(counts(s.topTitles), (QStringList{"Book 1=2", "Book 3=2", "Book 2=1"}));
    EXPECT_EQ(counts(s.unborrowedByCategory), (QStringList{"Fiction=1", "Science=1"}));
    ASSERT_EQ(s.unborrowed.size(), 2u);
    EXPECT_EQ(s.unborrowed[0].accession, "F4");
    EXPECT_EQ(s.unborrowed[1].accession, "F5");
    EXPECT_EQ(s.unborrowed[1].category, "Science");
}
