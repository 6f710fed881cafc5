#pragma once

#include <QString>

/// The engine a data-layer test binary runs on: SQLite always; PostgreSQL when the run is
/// told so (SHELVORA_TEST_ENGINE=postgresql) and a server is named by
/// SHELVORA_TEST_POSTGRESQL (tools/test.sh starts a private one on 127.0.0.1).
namespace TestEngine {
bool onPostgres();
/// The server's admin address for this run, or empty when there is none (the run is skipped).
QString serverAddress();
/// A fresh, empty library database: a file at sqlitePath, or a throwaway database on the
/// server (a copy of one made per process with the library schema). Returns its location.
QString makeLibrary(const QString &sqlitePath);
/// A fresh library database on the server whatever this run's engine; its address.
QString makeServerLibrary();
/// A new library database on the server belonging to a role that is not the server's superuser
/// (made for it); its address, connecting as that role. With a password the role is given it
/// (the test cluster asks the role shelvora_password for one).
QString makeServerLibraryOwnedBy(const QString &role, const QString &password = QString());
/// A new empty database on the server (no schema); its address.
QString makeEmptyServerDatabase();
/// Makes the database refuse every `operation` (INSERT, UPDATE or DELETE) on `table` with an
/// error, natively (a trigger), or only the rows meeting `when` (NEW.column = value, lower-case
/// names): tests of what a failing statement halfway through an action leaves.
void refuse(const QString &location, const QString &table, const QString &operation, const QString &when = QString());
/// Takes such a refusal away again.
void unrefuse(const QString &location, const QString &table, const QString &operation);
/// Whether a native query on a server database finds a row (what the tests look for there).
bool serverHas(const QString &location, const QString &nativeSql);
/// Removes a database made above (server databases only; files go with their folder).
void dropLibrary(const QString &location);
} // namespace TestEngine
