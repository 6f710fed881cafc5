#include "LibraryCopy.h"

#include "AppError.h"
#include "ConnectionPool.h"
#include "DatabaseSchema.h"
#include "DbConnection.h"
#include "Recordset.h"
#include "SqlText.h"

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

// A value as a Jet literal, so the target's dialect writes it as its own.
QString literal(const Field &f, Recordset::FieldType type)
{
    if (f.isNull())
        return QStringLiteral("Null");
    if (type == Recordset::FieldType::Currency)
        return f.toMoney().toSqlText();
    switch (f.value().typeId()) {
    case QMetaType::Bool: return f.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QMetaType::QDate: return QLatin1Char('#') + f.toDate().toString(Qt::ISODate) + QLatin1Char('#');
    case QMetaType::QDateTime:
        return QLatin1Char('#') + f.toDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")) + QLatin1Char('#');
    case QMetaType::Int:
    case QMetaType::LongLong:
        return QString::number(f.toLongLong());
    case QMetaType::Double: return QString::number(f.toDouble(), 'g', 17);
    default: return QLatin1Char('\'') + Safesql(f.toString()) + QLatin1Char('\'');
    }
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

} // namespace

QList<LibraryCopy::TableFigures> LibraryCopy::copy(const QString &from, const QString &to)
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
    createDatabaseFile(to); // refuses a file that exists or a server database that holds tables
    const std::unique_ptr<DbConnection> target = open(to, false);
    QList<TableFigures> copied;
    target->BeginTrans();
    try {
        for (const QString &sql : statements)
            if (!sql.startsWith(QLatin1String("Insert "), Qt::CaseInsensitive)) // rows come from the source, the structure version too
                target->Execute(sql);
        for (const QString &table : tablesOf(statements)) {
            std::shared_ptr<Recordset> rows;
            try {
                rows = source->Execute(QStringLiteral("select * from ") + table);
            } catch (const AppError &e) {
                throw AppError(e.number(), QStringLiteral("%1 lacks the table %2 of this release: open it in Shelvora once (its structure is "
                                                          "brought up to date), then copy it.").arg(from, table));
            }
            QStringList names, numbers;
            for (int c = 0; c < rows->fieldCount(); ++c) {
                names << QLatin1Char('[') + rows->fieldName(c) + QLatin1Char(']');
                const Recordset::FieldType type = rows->fieldType(c);
                if (type == Recordset::FieldType::Integer || type == Recordset::FieldType::Double || type == Recordset::FieldType::Currency
                    || type == Recordset::FieldType::Bool)
                    numbers << names.back();
            }
            const QString insert = QStringLiteral("Insert into ") + table + QStringLiteral(" (") + names.join(QLatin1Char(','))
                                   + QStringLiteral(") Values (");
            for (rows->MoveFirst(); !rows->atEnd(); rows->MoveNext()) {
                QStringList values;
                for (int c = 0; c < rows->fieldCount(); ++c)
                    values << literal(rows->field(c), rows->fieldType(c));
                target->Execute(insert + values.join(QLatin1Char(',')) + QLatin1Char(')'));
            }
            const TableFigures before = figures(*source, table, numbers);
            const TableFigures after = figures(*target, table, numbers);
            if (before.rows != after.rows || before.sums != after.sums)
                throw AppError(AppError::ProviderError, QStringLiteral("The copy of %1 does not match the original (%2 rows, sums %3; copied %4 rows, sums %5); "
                                                                       "nothing was kept.")
                                                            .arg(table).arg(before.rows).arg(before.sums).arg(after.rows).arg(after.sums));
            copied << after;
        }
        target->CommitTrans();
    } catch (...) {
        target->RollbackTrans();
        throw;
    }
    // The copy's own connection could write; later ones learn afresh what the database is
    // (a school database is opened read-only).
    target->Close();
    ConnectionPool::shared().closeIdle(to);
    return copied;
}
