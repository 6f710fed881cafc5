#include "SqliteDatabase.h"

#include "AppError.h"
#include "SqliteFunctions.h"
#include "Recordset.h"
#include "SqliteDialect.h"

#include <QFileInfo>

#include <sqlite3.h>

#include <cstring>
#include <memory>
#include <vector>

namespace {

constexpr size_t MaxPreparedStatements = 256;

Recordset::FieldType typeFromDeclaration(const char *decl)
{
    if (!decl)
        return Recordset::FieldType::Unknown;
    const JetColumnType t = JetColumnType::fromName(std::string_view(decl).substr(0, std::string_view(decl).find('(')));
    switch (t.base) {
    case JetColumnType::Bool: return Recordset::FieldType::Bool;
    case JetColumnType::Date: return Recordset::FieldType::Date;
    case JetColumnType::Currency: return Recordset::FieldType::Currency;
    case JetColumnType::Double: return Recordset::FieldType::Double;
    case JetColumnType::Text:
    case JetColumnType::Memo: return Recordset::FieldType::Text;
    case JetColumnType::Unknown: return Recordset::FieldType::Unknown;
    default: return Recordset::FieldType::Integer;
    }
}

// Jet's wording, number and cause for the failures a librarian or the program's own checks meet,
// told apart by SQLite's extended result code (and, for a CHECK, by the refusing constraint's name).
struct Failure {
    double number = AppError::ProviderError;
    QString message;
    AppError::Cause cause = AppError::Cause::Other;
};

Failure jetFailure(sqlite3 *db)
{
    const int code = sqlite3_extended_errcode(db);
    const QString msg = QString::fromUtf8(sqlite3_errmsg(db));
    if (code == SQLITE_CONSTRAINT_CHECK) {
        const QString constraint = msg.section(QStringLiteral(": "), 1);
        if (constraint.startsWith(QLatin1String(SqliteDialect::TypeCheckPrefix)))
            return {AppError::DataTypeMismatch, QStringLiteral("Data type mismatch in criteria expression.")};
        if (constraint.startsWith(QLatin1String(SqliteDialect::SizeCheckPrefix)))
            return {AppError::ProviderError,
                    QStringLiteral("The field is too small to accept the amount of data you attempted to add.  Try inserting or pasting less data."),
                    AppError::Cause::TooLong};
        if (constraint.startsWith(QLatin1String(SqliteDialect::RangeCheckPrefix)))
            return {AppError::Overflow, QStringLiteral("Overflow")};
    }
    if (code == SQLITE_CONSTRAINT_UNIQUE || code == SQLITE_CONSTRAINT_PRIMARYKEY)
        return {AppError::ProviderError, AppError::duplicateValuesText(), AppError::Cause::Duplicate};
    if ((code & 0xff) == SQLITE_READONLY)
        return {AppError::ProviderError, QStringLiteral("Cannot update.  Database or object is read-only.")};
    if (msg == QLatin1String(SqliteFunctionOverflow)) // raised by the Jet functions of this connection
        return {AppError::Overflow, QStringLiteral("Overflow")};
    // SQLite gives one code for every statement it cannot prepare; Jet calls those syntax errors.
    if ((code & 0xff) == SQLITE_ERROR && (msg.contains(QLatin1String("syntax error")) || msg.startsWith(QLatin1String("no such"))))
        return {AppError::SyntaxError, msg};
    return {AppError::ProviderError, msg};
}

std::string quoteName(std::string_view name) { return SqliteDialect().quoteName(name); }

// Whether the schema holds the library's catalogue table: only then is the file a library database.
bool schemaHolds(sqlite3 *db, const char *table)
{
    sqlite3_stmt *stmt = nullptr;
    bool found = false;
    if (sqlite3_prepare_v2(db, "SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ?1 COLLATE NOCASE", -1, &stmt, nullptr) == SQLITE_OK
        && sqlite3_bind_text(stmt, 1, table, -1, SQLITE_STATIC) == SQLITE_OK)
        found = sqlite3_step(stmt) == SQLITE_ROW;
    sqlite3_finalize(stmt);
    return found;
}

} // namespace

JetTranslator &SqliteDatabase::sharedTranslator()
{
    static JetTranslator translator(std::make_unique<SqliteDialect>());
    return translator;
}

