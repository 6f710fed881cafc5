#include "PostgresDatabase.h"

#include "AppError.h"
#include "Clock.h"
#include "PostgresDialect.h"
#include "PostgresSupport.h"
#include "Recordset.h"

#include <QUrl>

#include <libpq-fe.h>

#include <cstdlib>
#include <cstdio>
#include <poll.h>
#include <cstring>
#include <strings.h>
#include <memory>

namespace {

// Type numbers of the server's built-in types (pg_type.oid; fixed since the first releases).
constexpr Oid BoolOid = 16, Int8Oid = 20, Int2Oid = 21, Int4Oid = 23, Float4Oid = 700, Float8Oid = 701, NumericOid = 1700,
              DateOid = 1082, TimestampOid = 1114;
// Any session taking this lock puts the support functions in place; the others wait and find them there.
constexpr long long SupportLock = 0x5348454c56;

using Result = std::unique_ptr<PGresult, decltype(&PQclear)>;

QString lostConnectionText()
{
    return QStringLiteral("The connection to the library database server was lost. What you were doing was not saved; "
                          "please try again. Shelvora connects to the server again by itself.");
}

// Why a connection could not be made, in plain words with libpq's own detail after them.
QString unreachableReason(PGconn *conn)
{
    const QString message = QString::fromUtf8(PQerrorMessage(conn)).trimmed();
    const QString detail = message.section(QLatin1Char('\n'), 0, 0).trimmed();
    if (PQconnectionNeedsPassword(conn))
        return QStringLiteral("it asks for a password, which this computer does not have (put it in ~/.pgpass or PGPASSWORD)");
    QString plain;
    if (message.contains(QLatin1String("Connection refused")))
        plain = QStringLiteral("nothing answers at that address and port (the server is not running, or the port is wrong)");
    else if (message.contains(QLatin1String("translate host name")) || message.contains(QLatin1String("Name or service not known")))
        plain = QStringLiteral("that computer's name is not known on this network");
    else if (message.contains(QLatin1String("does not exist")) && message.contains(QLatin1String("database")))
        plain = QStringLiteral("the server has no database of that name");
    else if (message.contains(QLatin1String("authentication failed")))
        plain = QStringLiteral("the server does not accept this user or password");
    else if (message.contains(QLatin1String("timeout")))
        plain = QStringLiteral("the server did not answer in time");
    return plain.isEmpty() ? detail : plain + QStringLiteral(" (") + detail + QLatin1Char(')');
}

// Where a database is, as people name it: host:port/database.
QString place(const QString &uri)
{
    const QUrl url(uri);
    return QStringLiteral("%1:%2%3").arg(url.host()).arg(url.port(5432)).arg(url.path());
}

bool isLowerCase(const QString &name) { return name == name.toLower(); }

Recordset::FieldType fieldTypeOf(int kind) { return static_cast<Recordset::FieldType>(kind); }

} // namespace

JetTranslator &PostgresDatabase::sharedTranslator()
{
    static JetTranslator translator(std::make_unique<PostgresDialect>());
    return translator;
}

QString PostgresDatabase::displayName(const QString &uri)
{
    QUrl url(uri);
    url.setPassword(QString());
    url.setQuery(QString());
    return url.toString();
}

QString PostgresDatabase::status(const QString &uri)
{
    QString reason;
    PGconn *conn = connectTo(uri, reason);
    if (!conn)
        return QStringLiteral("PostgreSQL on %1 (not reachable: %2)").arg(place(uri), reason);
    const int v = PQserverVersion(conn);
    PQfinish(conn);
    return QStringLiteral("PostgreSQL %1.%2 on %3 (connected)").arg(v / 10000).arg(v % 10000).arg(place(uri));
}

PGconn *PostgresDatabase::connectTo(const QString &uri, QString &reason)
{
    const QByteArray location = uri.toUtf8();
    // The address's own settings win over these defaults.
    const char *keys[] = {"connect_timeout", "application_name", "dbname", nullptr};
    const char *values[] = {"10", "Shelvora", location.constData(), nullptr};
    PGconn *conn = PQconnectdbParams(keys, values, 1);
    if (conn && PQstatus(conn) == CONNECTION_OK)
        return conn;
    reason = conn ? unreachableReason(conn) : QStringLiteral("out of memory");
    PQfinish(conn);
    return nullptr;
}

