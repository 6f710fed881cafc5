#include "ErrorReport.h"

#include "Messages.h"

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
    switch (error.cause()) {
    case AppError::Cause::NulCharacter:
        return QStringLiteral("A text typed here holds a character that cannot be stored (code 0). Please type it again.");
    case AppError::Cause::TooLong:
        return QStringLiteral("A text typed here is longer than the library database can store. Please shorten it.");
    default:
        return QString();
    }
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
