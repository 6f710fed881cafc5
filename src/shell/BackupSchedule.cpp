#include "BackupSchedule.h"

#include "AppError.h"
#include "ConnectionPool.h"
#include "Engine.h"
#include "SettingsStore.h"

#include <QDir>

#include <utility>

namespace {
// What the settings keep between runs, beside the folders.
const QString MarkKey = QStringLiteral("BackupMark");
const QString FailureKey = QStringLiteral("BackupFailure");
const QString FailureToldKey = QStringLiteral("BackupFailureTold");
const QString Shown = QStringLiteral("yyyy-MM-dd HH:mm");
} // namespace

BackupSchedule::BackupSchedule(SettingsStore &settings, QString library) : settings_(settings), library_(std::move(library)) {}

QString BackupSchedule::folder() const
{
    const QString chosen = settings_.value(QLatin1String(SettingsStore::BackupFolderKey));
    return chosen.isEmpty() ? LibraryBackup::defaultFolder() : chosen;
}

QString BackupSchedule::secondFolder() const { return settings_.value(QLatin1String(SettingsStore::SecondBackupFolderKey)); }

bool BackupSchedule::dueAtStart(const QDateTime &now) const
{
    const QList<LibraryBackup::Entry> backups = LibraryBackup::list(folder());
    return backups.isEmpty() || backups.first().taken.secsTo(now) >= 24 * 3600;
}

QString BackupSchedule::mark() const
{
    // The program's idle connections close first: what they leave in the log is then in the file,
    // and an unchanged library gives the same mark on every run.
    ConnectionPool::shared().closeIdle(library_);
    return library_ + QLatin1Char('|') + EngineRegistry::installed().forLocation(library_).changeMark(library_);
}

bool BackupSchedule::dueAtClose() const
{
    try {
        return mark() != settings_.value(MarkKey);
    } catch (const AppError &) {
        return false; // the library cannot be reached: there is nothing to back up from
    }
}

LibraryBackup::Taken BackupSchedule::run(const QDateTime &now, TaskProgress &progress)
{
    try {
        LibraryBackup::Taken taken = LibraryBackup::take(library_, folder(), secondFolder(), now, progress);
        settings_.setValue(MarkKey, mark());
        settings_.setValue(FailureKey, taken.secondProblem.isEmpty() ? QString() : now.toString(Shown) + QLatin1Char('|') + taken.secondProblem);
        return taken;
    } catch (const AppError &e) {
        settings_.setValue(FailureKey, now.toString(Shown) + QLatin1Char('|') + e.description());
        throw;
    }
}

QString BackupSchedule::untoldFailure()
{
    const QString failure = settings_.value(FailureKey);
    if (failure.isEmpty() || failure.section(QLatin1Char('|'), 1) == settings_.value(FailureToldKey))
        return QString();
    settings_.setValue(FailureToldKey, failure.section(QLatin1Char('|'), 1));
    return failure.section(QLatin1Char('|'), 1);
}

BackupSchedule::Status BackupSchedule::status(const QDateTime &now) const
{
    const QString where = QDir::toNativeSeparators(folder());
    const QList<LibraryBackup::Entry> backups = LibraryBackup::list(folder());
    Status s;
    s.text = backups.isEmpty() ? QStringLiteral("No backup yet (%1)").arg(where)
                               : QStringLiteral("Last backup: %1 (%2)").arg(backups.first().taken.toString(Shown), where);
    s.warning = backups.isEmpty() || backups.first().taken.daysTo(now) > 7;
    if (!backups.isEmpty() && s.warning)
        s.text += QStringLiteral(": more than 7 days ago");
    const QString failure = settings_.value(FailureKey);
    if (!failure.isEmpty()) {
        s.warning = true;
        s.text = QStringLiteral("The backup of %1 failed: %2 %3").arg(failure.section(QLatin1Char('|'), 0, 0), failure.section(QLatin1Char('|'), 1), s.text);
    }
    return s;
}
