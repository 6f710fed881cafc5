#include "UpdateDatabase.h"

#include "AppError.h"
#include "DbConnection.h"
#include "Messages.h"

QString LibraryDatabasePath;
QString CentralDatabasePath;
QString SchoolName;

std::unique_ptr<DbConnection> OpenDatabase(const QString &path, const char *password, bool readOnly, const QString &failureText)
{
    auto connection = std::make_unique<DbConnection>();
    connection->Provider = QString::fromLatin1(JetProvider);
    connection->DataSource = path;
    connection->Password = QString::fromLatin1(password);
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
    return OpenDatabase(LibraryDatabasePath, LibraryPassword, readOnly, QStringLiteral("Library Database cannot be opened."));
}

QString NumberText(double number)
{
    const QString digits = QString::number(number, 'g', 15);
    return number >= 0 ? QLatin1Char(' ') + digits : digits;
}

void ReportError(const QString &location, const QString &description, const QString &procedure, double number)
{
    const QString text = QStringLiteral("Error Description: ") + description + QStringLiteral("\r\nLocation: ") + location
                         + QStringLiteral("\r\nProcedure: ") + procedure;
    ShowHookedBox(text, 0, QStringLiteral("Error : ") + NumberText(number), MessagePicture::picError);
}

namespace {

// A plain sentence for an error that only a typed value causes; empty for every other error.
QString typedValueProblem(const AppError &error)
{
    const QString &d = error.description();
    if (d.contains(QLatin1String("NUL character")))
        return QStringLiteral("A text typed here holds a character that cannot be stored (code 0). Please type it again.");
    if (d.contains(QLatin1String("field is too small")))
        return QStringLiteral("A text typed here is longer than the library database can store. Please shorten it.");
    return QString();
}

} // namespace

void ReportError(const QString &location, const QString &procedure, const AppError &error)
{
    // A value that a person typed and the database cannot hold is theirs to mend, not a fault
    // of the system: it is said plainly, without engine text or error numbers.
    const QString problem = typedValueProblem(error);
    if (!problem.isEmpty()) {
        UserMessage(problem);
        return;
    }
    // A server that is away is no fault of the program either: said plainly, once.
    if (error.cause() == AppError::Cause::Unreachable || error.cause() == AppError::Cause::ConnectionLost) {
        UserMessage(error.description());
        return;
    }
    ReportError(location, error.description(), procedure, error.number());
}
