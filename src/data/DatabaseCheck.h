#pragma once

#include <QString>

/// Whether a location (a file path or a postgresql:// address) holds a database this program can
/// use for a purpose, as start-up and the setup screen check it. Each answers empty when it does,
/// else why not in plain words (never the engine's error text alone). Nothing is written.
namespace DatabaseCheck {
/// What a file or server database that is not a library is called when it is chosen as one.
QString notALibraryText();
/// A library database (the school's database given instead is named as such).
QString library(const QString &location);
/// The school administration database.
QString school(const QString &location);
} // namespace DatabaseCheck
