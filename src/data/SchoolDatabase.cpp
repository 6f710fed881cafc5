#include "SchoolDatabase.h"

#include "AppError.h"
#include "DbConnection.h"
#include "Recordset.h"
#include "DatabaseLocations.h"

SchoolDatabase::SchoolDatabase() : connection_(OpenDatabase(CentralDatabasePath, true, QStringLiteral("Database cannot be opened."))) {}

SchoolDatabase::~SchoolDatabase() = default;

std::shared_ptr<Recordset> SchoolDatabase::query(const QString &sql)
{
    if (connection_->state() != DbConnection::adStateOpen)
        throw AppError(3709, QStringLiteral("The connection cannot be used to perform this operation. It is either closed or invalid in this context."));
    return connection_->Execute(sql);
}

std::shared_ptr<Recordset> SchoolQuery(const QString &sql) { return SchoolDatabase().query(sql); }
