#pragma once

#include <QString>

struct sqlite3;

/// Milliseconds to prepare and step a Jet statement's SQLite translation through the C API,
/// reading every value as a reader must: the yardstick the screens are measured against.
double stepThroughCApi(sqlite3 *db, const QString &jet, int *rows);

/// The stock list's "Show All" statement, as the screen writes it.
extern const QString ShowAll;

/// Runs one command on a PostgreSQL server as its administrator (creating and dropping the
/// benchmarks' databases); false, with the server's words on stderr, when it is refused.
bool serverCommand(const QString &server, const QString &sql);
/// Creates a database of this run's own on the server (name: its prefix); its address, or empty
/// when the server refuses. The caller drops it with serverCommand.
QString newServerDatabase(const QString &server, const QString &prefix, QString *name);
