#pragma once

#include "JetTranslator.h"

#include <QString>

class Recordset;

/// One open connection of a database engine. Takes Jet SQL, has it translated
/// for its engine and runs it.
class PhysicalConnection {
public:
    virtual ~PhysicalConnection() = default;

    /// Runs one Jet statement. Rows go to *rows when the statement returns rows
    /// (rows may be null for commands). Returns the number of rows changed.
    /// Throws AppError carrying the Jet text on any failure.
    virtual int execute(const QString &jetSql, Recordset *rows) = 0;
    /// Runs one Jet INSERT of a single row and returns the counter the engine gave it (the
    /// column keyColumn), taken from the insert itself, never read back by other values.
    virtual qint64 insertReturningKey(const QString &jetSql, const QString &keyColumn) = 0;

    /// Writes every row of rows into table (columns by the rows' field names) by the engine's own
    /// bulk path, inside the transaction under way. Throws AppError when a row is refused.
    virtual void bulkInsert(const QString &table, const Recordset &rows) = 0;

    virtual void beginTransaction() = 0;
    virtual void commitTransaction() = 0;
    virtual void rollbackTransaction() = 0;
    virtual bool inTransaction() const = 0;

    virtual const JetTranslator &translator() const = 0;
    /// A Jet statement in the engine's words; one Jet cannot take throws AppError carrying its text.
    TranslatedStatement translated(const QString &jetSql) const;

    /// Whether the database holds a table of that name (any case).
    virtual bool holdsTable(const QString &table) = 0;
    /// From now on every write is refused as on a read-only connection (the school's database).
    virtual void refuseWrites() = 0;

    /// False once the link to the database is gone (a server connection closed or lost):
    /// the pool then opens a new one instead of handing this one out again.
    virtual bool usable() { return true; }
};
