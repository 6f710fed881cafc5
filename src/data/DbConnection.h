#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class PhysicalConnection;
class Recordset;

/// A logical connection to one database, as the screens and the loan routines
/// hold it: open, run statements, close. The engine connection underneath
/// comes from the pool, so opening is cheap; once closed, this object refuses
/// work until it is opened again.
class DbConnection {
public:
    enum State { adStateClosed = 0, adStateOpen = 1 };

    DbConnection() = default;
    ~DbConnection();
    DbConnection(const DbConnection &) = delete;
    DbConnection &operator=(const DbConnection &) = delete;

    // Connection settings, given before Open: where the database is and whether it may be written.
    QString DataSource;
    bool ReadOnly = false;

    /// Throws AppError with the engine's reason when the database cannot be opened.
    void Open();
    /// Closing an unopened connection is an error, as it was for the old provider.
    void Close();
    State state() const { return physical_ ? adStateOpen : adStateClosed; }

    /// Runs one Jet statement; returns its rows (an empty, field-less result for commands).
    std::shared_ptr<Recordset> Execute(const QString &sql, int *recordsAffected = nullptr);
    /// The same for a long list: show receives the first `count` rows as soon as they are read.
    std::shared_ptr<Recordset> Execute(const QString &sql, int count, const std::function<void(const Recordset &)> &show);
    /// Runs one Jet statement as a command: a query is only started (enough to prove it can run), no rows are kept.
    int ExecuteCommand(const QString &sql);
    /// Runs one Jet INSERT of a single row; returns the counter (keyColumn) the engine gave the new row.
    qint64 ExecuteInsert(const QString &sql, const QString &keyColumn);
    /// Writes every row of rows into table through the engine's bulk path (copying a library).
    void BulkInsert(const QString &table, const Recordset &rows);
    /// Whether the database holds a table of that name.
    bool HoldsTable(const QString &table);
    void BeginTrans();
    void CommitTrans();
    void RollbackTrans();

    /// Runs work inside one transaction: committed when work answers true, rolled back when it
    /// answers false or throws. When another desk changed the same rows at the same moment the
    /// server refuses one of them (AppError::Cause::WriteConflict): its work is rolled back and
    /// run again from the start, so it sees the other desk's result. Returns work's answer.
    bool RunTransaction(const std::function<bool()> &work);

    /// While set, every statement run through any connection is appended to *sink
    /// as written (tests assert the exact text a routine sends).
    static void traceStatements(QStringList *sink);
    static QStringList *statementTrace();

private:
    PhysicalConnection &physical();
    std::shared_ptr<PhysicalConnection> physical_;
};
