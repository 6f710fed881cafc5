// The library's statistics for a quarter on a small school whose every loan and fine is known:
// each figure is the count worked out by hand from its rows (StatisticsSchool; on each engine).
#include "LibraryStatistics.h"
#include "StatisticsSchool.h"
#include "TestDatabases.h"

namespace {

class Statistics : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        if (!IsSkipped())
            writeStatisticsSchool(libraryPath_, centralPath_);
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
