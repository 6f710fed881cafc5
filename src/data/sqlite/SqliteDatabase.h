#pragma once

#include "PhysicalConnection.h"

#include <QString>

#include <string>
#include <unordered_map>

struct sqlite3;
struct sqlite3_stmt;

/// A connection to one SQLite database file through the SQLite C API: the
/// embedded engine. The library database runs in WAL mode with full
/// synchronisation, so committed work survives a crash or power loss; a
/// read-only connection cannot write at all. Prepared statements are kept
/// for reuse.
class SqliteDatabase : public PhysicalConnection {
public:
    /// Opens an existing database file. Throws AppError when the file is
    /// missing or is not a database.
    SqliteDatabase(const QString &path, bool readOnly);
    ~SqliteDatabase() override;

    /// Creates a new, empty database file (WAL mode). Throws AppError if it exists or cannot be made.
    static void createFile(const QString &path);
    /// Shared translator for SQLite (one shape cache for the process).
    static JetTranslator &sharedTranslator();
    /// The SQLite library's version.
    static QString engineVersion();

    int execute(const QString &jetSql, Recordset *rows) override;
    qint64 insertReturningKey(const QString &jetSql, const QString &keyColumn) override;
    void bulkInsert(const QString &table, const Recordset &rows) override;
    void beginTransaction() override;
    void commitTransaction() override;
    void rollbackTransaction() override;
    bool inTransaction() const override;
    const JetTranslator &translator() const override { return sharedTranslator(); }
    bool holdsTable(const QString &table) override;
    void refuseWrites() override;

    /// Runs native SQL that returns no rows (schema work inside the engine).
    void exec(const std::string &nativeSql, const QString &jetSql = QString());
    sqlite3 *handle() const { return db_; }

private:
    sqlite3_stmt *prepare(const std::string &sql, const QString &jetSql);
    int run(const TranslatedStatement &ts, Recordset *rows, const QString &jetSql);
    void changeColumnType(const TranslatedStatement &ts, const QString &jetSql);
    [[noreturn]] void raise(int code, const QString &jetSql) const;

    sqlite3 *db_ = nullptr;
    QString path_;
    std::unordered_map<std::string, sqlite3_stmt *> statements_;
};