QString SqliteDatabase::engineVersion() { return QString::fromLatin1(sqlite3_libversion()); }

SqliteDatabase::SqliteDatabase(const QString &path, bool readOnly) : path_(path)
{
    const QFileInfo info(path);
    if (path.isEmpty() || !info.exists() || !info.isFile())
        throw AppError(AppError::ProviderError, QStringLiteral("Could not find file '%1'.").arg(path));
    const int flags = (readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE) | SQLITE_OPEN_NOMUTEX;
    if (sqlite3_open_v2(path.toUtf8().constData(), &db_, flags, nullptr) != SQLITE_OK) {
        const QString reason = QString::fromUtf8(sqlite3_errmsg(db_));
        sqlite3_close(db_);
        db_ = nullptr;
        throw AppError(AppError::ProviderError, QStringLiteral("Could not use '%1'; %2.").arg(path, reason));
    }
    sqlite3_busy_timeout(db_, 5000);
    sqlite3_extended_result_codes(db_, 1);
    try {
        // Reading the schema proves the file is a database at all.
        exec("SELECT count(*) FROM sqlite_master");
        if (!readOnly) {
            // Write-ahead logging is switched on only for a file known to be a library database:
            // opening any other file (the school's database picked by mistake) must not change it.
            if (schemaHolds(db_, "tblLibItems"))
                exec("PRAGMA journal_mode=WAL");
            exec("PRAGMA synchronous=FULL");
        } else {
            exec("PRAGMA query_only=1");
        }
    } catch (const AppError &e) {
        const bool notADatabase = (sqlite3_errcode(db_) & 0xff) == SQLITE_NOTADB;
        sqlite3_close(db_);
        db_ = nullptr;
        if (notADatabase)
            throw AppError(AppError::ProviderError, QStringLiteral("Unrecognized database format '%1'.").arg(path));
        throw AppError(e.number(), QStringLiteral("Could not use '%1'; %2").arg(path, e.description()));
    }
    registerJetFunctions(db_);
}

bool SqliteDatabase::holdsTable(const QString &table) { return schemaHolds(db_, table.toUtf8().constData()); }

void SqliteDatabase::refuseWrites() { exec("PRAGMA query_only=1"); }

SqliteDatabase::~SqliteDatabase()
{
    for (auto &entry : statements_)
        sqlite3_finalize(entry.second);
    sqlite3_close(db_);
}

