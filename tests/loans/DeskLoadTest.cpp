// Four desks (four processes) work one library database at once: issues, late returns and renewals
// of thirty copies among twenty-five learners, and reservations of ten copies that stay out. Every
// committed action in the desks' logs must be in the database exactly once, no copy lent twice,
// no fine charged twice, and the reservation limits held.
#include "ConnectionPool.h"
#include "LibraryBackup.h"
#include "TaskProgress.h"
#include "TestDatabases.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QSet>
#include <QThread>

#include <cstdio>
#include <map>

namespace {

constexpr int Desks = 4;
constexpr int ActionsPerDesk = 1000;

class DeskLoad : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        if (IsSkipped())
            return;
        central("Insert into Classes(ClassName, Grade) values ('8A', 8)");
        for (int m = 1; m <= 50; ++m)
            central(QString("Insert into Learner_Info(ID, AccessionNo, SName, FName, Grade, Class, Status) values (%1, 'L%1', 'Learner', 'N%1', 8, 1, 'C')").arg(m));
        for (int i = 1; i <= 40; ++i)
            library(QString("Insert into tblLibItems(AccessionID, Title, LoanType) values ('C%1', 'Copy %1', 'N')").arg(i, 3, 10, QLatin1Char('0')));
        library("Insert into tblLibsettings(Loantype,UserCat,Loanperiod,FineAmount,FineInterval,Maxitems,ExtDays,MaxExt,MaxRes,MaxUserRes)"
                "VALUES('N','L',7,5,1,1000,7,0,2,3)");
        // Copies 31 to 40 stay out all the time, so they can be reserved.
        for (int i = 31; i <= 40; ++i)
            library(QString("Insert into tblLibTransactions(AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate) "
                            "values ('C%1', 'L', 1, %2, #2026-11-01#, #2027-01-01#)").arg(i, 3, 10, QLatin1Char('0')).arg(i));
        ConnectionPool::shared().clear();
    }
};

} // namespace

