#include "AppError.h"
#include "BackupRotation.h"
#include "ConnectionPool.h"
#include "Engine.h"
#include "LibraryBackup.h"
#include "PhysicalConnection.h"
#include "Recordset.h"
#include "TaskProgress.h"
#include "TestDatabases.h"
#include "TestEngine.h"

#include <QDir>
#include <QFile>
#include <QSet>

#include <sys/resource.h>

#include <csignal>
#include <map>

namespace {

const QDateTime Monday(QDate(2026, 11, 23), QTime(16, 5));

class BackupTest : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        QDir().mkpath(folder_);
        library("Insert into tblLibItems(ItemID, AccessionID, Title, DateAdded) values (1, 'A1', 'Dié kat', #2026-11-01#)");
        library("Insert into tblLibItems(ItemID, AccessionID, Title, DateAdded) values (2, 'A2', 'Second', #2026-11-02#)");
        library("Insert into tblLibTransactions(AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate) values ('A1', 'L', 3, 1, #2026-11-10#, #2026-11-17#)");
        library("Insert into tblLibTransactionFines(TransactionID, MemberID, MemberType, FineAmount, PaymentAmount) values (1, 3, 'L', 2, 0.5)");
    }
    QStringList everything(const QString &location)
    {
        return rowsIn(location, "select ItemID, AccessionID, Title from tblLibItems order by ItemID")
               + rowsIn(location, "select TransactionID, Returned from tblLibTransactions order by TransactionID")
               + rowsIn(location, "select TransactionID, FineAmount, PaymentAmount from tblLibTransactionFines order by TransactionID");
    }
    LibraryBackup::Taken take(const QDateTime &when = Monday, const QString &second = QString())
    {
        TaskProgress progress;
        return LibraryBackup::take(libraryPath_, folder_, second, when, progress);
    }
    QString restore(const QString &file)
    {
        TaskProgress progress;
        return LibraryBackup::restore(libraryPath_, file, folder_, Monday.addDays(1), progress);
    }
    QString failureOf(const std::function<void()> &work)
    {
        try {
            work();
        } catch (const AppError &e) {
            return e.description();
        }
        return "no failure";
    }
    QString folder_ = path("backups");
};

} // namespace

// Back up, change, restore: the library is exactly as at the backup, and the library as it was
// before the restore is kept aside, holding the changes.
TEST_F(BackupTest, ARestoredBackupIsTheLibraryAsItWas)
{
    const LibraryBackup::Taken taken = take();
    EXPECT_EQ(QFileInfo(taken.file).fileName(), "shelvora-library-2026-11-23-1605.db");
    EXPECT_EQ(taken.figures, (LibraryFigures{2, 1, 1}));
    EXPECT_EQ(QDir(folder_).entryList(QDir::Files | QDir::Hidden), QStringList{"shelvora-library-2026-11-23-1605.db"}) << "a work file was left";
    const QStringList atBackup = everything(libraryPath_);
    EXPECT_EQ(everything(taken.file), atBackup);

    library("Update tblLibTransactions set Returned = true");
    library("Delete from tblLibItems where ItemID = 2");
    library("Insert into tblLibItems(ItemID, AccessionID, Title) values (3, 'A3', 'After the backup')");
    const QStringList changed = everything(libraryPath_);

    const QString aside = restore(taken.file);
    EXPECT_EQ(QFileInfo(aside).fileName(), "before-restore-2026-11-24-1605.db");
    EXPECT_EQ(everything(libraryPath_), atBackup);
    EXPECT_EQ(everything(aside), changed);
    // The restored library works on: counters go on from the backup's.
    library("Insert into tblLibItems(AccessionID, Title) values ('A4', 'Next')");
    EXPECT_EQ(libraryValue("select ItemID from tblLibItems where AccessionID = 'A4'"), "3");
}

// A backup that is cut short, damaged, not a database or not a library's is refused before
// anything changes, in words a librarian can act on.
TEST_F(BackupTest, ADamagedBackupIsRefusedAndNothingChanges)
{
    const QString good = take().file;
    QFile whole(good);
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    const QByteArray bytes = whole.readAll();
    const auto write = [this](const char *name, const QByteArray &content) {
        QFile f(path(name));
        f.open(QIODevice::WriteOnly);
        f.write(content);
        return path(name);
    };
    QByteArray scrambled = bytes;
    for (qsizetype i = 4096; i < scrambled.size(); i += 7)
        scrambled[i] = char(0x5a);
    const QString school = path("central.db");
    const QStringList before = everything(libraryPath_);
    for (const QString &bad : {write("truncated.db", bytes.left(bytes.size() / 2)), write("scrambled.db", scrambled),
                               write("notes.db", "Library notes, not a database"), school, path("missing.db")}) {
        const QString failure = failureOf([&] { restore(bad); });
        EXPECT_TRUE(failure.contains(QFileInfo(bad).fileName())) << failure.toStdString();
        EXPECT_FALSE(failure.contains("SQL") || failure.contains("sqlite3")) << failure.toStdString();
        EXPECT_EQ(everything(libraryPath_), before) << bad.toStdString();
    }
    EXPECT_TRUE(QDir(folder_).entryList({"before-restore-*"}).isEmpty()) << "a refused restore set the library aside";
}

