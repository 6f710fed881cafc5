#include "BackupBench.h"

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

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QUrl>

#include <libpq-fe.h>

#include <atomic>
#include <cstdio>
#include <thread>
#include <vector>

namespace {

QStringList firstRows(const QString &location, const QString &sql)
{
    DbConnection c;
    c.DataSource = location;
    c.Open();
    QStringList out;
    for (auto rs = c.Execute(sql); !rs->atEnd(); rs->MoveNext())
        out << rs->field(0).toString();
    return out;
}

// One issue and its return at the desk, as the loan engine does them; the issue's time in ms.
double issueAndReturn(const QString &copy, int member)
{
    const QDate today = Clock::today();
    const double issue = Samples::measure([&] {
        const IssueCheck check = CheckIssue(member, QStringLiteral("L"), 1000, copy);
        if (check.refusal == IssueRefusal::None)
            RecordIssue(copy, QStringLiteral("L"), member, check.itemID, today.addDays(14));
    });
    ReturnOrRenewLoan(copy, today, 0, QStringLiteral("return"), QDate(), Money::fromUnits(5000), 1);
    return issue;
}

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
    const QStringList copies = firstRows(location, QStringLiteral("select top 200 AccessionID from tblLibItems i where PhasedOut = false and "
                                                                  "ReferenceItem = false and Restricted = false and LoanType = 'N' and not exists "
                                                                  "(select * from tblLibTransactions t where t.ItemID = i.ItemID and t.Returned = false) "
                                                                  "and not exists (select * from tblLibReserves r where r.ItemID = i.ItemID) order by ItemID"));
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

bool admin(const QString &server, const QString &sql)
{
    PGconn *conn = PQconnectdb(server.toUtf8().constData());
    PGresult *r = PQexec(conn, sql.toUtf8().constData());
    const bool ok = PQresultStatus(r) == PGRES_COMMAND_OK;
    PQclear(r);
    PQfinish(conn);
    return ok;
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
    const QString name = QStringLiteral("shelvora_backup_bench_%1").arg(QCoreApplication::applicationPid());
    if (!admin(serverAdmin, QStringLiteral("CREATE DATABASE %1").arg(name)))
        return;
    QUrl url(serverAdmin);
    url.setPath(QLatin1Char('/') + name);
    LibraryCopy::copy(library, url.toString());
    QTemporaryDir serverFolder;
    measure(url.toString(), "server", serverFolder.path());
    ConnectionPool::shared().clear();
    admin(serverAdmin, QStringLiteral("DROP DATABASE %1 WITH (FORCE)").arg(name));
}