TEST_F(DeskLoad, FourDesksKeepEveryLoanFineAndReservationConsistent)
{
    QProcess desks[Desks];
    QElapsedTimer clock;
    clock.start();
    for (int d = 0; d < Desks; ++d)
        desks[d].start(DESK_LOAD_HELPER, {libraryPath_, centralPath_, QString::number(1000 + d), QString::number(ActionsPerDesk)});
    QStringList log;
    for (QProcess &desk : desks) {
        ASSERT_TRUE(desk.waitForFinished(300000));
        ASSERT_EQ(desk.exitCode(), 0) << desk.readAllStandardError().toStdString();
        log << QString::fromLatin1(desk.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    }
    QSet<int> issued, closed, charged;
    int returns = 0, reservations = 0, actions = 0, issueLines = 0;
    for (const QString &line : log) {
        const QStringList f = line.split(' ');
        EXPECT_NE(f[0], "E") << line.toStdString();
        // Each issue line names the loan its insert made: no two lines name one loan.
        if (f[0] == "I") {
            ++issueLines;
            issued.insert(f[1].toInt());
        }
        if (f[0] == "R") {
            ++returns;
            closed.insert(f[1].toInt());
        }
        if (f[0] == "R" || f[0] == "N")
            charged.insert(f[1].toInt()); // the first late action of a loan charges its fine; a renewal moves the due date to that day
        if (f[0] == "V")
            ++reservations;
        if (f[0] == "L") {
            actions += f[1].toInt();
            std::printf("desk: %s actions, median %s ms, p99 %s ms\n", qPrintable(f[1]), qPrintable(f[2]), qPrintable(f[3]));
        }
    }
    EXPECT_EQ(actions, Desks * ActionsPerDesk);
    std::printf("%d desks: %d actions in %.2f s (including start-up), %.0f actions a second\n", Desks, actions, clock.elapsed() / 1000.0,
                actions * 1000.0 / double(clock.elapsed()));
    EXPECT_GT(issued.size(), 100);
    EXPECT_EQ(issued.size(), issueLines) << "two issues named the same loan";
    EXPECT_EQ(returns, closed.size()) << "a loan was returned twice";

    // Every issue a desk committed is a loan row, and no other row was made.
    EXPECT_EQ(libraryValue("select count(*) from tblLibTransactions where ItemID <= 30"), QString::number(issueLines));
    QSet<int> rows;
    for (const QString &row : libraryRows("select TransactionID, Returned from tblLibTransactions where ItemID <= 30")) {
        const int id = row.section('|', 0, 0).toInt();
        if (!issued.contains(id))
            continue;
        rows.insert(id);
        EXPECT_EQ(row.section('|', 1, 1), closed.contains(id) ? "True" : "False") << "loan " << id;
    }
    EXPECT_EQ(rows, issued);
    // No copy out twice: at most one open loan per copy.
    EXPECT_TRUE(libraryRows("select ItemID from tblLibTransactions where Returned = false group by ItemID having count(*) > 1").isEmpty());
    // One fine of three days (15.00) for each loan whose first late action was logged, none charged twice.
    EXPECT_EQ(libraryValue("select count(*) from tblLibTransactionFines"), QString::number(charged.size()));
    EXPECT_TRUE(libraryRows("select TransactionID from tblLibTransactionFines where FineAmount <> 15").isEmpty());
    EXPECT_EQ(libraryValue("select sum(FineAmount) from tblLibTransactionFines"), QString::number(15 * charged.size()));
    // Reservations: each committed one is there, and the limits held.
    EXPECT_EQ(libraryValue("select count(*) from tblLibReserves"), QString::number(reservations));
    EXPECT_TRUE(libraryRows("select ItemID from tblLibReserves group by ItemID having count(*) > 2").isEmpty());
    EXPECT_TRUE(libraryRows("select MemberID from tblLibReserves group by MemberID having count(*) > 3").isEmpty());
}

// Backups taken while two desks issue and return: each is whole and one moment of the library
// (no fine without its loan, no copy lent twice), and every loan in it was committed by a desk.
TEST_F(DeskLoad, ABackupTakenWhileDesksWorkIsOneMoment)
{
    QProcess desks[2];
    for (int d = 0; d < 2; ++d)
        desks[d].start(DESK_LOAD_HELPER, {libraryPath_, centralPath_, QString::number(2000 + d), QString::number(400)});
    for (QProcess &desk : desks)
        ASSERT_TRUE(desk.waitForStarted());
    const QString folder = path("backups");
    QDir().mkpath(folder);
    QStringList backups;
    const QDateTime start(QDate(2026, 11, 2), QTime(9, 0));
    for (int n = 0; n < 4; ++n) {
        QThread::msleep(150);
        TaskProgress progress;
        backups << LibraryBackup::take(libraryPath_, folder, QString(), start.addDays(n), progress).file; // a day apart: all are kept
    }
    QSet<int> issued;
    for (QProcess &desk : desks) {
        ASSERT_TRUE(desk.waitForFinished(300000));
        ASSERT_EQ(desk.exitCode(), 0) << desk.readAllStandardError().toStdString();
        for (const QString &line : QString::fromLatin1(desk.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts))
            if (line.startsWith("I "))
                issued.insert(line.mid(2).toInt());
    }
    int loansSeen = 0;
    for (const QString &backup : backups) {
        EXPECT_NO_THROW(LibraryBackup::check(backup)) << backup.toStdString();
        EXPECT_TRUE(rowsIn(backup, "select f.TransactionID from tblLibTransactionFines f left join tblLibTransactions t "
                                   "on f.TransactionID = t.TransactionID where t.TransactionID is null").isEmpty()) << "a fine without its loan";
        EXPECT_TRUE(rowsIn(backup, "select ItemID from tblLibTransactions where Returned = false group by ItemID having count(*) > 1").isEmpty());
        for (const QString &id : rowsIn(backup, "select TransactionID from tblLibTransactions where ItemID <= 30")) {
            EXPECT_TRUE(issued.contains(id.toInt())) << "loan " << id.toStdString() << " in a backup was never committed";
            ++loansSeen;
        }
    }
    EXPECT_GT(loansSeen, 0) << "the backups were all taken before the desks began";
}
