#pragma once

#include "PhysicalConnection.h"

#include <QString>

#include <functional>
#include <map>
#include <memory>

class TaskProgress;

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

    // Backups. A backup of any library is an SQLite file, so it restores anywhere.
    /// Writes the database as of one moment into file (new), while desks keep working. Throws
    /// AppError; nothing is left at file when it fails or is cancelled.
    virtual void backup(const QString &location, const QString &file, TaskProgress &progress) const = 0;
    /// Puts the contents of a backup file in place of the database in one step (a rename, or one
    /// transaction on a server). Throws AppError and leaves the database as it was.
    virtual void restore(const QString &location, const QString &file, TaskProgress &progress) const = 0;
    /// Leaves a database file standing alone, with no log beside it, so that it can be copied,
    /// renamed and read anywhere (a backup). Nothing for a server database.
    virtual void standAlone(const QString &location) const = 0;
    /// What the engine's own check finds wrong with the database, or empty.
    virtual QString integrityProblem(const QString &location) const = 0;
    /// How many connections other than this program's are open on the database (0 or more);
    /// a restore waits until there are none.
    virtual int otherConnections(const QString &location) const = 0;
    /// A text that changes whenever a write has been committed (on a server, other databases' too):
    /// a backup is due, or the web catalogue's index old, when it differs from the one seen last.
    virtual QString changeMark(const QString &location) const = 0;
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
