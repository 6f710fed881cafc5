#pragma once

#include "LibraryBackup.h"

#include <QDateTime>
#include <QString>

class SettingsStore;
class TaskProgress;

/// When the library is backed up and how the last backup went, as the school's settings keep it:
/// the folders, the library's change mark at the last backup, the last failure. Shared by the
/// main menu (automatic backups, "Back Up Now", the status line) and the command line.
class BackupSchedule {
public:
    BackupSchedule(SettingsStore &settings, QString library);

    /// The folder the school chose, or the per-user data folder's "Backups".
    QString folder() const;
    QString secondFolder() const;

    /// At start-up: when no backup in the folder is younger than a day.
    bool dueAtStart(const QDateTime &now) const;
    /// When the main menu closes: when the library has changed since the last backup.
    bool dueAtClose() const;

    /// Takes a backup now and records how it went. Throws AppError (recorded as the last failure).
    LibraryBackup::Taken run(const QDateTime &now, TaskProgress &progress);
    /// The last failure's text when it is new since it was last told (it is told once), or empty.
    QString untoldFailure();

    struct Status {
        QString text;
        bool warning = false;
    };
    /// "Last backup: 2026-11-24 16:05 (D:\Backups)", a warning when the newest good backup is more
    /// than 7 days old or the last backup failed.
    Status status(const QDateTime &now) const;

private:
    QString mark() const;

    SettingsStore &settings_;
    QString library_;
};
