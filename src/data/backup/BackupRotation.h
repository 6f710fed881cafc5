#pragma once

#include <QDateTime>
#include <QList>

/// Which backups are kept: the newest of each of the last 7 days that have one, of each of the
/// last 4 weeks and of each of the last 12 months. The newest backup is always among them.
class BackupRotation {
public:
    static constexpr int Days = 7;
    static constexpr int Weeks = 4;
    static constexpr int Months = 12;

    /// The moments of the backups to keep, newest first.
    static QList<QDateTime> keep(QList<QDateTime> taken);
};
