#pragma once

#include <QString>

/// Backups of the large school's library: a backup and a restore of the SQLite library (and of the
/// library on a PostgreSQL server when serverAdmin names one), and the desk's issue and return
/// while a backup runs against their usual time.
void benchBackups(const QString &library, const QString &serverAdmin);