void SqliteDatabase::createFile(const QString &path)
{
    if (QFileInfo::exists(path))
        throw AppError(AppError::ProviderError, QStringLiteral("Database '%1' already exists.").arg(path));
    sqlite3 *db = nullptr;
    const int rc = sqlite3_open_v2(path.toUtf8().constData(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    QString reason;
    if (rc == SQLITE_OK) {
        for (const char *step : {"PRAGMA journal_mode=WAL", "CREATE TABLE shelvora_probe(x)", "DROP TABLE shelvora_probe"}) {
            if (sqlite3_exec(db, step, nullptr, nullptr, nullptr) != SQLITE_OK) {
                reason = QString::fromUtf8(sqlite3_errmsg(db));
                break;
            }
        }
    } else {
        reason = QString::fromUtf8(sqlite3_errmsg(db));
    }
    sqlite3_close(db);
    if (rc != SQLITE_OK || !reason.isEmpty())
        throw AppError(AppError::ProviderError, QStringLiteral("Cannot create database '%1': %2").arg(path, reason));
}

void SqliteDatabase::raise(int code, const QString &jetSql) const
{
    Q_UNUSED(code);
    const Failure failure = jetFailure(db_);
    throw AppError(failure.number, failure.message, jetSql, failure.cause);
}

void SqliteDatabase::exec(const std::string &nativeSql, const QString &jetSql)
{
    // Exactly one statement: composed text never runs a second statement hidden in a name.
    const QString reported = jetSql.isEmpty() ? QString::fromStdString(nativeSql) : jetSql;
    sqlite3_stmt *stmt = nullptr;
    const char *tail = nullptr;
    if (sqlite3_prepare_v2(db_, nativeSql.c_str(), int(nativeSql.size()), &stmt, &tail) != SQLITE_OK)
        raise(0, reported);
    const std::string_view rest(tail, size_t(nativeSql.c_str() + nativeSql.size() - tail));
    if (!stmt || rest.find_first_not_of(" \t\r\n;") != std::string_view::npos) {
        sqlite3_finalize(stmt);
        throw AppError(AppError::SyntaxError, QStringLiteral("Characters found after end of SQL statement."), reported);
    }
    int rc;
    while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
    }
    if (rc != SQLITE_DONE) {
        const Failure failure = jetFailure(db_);
        sqlite3_finalize(stmt);
        throw AppError(failure.number, failure.message, reported, failure.cause);
    }
    sqlite3_finalize(stmt);
}

sqlite3_stmt *SqliteDatabase::prepare(const std::string &sql, const QString &jetSql)
{
    auto it = statements_.find(sql);
    if (it != statements_.end())
        return it->second;
    sqlite3_stmt *stmt = nullptr;
    const char *tail = nullptr;
    const int rc = sqlite3_prepare_v3(db_, sql.c_str(), int(sql.size()), SQLITE_PREPARE_PERSISTENT, &stmt, &tail);
    if (rc != SQLITE_OK)
        raise(rc, jetSql);
    if (!stmt) // nothing but white space
        throw AppError(AppError::SyntaxError, QStringLiteral("Invalid SQL statement."), jetSql);
    if (std::string_view(tail).find_first_not_of(" \t\r\n") != std::string_view::npos) {
        sqlite3_finalize(stmt);
        throw AppError(AppError::SyntaxError, QStringLiteral("Characters found after end of SQL statement."), jetSql);
    }
    if (statements_.size() >= MaxPreparedStatements) {
        for (auto &entry : statements_)
            sqlite3_finalize(entry.second);
        statements_.clear();
    }
    statements_.emplace(sql, stmt);
    return stmt;
}

int SqliteDatabase::execute(const QString &jetSql, Recordset *rows)
{
    const TranslatedStatement ts = translated(jetSql);
    return run(ts, rows, jetSql);
}

qint64 SqliteDatabase::insertReturningKey(const QString &jetSql, const QString &keyColumn)
{
    Q_UNUSED(keyColumn); // a counter column is the table's rowid
    if (execute(jetSql, nullptr) != 1)
        throw AppError(AppError::ProviderError, QStringLiteral("The row was not added."), jetSql);
    return sqlite3_last_insert_rowid(db_);
}

void SqliteDatabase::bulkInsert(const QString &table, const Recordset &rows)
{
    // One prepared insert for the whole table, each row's values bound as they are stored.
    std::string names, marks;
    for (int c = 0; c < rows.fieldCount(); ++c) {
        names += (c ? ", " : "") + quoteName(rows.fieldName(c).toStdString());
        marks += c ? ", ?" : "?";
    }
    const std::string sql = "INSERT INTO " + quoteName(table.toStdString()) + " (" + names + ") VALUES (" + marks + ")";
    const QString reported = QStringLiteral("Insert into %1").arg(table);
    // A whole library in one transaction: with the default page cache SQLite spills and re-reads
    // every page (half a million small writes and reads for a large school); 256 MB holds it.
    exec("PRAGMA cache_size=-262144");
    sqlite3_stmt *stmt = nullptr;
    if (sqlite3_prepare_v2(db_, sql.c_str(), int(sql.size()), &stmt, nullptr) != SQLITE_OK)
        raise(0, reported);
    const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> owned(stmt, sqlite3_finalize);
    for (int r = 0; r < rows.RecordCount(); ++r) {
        for (int c = 0; c < rows.fieldCount(); ++c) {
            const Field f = rows.fieldAt(r, c);
            switch (f.stored()) {
            case Field::Stored::Integer: sqlite3_bind_int64(stmt, c + 1, f.storedInteger()); break;
            case Field::Stored::Real: sqlite3_bind_double(stmt, c + 1, f.storedReal()); break;
            case Field::Stored::Text: {
                const std::string_view text = f.storedText();
                sqlite3_bind_text(stmt, c + 1, text.data(), int(text.size()), SQLITE_TRANSIENT);
                break;
            }
            default: sqlite3_bind_null(stmt, c + 1);
            }
        }
        if (sqlite3_step(stmt) != SQLITE_DONE)
            raise(0, reported);
        sqlite3_reset(stmt);
    }
}

int SqliteDatabase::run(const TranslatedStatement &ts, Recordset *rows, const QString &jetSql)
{
    if (ts.kind == TranslatedStatement::AlterColumnType) {
        changeColumnType(ts, jetSql);
        return 0;
    }
    sqlite3_stmt *stmt = prepare(ts.sql, jetSql);
    const int columns = sqlite3_column_count(stmt);
    if (rows && columns > 0) {
        for (int c = 0; c < columns; ++c)
            rows->addColumn(QString::fromUtf8(sqlite3_column_name(stmt, c)), typeFromDeclaration(sqlite3_column_decltype(stmt, c)));
    }
    int rc;
    while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
        if (!rows) {
            // A query run as a command (a probe) needs its first row only.
            rc = SQLITE_DONE;
            break;
        }
        for (int c = 0; c < columns; ++c) {
            switch (sqlite3_column_type(stmt, c)) {
            case SQLITE_INTEGER:
                rows->appendInteger(sqlite3_column_int64(stmt, c));
                break;
            case SQLITE_FLOAT:
                rows->appendDouble(sqlite3_column_double(stmt, c));
                break;
            case SQLITE_NULL:
                rows->appendNull();
                break;
            default: {
                const unsigned char *text = sqlite3_column_text(stmt, c);
                rows->appendText(reinterpret_cast<const char *>(text), size_t(sqlite3_column_bytes(stmt, c)));
            }
            }
        }
        rows->rowAppended();
    }
    if (rc != SQLITE_DONE) {
        sqlite3_reset(stmt);
        raise(rc, jetSql);
    }
    sqlite3_reset(stmt);
    if (rows)
        rows->finish();
    return columns > 0 ? 0 : sqlite3_changes(db_);
}

