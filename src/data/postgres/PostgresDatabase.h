#pragma once

#include "PhysicalConnection.h"

#include <QString>
#include <QStringList>

#include <map>
#include <string>
#include <unordered_map>
#include <vector>

struct pg_conn;
struct pg_result;

/// A connection to a library (or school) database on a PostgreSQL server through
/// libpq's C API. The location is a connection URI (postgresql://user@host:port/db);
/// the password comes from ~/.pgpass or PGPASSWORD as libpq finds it. Transactions
/// are SERIALIZABLE: when two desks change the same rows at once one of them gets
/// AppError::Cause::WriteConflict and runs its work again (see RunTransaction).
/// A read-only connection, and every connection to a school database, runs in
/// read-only transactions the server enforces.
class PostgresDatabase : public PhysicalConnection {
public:
    /// Connects. Throws AppError with the server's reason when it cannot.
    PostgresDatabase(const QString &uri, bool readOnly);
    ~PostgresDatabase() override;

    /// The location as shown to people: host, port and database, never a password.
    static QString displayName(const QString &uri);
    /// Makes an empty server database ready for a library: the extension, domains and
    /// functions the translated statements use. Throws AppError when it already holds tables.
    /// Returns whether it added the citext extension (undoPreparation takes that).
    static bool prepareEmptyDatabase(const QString &uri);
    /// Takes back what prepareEmptyDatabase put into a database that holds no tables (a copy that
    /// did not go through leaves the database as it was).
    static void undoPreparation(const QString &uri, bool addedCitext);
    static JetTranslator &sharedTranslator();
    /// The engine, where it is and whether it answers, for the About box and System Info:
    /// "PostgreSQL 15.18 on host:port/db (connected)" or "PostgreSQL on host:port/db (not reachable: why)".
    static QString status(const QString &uri);
    /// Reclaims space and refreshes the planner's statistics of a server database's own tables
    /// (VACUUM (ANALYZE)); returns what the server warned of (nothing, as it should be).
    static QStringList vacuum(const QString &uri);
    /// How many other sessions are connected to the server database (other desks, other programs).
    static int otherSessions(const QString &uri);
    /// Changes whenever rows of the database's own tables have been written (the server's counters).
    static QString changeMark(const QString &uri);
    /// Whether an address carries a password (which belongs in ~/.pgpass or PGPASSWORD, never in the settings).
    static bool holdsPassword(const QString &uri);
    /// The server's version ("PostgreSQL 15.18").
    QString serverVersion() const;

    int execute(const QString &jetSql, Recordset *rows) override;
    qint64 insertReturningKey(const QString &jetSql, const QString &keyColumn) override;
    void bulkInsert(const QString &table, const Recordset &rows) override;
    void beginTransaction() override;
    void commitTransaction() override;
    void rollbackTransaction() override;
    bool inTransaction() const override;
    const JetTranslator &translator() const override { return sharedTranslator(); }
    bool usable() override;
    bool holdsTable(const QString &table) override;
    void refuseWrites() override;

    /// Runs native SQL without rows (schema work, maintenance). Throws AppError.
    void exec(const std::string &nativeSql, const QString &jetSql = QString());
    /// Runs VACUUM (ANALYZE) on the whole database (outside any transaction).
    void vacuumAnalyze();

private:
    /// An open libpq connection, or null with the plain reason why not.
    static pg_conn *connectTo(const QString &uri, QString &reason);
    pg_result *run(const std::string &sql, const QString &jetSql);
    /// The first value of a native query's answer.
    QString value(const std::string &sql);
    [[noreturn]] void raise(pg_result *result, const QString &jetSql);
    void readRows(pg_result *result, Recordset *rows, const TranslatedStatement &ts);
    void installSupport();
    void setClock();
    void forgetUncommitted();
    pg_result *runTranslated(const TranslatedStatement &ts, const std::string &sql, const QString &jetSql);
    void alterColumnType(const TranslatedStatement &ts, const QString &jetSql);
    std::vector<QString> columnNames(pg_result *result, const TranslatedStatement &ts);
    int columnKind(unsigned int table, int column);

    pg_conn *conn_ = nullptr;
    bool readOnly_ = false;
    bool broken_ = false;
    qint64 clockSecond_ = -1;
    // Per table: the Jet kind of each column (by attribute number), read once.
    std::unordered_map<unsigned int, std::vector<int>> columnKinds_;
    // Column names as defined, by their lower-case form.
    std::map<QString, QString> definedNames_;
    bool namesLoaded_ = false;
};
