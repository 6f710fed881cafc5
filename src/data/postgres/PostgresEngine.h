#pragma once

#include "Engine.h"

/// The server engine: a database on PostgreSQL, named by its address (postgresql://user@host:port/db).
class PostgresEngine : public Engine {
public:
    /// Installs the engine for postgresql:// and postgres:// addresses.
    static void install(EngineRegistry &registry);

    QString version() const override;
    std::unique_ptr<PhysicalConnection> open(const QString &location, bool readOnly) const override;
    std::function<void()> create(const QString &location) const override;
    QString refusal(const QString &location) const override;
    QString describe(const QString &location) const override;
    QString key(const QString &location) const override { return location; }
    bool isFile() const override { return false; }
    Compaction compact(const QString &location, const QString &destination) const override;
    void replace(const QString &location, const QString &replacement) const override;
    void backup(const QString &location, const QString &file, TaskProgress &progress) const override;
    void restore(const QString &location, const QString &file, TaskProgress &progress) const override;
    void standAlone(const QString &location) const override;
    QString integrityProblem(const QString &location) const override;
    int otherConnections(const QString &location) const override;
    QString changeMark(const QString &location) const override;
};
