#include "SqliteEngine.h"

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
    return {DatabaseFile::size(location), DatabaseFile::size(destination)};
}

void SqliteEngine::replace(const QString &location, const QString &replacement) const { DatabaseFile::replace(location, replacement); }
