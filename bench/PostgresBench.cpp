#include "PostgresBench.h"

#include "BenchSql.h"
#include "BenchTimer.h"
#include "CirculationBench.h"
#include "Clock.h"
#include "ConnectionPool.h"
#include "DbConnection.h"
#include "LibraryCopy.h"
#include "LoanRoutines.h"
#include "LoanRules.h"
#include "OpacBench.h"
#include "PostgresDatabase.h"
#include "Recordset.h"
#include "DatabaseLocations.h"
#include "clsDataObject.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QElapsedTimer>
#include <QProcess>

#include <libpq-fe.h>

#include <cstdio>
#include <vector>

namespace {


// The same translated statement read with libpq alone, every value touched as a reader must.
double readWithLibpq(const QString &uri, const QString &jet, int *rows)
{
    const std::string sql = PostgresDatabase::sharedTranslator().translate(jet.toStdString()).sql;
    PGconn *conn = PQconnectdb(uri.toUtf8().constData());
    QElapsedTimer timer;
    timer.start();
    PGresult *r = PQexecParams(conn, sql.c_str(), 0, nullptr, nullptr, nullptr, nullptr, 0);
    static size_t touched = 0; // kept, so the reading is not optimised away
    for (int row = 0; row < PQntuples(r); ++row)
        for (int c = 0; c < PQnfields(r); ++c)
            touched += PQgetisnull(r, row, c) ? 0 : size_t(PQgetlength(r, row, c)) + size_t(*PQgetvalue(r, row, c) != 0);
    const double ms = double(timer.nsecsElapsed()) / 1e6;
    *rows = PQntuples(r);
    PQclear(r);
    PQfinish(conn);
    return ms;
}

void benchShowAll(const QString &uri)
{
    std::printf("Data object on PostgreSQL: the stock list's \"Show All\"\n");
    Samples raw, getData;
    int rawRows = 0;
    size_t rows = 0;
    for (int run = 0; run < 7; ++run) {
        raw.add(readWithLibpq(uri, ShowAll, &rawRows));
        getData.time([&] {
            clsDataObject data;
            rows = size_t(data.GetData(ShowAll));
            data.CloseCompact();
        });
    }
    std::printf("  rows: %zu (libpq %d)\n", rows, rawRows);
    raw.report("libpq, same translated SQL");
    getData.report("clsDataObject::GetData");
    std::printf("  ratio GetData / libpq: %.2f\n", getData.median() / raw.median());
}

void benchDesks(const QString &school, const QString &uri)
{
    constexpr int Desks = 4, ItemsPerDesk = 150;
    std::printf("Four desks at once on PostgreSQL (each: issue, renew and return of %d copies)\n", ItemsPerDesk);
    QProcess desks[Desks];
    QElapsedTimer wall;
    wall.start();
    for (int d = 0; d < Desks; ++d)
        desks[d].start(QCoreApplication::applicationFilePath(),
                       {school, QStringLiteral("desk-worker"), uri, QString::number(d), QString::number(Desks), QString::number(ItemsPerDesk)});
    Samples all;
    for (QProcess &desk : desks) {
        desk.waitForFinished(600000);
        for (const QByteArray &line : desk.readAllStandardOutput().split('\n'))
            if (!line.isEmpty())
                all.add(line.toDouble());
        const QByteArray errors = desk.readAllStandardError();
        if (desk.exitCode() != 0)
            std::printf("  a desk failed: %s\n", errors.constData());
    }
    const double seconds = double(wall.elapsed()) / 1000.0;
    all.report("desk transaction (issue, renewal or return)");
    std::printf("  %zu desk transactions in %.2f s (process start included): %.0f a second\n", all.count(), seconds,
                double(all.count()) / seconds);
}

} // namespace

