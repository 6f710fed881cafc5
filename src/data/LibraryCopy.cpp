#include "LibraryCopy.h"

#include "AppError.h"
#include "ConnectionPool.h"
#include "DatabaseSchema.h"
#include "DbConnection.h"
#include "Engine.h"
#include "Recordset.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <memory>

namespace {

QStringList tablesOf(const QStringList &statements)
{
    static const QRegularExpression create(QStringLiteral("^CREATE TABLE (\\w+) "), QRegularExpression::CaseInsensitiveOption);
    QStringList names;
    for (const QString &sql : statements)
        if (const QRegularExpressionMatch m = create.match(sql); m.hasMatch())
            names << m.captured(1);
    return names;
}

// A database file with its write-ahead log and shared-memory files.
void removeFile(const QString &path)
{
    for (const char *suffix : {"", "-wal", "-shm", "-journal"})
        QFile::remove(path + QLatin1String(suffix));
}

std::unique_ptr<DbConnection> open(const QString &location, bool readOnly)
{
    auto c = std::make_unique<DbConnection>();
    c->DataSource = location;
    c->ReadOnly = readOnly;
    c->Open();
    return c;
}

// Row count and the sums of the number columns of one table, as text to compare.
LibraryCopy::TableFigures figures(DbConnection &db, const QString &table, const QStringList &numberColumns)
{
    LibraryCopy::TableFigures f;
    f.table = table;
    QString sql = QStringLiteral("select count(*)");
    for (const QString &column : numberColumns)
        sql += QStringLiteral(", sum(") + column + QLatin1Char(')');
    const auto rs = db.Execute(sql + QStringLiteral(" from ") + table);
    f.rows = rs->field(0).toLongLong();
    QStringList sums;
    for (int i = 1; i < rs->fieldCount(); ++i)
        sums << (rs->field(i).isNull() ? QStringLiteral("-") : QString::number(rs->field(i).toDouble(), 'f', 4));
    f.sums = sums.join(QLatin1Char(' '));
    return f;
}

// Gives into the structure of statements and every row of the source's tables, checking each
// table's figures against the source's; the caller's transaction holds it all.
QList<LibraryCopy::TableFigures> copyTables(DbConnection &source, DbConnection &into, const QStringList &statements, const QString &from,
                                            const LibraryCopy::TableCopied &tableCopied)
{
    // The tables first and their indexes after the rows: an index built once over all the rows
    // costs a fraction of one kept up row by row.
    const auto isIndex = [](const QString &sql) { return sql.contains(QLatin1String(" INDEX "), Qt::CaseInsensitive); };
    for (const QString &sql : statements)
        if (!sql.startsWith(QLatin1String("Insert "), Qt::CaseInsensitive) && !isIndex(sql)) // rows come from the source, the structure version too
            into.Execute(sql);
    const QStringList tables = tablesOf(statements);
    QList<LibraryCopy::TableFigures> copied;
    for (const QString &table : tables) {
        std::shared_ptr<Recordset> rows;
        try {
            rows = source.Execute(QStringLiteral("select * from ") + table);
        } catch (const AppError &e) {
            throw AppError(e.number(), QStringLiteral("%1 lacks the table %2 of this release: open it in Shelvora once (its structure is "
                                                      "brought up to date), then copy it.").arg(from, table));
        }
        QStringList numbers;
        for (int c = 0; c < rows->fieldCount(); ++c) {
            const Recordset::FieldType type = rows->fieldType(c);
            if (type == Recordset::FieldType::Integer || type == Recordset::FieldType::Double || type == Recordset::FieldType::Currency
                || type == Recordset::FieldType::Bool)
                numbers << QLatin1Char('[') + rows->fieldName(c) + QLatin1Char(']');
        }
        into.BulkInsert(table, *rows);
        const LibraryCopy::TableFigures before = figures(source, table, numbers);
        const LibraryCopy::TableFigures after = figures(into, table, numbers);
        if (before.rows != after.rows || before.sums != after.sums)
            throw AppError(AppError::ProviderError, QStringLiteral("The copy of %1 does not match the original (%2 rows, sums %3; copied %4 rows, sums %5); "
                                                                   "nothing was kept.")
                                                        .arg(table).arg(before.rows).arg(before.sums).arg(after.rows).arg(after.sums));
        copied << after;
        if (tableCopied)
            tableCopied(int(copied.size()), int(tables.size()), after);
    }
    for (const QString &sql : statements)
        if (isIndex(sql))
            into.Execute(sql);
    return copied;
}

} // namespace

QList<LibraryCopy::TableFigures> LibraryCopy::copy(const QString &from, const QString &to, const TableCopied &tableCopied)
{
    const std::unique_ptr<DbConnection> source = open(from, true);
    // A school database is copied as one; anything else is a library database.
    bool school = true;
    try {
        source->Execute(QStringLiteral("select count(*) from Learner_Info"));
    } catch (const AppError &) {
        school = false;
    }
    const QStringList statements = school ? DatabaseSchema::centralStatements() : DatabaseSchema::libraryStatements();
    // Every table as of one moment, while desks go on working on the source.
    source->BeginTrans();
    // A file is written under a name of its own and takes its real name only once it checks out:
    // a copy that fails leaves nothing behind to block the next try. A server database is refused
    // when it holds tables; what is put in to prepare it goes again when the copy does not go through.
    const Engine &engine = EngineRegistry::installed().forLocation(to);
    const bool file = engine.isFile();
    if (file && QFileInfo::exists(to))
        throw AppError(AppError::ProviderError, QStringLiteral("Database '%1' already exists.").arg(to));
    const QString target = file ? to + QStringLiteral(".partial") : to;
    if (file)
        removeFile(target);
    const std::function<void()> undoCreation = engine.create(target);
    QList<TableFigures> copied;
    try {
        const std::unique_ptr<DbConnection> into = open(target, false);
        into->RunTransaction([&] {
            copied = copyTables(*source, *into, statements, from, tableCopied);
            return true;
        });
        // The copy's own connection could write; later ones learn afresh what the database is
        // (a school database is opened read-only).
        into->Close();
        ConnectionPool::shared().closeIdle(target);
        if (file && !QFile::rename(target, to))
            throw AppError(AppError::ProviderError, QStringLiteral("The copy could not be given its name %1.").arg(to));
    } catch (...) {
        ConnectionPool::shared().closeIdle(target);
        undoCreation();
        throw;
    }
    return copied;
}

QList<LibraryCopy::TableFigures> LibraryCopy::replaceContents(const QString &from, const QString &to, const TableCopied &tableCopied)
{
    const std::unique_ptr<DbConnection> source = open(from, true);
    source->BeginTrans();
    const QStringList statements = DatabaseSchema::libraryStatements();
    const std::unique_ptr<DbConnection> into = open(to, false);
    QList<TableFigures> copied;
    // The old tables go and the copy's come in one transaction: a failure leaves the old ones.
    into->RunTransaction([&] {
        for (const QString &table : tablesOf(statements))
            if (into->HoldsTable(table))
                into->Execute(QStringLiteral("DROP TABLE ") + table);
        copied = copyTables(*source, *into, statements, from, tableCopied);
        return true;
    });
    into->Close();
    ConnectionPool::shared().closeIdle(to);
    return copied;
}