QStringList PostgresDatabase::vacuum(const QString &uri)
{
    PostgresDatabase db(uri, false);
    QStringList warnings;
    PQsetNoticeReceiver(
        db.conn_, [](void *sink, const PGresult *notice) {
            static_cast<QStringList *>(sink)->append(QString::fromUtf8(PQresultErrorField(notice, PG_DIAG_MESSAGE_PRIMARY)));
        },
        &warnings);
    db.vacuumAnalyze();
    return warnings;
}

int PostgresDatabase::otherSessions(const QString &uri)
{
    PostgresDatabase db(uri, true);
    return db.value("SELECT count(*) FROM pg_stat_activity WHERE datname = current_database() AND pid <> pg_backend_pid() "
                    "AND backend_type = 'client backend'").toInt();
}

QString PostgresDatabase::changeMark(const QString &uri)
{
    PostgresDatabase db(uri, true);
    // The next transaction id moves on with every transaction that wrote, the moment it ends (the
    // table statistics lag by up to seconds). It is the server's, so another database's writes move it too.
    return db.value("SELECT pg_snapshot_xmax(pg_current_snapshot())::text");
}

QString PostgresDatabase::value(const std::string &sql)
{
    Result answer(run(sql, QString()), PQclear);
    return PQntuples(answer.get()) > 0 && !PQgetisnull(answer.get(), 0, 0) ? QString::fromUtf8(PQgetvalue(answer.get(), 0, 0)) : QString();
}

bool PostgresDatabase::holdsPassword(const QString &uri) { return !QUrl(uri).password().isEmpty() || uri.contains(QLatin1String("password=")); }

PostgresDatabase::PostgresDatabase(const QString &uri, bool readOnly) : readOnly_(readOnly)
{
    QString reason;
    conn_ = connectTo(uri, reason);
    if (!conn_) {
        throw AppError(AppError::ConnectionFailure,
                       QStringLiteral("The database server %1 cannot be reached: %2. Nothing was changed; please try again once it is "
                                      "back, or ask whoever looks after the server.")
                           .arg(place(uri), reason),
                       QString(), AppError::Cause::Unreachable);
    }
    try {
        exec("SET DateStyle = 'ISO, YMD'");
        exec("SET client_encoding = 'UTF8'");
        exec("SET extra_float_digits = 1");
        Result version(PQexec(conn_, "SELECT jet_support_version()"), PQclear);
        const bool current = PQresultStatus(version.get()) == PGRES_TUPLES_OK
                             && std::atoi(PQgetvalue(version.get(), 0, 0)) >= PostgresSupport::Version;
        if (!current && !readOnly_ && holdsTable(QStringLiteral("tblLibItems")))
            installSupport();
        if (readOnly_)
            exec("SET default_transaction_read_only = on");
    } catch (...) {
        PQfinish(conn_);
        conn_ = nullptr;
        throw;
    }
}

PostgresDatabase::~PostgresDatabase() { PQfinish(conn_); }

bool PostgresDatabase::holdsTable(const QString &table)
{
    const QByteArray name = table.toLower().toUtf8();
    const char *values[] = {name.constData()};
    Result found(PQexecParams(conn_, "SELECT 1 FROM pg_tables WHERE schemaname = current_schema() AND tablename = $1", 1, nullptr, values,
                              nullptr, nullptr, 0),
                 PQclear);
    return PQresultStatus(found.get()) == PGRES_TUPLES_OK && PQntuples(found.get()) > 0;
}

void PostgresDatabase::refuseWrites()
{
    readOnly_ = true;
    exec("SET default_transaction_read_only = on");
}

QString PostgresDatabase::serverVersion() const
{
    const int v = conn_ ? PQserverVersion(conn_) : 0;
    return QStringLiteral("PostgreSQL %1.%2").arg(v / 10000).arg(v % 10000);
}

void PostgresDatabase::installSupport()
{
    exec("BEGIN");
    try {
        exec("SELECT pg_advisory_xact_lock(" + std::to_string(SupportLock) + ")");
        for (const std::string &sql : PostgresSupport::statements())
            exec(sql);
        exec("COMMIT");
    } catch (...) {
        PQclear(PQexec(conn_, "ROLLBACK"));
        throw;
    }
}

