#pragma once

#include <QString>

class TaskProgress;

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
    /// Writes a consistent copy of the database at source into destination (a new file) with
    /// SQLite's online backup, a few hundred pages a step, while other connections keep writing:
    /// the copy is the database as one read transaction saw it. The copy is one self-contained
    /// file (rollback journal), flushed to disk. Throws AppError; a failed or cancelled copy
    /// leaves no destination behind.
    static void backup(const QString &source, const QString &destination, TaskProgress &progress);
    /// What SQLite's quick check finds wrong with the file (its first lines), or empty: every page
    /// and record read back (a truncated, torn or overwritten file is found).
    static QString integrityProblem(const QString &path);
    /// Whether a connection of another program (another desk) has the file open.
    static bool inUseElsewhere(const QString &path);
    /// Changes whenever a write has been committed to the file (its and its log's size and time).
    static QString changeMark(const QString &path);
    /// Size in bytes of the main file.
    static qint64 bytesOnDisk(const QString &path);
};
