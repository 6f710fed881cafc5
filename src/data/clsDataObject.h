#pragma once

#include "Recordset.h"

#include <QString>
#include <QVariant>

#include <functional>
#include <memory>

class DbConnection;
class GridTarget;

/// The data-access object every screen creates for its own library-database
/// work: hand it a complete Jet statement and call one operation. Each
/// operation opens its own connection for the statement; the operations that
/// return rows leave them in rst until the caller calls CloseCompact.
/// Errors other than a failed open reach the caller's error trap as AppError.
class clsDataObject {
public:
    clsDataObject();
    ~clsDataObject();
    clsDataObject(const clsDataObject &) = delete;
    clsDataObject &operator=(const clsDataObject &) = delete;

    /// The result of the last query this object opened.
    std::shared_ptr<Recordset> rst;

    /// Creates the connection object if missing and points it at LibraryDatabasePath.
    void Connection();
    /// Opens a fresh connection; false (after "Database connection failed") when it cannot.
    bool ConOpen();
    /// Opens rst from the prepared statement.
    void rstRecordSetOpen();
    /// Runs an INSERT, UPDATE, DELETE, ALTER or CREATE statement.
    void ExecuteNonQuery(const QString &sql);
    /// A probe: false when the statement cannot run. Leaves the connection open.
    bool TableExist(const QString &sql);
    /// Opens rst and returns its row count (the full count; large catalogues exceed 16 bits).
    int GetData(const QString &sql);
    /// The same for a long list: show gets the first firstRows rows as soon as the engine has read
    /// them (the screen draws its first screenful), then the whole result is in rst as usual.
    int GetData(const QString &sql, int firstRows, const std::function<void(const Recordset &)> &show);
    /// Opens rst without counting; returns 0.
    int GetDatas(const QString &sql);
    /// Opens rst; returns 0. The second value has no effect.
    int GetID(const QString &sql, const QVariant &unused = QVariant());
    /// First field of the last row, or 0 when there are no rows.
    int GetAuto(const QString &sql);
    /// Sizes the grid to the result, captions from the field names, every value written
    /// (field 0 to the row-header column) and columns widened to fit. Nulls leave cells untouched.
    void FillSpread(GridTarget &grid, const QString &sql);
    /// The same without captions or widening: the screen's own captions and widths stay.
    void FillSpreadWithHeader(GridTarget &grid, const QString &sql);
    /// Grows the grid by exactly one row and writes the result from there (meant for one-row results).
    void AppendSpread(GridTarget &grid, const QString &sql);
    /// Field 1 (english) or field 2 of the last row; empty when there are no rows.
    QVariant GetKeyword(const QString &sql, bool english);
    void ConClose();
    void rstRecordSetclose();
    void CloseCompact();

    /// Runs work as one transaction: every operation of this object inside it uses one connection
    /// and is committed together when work answers true, or not at all (false, or an error, which
    /// reaches the caller). Throws AppError when the library database cannot be opened.
    bool RunTransaction(const std::function<bool()> &work);
    /// Runs one INSERT of a single row (inside RunTransaction, on its connection); the new row's counter.
    qint64 InsertReturningKey(const QString &sql, const QString &keyColumn);

    /// Whether this object's connection is open (tests and the compaction step look).
    bool connectionOpen() const;

private:
    void prepare(const QString &sql);
    void openForReading(const QString &sql);
    void fillRows(GridTarget &grid, int firstRow, bool widen);
    void fillGrid(GridTarget &grid, const QString &sql, bool captionsAndWidths);

    DbConnection &active();

    std::unique_ptr<DbConnection> connection_;
    DbConnection *held_ = nullptr; // the connection of the transaction under way, if any
    QString commandText_; // the prepared statement; it runs on this object's connection
    int firstRows_ = 0;   // with showFirst_: the first rows of the next result are shown early
    std::function<void(const Recordset &)> showFirst_;
};
