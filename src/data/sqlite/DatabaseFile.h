#pragma once

#include <QString>

/// Whole-file work on a database: compaction and replacing the file safely.
class DatabaseFile {
public:
    /// Folds the write-ahead log into the main file and closes the pooled connections to it,
    /// so the file alone holds the database (before measuring, copying or replacing it).
    static void settle(const QString &path);
    /// Writes a compacted copy of the database at source to destination (which must not exist).
    static void compactCopy(const QString &source, const QString &destination);
    /// Puts replacement in place of target: written beside it, flushed, then renamed over it,
    /// so a crash at any moment leaves either the old or the new database whole.
    static void replace(const QString &target, const QString &replacement);
    /// Leaves a database in rollback-journal mode, as another program's database is kept, so that
    /// read-only opens leave no log files beside it (the school database after it is generated).
    static void useRollbackJournal(const QString &path);
    /// Size in bytes of the main file.
    static qint64 size(const QString &path);
};
