#include "Engine.h"

#include "AppError.h"

#include <QRegularExpression>
#include <QSet>

#include <cmath>

namespace {
// "postgresql://host/db" names its scheme; "/srv/library.db" and "C:\library.db" do not.
QString schemeOf(const QString &location)
{
    static const QRegularExpression scheme(QStringLiteral("^([A-Za-z][A-Za-z0-9+.-]+)://"));
    const QRegularExpressionMatch m = scheme.match(location);
    return m.hasMatch() ? m.captured(1).toLower() : QString();
}
} // namespace

qint64 Engine::Compaction::kilobytes(qint64 bytes) { return qint64(std::nearbyint(double(bytes) / 1024.0)); }

EngineRegistry &EngineRegistry::installed()
{
    static EngineRegistry registry;
    return registry;
}

void EngineRegistry::add(const QString &scheme, std::shared_ptr<const Engine> engine) { engines_[scheme.toLower()] = std::move(engine); }

const Engine &EngineRegistry::forLocation(const QString &location) const
{
    const auto it = engines_.find(schemeOf(location));
    if (it == engines_.end())
        throw AppError(AppError::ProviderError, QStringLiteral("Shelvora cannot open databases at %1.").arg(location));
    return *it->second;
}

QStringList EngineRegistry::versions() const
{
    QStringList names;
    QSet<const Engine *> seen;
    for (const auto &[scheme, engine] : engines_)
        if (!seen.contains(engine.get())) {
            seen.insert(engine.get());
            names << engine->version();
        }
    return names;
}

QString EngineRegistry::refusal(const QString &location) const
{
    try {
        return forLocation(location).refusal(location);
    } catch (const AppError &e) {
        return e.description();
    }
}

QString EngineRegistry::describe(const QString &location) const
{
    try {
        return forLocation(location).describe(location);
    } catch (const AppError &e) {
        return e.description();
    }
}

std::unique_ptr<PhysicalConnection> EngineRegistry::open(const QString &location, bool readOnly) const
{
    std::unique_ptr<PhysicalConnection> connection = forLocation(location).open(location, readOnly);
    if (!readOnly && connection->holdsTable(QStringLiteral("Learner_Info")))
        connection->refuseWrites();
    return connection;
}
