#include "SqliteEngine.h"

#include "ConnectionPool.h"
#include "DatabaseFile.h"
#include "SqliteDatabase.h"

#include <QFile>
#include <QFileInfo>

void SqliteEngine::install(EngineRegistry &registry) { registry.add(QString(), std::make_shared<SqliteEngine>()); }

QString SqliteEngine::version() const { return QStringLiteral("SQLite ") + SqliteDatabase::engineVersion(); }

std::unique_ptr<PhysicalConnection> SqliteEngine::open(const QString &location, bool readOnly) const
{
    return std::make_unique<SqliteDatabase>(location, readOnly);
}

std::function<void()> SqliteEngine::create(const QString &location) const
{
    SqliteDatabase::createFile(location);
    // The file with its write-ahead log and shared-memory files.
    return [location] {
        for (const char *suffix : {"", "-wal", "-shm", "-journal"})
            QFile::remove(location + QLatin1String(suffix));
    };
}

QString SqliteEngine::refusal(const QString &location) const
{
    return QFileInfo(location).isFile() ? QString() : QStringLiteral("There is no file %1.").arg(location);
}

QString SqliteEngine::describe(const QString &location) const { return location + QStringLiteral(" (SQLite file)"); }

QString SqliteEngine::key(const QString &location) const
{
    const QFileInfo info(location);
    return info.exists() ? info.absoluteFilePath() : location;
}

Engine::Compaction SqliteEngine::compact(const QString &location, const QString &destination) const
{
    DatabaseFile::compactCopy(location, destination);
    return {DatabaseFile::bytesOnDisk(location), DatabaseFile::bytesOnDisk(destination)};
}

void SqliteEngine::replace(const QString &location, const QString &replacement) const { DatabaseFile::replace(location, replacement); }

void SqliteEngine::backup(const QString &location, const QString &file, TaskProgress &progress) const
{
    DatabaseFile::backup(location, file, progress);
}

void SqliteEngine::restore(const QString &location, const QString &file, TaskProgress &) const { DatabaseFile::replace(location, file); }

QString SqliteEngine::integrityProblem(const QString &location) const { return DatabaseFile::integrityProblem(location); }

int SqliteEngine::otherConnections(const QString &location) const
{
    // This program's idle connections are its own to close; any lock left is another program's.
    ConnectionPool::shared().closeIdle(location);
    return DatabaseFile::inUseElsewhere(location) ? 1 : 0;
}

QString SqliteEngine::changeMark(const QString &location) const { return DatabaseFile::changeMark(location); }

void SqliteEngine::standAlone(const QString &location) const { DatabaseFile::useRollbackJournal(location); }