void SqliteDatabase::beginTransaction()
{
    // A reader's transaction is one snapshot of the database (a whole copy reads every table as of
    // one moment); a writer's takes the write lock at once, so it never fails half way for a lock.
    exec(sqlite3_db_readonly(db_, "main") == 1 ? "BEGIN" : "BEGIN IMMEDIATE");
}
void SqliteDatabase::commitTransaction() { exec("COMMIT"); }
void SqliteDatabase::rollbackTransaction() { exec("ROLLBACK"); }
bool SqliteDatabase::inTransaction() const { return db_ && !sqlite3_get_autocommit(db_); }

// SQLite cannot change a column's type in place: the table is rebuilt with the
// new type and every row copied across, inside one transaction.
void SqliteDatabase::changeColumnType(const TranslatedStatement &ts, const QString &jetSql)
{
    struct ColumnInfo { std::string name, type, defaultValue; bool notNull; int pk; };
    std::vector<ColumnInfo> columns;
    std::string tableName, createSql;
    std::vector<std::string> indexSql;

    auto query = [&](const std::string &sql, auto onRow) {
        sqlite3_stmt *stmt = nullptr;
        if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &stmt, nullptr) != SQLITE_OK)
            raise(0, jetSql);
        while (sqlite3_step(stmt) == SQLITE_ROW)
            onRow(stmt);
        sqlite3_finalize(stmt);
    };
    auto text = [](sqlite3_stmt *s, int c) {
        const unsigned char *t = sqlite3_column_text(s, c);
        return t ? std::string(reinterpret_cast<const char *>(t)) : std::string();
    };
    const std::string &bare = ts.table;
    char *q = sqlite3_mprintf("SELECT name, sql FROM sqlite_master WHERE type = 'table' AND name = %Q COLLATE NOCASE", bare.c_str());
    query(q, [&](sqlite3_stmt *s) { tableName = text(s, 0); createSql = text(s, 1); });
    sqlite3_free(q);
    if (tableName.empty())
        throw AppError(AppError::SyntaxError, QStringLiteral("Table '%1' does not exist.").arg(QString::fromStdString(bare)), jetSql);
    q = sqlite3_mprintf("SELECT sql FROM sqlite_master WHERE type = 'index' AND tbl_name = %Q AND sql IS NOT NULL", tableName.c_str());
    query(q, [&](sqlite3_stmt *s) { indexSql.push_back(text(s, 0)); });
    sqlite3_free(q);
    q = sqlite3_mprintf("PRAGMA table_info(%Q)", tableName.c_str());
    query(q, [&](sqlite3_stmt *s) {
        columns.push_back({text(s, 1), text(s, 2), text(s, 4), sqlite3_column_int(s, 3) != 0, sqlite3_column_int(s, 5)});
    });
    sqlite3_free(q);

    const std::string &column = ts.column;
    bool found = false;
    const bool autoIncrement = createSql.find("AUTOINCREMENT") != std::string::npos;
    int pkCount = 0;
    for (const auto &c : columns)
        pkCount += c.pk > 0 ? 1 : 0;
    const SqliteDialect dialect;
    std::string defs, names, selects, pkNames;
    for (const auto &c : columns) {
        const bool target = equalsNoCase(c.name, column);
        found = found || target;
        const size_t paren = c.type.find('(');
        JetColumnType type = target ? ts.newType
                                    : JetColumnType::fromName(std::string_view(c.type).substr(0, paren),
                                                              paren == std::string::npos ? 0 : std::atoi(c.type.c_str() + paren + 1));
        const bool counter = pkCount == 1 && c.pk > 0 && autoIncrement && !target;
        if (counter)
            type.base = JetColumnType::Counter;
        if (c.pk > 0 && !counter)
            pkNames += (pkNames.empty() ? "" : ", ") + quoteName(c.name);
        defs += (defs.empty() ? "" : ", ") + dialect.columnDefinition(c.name, type, counter, c.notNull, c.defaultValue);
        names += (names.empty() ? "" : ", ") + quoteName(c.name);
        std::string source = quoteName(c.name);
        if (target) {
            if (type.base == JetColumnType::Text || type.base == JetColumnType::Memo)
                source = "jet_cstr(" + source + ")";
            else if (type.isInteger())
                source = "jet_clng(" + source + ")";
            else if (type.isNumeric())
                source = "jet_cdbl(" + source + ")";
        }
        selects += (selects.empty() ? "" : ", ") + source;
    }
    if (!found)
        throw AppError(AppError::SyntaxError, QStringLiteral("Field '%1' does not exist in table '%2'.")
                                                  .arg(QString::fromStdString(column), QString::fromStdString(tableName)), jetSql);
    if (!pkNames.empty())
        defs += ", PRIMARY KEY (" + pkNames + ")";

    std::int64_t sequence = -1;
    if (autoIncrement) {
        q = sqlite3_mprintf("SELECT seq FROM sqlite_sequence WHERE name = %Q", tableName.c_str());
        query(q, [&](sqlite3_stmt *s) { sequence = sqlite3_column_int64(s, 0); });
        sqlite3_free(q);
    }

    const bool ownTransaction = !inTransaction();
    exec(ownTransaction ? "BEGIN IMMEDIATE" : "SAVEPOINT shelvora_rebuild", jetSql);
    try {
        const std::string temp = quoteName(tableName + "_shelvora_rebuild");
        exec("CREATE TABLE " + temp + " (" + defs + ")", jetSql);
        exec("INSERT INTO " + temp + " (" + names + ") SELECT " + selects + " FROM " + quoteName(tableName), jetSql);
        exec("DROP TABLE " + quoteName(tableName), jetSql);
        exec("ALTER TABLE " + temp + " RENAME TO " + quoteName(tableName), jetSql);
        for (const auto &sql : indexSql)
            exec(sql, jetSql);
        if (sequence >= 0) {
            char *u = sqlite3_mprintf("UPDATE sqlite_sequence SET seq = max(seq, %lld) WHERE name = %Q", (long long)sequence, tableName.c_str());
            const std::string update(u);
            sqlite3_free(u);
            exec(update, jetSql);
        }
        exec(ownTransaction ? "COMMIT" : "RELEASE shelvora_rebuild", jetSql);
    } catch (...) {
        exec(ownTransaction ? "ROLLBACK" : "ROLLBACK TO shelvora_rebuild", jetSql);
        throw;
    }
    // Statements prepared against the old table are stale.
    for (auto &entry : statements_)
        sqlite3_finalize(entry.second);
    statements_.clear();
}
