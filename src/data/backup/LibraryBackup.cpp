#include "LibraryBackup.h"

#include "AppError.h"
#include "BackupRotation.h"
#include "ConnectionPool.h"
#include "Engine.h"
#include "FileFlush.h"
#include "TaskProgress.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

#include <filesystem>
#include <system_error>

namespace {

const QString Prefix = QStringLiteral("shelvora-library-");
const QString Stamp = QStringLiteral("yyyy-MM-dd-HHmm");
// Where a backup is written before it has proved whole; never a backup's name.
const QString PartialSuffix = QStringLiteral(".partial");

[[noreturn]] void fail(const QString &message) { throw AppError(AppError::ProviderError, message); }

// Renames over an existing file in one step (a backup of the same minute is replaced whole).
void renameOver(const QString &from, const QString &to)
{
    std::error_code error;
    std::filesystem::rename(std::filesystem::path(from.toStdWString()), std::filesystem::path(to.toStdWString()), error);
    if (error)
        fail(QStringLiteral("%1 cannot be written (%2).").arg(QFileInfo(to).absolutePath(), QString::fromStdString(error.message())));
}

// A partial file a backup that was cut off (power loss, a killed program) left behind.
void removeStalePartials(const QString &folder, const QDateTime &now)
{
    const QDir dir(folder);
    for (const QFileInfo &f : dir.entryInfoList({QLatin1Char('*') + PartialSuffix + QLatin1Char('*')}, QDir::Files | QDir::Hidden))
        if (f.lastModified().secsTo(now) > 3600)
            QFile::remove(f.absoluteFilePath());
}

QString partialName(const QString &folder, const QDateTime &now)
{
    return QDir(folder).filePath(QLatin1Char('.') + LibraryBackup::fileName(now) + PartialSuffix + QLatin1Char('-')
                                 + QString::number(QCoreApplication::applicationPid()));
}

// Checks a written copy and gives it its backup name.
LibraryFigures settle(const QString &partial, const QString &final)
{
    try {
        EngineRegistry::installed().forLocation(partial).standAlone(partial);
        const LibraryFigures figures = LibraryBackup::check(partial);
        ConnectionPool::shared().closeIdle(partial);
        renameOver(partial, final);
        FlushToDisk(QFileInfo(final).absolutePath());
        return figures;
    } catch (...) {
        ConnectionPool::shared().closeIdle(partial);
        QFile::remove(partial);
        throw;
    }
}

} // namespace

QString LibraryBackup::defaultFolder()
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)).filePath(QStringLiteral("Backups"));
}

QString LibraryBackup::fileName(const QDateTime &taken) { return Prefix + taken.toString(Stamp) + QStringLiteral(".db"); }

QList<LibraryBackup::Entry> LibraryBackup::list(const QString &folder)
{
    QList<Entry> entries;
    if (folder.isEmpty())
        return entries;
    for (const QFileInfo &f : QDir(folder).entryInfoList({Prefix + QStringLiteral("*.db")}, QDir::Files, QDir::Name | QDir::Reversed)) {
        const QString stamp = f.fileName().mid(Prefix.size(), Stamp.size());
        const QDateTime taken = QDateTime::fromString(stamp, Stamp);
        if (taken.isValid() && f.fileName() == fileName(taken))
            entries << Entry{f.absoluteFilePath(), taken};
    }
    return entries;
}

LibraryFigures LibraryBackup::check(const QString &file)
{
    const QFileInfo info(file);
    if (!info.isFile())
        fail(QStringLiteral("There is no file %1.").arg(file));
    const QString problem = EngineRegistry::installed().forLocation(file).integrityProblem(file);
    if (!problem.isEmpty())
        fail(QStringLiteral("%1 is damaged or is not a library backup (%2).").arg(info.fileName(), problem));
    try {
        const LibraryFigures figures = LibraryFigures::of(file);
        ConnectionPool::shared().closeIdle(file);
        return figures;
    } catch (const AppError &) {
        ConnectionPool::shared().closeIdle(file);
        fail(QStringLiteral("%1 is not a backup of a library database.").arg(info.fileName()));
    }
}