bool PostgresDatabase::prepareEmptyDatabase(const QString &uri)
{
    PostgresDatabase db(uri, false);
    Result tables(PQexec(db.conn_, "SELECT count(*) FROM pg_tables WHERE schemaname = current_schema()"), PQclear);
    if (PQresultStatus(tables.get()) != PGRES_TUPLES_OK)
        db.raise(tables.get(), QString());
    if (std::atoi(PQgetvalue(tables.get(), 0, 0)) != 0)
        throw AppError(AppError::ProviderError, QStringLiteral("The server database %1 is not empty; a library goes only into an empty one.").arg(displayName(uri)));
    Result citext(PQexec(db.conn_, "SELECT 1 FROM pg_extension WHERE extname = 'citext'"), PQclear);
    const bool hadCitext = PQresultStatus(citext.get()) == PGRES_TUPLES_OK && PQntuples(citext.get()) > 0;
    db.installSupport();
    return !hadCitext;
}

void PostgresDatabase::undoPreparation(const QString &uri, bool addedCitext)
{
    PostgresDatabase db(uri, false);
    db.exec("BEGIN");
    try {
        db.exec("DO $$ DECLARE f regprocedure; BEGIN FOR f IN SELECT p.oid::regprocedure FROM pg_proc p WHERE p.proname LIKE 'jet\\_%' "
                "AND p.pronamespace = CAST(current_schema() AS regnamespace) LOOP EXECUTE 'DROP FUNCTION ' || f; END LOOP; END $$");
        db.exec("DROP DOMAIN IF EXISTS jet_bit, jet_currency");
        if (addedCitext)
            db.exec("DROP EXTENSION IF EXISTS citext");
        db.exec("COMMIT");
    } catch (...) {
        PQclear(PQexec(db.conn_, "ROLLBACK"));
        throw;
    }
}

bool PostgresDatabase::usable()
{
    if (broken_ || !conn_)
        return false;
    // Nothing is expected from the server while a connection lies idle: anything waiting on it (a
    // restart's farewell, the end of the socket) means it is no longer good, and a new one is opened
    // before any work is given to it.
    pollfd waiting{PQsocket(conn_), POLLIN, 0};
    if (waiting.fd < 0 || ::poll(&waiting, 1, 0) != 0 || PQstatus(conn_) != CONNECTION_OK) {
        broken_ = true;
        return false;
    }
    return true;
}

void PostgresDatabase::raise(PGresult *result, const QString &jetSql)
{
    const char *state = result ? PQresultErrorField(result, PG_DIAG_SQLSTATE) : nullptr;
    const std::string code = state ? state : "";
    const QString message = QString::fromUtf8(result ? PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY) : nullptr);
    const QString constraint = QString::fromUtf8(result ? PQresultErrorField(result, PG_DIAG_CONSTRAINT_NAME) : nullptr);
    if (PQstatus(conn_) != CONNECTION_OK || code.rfind("08", 0) == 0 || code == "57P01" || code == "57P02" || code == "57P03") {
        broken_ = true;
        throw AppError(AppError::ConnectionFailure, lostConnectionText(), jetSql, AppError::Cause::ConnectionLost);
    }
    if (code == "40001" || code == "40P01")
        throw AppError(AppError::ProviderError, QStringLiteral("Another desk changed the same records at the same moment."), jetSql,
                       AppError::Cause::WriteConflict);
    if (code == "23505")
        throw AppError(AppError::ProviderError, AppError::duplicateValuesText(), jetSql, AppError::Cause::Duplicate);
    if (code == "23514" && constraint.startsWith(QLatin1String(PostgresDialect::SizeCheckPrefix)))
        throw AppError(AppError::ProviderError,
                       QStringLiteral("The field is too small to accept the amount of data you attempted to add.  Try inserting or pasting less data."),
                       jetSql, AppError::Cause::TooLong);
    if ((code == "23514" && constraint.startsWith(QLatin1String(PostgresDialect::RangeCheckPrefix))) || code == "22003")
        throw AppError(AppError::Overflow, QStringLiteral("Overflow"), jetSql);
    if (code == "22P02" || code == "22007" || code == "22008" || code == "42804" || code == "42883" || code == "22021")
        throw AppError(AppError::DataTypeMismatch, QStringLiteral("Data type mismatch in criteria expression."), jetSql);
    if (code == "22012")
        throw AppError(AppError::DivisionByZero, QStringLiteral("Division by zero"), jetSql);
    if (code == "23502")
        throw AppError(AppError::ProviderError, QStringLiteral("You tried to assign the Null value to a variable that is not a Variant data type."), jetSql);
    if (code == "25006")
        throw AppError(AppError::ProviderError, QStringLiteral("Cannot update.  Database or object is read-only."), jetSql);
    const double number = code.rfind("42", 0) == 0 ? AppError::SyntaxError : AppError::ProviderError;
    throw AppError(number, message.isEmpty() ? QString::fromUtf8(PQerrorMessage(conn_)).trimmed() : message, jetSql);
}

