#pragma once

#include "PhysicalConnection.h"

#include <QString>

#include <functional>
#include <map>
#include <memory>

/// One database engine as the front doors see it: all that differs between a library in a file
/// and one on a server. The registry picks the engine by the location's scheme.
class Engine {
public:
    virtual ~Engine() = default;

    /// The engine's name and version ("SQLite 3.40.1"), for the About box.
    virtual QString version() const = 0;
    /// A new connection. Throws AppError (Cause::Unreachable when the database cannot be reached).
    virtual std::unique_ptr<PhysicalConnection> open(const QString &location, bool readOnly) const = 0;
    /// Makes location a new, empty database ready for tables; refused when it exists (a file) or
    /// holds tables (a server database). Returns what takes the making back, for a first use that fails.
    virtual std::function<void()> create(const QString &location) const = 0;
    /// Why location cannot be a database, seen before trying it (no such file, a password written
    /// into an address), or empty.
    virtual QString refusal(const QString &location) const = 0;
    /// The engine, where the database is and whether it answers (About box, System Info).
    virtual QString describe(const QString &location) const = 0;
    /// The same database always gives the same key (the pool's).
    virtual QString key(const QString &location) const = 0;
    /// Whether the database is a file on this computer: a copy is written beside it and renamed,
    /// compaction writes a compacted copy the librarian may put in its place.
    virtual bool isFile() const = 0;

    /// Compaction. A file engine writes a compacted copy to destination and returns both sizes in
    /// bytes; a server engine reclaims space in place (the library's own tables) and returns zeros.
    struct Compaction {
        qint64 before = 0;
        qint64 after = 0;
        /// Bytes as whole kilobytes, halves rounded to even (1,536 and 2,560 bytes are both 2 KB).
        static qint64 kilobytes(qint64 bytes);
    };
    virtual Compaction compact(const QString &location, const QString &destination) const = 0;
    /// Puts a compacted copy in place of the database, so that a crash leaves either one whole (files only).
    virtual void replace(const QString &location, const QString &replacement) const = 0;
};

/// The engines this program can open, keyed by the scheme a location starts with ("postgresql"
/// for postgresql://...); a location without a scheme is a file path. The program installs its
/// engines at start; the front doors ask the registry and never look at a location themselves.
class EngineRegistry {
public:
    static EngineRegistry &installed();

    void add(const QString &scheme, std::shared_ptr<const Engine> engine);
    /// The engine for location. Throws AppError when none is installed for its scheme.
    const Engine &forLocation(const QString &location) const;
    /// The file engine's name and version and every other's, for the About box.
    QStringList versions() const;
    /// The engine's refusal of location (Engine::refusal), or why no engine opens it; never throws.
    QString refusal(const QString &location) const;
    /// The engine's description of location (Engine::describe), or why no engine opens it; never throws.
    QString describe(const QString &location) const;

    /// A connection to location. A database that holds the school's learners is never written,
    /// whoever opens it and however: its connections refuse every write.
    std::unique_ptr<PhysicalConnection> open(const QString &location, bool readOnly) const;

private:
    EngineRegistry() = default;
    std::map<QString, std::shared_ptr<const Engine>> engines_;
};
