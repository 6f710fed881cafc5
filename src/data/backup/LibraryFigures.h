#pragma once

#include <QString>

/// What a library holds, in the three numbers a librarian recognises a backup by.
struct LibraryFigures {
    qint64 items = 0;
    qint64 openLoans = 0;
    qint64 membersWithFines = 0;

    /// Reads them from a library database. Throws AppError when it is not one.
    static LibraryFigures of(const QString &location);
    bool operator==(const LibraryFigures &) const = default;
};
