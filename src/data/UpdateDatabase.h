#pragma once

#include <QString>

#include <memory>

#include "AppError.h"

class DbConnection;

// Process-wide values: where the two databases are.
extern QString LibraryDatabasePath;
extern QString CentralDatabasePath;
/// The school's name from the school administration database, for headings.
extern QString SchoolName;

inline constexpr const char *JetProvider = "Microsoft.jet.oledb.4.0";
inline constexpr const char *LibraryPassword = "KestrinPol";
inline constexpr const char *CentralPassword = "Tev@lno";

/// A connection of its own to a database, opened; a failure is reported under "Central Module"
/// (failureText and the engine's reason) and leaves it unopened. The school database goes
/// through SchoolDatabase, the library database through clsDataObject or OpenLibraryDatabase.
std::unique_ptr<DbConnection> OpenDatabase(const QString &path, const char *password, bool readOnly, const QString &failureText);
/// A library connection for work that needs one transaction (the loan routines); failures are
/// reported ("Library Database cannot be opened."). Read only when a file is only being looked at.
std::unique_ptr<DbConnection> OpenLibraryDatabase(bool readOnly = false);

/// The one error report of the system: an OK box titled "Error : " + number.
void ReportError(const QString &location, const QString &description, const QString &procedure, double number);
/// The same for an error caught by a handler's trap. An error that only a typed value causes (a
/// text too long for its column, a NUL character) is told in a plain user message instead;
/// numbers are checked by the screens' fields.
void ReportError(const QString &location, const QString &procedure, const AppError &error);
/// The old runtime's number-to-text conversion: a leading blank for non-negative numbers.
QString NumberText(double number);

/// The one error trap of a handler: runs work, and an AppError it throws is reported as the
/// handler's (location, procedure); false then. A screen that reports under another screen's name
/// keeps that label on purpose; it is pinned by its tests.
template <typename Work> bool Trap(const QString &location, const QString &procedure, Work &&work)
{
    try {
        work();
        return true;
    } catch (const AppError &e) {
        ReportError(location, procedure, e);
        return false;
    }
}

/// The same, with cleanup run before the report (closing what the work left open).
template <typename Work, typename Cleanup> bool Trap(const QString &location, const QString &procedure, Work &&work, Cleanup &&cleanup)
{
    try {
        work();
        return true;
    } catch (const AppError &e) {
        cleanup();
        ReportError(location, procedure, e);
        return false;
    }
}