// Another desk connected: the restore waits for it, saying so, and changes nothing.
TEST_F(BackupTest, RestoreIsRefusedWhileAnotherDeskIsConnected)
{
    const QString file = take().file;
    library("Insert into tblLibItems(ItemID, AccessionID, Title) values (3, 'A3', 'After the backup')");
    {
        const auto desk = EngineRegistry::installed().open(libraryPath_, false);
        Recordset rows;
        desk->execute("select count(*) from tblLibItems", &rows);
        const QString failure = failureOf([&] { restore(file); });
        EXPECT_TRUE(failure.startsWith("The library database is open on another computer or in another program (1 connection)"))
            << failure.toStdString();
        EXPECT_EQ(libraryValue("select count(*) from tblLibItems"), "3");
    }
    EXPECT_NO_THROW(restore(file)); // once it has gone
    EXPECT_EQ(libraryValue("select count(*) from tblLibItems"), "2");
}

// A folder that is missing or cannot take the backup: a plain message, no file under a backup's
// name, the library untouched; the next backup goes through. A second folder that fails leaves
// the first one's backup standing and says why.
TEST_F(BackupTest, AMissingOrFullFolderIsSaidAndTheNextBackupGoesThrough)
{
    const QString missing = path("usb-stick");
    EXPECT_EQ(failureOf([&] { TaskProgress p; LibraryBackup::take(libraryPath_, missing, QString(), Monday, p); }),
              "The backup folder " + missing + " is not there (is the disk or the USB stick attached?).");

    if (!TestEngine::onPostgres()) {
        // A disk that fills up half way (a file size limit stands in for it).
        rlimit old{};
        getrlimit(RLIMIT_FSIZE, &old);
        const auto previous = std::signal(SIGXFSZ, SIG_IGN);
        rlimit small = old;
        small.rlim_cur = 8192;
        setrlimit(RLIMIT_FSIZE, &small);
        const QString failure = failureOf([&] { take(); });
        setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, previous);
        EXPECT_TRUE(failure.contains(folder_)) << failure.toStdString();
        EXPECT_TRUE(LibraryBackup::list(folder_).isEmpty());
        EXPECT_TRUE(QDir(folder_).entryList(QDir::Files | QDir::Hidden).isEmpty()) << "the half-written backup was left";
    }
    const LibraryBackup::Taken taken = take(Monday, missing);
    EXPECT_TRUE(QFile::exists(taken.file));
    EXPECT_EQ(taken.secondProblem, "The backup folder " + missing + " is not there (is the disk or the USB stick attached?).");
    QDir().mkpath(missing);
    const LibraryBackup::Taken both = take(Monday.addSecs(60), missing);
    EXPECT_EQ(both.secondFile, QDir(missing).filePath("shelvora-library-2026-11-23-1606.db"));
    EXPECT_EQ(everything(both.secondFile), everything(libraryPath_));
}

// A year of daily backups (two on some days) thinned after each: what is left is the newest of
// each of the last 7 days, of each of the last 4 weeks and of each of the last 12 months.
TEST(BackupRotationTest, AYearOfDailyBackupsKeepsDaysWeeksAndMonths)
{
    QTemporaryDir dir;
    QDateTime day(QDate(2026, 1, 1), QTime(16, 0));
    QList<QDateTime> made;
    for (int n = 0; n < 365; ++n, day = day.addDays(1)) {
        QList<QDateTime> today{day};
        if (n % 5 == 0)
            today << day.addSecs(3600);
        for (const QDateTime &t : today) {
            QFile f(QDir(dir.path()).filePath(LibraryBackup::fileName(t)));
            f.open(QIODevice::WriteOnly);
            made << t;
        }
        LibraryBackup::prune(dir.path());
    }
    // Expected, from everything made: the newest in each of the latest 7 days, 4 weeks and 12 months.
    QSet<QDateTime> expected;
    const auto newestOfLatest = [&](int count, const std::function<qint64(const QDate &)> &period) {
        std::map<qint64, QDateTime> newest;
        for (const QDateTime &t : made)
            newest[period(t.date())] = std::max(newest[period(t.date())], t);
        for (auto it = newest.rbegin(); it != newest.rend() && count-- > 0; ++it)
            expected.insert(it->second);
    };
    newestOfLatest(7, [](const QDate &d) { return d.toJulianDay(); });
    newestOfLatest(4, [](const QDate &d) { int y = 0; const int w = d.weekNumber(&y); return qint64(y) * 100 + w; });
    newestOfLatest(12, [](const QDate &d) { return qint64(d.year()) * 100 + d.month(); });
    const QDateTime last = made.last();
    QSet<QDateTime> kept;
    for (const LibraryBackup::Entry &e : LibraryBackup::list(dir.path()))
        kept.insert(e.taken);
    EXPECT_EQ(kept.size(), expected.size());
    EXPECT_EQ(kept, expected);
    EXPECT_TRUE(kept.contains(last)) << "the newest backup went";
}
