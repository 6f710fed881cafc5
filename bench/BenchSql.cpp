#include "BenchSql.h"

#include "BenchTimer.h"
#include "SqliteDatabase.h"

#include <QCoreApplication>
#include <QUrl>

#include <libpq-fe.h>
#include <sqlite3.h>

#include <cstdio>

double stepThroughCApi(sqlite3 *db, const QString &jet, int *rows)
{
    const QByteArray utf8 = jet.toUtf8();
    const std::string native = SqliteDatabase::sharedTranslator().translate(std::string_view(utf8.constData(), size_t(utf8.size()))).sql;
    return Samples::measure([&] {
        sqlite3_stmt *stmt = nullptr;
        sqlite3_prepare_v2(db, native.c_str(), -1, &stmt, nullptr);
        const int columns = sqlite3_column_count(stmt);
        size_t bytes = 0;
        *rows = 0;
        while (sqlite3_step(stmt) == SQLITE_ROW) {
            ++*rows;
            for (int c = 0; c < columns; ++c) {
                switch (sqlite3_column_type(stmt, c)) {
                case SQLITE_INTEGER: bytes += size_t(sqlite3_column_int64(stmt, c) & 1); break;
                case SQLITE_FLOAT: bytes += sqlite3_column_double(stmt, c) > 0 ? 1 : 0; break;
                case SQLITE_NULL: break;
                default: bytes += size_t(sqlite3_column_bytes(stmt, c)) + (sqlite3_column_text(stmt, c) ? 1 : 0);
                }
            }
        }
        sqlite3_finalize(stmt);
        if (bytes == 1)
            std::printf(" "); // keeps the reads from being optimised away
    });
}

// The stock list's "Show All" statement, as the screen writes it.
const QString ShowAll = QStringLiteral(
    " SELECT i.ItemID, i.AccessionID, i.CategoryID, c.Category, i.SubCategoryID, "
    " sc.SubCategory, i.Title, (a1.Authorsurname+', '+a1.Authorfirstname) AS Author1,(a2.Authorsurname+', '+a2.Authorfirstname) AS Author2, "
    " i.classificationno, i.ReferenceItem, i.Restricted, LoanType "
    ", i.ShelfNumber, i.ISBN, i.Cost, i.DatePurchased"
    " FROM ((((((tblLibItems AS i INNER JOIN tblLibCategories AS c ON i.CategoryID = c.CategoryID) LEFT JOIN tblLibSeries AS s ON i.SeriesID = s.SeriesID)"
    " LEFT JOIN tblLibSubCategories AS sc ON i.SubCategoryID=sc.SubCategoryID) LEFT JOIN tblLibItemLanguages AS il ON il.ItemLanguageID=i.ItemLanguageID)"
    " Left join tblLibAuthors as a1 on (a1.AuthorID = i.Author1)) Left join tblLibAuthors as a2 on (a2.AuthorID = i.Author2) )"
    " where i.PhasedOut=False   Order By Title, AccessionID");


bool serverCommand(const QString &server, const QString &sql)
{
    PGconn *conn = PQconnectdb(server.toUtf8().constData());
    PGresult *r = PQexec(conn, sql.toUtf8().constData());
    const bool ok = PQresultStatus(r) == PGRES_COMMAND_OK;
    if (!ok)
        std::fprintf(stderr, "%s", PQerrorMessage(conn));
    PQclear(r);
    PQfinish(conn);
    return ok;
}

QString newServerDatabase(const QString &server, const QString &prefix, QString *name)
{
    *name = prefix + QString::number(QCoreApplication::applicationPid());
    if (!serverCommand(server, QStringLiteral("CREATE DATABASE %1").arg(*name)))
        return QString();
    QUrl url(server);
    url.setPath(QLatin1Char('/') + *name);
    return url.toString();
}
