#include "TestEngine.h"

#include "ConnectionPool.h"
#include "DatabaseSchema.h"

#include <QCoreApplication>
#include <QUrl>

#include <libpq-fe.h>
#include <sqlite3.h>

#include <atomic>

namespace {

// Server-side housekeeping of the tests (making and dropping databases) is not Jet: plain libpq.
// With wantRow, a query answers whether it found a row.
bool admin(const QString &sql, QString *error = nullptr, bool wantRow = false, const QString &address = TestEngine::serverAddress())
{
    PGconn *conn = PQconnectdb(address.toUtf8().constData());
    bool ok = PQstatus(conn) == CONNECTION_OK;
    if (ok) {
        PGresult *r = PQexec(conn, sql.toUtf8().constData());
        ok = wantRow ? PQresultStatus(r) == PGRES_TUPLES_OK && PQntuples(r) > 0 : PQresultStatus(r) == PGRES_COMMAND_OK;
        if (!ok && error)
            *error = QString::fromUtf8(PQerrorMessage(conn));
        PQclear(r);
    } else if (error) {
        *error = QString::fromUtf8(PQerrorMessage(conn));
    }
    PQfinish(conn);
    return ok;
}

QString databaseAddress(const QString &name)
{
    QUrl url(TestEngine::serverAddress());
    url.setPath(QLatin1Char('/') + name);
    return url.toString();
}

QString uniqueName(const char *kind)
{
    static std::atomic<int> counter{0};
    return QStringLiteral("shelvora_%1_%2_%3").arg(QLatin1String(kind)).arg(QCoreApplication::applicationPid()).arg(++counter);
}

} // namespace

bool TestEngine::onPostgres() { return qgetenv("SHELVORA_TEST_ENGINE") == "postgresql"; }

QString TestEngine::serverAddress() { return QString::fromUtf8(qgetenv("SHELVORA_TEST_POSTGRESQL")); }

QString TestEngine::makeEmptyServerDatabase()
{
    const QString name = uniqueName("t");
    QString error;
    if (!admin(QStringLiteral("CREATE DATABASE %1").arg(name), &error))
        qFatal("cannot make a test database: %s", qPrintable(error));
    return databaseAddress(name);
}

QString TestEngine::makeLibrary(const QString &sqlitePath)
{
    if (!onPostgres()) {
        DatabaseSchema::createLibraryDatabase(sqlitePath);
        return sqlitePath;
    }
    return makeServerLibrary();
}

QString TestEngine::makeServerLibrary()
{
    // The schema is made once per server and copied for each test: copying is quicker than building.
    // Test processes run side by side: each finds the template, or builds one under its own name
    // and renames it into place (the first rename wins; a loser drops its copy).
    static const QString templateName = [] {
        // Named by the structure version, so a server kept between runs never hands out an older structure.
        const QString wanted = QStringLiteral("shelvora_library_template_v%1").arg(int(DatabaseSchema::Current));
        if (!admin(QStringLiteral("SELECT 1 FROM pg_database WHERE datname = '%1'").arg(wanted), nullptr, true)) {
            const QString location = makeEmptyServerDatabase();
            DatabaseSchema::createLibraryDatabase(location);
            ConnectionPool::shared().closeIdle(location);
            const QString built = QUrl(location).path().mid(1);
            if (!admin(QStringLiteral("ALTER DATABASE %1 RENAME TO %2").arg(built, wanted)))
                admin(QStringLiteral("DROP DATABASE %1").arg(built));
        }
        return wanted;
    }();
    const QString name = uniqueName("lib");
    QString error;
    if (!admin(QStringLiteral("CREATE DATABASE %1 TEMPLATE %2 STRATEGY FILE_COPY").arg(name, templateName), &error))
        qFatal("cannot copy the test library: %s", qPrintable(error));
    return databaseAddress(name);
}

bool TestEngine::serverHas(const QString &location, const QString &nativeSql) { return admin(nativeSql, nullptr, true, location); }

QString TestEngine::makeServerLibraryOwnedBy(const QString &role, const QString &password)
{
    admin(QStringLiteral("CREATE ROLE %1 LOGIN").arg(role)); // there already when another test made it
    if (!password.isEmpty())
        admin(QStringLiteral("ALTER ROLE %1 PASSWORD '%2'").arg(role, password));
    const QByteArray givenPassword = qgetenv("PGPASSWORD");
    if (!password.isEmpty())
        qputenv("PGPASSWORD", password.toUtf8());
    const QString name = uniqueName("own");
    QString error;
    if (!admin(QStringLiteral("CREATE DATABASE %1 OWNER %2").arg(name, role), &error))
        qFatal("cannot make a test database: %s", qPrintable(error));
    QUrl url(databaseAddress(name));
    url.setUserName(role);
    DatabaseSchema::createLibraryDatabase(url.toString());
    ConnectionPool::shared().closeIdle(url.toString());
    qputenv("PGPASSWORD", givenPassword);
    return url.toString();
}

void TestEngine::dropLibrary(const QString &location)
{
    if (!location.startsWith(QLatin1String("postgresql://")))
        return;
    ConnectionPool::shared().closeIdle(location);
    admin(QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)").arg(QUrl(location).path().mid(1)));
}

namespace {
QString refusalName(const QString &table, const QString &operation) { return QStringLiteral("refuse_%1_%2").arg(table, operation).toLower(); }

// Native statements on a test database: the server's through libpq, a file's through SQLite.
void runNative(const QString &location, const QString &sql)
{
    ConnectionPool::shared().closeIdle(location);
    if (location.startsWith(QLatin1String("postgresql://"))) {
        QString error;
        if (!admin(sql, &error, false, location))
            qFatal("%s: %s", qPrintable(sql), qPrintable(error));
        return;
    }
    sqlite3 *db = nullptr;
    sqlite3_open(location.toUtf8().constData(), &db);
    char *error = nullptr;
    if (sqlite3_exec(db, sql.toUtf8().constData(), nullptr, nullptr, &error) != SQLITE_OK)
        qFatal("%s: %s", qPrintable(sql), error);
    sqlite3_close(db);
}
} // namespace

void TestEngine::unrefuse(const QString &location, const QString &table, const QString &operation)
{
    const QString name = refusalName(table, operation);
    runNative(location, location.startsWith(QLatin1String("postgresql://")) ? QStringLiteral("DROP TRIGGER %1 ON %2").arg(name, table.toLower())
                                                                             : QStringLiteral("DROP TRIGGER %1").arg(name));
}

void TestEngine::refuse(const QString &location, const QString &table, const QString &operation, const QString &when)
{
    const QString name = refusalName(table, operation);
    const QString condition = when.isEmpty() ? QString() : QStringLiteral("WHEN (%1)").arg(when);
    if (location.startsWith(QLatin1String("postgresql://"))) {
        runNative(location, QStringLiteral("CREATE OR REPLACE FUNCTION %1() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN RAISE EXCEPTION 'refused'; END $$").arg(name));
        runNative(location, QStringLiteral("CREATE TRIGGER %1 BEFORE %2 ON %3 FOR EACH ROW %4 EXECUTE FUNCTION %1()").arg(name, operation, table.toLower(), condition));
        return;
    }
    runNative(location, QStringLiteral("CREATE TRIGGER %1 BEFORE %2 ON %3 %4 BEGIN SELECT RAISE(ABORT, 'refused'); END").arg(name, operation, table, condition));
}
