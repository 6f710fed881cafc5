#pragma once

#include "LibraryFigures.h"

#include <QDateTime>
#include <QList>
#include <QString>

class TaskProgress;

/// Backups of the library database into a folder of the school's choice (and a second one, a USB
/// stick or a network share). Each backup is an SQLite file named for the minute it was taken,
/// "shelvora-library-YYYY-MM-DD-HHMM.db", and carries that name only once it has been written,
/// flushed and read back whole; older ones are thinned out (BackupRotation). The school database
/// is not ours and is never backed up. All failures are AppErrors in the librarian's words.
class LibraryBackup {
public:
    /// The per-user data folder's "Backups", used when the school has not chosen a folder.
    static QString defaultFolder();
    static QString fileName(const QDateTime &taken);

    struct Entry {
        QString path;
        QDateTime taken;
    };
    /// The backups in folder, newest first (files under a backup's name only).
    static QList<Entry> list(const QString &folder);

    /// Reads a backup (or any library file) through and says what it holds. Throws AppError naming
    /// what is wrong (not a database, damaged, not a library) when it could not be restored.
    static LibraryFigures check(const QString &file);

    struct Taken {
        QString file;
        LibraryFigures figures;
        QString secondFile;    // the copy in the second folder, when it was written
        QString secondProblem; // why the second folder has no copy, when one was asked for
    };
    /// Backs library up into folder at the moment now, then copies the backup into second (when not
    /// empty) and thins out both folders. Throws AppError when folder has no good backup afterwards;
    /// a second folder that fails is told in secondProblem.
    static Taken take(const QString &library, const QString &folder, const QString &second, const QDateTime &now, TaskProgress &progress);

    /// Removes the backups in folder that BackupRotation does not keep; returns how many went.
    static int prune(const QString &folder);

    /// Restores library from file: checks file, refuses while anyone else is connected, keeps the
    /// library as it is now in asideFolder as "before-restore-YYYY-MM-DD-HHMM.db", then puts the
    /// backup in place in one step. Returns the set-aside file. Throws AppError (nothing changed).
    static QString restore(const QString &library, const QString &file, const QString &asideFolder, const QDateTime &now,
                           TaskProgress &progress);

private:
    static void requireFolder(const QString &folder);
};
