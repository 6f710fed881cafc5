#pragma once

#include <QString>

#include <memory>

class DbConnection;
class Recordset;

/// The one way into the school administration database: read only (this program never writes
/// it), opened for the object's life and closed after. A database that cannot be opened is
/// reported ("Database cannot be opened.") and every statement on it then fails.
class SchoolDatabase {
public:
    SchoolDatabase();
    ~SchoolDatabase();
    SchoolDatabase(const SchoolDatabase &) = delete;
    SchoolDatabase &operator=(const SchoolDatabase &) = delete;

    /// Runs a statement; the rows are read before it returns. Errors reach the caller as AppError.
    std::shared_ptr<Recordset> query(const QString &sql);

private:
    std::unique_ptr<DbConnection> connection_;
};

/// One statement on the school database, opened for it and closed after.
std::shared_ptr<Recordset> SchoolQuery(const QString &sql);
