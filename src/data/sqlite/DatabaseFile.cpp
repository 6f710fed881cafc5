#include "DatabaseFile.h"

#include "AppError.h"
#include "ConnectionPool.h"
#include "FileFlush.h"
#include "SqliteDatabase.h"
#include "TaskProgress.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <sqlite3.h>

#include <cmath>
#include <filesystem>
#include <memory>
#include <system_error>

namespace {

[[noreturn]] void fail(const QString &message) { throw AppError(AppError::ProviderError, message); }

// What the engine said last on a connection, as words.
QString lastError(sqlite3 *db) { return QString::fromUtf8(sqlite3_errmsg(db)); }

// A disk that is full or a folder that cannot be written, in the librarian's words.
QString writeFailure(const QString &destination, int code, const QString &reason)
{
    const QString folder = QFileInfo(destination).absolutePath();
    if ((code & 0xff) == SQLITE_FULL)
        return QStringLiteral("The disk of %1 is full.").arg(folder);
    if ((code & 0xff) == SQLITE_CANTOPEN || (code & 0xff) == SQLITE_READONLY || (code & 0xff) == SQLITE_IOERR)
        return QStringLiteral("%1 cannot be written (%2).").arg(folder, reason);
    return QStringLiteral("The copy into %1 failed: %2.").arg(folder, reason);
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
    FlushToDisk(destination);
}

void DatabaseFile::replace(const QString &target, const QString &replacement)
{
    settle(target);
    const QString staged = target + QStringLiteral(".incoming");
    QFile::remove(staged);
    if (!QFile::copy(replacement, staged))
        fail(QStringLiteral("Cannot write '%1'.").arg(staged));
    FlushToDisk(staged);
    std::error_code error;
    std::filesystem::rename(std::filesystem::path(staged.toStdWString()), std::filesystem::path(target.toStdWString()), error);
    if (error) {
        QFile::remove(staged);
        fail(QStringLiteral("Cannot replace '%1': %2").arg(target, QString::fromStdString(error.message())));
    }
    QFile::remove(target + QStringLiteral("-shm"));
    FlushToDisk(QFileInfo(target).absolutePath());
}

void DatabaseFile::useRollbackJournal(const QString &path)
{
    settle(path);
    SqliteDatabase db(path, false);
    db.exec("PRAGMA journal_mode=DELETE");
}

qint64 DatabaseFile::bytesOnDisk(const QString &path) { return QFileInfo(path).size(); }

void DatabaseFile::backup(const QString &source, const QString &destination, TaskProgress &progress)
{
    if (QFileInfo::exists(destination))
        fail(QStringLiteral("'%1' already exists.").arg(destination));
    SqliteDatabase from(source, true);
    // One read transaction for the whole copy: the pages copied are all of one moment, and in
    // write-ahead-log mode the desks go on writing meanwhile.
    from.exec("BEGIN");
    from.exec("SELECT count(*) FROM sqlite_master");
    sqlite3 *raw = nullptr;
    const int opened = sqlite3_open_v2(QFile::encodeName(destination).constData(), &raw, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> into(raw, sqlite3_close);
    bool kept = false;
    const auto removeUnlessKept = [&] {
        if (!kept)
            for (const char *suffix : {"", "-wal", "-shm", "-journal"})
                QFile::remove(destination + QLatin1String(suffix));
    };
    try {
        if (opened != SQLITE_OK)
            fail(writeFailure(destination, opened, lastError(into.get())));
        sqlite3_backup *copy = sqlite3_backup_init(into.get(), "main", from.handle(), "main");
        if (!copy)
            fail(writeFailure(destination, sqlite3_extended_errcode(into.get()), lastError(into.get())));
        int rc = SQLITE_OK;
        while (rc == SQLITE_OK || rc == SQLITE_BUSY || rc == SQLITE_LOCKED) {
            rc = sqlite3_backup_step(copy, 512);
            progress.setMaximum(sqlite3_backup_pagecount(copy));
            progress.setValue(sqlite3_backup_pagecount(copy) - sqlite3_backup_remaining(copy));
            if (progress.cancelled())
                break;
            if (rc == SQLITE_BUSY || rc == SQLITE_LOCKED)
                QThread::msleep(20);
        }
        sqlite3_backup_finish(copy);
        progress.check();
        if (rc != SQLITE_DONE)
            fail(writeFailure(destination, sqlite3_extended_errcode(into.get()), lastError(into.get())));
        // A backup stands alone: no log beside it, readable where it is.
        char *error = nullptr;
        if (sqlite3_exec(into.get(), "PRAGMA journal_mode=DELETE", nullptr, nullptr, &error) != SQLITE_OK) {
            const QString reason = QString::fromUtf8(error ? error : "");
            sqlite3_free(error);
            fail(writeFailure(destination, sqlite3_extended_errcode(into.get()), reason));
        }
        from.exec("COMMIT");
        FlushToDisk(destination);
        kept = true;
    } catch (...) {
        removeUnlessKept();
        throw;
    }
}

QString DatabaseFile::integrityProblem(const QString &path)
{
    try {
        SqliteDatabase db(path, true);
        sqlite3_stmt *raw = nullptr;
        // Every page and every record is read and checked. The full integrity check also matches each
        // index against its table, which a page-for-page copy cannot change, at five times the cost
        // (11 s against 2 s for the 1,000,000 loans of a large school).
        if (sqlite3_prepare_v2(db.handle(), "PRAGMA quick_check(5)", -1, &raw, nullptr) != SQLITE_OK)
            return lastError(db.handle());
        const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> check(raw, sqlite3_finalize);
        QStringList lines;
        int rc;
        while ((rc = sqlite3_step(check.get())) == SQLITE_ROW)
            lines << QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(check.get(), 0)));
        if (rc != SQLITE_DONE)
            return lastError(db.handle());
        return lines == QStringList{QStringLiteral("ok")} ? QString() : lines.join(QLatin1String("; "));
    } catch (const AppError &e) {
        return e.description();
    }
}

bool DatabaseFile::inUseElsewhere(const QString &path)
{
    // Another connection holds at least a shared lock for as long as it has the file open in
    // write-ahead-log mode; an exclusive lock is had only when nobody else is there.
    sqlite3 *raw = nullptr;
    const int opened = sqlite3_open_v2(QFile::encodeName(path).constData(), &raw, SQLITE_OPEN_READWRITE, nullptr);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> db(raw, sqlite3_close);
    if (opened != SQLITE_OK)
        return false;
    const bool alone = sqlite3_exec(db.get(), "PRAGMA locking_mode=EXCLUSIVE", nullptr, nullptr, nullptr) == SQLITE_OK
                       && sqlite3_exec(db.get(), "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_exec(db.get(), "ROLLBACK", nullptr, nullptr, nullptr);
    return !alone;
}

QString DatabaseFile::changeMark(const QString &path)
{
    QStringList mark;
    for (const char *suffix : {"", "-wal"}) {
        const QFileInfo info(path + QLatin1String(suffix));
        if (info.exists())
            mark << QString::number(info.size()) + QLatin1Char('@') + QString::number(info.lastModified().toMSecsSinceEpoch());
    }
    return mark.join(QLatin1Char(' '));
}
