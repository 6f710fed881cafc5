#include "DatabaseLocations.h"

#include "AppError.h"
#include "DbConnection.h"
#include "ErrorReport.h"

QString LibraryDatabasePath;
QString CentralDatabasePath;
QString SchoolName;

std::unique_ptr<DbConnection> OpenDatabase(const QString &path, bool readOnly, const QString &failureText)
{
    auto connection = std::make_unique<DbConnection>();
    connection->DataSource = path;
    connection->ReadOnly = readOnly;
    try {
        connection->Open();
    } catch (const AppError &e) {
        // A server that cannot be reached is the handler's one message for the whole action.
        if (e.cause() == AppError::Cause::Unreachable)
            throw;
        ReportError(QStringLiteral("Central Module"), failureText + QStringLiteral("\r\n") + e.description(),
                    QStringLiteral("Database Access Error"), e.number());
    }
    return connection;
}

std::unique_ptr<DbConnection> OpenLibraryDatabase(bool readOnly)
{
    return OpenDatabase(LibraryDatabasePath, readOnly, QStringLiteral("Library Database cannot be opened."));
}

