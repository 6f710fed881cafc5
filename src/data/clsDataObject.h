#pragma once

#include "Recordset.h"

#include <QString>
#include <QVariant>

#include <memory>

class DbConnection;
class QComboBox;

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
    /// Opens rst without counting; returns 0.
    int GetDatas(const QString &sql);
    /// Opens rst; returns 0. The second value has no effect.
    int GetID(const QString &sql, const QVariant &unused = QVariant());
    /// First field of the last row, or 0 when there are no rows.
    int GetAuto(const QString &sql);
    /// Field 1 (english) or field 2 of the last row; empty when there are no rows.
    QVariant GetKeyword(const QString &sql, bool english);
    void ConClose();
    void rstRecordSetclose();
    void CloseCompact();

    /// Whether this object's connection is open (tests and the compaction step look).
    bool connectionOpen() const;

private:
    void prepare(const QString &sql);

    std::unique_ptr<DbConnection> connection_;
    QString commandText_;
    QString commandConnection_;
};
