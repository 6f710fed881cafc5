#include "DatabaseFile.h"

#include "AppError.h"
#include "ConnectionPool.h"
#include "SqliteDatabase.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cmath>
#include <filesystem>
#include <system_error>

#ifndef Q_OS_WIN
#include <fcntl.h>
#include <unistd.h>
#endif

namespace {

[[noreturn]] void fail(const QString &message) { throw AppError(AppError::ProviderError, message); }

void flushToDisk(const QString &path)
{
#ifndef Q_OS_WIN
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
#else
    QFile f(path);
    if (f.open(QIODevice::ReadWrite))
        f.flush();
#endif
}

} // namespace

void DatabaseFile::settle(const QString &path)
{
    ConnectionPool::shared().closeIdle(path);
    {
        SqliteDatabase db(path, false);
        db.exec("PRAGMA wal_checkpoint(TRUNCATE)");
    }
    // The last connection to close removes the log; one left behind means someone still has the file open.
    if (QFileInfo(path + QStringLiteral("-wal")).size() > 0)
        fail(QStringLiteral("The database '%1' is still in use.").arg(path));
}

void DatabaseFile::compactCopy(const QString &source, const QString &destination)
{
    if (QFileInfo::exists(destination))
        fail(QStringLiteral("'%1' already exists.").arg(destination));
    SqliteDatabase db(source, false);
    std::string target = destination.toStdString();
    std::string quoted = "'";
    for (char c : target)
        quoted += c == '\'' ? std::string("''") : std::string(1, c);
    db.exec("VACUUM INTO " + quoted + "'");
    flushToDisk(destination);
}

void DatabaseFile::replace(const QString &target, const QString &replacement)
{
    settle(target);
    const QString staged = target + QStringLiteral(".incoming");
    QFile::remove(staged);
    if (!QFile::copy(replacement, staged))
        fail(QStringLiteral("Cannot write '%1'.").arg(staged));
    flushToDisk(staged);
    std::error_code error;
    std::filesystem::rename(std::filesystem::path(staged.toStdWString()), std::filesystem::path(target.toStdWString()), error);
    if (error) {
        QFile::remove(staged);
        fail(QStringLiteral("Cannot replace '%1': %2").arg(target, QString::fromStdString(error.message())));
    }
    QFile::remove(target + QStringLiteral("-shm"));
    flushToDisk(QFileInfo(target).absolutePath());
}

void DatabaseFile::useRollbackJournal(const QString &path)
{
    settle(path);
    SqliteDatabase db(path, false);
    db.exec("PRAGMA journal_mode=DELETE");
}

qint64 DatabaseFile::size(const QString &path) { return QFileInfo(path).size(); }