void LibraryBackup::requireFolder(const QString &folder)
{
    if (folder.isEmpty())
        fail(QStringLiteral("No backup folder is chosen."));
    const QFileInfo info(folder);
    if (!info.exists())
        fail(QStringLiteral("The backup folder %1 is not there (is the disk or the USB stick attached?).").arg(folder));
    if (!info.isDir() || !info.isWritable())
        fail(QStringLiteral("The backup folder %1 cannot be written.").arg(folder));
}

LibraryBackup::Taken LibraryBackup::take(const QString &library, const QString &folder, const QString &second, const QDateTime &now,
                                         TaskProgress &progress)
{
    // The program's own folder is made the first time; a folder the school chose must be there.
    if (folder == defaultFolder())
        QDir().mkpath(folder);
    requireFolder(folder);
    removeStalePartials(folder, now);
    Taken taken;
    taken.file = QDir(folder).absoluteFilePath(fileName(now));
    const QString partial = partialName(folder, now);
    progress.setText(QStringLiteral("Backing up the library into %1...").arg(folder));
    EngineRegistry::installed().forLocation(library).backup(library, partial, progress);
    progress.setText(QStringLiteral("Checking the backup..."));
    taken.figures = settle(partial, taken.file);
    prune(folder);
    if (!second.isEmpty()) {
        try {
            requireFolder(second);
            removeStalePartials(second, now);
            const QString copy = partialName(second, now);
            progress.setText(QStringLiteral("Copying the backup into %1...").arg(second));
            if (!QFile::copy(taken.file, copy)) {
                QFile::remove(copy);
                fail(QStringLiteral("%1 cannot be written (is its disk full?).").arg(second));
            }
            FlushToDisk(copy);
            const QString final = QDir(second).absoluteFilePath(fileName(now));
            if (!(settle(copy, final) == taken.figures))
                fail(QStringLiteral("The copy in %1 does not read back as written.").arg(second));
            taken.secondFile = final;
            prune(second);
        } catch (const AppError &e) {
            taken.secondProblem = e.description();
        }
    }
    return taken;
}

int LibraryBackup::prune(const QString &folder)
{
    const QList<Entry> entries = list(folder);
    QList<QDateTime> moments;
    for (const Entry &e : entries)
        moments << e.taken;
    const QList<QDateTime> kept = BackupRotation::keep(moments);
    int removed = 0;
    for (const Entry &e : entries)
        if (!kept.contains(e.taken) && QFile::remove(e.path))
            ++removed;
    return removed;
}

QString LibraryBackup::restore(const QString &library, const QString &file, const QString &asideFolder, const QDateTime &now,
                               TaskProgress &progress)
{
    check(file);
    const Engine &engine = EngineRegistry::installed().forLocation(library);
    const int others = engine.otherConnections(library);
    if (others > 0)
        fail(QStringLiteral("The library database is open on another computer or in another program (%1 connection%2). Close Shelvora "
                            "everywhere else, then restore. Nothing was changed.")
                 .arg(others)
                 .arg(others == 1 ? QString() : QStringLiteral("s")));
    if (asideFolder == defaultFolder())
        QDir().mkpath(asideFolder);
    requireFolder(asideFolder);
    QString aside = QDir(asideFolder).absoluteFilePath(QStringLiteral("before-restore-%1.db").arg(now.toString(Stamp)));
    for (int n = 2; QFileInfo::exists(aside); ++n)
        aside = QDir(asideFolder).absoluteFilePath(QStringLiteral("before-restore-%1-%2.db").arg(now.toString(Stamp)).arg(n));
    progress.setText(QStringLiteral("Keeping the library as it is now in %1...").arg(aside));
    engine.backup(library, aside, progress);
    progress.setText(QStringLiteral("Restoring %1...").arg(QFileInfo(file).fileName()));
    ConnectionPool::shared().closeIdle(library);
    engine.restore(library, file, progress);
    ConnectionPool::shared().closeIdle(library);
    return aside;
}
