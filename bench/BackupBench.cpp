#include "BackupBench.h"

#include "BenchSql.h"
#include "BenchDesk.h"
#include "BenchTimer.h"
#include "Clock.h"
#include "ConnectionPool.h"
#include "DbConnection.h"
#include "LibraryBackup.h"
#include "LibraryCopy.h"
#include "LoanRoutines.h"
#include "LoanRules.h"
#include "Recordset.h"
#include "TaskProgress.h"
#include "DatabaseLocations.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <libpq-fe.h>

#include <atomic>
#include <cstdio>
#include <thread>
#include <vector>

namespace {

// Times backups and restores of location, and the desk's issues with and without a backup running.
void measure(const QString &location, const char *engine, const QString &folder)
{
    Samples backups, restores;
    QString last;
    for (int run = 0; run < 3; ++run) {
        TaskProgress progress;
        const QDateTime when = QDateTime(QDate(2026, 11, 2), QTime(9, 0)).addSecs(60 * run);
        backups.time([&] { last = LibraryBackup::take(location, folder, QString(), when, progress).file; });
    }
    std::printf("  backup of the %s library (%.1f MB file)", engine, double(QFileInfo(last).size()) / 1e6);
    backups.report("");
    for (int run = 0; run < 3; ++run) {
        TaskProgress progress;
        restores.time([&] { LibraryBackup::restore(location, last, folder, QDateTime(QDate(2026, 11, 3), QTime(9, run)), progress); });
    }
    std::printf("  restore of the %s library (the library set aside first)", engine);
    restores.report("");

    // The desk: issues and returns of copies on the shelf, alone and with backups running meanwhile.
    const QString library = LibraryDatabasePath;
    LibraryDatabasePath = location;
    const QStringList copies = copiesOnTheShelf(location, 200);
    Samples alone, during;
    int n = 0;
    for (const QString &copy : copies.mid(0, 100))
        alone.add(issueAndReturn(copy, 1 + n++ % 20));
    std::atomic<bool> stop{false};
    std::atomic<int> taken{0};
    std::thread backingUp([&] {
        for (int run = 0; !stop; ++run) {
            TaskProgress progress;
            LibraryBackup::take(location, folder, QString(), QDateTime(QDate(2026, 11, 4), QTime(9, 0)).addSecs(60 * run), progress);
            ++taken;
        }
    });
    for (const QString &copy : copies.mid(100))
        during.add(issueAndReturn(copy, 1 + n++ % 20));
    stop = true;
    backingUp.join();
    LibraryDatabasePath = library;
    const double usual = alone.median(), busy = during.median();
    alone.report("desk issue, no backup running");
    during.report("desk issue while backups run");
    std::printf("  desk issue during a backup: %.2fx its usual time (%d backups meanwhile)\n", busy / usual, taken.load());
}


} // namespace

void benchBackups(const QString &library, const QString &serverAdmin)
{
    std::printf("Backups\n");
    QTemporaryDir folder;
    measure(library, "SQLite", folder.path());
    ConnectionPool::shared().clear();
    if (serverAdmin.isEmpty()) {
        std::printf("  server library: skipped: no PostgreSQL (SHELVORA_TEST_POSTGRESQL is not set)\n");
        return;
    }
    QString name;
    const QString uri = newServerDatabase(serverAdmin, QStringLiteral("shelvora_backup_bench_"), &name);
    if (uri.isEmpty())
        return;
    LibraryCopy::copy(library, uri);
    QTemporaryDir serverFolder;
    measure(uri, "server", serverFolder.path());
    ConnectionPool::shared().clear();
    serverCommand(serverAdmin, QStringLiteral("DROP DATABASE %1 WITH (FORCE)").arg(name));
}
