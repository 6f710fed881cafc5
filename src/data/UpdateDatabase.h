#pragma once

#include <QString>

#include <memory>

class AppError;
class DbConnection;

// Process-wide values: where the two databases are, and the two long-lived connections.
extern QString LibraryDatabasePath;
extern QString CentralDatabasePath;
extern std::shared_ptr<DbConnection> LibraryConnection;
extern std::shared_ptr<DbConnection> CentralConnection;
/// The school's name from the school administration database, for headings.
extern QString SchoolName;

inline constexpr const char *JetProvider = "Microsoft.jet.oledb.4.0";
inline constexpr const char *LibraryPassword = "KestrinPol";
inline constexpr const char *CentralPassword = "Tev@lno";

/// Opens CentralConnection (read only: this program never writes the school's database).
/// Failures are reported ("Database cannot be opened.") and leave it unopened.
void OpenCentralDatabase();
/// Closes and empties CentralConnection; errors are ignored.
void CloseCentralDatabase();
/// Opens LibraryConnection; failures are reported ("Library Database cannot be opened.").
/// Read only when a file is only being looked at (to find out whether it is a library database).
void OpenLibraryDatabase(bool readOnly = false);
/// Closes and empties LibraryConnection; errors are ignored.
void CloseLibraryDatabase();

/// The one error report of the system: an OK box titled "Error : " + number.
void ReportError(const QString &location, const QString &description, const QString &procedure, double number);
/// The same for an error caught by a handler's trap. An error that only a typed value causes (a
/// text too long for its column, a NUL character) is told in a plain user message instead;
/// numbers are checked by the screens' fields.
void ReportError(const QString &location, const QString &procedure, const AppError &error);
/// The old runtime's number-to-text conversion: a leading blank for non-negative numbers.
QString NumberText(double number);
