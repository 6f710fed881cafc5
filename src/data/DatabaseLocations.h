#pragma once

#include <QString>

#include <memory>

class DbConnection;

// Where the two databases are, as start-up and the setup screen chose them.
extern QString LibraryDatabasePath;
extern QString CentralDatabasePath;
/// The school's name from the school administration database, for headings.
extern QString SchoolName;

/// A connection of its own to a database, opened; a failure is reported under "Central Module"
/// (failureText and the engine's reason) and leaves it unopened. The school database goes
/// through SchoolDatabase, the library database through clsDataObject or OpenLibraryDatabase.
std::unique_ptr<DbConnection> OpenDatabase(const QString &path, bool readOnly, const QString &failureText);
/// A library connection for work that needs one transaction (the loan routines); failures are
/// reported ("Library Database cannot be opened."). Read only when a file is only being looked at.
std::unique_ptr<DbConnection> OpenLibraryDatabase(bool readOnly = false);
