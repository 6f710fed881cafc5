#pragma once

#include <QString>
#include <QStringList>

#include <functional>

/// Copies a whole Shelvora database (the library's, or a school database) from one location to
/// another, between engines: an SQLite file and a PostgreSQL server database, either way. The
/// target must be new (a file that does not exist) or empty (a server database without tables);
/// it is given the current structure and every row in one transaction, and the copy is kept only
/// when every table's row count and the sums of its number columns equal the source's.
class LibraryCopy {
public:
    struct TableFigures {
        QString table;
        qint64 rows = 0;
        QString sums; // the sums of the number columns, as compared
    };
    /// Told after each table: how many of how many are copied, and the table's figures.
    using TableCopied = std::function<void(int done, int total, const TableFigures &table)>;
    /// Throws AppError (nothing kept on the target) when the copy cannot be made or does not check out.
    static QList<TableFigures> copy(const QString &from, const QString &to, const TableCopied &tableCopied = {});
    /// Puts the tables and rows of the library database from in place of those of the library at to
    /// (a server database), in one transaction on to. Throws AppError and leaves to as it was.
    static QList<TableFigures> replaceContents(const QString &from, const QString &to, const TableCopied &tableCopied = {});
};