PGresult *PostgresDatabase::run(const std::string &sql, const QString &jetSql)
{
    if (broken_)
        throw AppError(AppError::ConnectionFailure, lostConnectionText(), jetSql, AppError::Cause::ConnectionLost);
    // The server refuses a NUL inside text; say so in Jet's words rather than let the text be cut short.
    if (std::memchr(sql.data(), 0, sql.size()))
        throw AppError(AppError::DataTypeMismatch, QStringLiteral("Data type mismatch in criteria expression."), jetSql);
    // One statement only (the extended protocol takes no second one).
    PGresult *result = PQexecParams(conn_, sql.c_str(), 0, nullptr, nullptr, nullptr, nullptr, 0);
    const ExecStatusType status = PQresultStatus(result);
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK && status != PGRES_COPY_IN) {
        Result owned(result, PQclear);
        raise(result, jetSql.isEmpty() ? QString::fromStdString(sql) : jetSql);
    }
    return result;
}

void PostgresDatabase::exec(const std::string &nativeSql, const QString &jetSql) { PQclear(run(nativeSql, jetSql)); }

void PostgresDatabase::setClock()
{
    // Date() and Now() are the desk's clock (a test's fixed day included), not the server's.
    const QDateTime now = Clock::now();
    const qint64 second = now.toSecsSinceEpoch();
    if (second == clockSecond_)
        return;
    exec("SELECT set_config('shelvora.now', '" + now.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")).toStdString() + "', false)");
    clockSecond_ = second;
}

int PostgresDatabase::execute(const QString &jetSql, Recordset *rows)
{
    const TranslatedStatement ts = translated(jetSql);
    if (ts.kind == TranslatedStatement::AlterColumnType) {
        alterColumnType(ts, jetSql);
        return 0;
    }
    Result result(runTranslated(ts, ts.sql, jetSql), PQclear);
    if (PQresultStatus(result.get()) == PGRES_TUPLES_OK) {
        if (rows)
            readRows(result.get(), rows, ts);
        return 0;
    }
    const char *count = PQcmdTuples(result.get());
    return count && *count ? std::atoi(count) : 0;
}

qint64 PostgresDatabase::insertReturningKey(const QString &jetSql, const QString &keyColumn)
{
    const TranslatedStatement ts = translated(jetSql);
    if (ts.kind != TranslatedStatement::Command || strncasecmp(ts.sql.c_str(), "insert ", 7) != 0)
        throw AppError(AppError::SyntaxError, QStringLiteral("Only an INSERT statement can hand back its new key."), jetSql);
    const std::string sql = ts.sql + " RETURNING " + PostgresDialect().quoteName(keyColumn.toLower().toStdString());
    Result result(runTranslated(ts, sql, jetSql), PQclear);
    if (PQntuples(result.get()) != 1)
        throw AppError(AppError::ProviderError, QStringLiteral("The row was not added."), jetSql);
    return std::strtoll(PQgetvalue(result.get(), 0, 0), nullptr, 10);
}

void PostgresDatabase::bulkInsert(const QString &table, const Recordset &rows)
{
    // COPY ... FROM STDIN in text form: one round trip for the whole table.
    const PostgresDialect dialect;
    std::string names;
    for (int c = 0; c < rows.fieldCount(); ++c)
        names += (c ? ", " : "") + dialect.quoteName(rows.fieldName(c).toStdString());
    const QString reported = QStringLiteral("Insert into %1").arg(table);
    const std::string name = dialect.quoteName(table.toStdString());
    // The counters' follow-up trigger is not run row by row: each counter is moved past the
    // highest copied number once at the end.
    exec("ALTER TABLE " + name + " DISABLE TRIGGER USER", reported);
    Result started(run("COPY " + dialect.quoteName(table.toStdString()) + " (" + names + ") FROM STDIN", reported), PQclear);
    std::string buffer;
    auto flush = [&] {
        if (PQputCopyData(conn_, buffer.data(), int(buffer.size())) != 1)
            throw AppError(AppError::ConnectionFailure, lostConnectionText(), reported, AppError::Cause::ConnectionLost);
        buffer.clear();
    };
    char number[32];
    for (int r = 0; r < rows.RecordCount(); ++r) {
        for (int c = 0; c < rows.fieldCount(); ++c) {
            if (c)
                buffer += '\t';
            const Field f = rows.fieldAt(r, c);
            switch (f.stored()) {
            case Field::Stored::Integer: buffer += std::to_string(f.storedInteger()); break;
            case Field::Stored::Real: buffer.append(number, size_t(std::snprintf(number, sizeof number, "%.17g", f.storedReal()))); break;
            case Field::Stored::Text:
                for (char ch : f.storedText()) {
                    switch (ch) {
                    case '\\': buffer += "\\\\"; break;
                    case '\n': buffer += "\\n"; break;
                    case '\r': buffer += "\\r"; break;
                    case '\t': buffer += "\\t"; break;
                    default: buffer += ch;
                    }
                }
                break;
            default: buffer += "\\N";
            }
        }
        buffer += '\n';
        if (buffer.size() > (1 << 20))
            flush();
    }
    flush();
    if (PQputCopyEnd(conn_, nullptr) != 1)
        throw AppError(AppError::ConnectionFailure, lostConnectionText(), reported, AppError::Cause::ConnectionLost);
    Result finished(PQgetResult(conn_), PQclear);
    const bool ok = PQresultStatus(finished.get()) == PGRES_COMMAND_OK;
    while (PGresult *more = PQgetResult(conn_))
        PQclear(more);
    if (!ok)
        raise(finished.get(), reported);
    Result counters(run("SELECT attname FROM pg_attribute WHERE attrelid = CAST('" + name + "' AS regclass) AND attidentity <> ''", reported), PQclear);
    for (int i = 0; i < PQntuples(counters.get()); ++i) {
        const std::string column = dialect.quoteName(PQgetvalue(counters.get(), i, 0));
        exec("SELECT setval(pg_get_serial_sequence('" + name + "', '" + PQgetvalue(counters.get(), i, 0) + "'), max(" + column + ")) FROM " + name
                 + " HAVING max(" + column + ") IS NOT NULL",
             reported);
    }
    exec("ALTER TABLE " + name + " ENABLE TRIGGER USER", reported);
}

// Runs a translated statement (sql: its text, possibly extended) with what the engine runs after it,
// in a transaction of its own when it needs one and none is open. The caller owns the result.
PGresult *PostgresDatabase::runTranslated(const TranslatedStatement &ts, const std::string &sql, const QString &jetSql)
{
    if (ts.sql.find("jet_date(") != std::string::npos || ts.sql.find("jet_now(") != std::string::npos
        || ts.sql.find("jet_time(") != std::string::npos)
        setClock();
    const bool ownTransaction = !ts.after.empty() && !inTransaction();
    if (ownTransaction)
        exec("BEGIN");
    try {
        Result result(run(sql, jetSql), PQclear);
        for (const std::string &next : ts.after)
            exec(next, jetSql);
        if (ownTransaction)
            exec("COMMIT");
        if (!ts.after.empty()) {
            columnKinds_.clear();
            namesLoaded_ = false;
        }
        return result.release();
    } catch (...) {
        if (ownTransaction && !broken_) {
            PQclear(PQexec(conn_, "ROLLBACK"));
            forgetUncommitted();
        }
        throw;
    }
}

int PostgresDatabase::columnKind(unsigned int table, int column)
{
    auto it = columnKinds_.find(table);
    if (it == columnKinds_.end()) {
        std::vector<int> kinds;
        const std::string sql = "SELECT a.attnum, t.typname, bt.typname FROM pg_attribute a JOIN pg_type t ON t.oid = a.atttypid "
                                "LEFT JOIN pg_type bt ON bt.oid = t.typbasetype WHERE a.attrelid = "
                                + std::to_string(table) + " AND a.attnum > 0";
        Result r(run(sql, QString()), PQclear);
        for (int i = 0; i < PQntuples(r.get()); ++i) {
            const int attnum = std::atoi(PQgetvalue(r.get(), i, 0));
            const std::string type = PQgetvalue(r.get(), i, 1);
            Recordset::FieldType kind = Recordset::FieldType::Integer;
            if (type == "jet_bit")
                kind = Recordset::FieldType::Bool;
            else if (type == "jet_currency")
                kind = Recordset::FieldType::Currency;
            else if (type == "float8" || type == "float4" || type == "numeric")
                kind = Recordset::FieldType::Double;
            else if (type == "timestamp" || type == "date")
                kind = Recordset::FieldType::Date;
            else if (type != "int2" && type != "int4" && type != "int8")
                kind = Recordset::FieldType::Text;
            if (size_t(attnum) >= kinds.size())
                kinds.resize(size_t(attnum) + 1, int(Recordset::FieldType::Unknown));
            kinds[size_t(attnum)] = int(kind);
        }
        it = columnKinds_.emplace(table, std::move(kinds)).first;
    }
    return column > 0 && size_t(column) < it->second.size() ? it->second[size_t(column)] : int(Recordset::FieldType::Unknown);
}

std::vector<QString> PostgresDatabase::columnNames(PGresult *result, const TranslatedStatement &ts)
{
    const int columns = PQnfields(result);
    std::vector<QString> names;
    bool folded = false;
    for (int c = 0; c < columns; ++c) {
        names.push_back(QString::fromUtf8(PQfname(result, c)));
        folded = folded || (isLowerCase(names.back()) && names.back() != names.back().toUpper());
    }
    if (!folded)
        return names;
    // The server hands names back in lower case: the statement's own spelling (an alias as
    // written), else the column's name as its table defined it.
    std::map<QString, QString> spelled;
    if (ts.spelledNames)
        for (const std::string &written : *ts.spelledNames) {
            const QString name = QString::fromStdString(written);
            spelled[name.toLower()] = name;
        }
    if (!namesLoaded_) {
        definedNames_.clear();
        Result r(run("SELECT a.attname, col_description(a.attrelid, a.attnum) FROM pg_attribute a JOIN pg_class c ON c.oid = a.attrelid "
                     "JOIN pg_namespace n ON n.oid = c.relnamespace WHERE n.nspname = current_schema() AND c.relkind = 'r' "
                     "AND a.attnum > 0 AND col_description(a.attrelid, a.attnum) IS NOT NULL",
                     QString()),
                 PQclear);
        for (int i = 0; i < PQntuples(r.get()); ++i)
            definedNames_[QString::fromUtf8(PQgetvalue(r.get(), i, 0))] = QString::fromUtf8(PQgetvalue(r.get(), i, 1));
        namesLoaded_ = true;
    }
    for (QString &name : names) {
        if (!isLowerCase(name))
            continue;
        if (const auto it = spelled.find(name); it != spelled.end())
            name = it->second;
        else if (const auto defined = definedNames_.find(name); defined != definedNames_.end())
            name = defined->second;
    }
    return names;
}

void PostgresDatabase::readRows(PGresult *result, Recordset *rows, const TranslatedStatement &ts)
{
    const int columns = PQnfields(result);
    const int count = PQntuples(result);
    std::vector<Oid> types(static_cast<size_t>(columns));
    const std::vector<QString> names = columnNames(result, ts);
    for (int c = 0; c < columns; ++c) {
        types[size_t(c)] = PQftype(result, c);
        const Oid table = PQftable(result, c);
        const Recordset::FieldType kind = table == InvalidOid ? Recordset::FieldType::Unknown
                                                              : fieldTypeOf(columnKind(table, PQftablecol(result, c)));
        rows->addColumn(names[size_t(c)], kind);
    }
    rows->reserveRows(size_t(count));
    for (int r = 0; r < count; ++r) {
        for (int c = 0; c < columns; ++c) {
            if (PQgetisnull(result, r, c)) {
                rows->appendNull();
                continue;
            }
            const char *value = PQgetvalue(result, r, c);
            switch (types[size_t(c)]) {
            case Int2Oid:
            case Int4Oid:
            case Int8Oid:
                rows->appendInteger(std::strtoll(value, nullptr, 10));
                break;
            case BoolOid:
                rows->appendInteger(value[0] == 't' ? -1 : 0);
                break;
            case Float4Oid:
            case Float8Oid:
            case NumericOid:
                rows->appendDouble(std::strtod(value, nullptr));
                break;
            case TimestampOid:
            case DateOid: {
                // A date without its time is stored as the date alone, as the embedded engine keeps it.
                size_t length = size_t(PQgetlength(result, r, c));
                if (length == 19 && std::strcmp(value + 10, " 00:00:00") == 0)
                    length = 10;
                rows->appendText(value, length);
                break;
            }
            default:
                rows->appendText(value, size_t(PQgetlength(result, r, c)));
            }
        }
        rows->rowAppended();
    }
    rows->finish();
}

void PostgresDatabase::beginTransaction()
{
    // Two desks changing the same loan: the second is told to run its work again, never both kept.
    exec(readOnly_ ? "BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY" : "BEGIN ISOLATION LEVEL SERIALIZABLE");
}

void PostgresDatabase::commitTransaction() { exec("COMMIT"); }

void PostgresDatabase::rollbackTransaction()
{
    forgetUncommitted();
    // A lost connection has nothing left to undo: the server dropped the transaction with it.
    if (broken_)
        return;
    exec("ROLLBACK");
}

// A rollback takes back the session settings and structure read inside the transaction: the
// desk's clock is set again and column facts read again by the next statement that needs them.
void PostgresDatabase::forgetUncommitted()
{
    clockSecond_ = -1;
    columnKinds_.clear();
    namesLoaded_ = false;
}

bool PostgresDatabase::inTransaction() const
{
    return conn_ && !broken_ && PQtransactionStatus(conn_) != PQTRANS_IDLE && PQtransactionStatus(conn_) != PQTRANS_UNKNOWN;
}

void PostgresDatabase::vacuumAnalyze()
{
    // The library's own tables only: the server's catalogues are not the desk's to vacuum (and a
    // desk that is not the server's superuser would be told so once for each of them).
    Result own(run("SELECT string_agg(quote_ident(tablename), ', ') FROM pg_tables WHERE schemaname = current_schema() "
                   "AND tableowner = current_user",
                   QString()),
               PQclear);
    if (PQntuples(own.get()) == 1 && !PQgetisnull(own.get(), 0, 0))
        exec(std::string("VACUUM (ANALYZE) ") + PQgetvalue(own.get(), 0, 0));
}

void PostgresDatabase::alterColumnType(const TranslatedStatement &ts, const QString &jetSql)
{
    const PostgresDialect dialect;
    const std::string table = dialect.quoteName(ts.table);
    const std::string column = dialect.quoteName(ts.column);
    const std::string type = PostgresDialect::nativeType(ts.newType);
    std::string conversion;
    if (ts.newType.base == JetColumnType::Text || ts.newType.base == JetColumnType::Memo)
        conversion = "jet_cstr(" + column + ")";
    else if (ts.newType.isInteger())
        conversion = "CAST(jet_clng(" + column + ") AS " + type + ")";
    else
        conversion = "CAST(" + column + " AS " + type + ")";
    const bool ownTransaction = !inTransaction();
    exec(ownTransaction ? "BEGIN" : "SAVEPOINT shelvora_alter", jetSql);
    try {
        // The old type's checks go with it (a text's old size).
        for (const char *prefix : {PostgresDialect::SizeCheckPrefix, PostgresDialect::RangeCheckPrefix})
            exec("ALTER TABLE " + table + " DROP CONSTRAINT IF EXISTS " + dialect.checkName(prefix, ts.column), jetSql);
        exec("ALTER TABLE " + table + " ALTER COLUMN " + column + " TYPE " + type + " USING " + conversion, jetSql);
        const std::string checks = dialect.constraintsFor(ts.column, ts.newType);
        if (!checks.empty())
            exec("ALTER TABLE " + table + " ADD" + checks, jetSql);
        exec(ownTransaction ? "COMMIT" : "RELEASE SAVEPOINT shelvora_alter", jetSql);
    } catch (...) {
        if (!broken_)
            PQclear(PQexec(conn_, ownTransaction ? "ROLLBACK" : "ROLLBACK TO SAVEPOINT shelvora_alter"));
        forgetUncommitted();
        throw;
    }
    columnKinds_.clear();
}
