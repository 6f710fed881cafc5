#include "PostgresEngine.h"

#include "AppError.h"
#include "ConnectionPool.h"
#include "LibraryCopy.h"
#include "TaskProgress.h"
#include "PostgresDatabase.h"

#include <libpq-fe.h>

void PostgresEngine::install(EngineRegistry &registry)
{
    auto engine = std::make_shared<PostgresEngine>();
    registry.add(QStringLiteral("postgresql"), engine);
    registry.add(QStringLiteral("postgres"), engine);
}

QString PostgresEngine::version() const
{
    const int v = PQlibVersion();
    return QStringLiteral("libpq %1.%2").arg(v / 10000).arg(v % 10000);
}

std::unique_ptr<PhysicalConnection> PostgresEngine::open(const QString &location, bool readOnly) const
{
    return std::make_unique<PostgresDatabase>(location, readOnly);
}

std::function<void()> PostgresEngine::create(const QString &location) const
{
    const bool addedCitext = PostgresDatabase::prepareEmptyDatabase(location);
    return [location, addedCitext] {
        try {
            PostgresDatabase::undoPreparation(location, addedCitext);
        } catch (const AppError &) {
            // The server went away meanwhile: the failure that called for the undo is what is told.
        }
    };
}

QString PostgresEngine::refusal(const QString &location) const
{
    if (PostgresDatabase::holdsPassword(location))
        return QStringLiteral("Please leave the password out of the address: put it in the ~/.pgpass file of this computer's user "
                              "(or PGPASSWORD), so it is never stored in the settings.");
    return QString();
}

QString PostgresEngine::describe(const QString &location) const { return PostgresDatabase::status(location); }

Engine::Compaction PostgresEngine::compact(const QString &location, const QString &) const
{
    PostgresDatabase::vacuum(location);
    return {};
}

void PostgresEngine::replace(const QString &location, const QString &) const
{
    throw AppError(AppError::ProviderError, QStringLiteral("%1 is on a server; it is compacted in place.").arg(location));
}

namespace {
// The copy's table-by-table progress as the runner's bar.
LibraryCopy::TableCopied reportTo(TaskProgress &progress)
{
    return [&progress](int done, int total, const LibraryCopy::TableFigures &) {
        progress.setMaximum(total);
        progress.setValue(done);
        progress.check();
    };
}
} // namespace

void PostgresEngine::backup(const QString &location, const QString &file, TaskProgress &progress) const
{
    LibraryCopy::copy(location, file, reportTo(progress));
}

void PostgresEngine::restore(const QString &location, const QString &file, TaskProgress &progress) const
{
    LibraryCopy::replaceContents(file, location, reportTo(progress));
}

QString PostgresEngine::integrityProblem(const QString &) const { return QString(); }

int PostgresEngine::otherConnections(const QString &location) const
{
    ConnectionPool::shared().closeIdle(location);
    return PostgresDatabase::otherSessions(location);
}

QString PostgresEngine::changeMark(const QString &location) const { return PostgresDatabase::changeMark(location); }

void PostgresEngine::standAlone(const QString &) const {}
