#pragma once

#include <QString>

/// The library database on a PostgreSQL server (the address of an admin database on it): the large
/// school's library copied there, then the desk's issue and return, "Show All" against libpq read
/// directly, and four desk processes at once.
void benchPostgres(const QString &schoolFolder, const QString &serverAdmin);
/// One of the four desks (a process of its own): issues, renews and returns its share of the copies
/// and prints each action's time in milliseconds, one per line.
int runDeskWorker(const QString &library, const QString &central, int desk, int desks, int items);
