// A stocktake of two categories of a small catalogue, on each engine: every kind of scan, the counts,
// the result lists, resuming, one open at a time, and the missing copies marked lost.
#include "AppError.h"
#include "Clock.h"
#include "Stocktake.h"
#include "TestDatabases.h"

namespace {

class StocktakeTest : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        if (IsSkipped())
            return;
        Clock::setFixed(QDateTime(QDate(2026, 11, 24), QTime(9, 0)));
        // Fiction (1): S1..S4, S5 phased out; Science (2): S6, S7; History (3): S8.
        const int categories[] = {1, 1, 1, 1, 1, 2, 2, 3};
        for (int i = 1; i <= 8; ++i)
            library(QString("Insert into tblLibItems(ItemID, AccessionID, Title, CategoryID, PhasedOut) values (%1, 'S%1', 'Title %1', %2, %3)")
                        .arg(i).arg(categories[i - 1]).arg(i == 5 ? "true" : "false"));
        library("Insert into tblLibTransactions(AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate) values ('S3', 'L', 1, 3, #2026-11-01#, #2026-11-15#)");
    }
    // "Year end 2026" over Fiction and Science with S1, S3, S5, S8, an injection attempt and s6 scanned.
    static Stocktake yearEnd()
    {
        Stocktake take = Stocktake::start("Year end 2026", QDate(2026, 11, 24), {1, 2}, {});
        for (const char *number : {"S1", "S3", "S5", "S8", "X'; DELETE FROM tblLibItems; --", "s6"})
            take.scan(number);
        return take;
    }
    static QStringList numbers(const std::vector<Stocktake::Copy> &copies)
    {
        QStringList out;
        for (const auto &c : copies)
            out << c.accession;
        return out;
    }
};

} // namespace

TEST_F(StocktakeTest, EachScanIsClassifiedAsItIsMade)
{
    Stocktake take = Stocktake::start("Year end 2026", QDate(2026, 11, 24), {1, 2}, {});
    EXPECT_EQ(take.expectedCount(), 6); // S1-S4, S6, S7 (S5 is phased out)
    EXPECT_EQ(take.scan("S1"), Stocktake::Scan::OnShelf);
    EXPECT_EQ(take.scan(" S1 "), Stocktake::Scan::AlreadyScanned);
    EXPECT_EQ(take.scan("S3"), Stocktake::Scan::OnLoan);
    EXPECT_EQ(take.scan("S5"), Stocktake::Scan::PhasedOut);
    EXPECT_EQ(take.scan("S8"), Stocktake::Scan::OutsideScope);
    EXPECT_EQ(take.scan("X'; DELETE FROM tblLibItems; --"), Stocktake::Scan::Unknown);
    EXPECT_EQ(take.scan("s6"), Stocktake::Scan::OnShelf); // accession numbers compare without regard to case
    EXPECT_EQ(take.scannedCount(), 3);                    // S1, S3 (on loan but on the shelf), S6
    EXPECT_EQ(libraryValue("select count(*) from tblLibItems"), "8");
}

// Closing the program loses nothing: the open stocktake is found again with its scans, its scope,
// the scans that needed attention and its result; while it is open no other starts.
TEST_F(StocktakeTest, AnOpenStocktakeResumesWhole)
{
    yearEnd();
    std::optional<Stocktake> resumed = Stocktake::open();
    ASSERT_TRUE(resumed);
    EXPECT_EQ(resumed->name(), "Year end 2026");
    EXPECT_EQ(resumed->scan("S6"), Stocktake::Scan::AlreadyScanned);
    const Stocktake::Result r = resumed->result();
    EXPECT_EQ(numbers(r.missing), (QStringList{"S2", "S4", "S7"}));
    EXPECT_EQ(numbers(r.onLoan), QStringList{"S3"});
    EXPECT_EQ(numbers(r.phasedOut), QStringList{"S5"});
    EXPECT_EQ(numbers(r.outside), QStringList{"S8"});
    EXPECT_EQ(numbers(r.unknown), QStringList{"X'; DELETE FROM tblLibItems; --"});
    EXPECT_EQ(r.scanned, 3);
    EXPECT_EQ(r.expected, 6);
    EXPECT_EQ(resumed->categories(), (std::vector<int>{1, 2}));
    EXPECT_TRUE(resumed->subCategories().empty());
    QStringList exceptions;
    for (const auto &[kind, copy] : resumed->exceptions())
        exceptions << QString::number(int(kind)) + ":" + copy.accession;
    exceptions.sort();
    EXPECT_EQ(exceptions, (QStringList{"2:X'; DELETE FROM tblLibItems; --", "3:S8", "4:S5", "5:S3"}));
    EXPECT_THROW(Stocktake::start("Another", QDate(2026, 11, 24), {}, {}), AppError);
}

// The missing copies are phased out as lost, with the stocktake's date; since the result was shown
// another desk lent S4 and removed S7 as damaged: neither is marked. Finished, the next may start.
TEST_F(StocktakeTest, OnlyCopiesStillMissingAreMarkedLost)
{
    Stocktake take = yearEnd();
    library("Insert into tblLibTransactions(AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate) values ('S4', 'L', 2, 4, #2026-11-24#, #2026-12-08#)");
    library("Update tblLibItems set PhasedOut = true, PhasedOutReason = 'Damaged', PhasedOutDate = #2026-11-23# where AccessionID = 'S7'");
    EXPECT_EQ(take.markMissingLost(), 1);
    EXPECT_EQ(libraryRows("select AccessionID, PhasedOutReason, PhasedOutDate from tblLibItems where PhasedOut = true order by AccessionID"),
              (QStringList{"S2|Lost|2026-11-24", "S5||", "S7|Damaged|2026-11-23"}));
    take.finish();
    EXPECT_FALSE(Stocktake::open());
    Stocktake whole = Stocktake::start("Whole catalogue", QDate(2026, 11, 25), {}, {});
    EXPECT_EQ(whole.expectedCount(), 5); // S1, S3, S4, S6, S8 are left
    EXPECT_EQ(whole.scan("S8"), Stocktake::Scan::OnShelf);
}

// A finished stocktake keeps its result as it was at finishing (the missing copies and the counts)
// until the next one starts: marking the missing copies lost afterwards changes none of it.
TEST_F(StocktakeTest, AFinishedStocktakeKeepsItsResult)
{
    Stocktake take = Stocktake::start("Fiction", QDate(2026, 11, 24), {1}, {});
    take.scan("S1");
    take.finish();
    std::optional<Stocktake> done = Stocktake::latest();
    ASSERT_TRUE(done && done->finished());
    EXPECT_FALSE(Stocktake::open());
    EXPECT_EQ(numbers(done->result().missing), (QStringList{"S2", "S4"})); // S3 is on loan
    // S4 is lent after finishing: only S2 is marked, and the result is as it was.
    library("Insert into tblLibTransactions(AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate) values ('S4', 'L', 2, 4, #2026-11-25#, #2026-12-09#)");
    EXPECT_EQ(done->markMissingLost(), 1);
    EXPECT_EQ(libraryRows("select AccessionID from tblLibItems where PhasedOutReason = 'Lost'"), QStringList{"S2"});
    done = Stocktake::latest();
    const Stocktake::Result r = done->result();
    EXPECT_EQ(numbers(r.missing), (QStringList{"S2", "S4"}));
    EXPECT_EQ(r.scanned, 1);
    EXPECT_EQ(r.expected, 4);
    EXPECT_EQ(done->expectedCount(), 4);
}
