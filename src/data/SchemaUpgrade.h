#pragma once

#include <QString>

class DbConnection;

/// Brings a library database's structure up to this release's, step by step, at start-up. The
/// structure version is kept in the library database (tblLibVersion, one row). Each step first
/// looks whether the database still lacks what it adds (the probes, as older releases made them),
/// then adds it and raises the version in one transaction: a step that fails leaves the database
/// at the version before it, and is tried again at the next start. A library made by a newer
/// release is left as it is and opened read-only.
class SchemaUpgrade {
public:
    struct Outcome {
        enum Kind { UpToDate, Upgraded, Failed, Newer };
        Kind kind = UpToDate;
        int version = 0;    // the structure version the library is at afterwards
        QString failedStep; // Failed: what could not be added, in the librarian's words
    };
    /// Upgrades the library database at location. Throws AppError when it cannot be opened.
    static Outcome run(const QString &location);
    /// The structure version a library database keeps (0 when it keeps none yet).
    static int version(DbConnection &db);
    /// What the librarian is told of an outcome; empty when there is nothing to tell.
    static QString message(const Outcome &outcome);
};
