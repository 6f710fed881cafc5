#pragma once

#include <QString>
#include <QStringList>

/// The first column of every row of a Jet query on a database.
QStringList firstRows(const QString &location, const QString &sql);
/// One issue of a copy on the shelf to a learner and its return, as the desk's loan engine does
/// them (the library is LibraryDatabasePath); the issue's time in milliseconds.
double issueAndReturn(const QString &copy, int member);
/// Copies on the shelf that can be lent (normal loans, not reserved), at most count.
QStringList copiesOnTheShelf(const QString &location, int count);