int runDeskWorker(const QString &library, const QString &central, int desk, int desks, int items)
{
    LibraryDatabasePath = library;
    CentralDatabasePath = central;
    std::vector<QString> learners;
    {
        DbConnection c;
        c.DataSource = central;
        c.ReadOnly = true;
        c.Open();
        for (auto rs = c.Execute(QStringLiteral("select AccessionNo from Learner_Info where Status = 'C' and Grade between 1 and 12 order by ID"));
             !rs->atEnd(); rs->MoveNext())
            learners.push_back(rs->field(0).toString());
    }
    std::vector<QString> copies;
    {
        DbConnection c;
        c.DataSource = library;
        c.Open();
        for (auto rs = c.Execute(QStringLiteral("select top %1 AccessionID from tblLibItems i where PhasedOut = false and ReferenceItem = false "
                                                "and Restricted = false and LoanType = 'N' and ItemID mod %2 = %3 and not exists (select * from "
                                                "tblLibTransactions t where t.ItemID = i.ItemID and t.Returned = false) and not exists (select * "
                                                "from tblLibReserves r where r.ItemID = i.ItemID) order by ItemID")
                                     .arg(items).arg(desks).arg(desk));
             !rs->atEnd(); rs->MoveNext())
            copies.push_back(rs->field(0).toString());
    }
    const QDate today = Clock::today();
    size_t learner = size_t(desk) * 97;
    for (const QString &copy : copies) {
        const QVariant member = GetMemberByIDNo(learners[learner++ % learners.size()], QStringLiteral("L"));
        if (member.isNull())
            continue;
        // Issue, as the desk does it: the checks, then the loan written.
        const double issue = Samples::measure([&] {
            const IssueCheck check = CheckIssue(member.toInt(), QStringLiteral("L"), 1000, copy);
            if (check.refusal == IssueRefusal::None) {
                RecordIssue(copy, QStringLiteral("L"), member.toInt(), check.itemID, today.addDays(14));
            }
        });
        std::printf("%.3f\n", issue);
        std::printf("%.3f\n", Samples::measure([&] {
            ReturnOrRenewLoan(copy, today, 0, QStringLiteral("renewal"), today.addDays(21), Money::fromUnits(5000), 1);
        }));
        std::printf("%.3f\n", Samples::measure([&] {
            ReturnOrRenewLoan(copy, today.addDays(30), 0, QStringLiteral("return"), QDate(), Money::fromUnits(5000), 1);
        }));
    }
    ConnectionPool::shared().clear();
    return 0;
}

void benchPostgres(const QString &schoolFolder, const QString &serverAdmin)
{
    if (serverAdmin.isEmpty()) {
        std::printf("PostgreSQL: skipped: no PostgreSQL (SHELVORA_TEST_POSTGRESQL is not set)\n");
        return;
    }
    QString name;
    const QString uri = newServerDatabase(serverAdmin, QStringLiteral("shelvora_bench_"), &name);
    if (uri.isEmpty())
        return;
    const QString schoolLibrary = LibraryDatabasePath; // the run's own copy of the school's library
    std::printf("PostgreSQL (%s)\n", qPrintable(PostgresDatabase::status(serverAdmin)));
    // The whole library both ways, as `shelvora --copy-library` does it (checks included).
    auto timedCopy = [](const QString &from, const QString &to, const char *direction) {
        QElapsedTimer copying;
        copying.start();
        qint64 rows = 0;
        for (const LibraryCopy::TableFigures &t : LibraryCopy::copy(from, to))
            rows += t.rows;
        std::printf("  --copy-library %s: %lld rows in %.1f s\n", direction, static_cast<long long>(rows), copying.elapsed() / 1000.0);
    };
    timedCopy(schoolLibrary, uri, "file -> server");
    const QString back = QDir(schoolFolder).absoluteFilePath(QStringLiteral("copied-back.db"));
    QFile::remove(back);
    timedCopy(uri, back, "server -> file");
    ConnectionPool::shared().closeIdle(back);
    QFile::remove(back);
    PostgresDatabase::vacuum(uri);
    const QString sqlite = LibraryDatabasePath;
    LibraryDatabasePath = uri;
    benchCirculationScreens();
    benchShowAll(uri);
    benchDesks(schoolFolder, uri);
    benchOpac("server library");
    LibraryDatabasePath = sqlite;
    ConnectionPool::shared().clear();
    serverCommand(serverAdmin, QStringLiteral("DROP DATABASE %1 WITH (FORCE)").arg(name));
}
