#include "DatabaseCheck.h"

#include "AppError.h"
#include "ConnectionPool.h"
#include "DbConnection.h"
#include "Engine.h"


namespace {

// Opens the location read-only; the reason in plain words when it cannot.
QString openingRefusal(DbConnection &db, const QString &location)
{
    if (location.trimmed().isEmpty())
        return QStringLiteral("No database is chosen.");
    if (const QString refusal = EngineRegistry::installed().refusal(location); !refusal.isEmpty())
        return refusal;
    db.DataSource = location;
    db.ReadOnly = true;
    try {
        db.Open();
    } catch (const AppError &e) {
        return e.cause() == AppError::Cause::Unreachable ? e.description() : QStringLiteral("%1 is not a database Shelvora can open.").arg(location);
    }
    return QString();
}

bool holds(DbConnection &db, const char *table)
{
    try {
        db.ExecuteCommand(QStringLiteral("select * from ") + QLatin1String(table));
        return true;
    } catch (const AppError &) {
        return false;
    }
}

} // namespace

QString DatabaseCheck::notALibraryText() { return QStringLiteral("The database you have selected is not an Veltrix Library database."); }

QString DatabaseCheck::library(const QString &location)
{
    DbConnection db;
    QString refusal = openingRefusal(db, location);
    if (refusal.isEmpty()) {
        if (holds(db, "Learner_Info"))
            refusal = QStringLiteral("%1 is the school administration database; choose the library database here.").arg(location);
        else if (!holds(db, "tblLibItems"))
            refusal = notALibraryText();
    }
    if (db.state() == DbConnection::adStateOpen)
        db.Close();
    ConnectionPool::shared().closeIdle(location);
    return refusal;
}

QString DatabaseCheck::school(const QString &location)
{
    DbConnection db;
    QString refusal = openingRefusal(db, location);
    if (refusal.isEmpty() && !holds(db, "Learner_Info"))
        refusal = holds(db, "tblLibItems") ? QStringLiteral("%1 is the library database; choose the school administration database here.").arg(location)
                                           : QStringLiteral("%1 is not a school administration database (it has no learners).").arg(location);
    if (db.state() == DbConnection::adStateOpen)
        db.Close();
    ConnectionPool::shared().closeIdle(location);
    return refusal;
}
