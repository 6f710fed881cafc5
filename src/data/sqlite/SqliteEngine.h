#pragma once

#include "Engine.h"

/// The embedded engine: a database is an SQLite file, named by its path.
class SqliteEngine : public Engine {
public:
    /// Installs the engine for locations without a scheme (file paths).
    static void install(EngineRegistry &registry);

    QString version() const override;
    std::unique_ptr<PhysicalConnection> open(const QString &location, bool readOnly) const override;
    std::function<void()> create(const QString &location) const override;
    QString refusal(const QString &location) const override;
    QString describe(const QString &location) const override;
    QString key(const QString &location) const override;
    bool isFile() const override { return true; }
    Compaction compact(const QString &location, const QString &destination) const override;
    void replace(const QString &location, const QString &replacement) const override;
    void backup(const QString &location, const QString &file, TaskProgress &progress) const override;
    void restore(const QString &location, const QString &file, TaskProgress &progress) const override;
    void standAlone(const QString &location) const override;
    QString integrityProblem(const QString &location) const override;
    int otherConnections(const QString &location) const override;
    QString changeMark(const QString &location) const override;
};
