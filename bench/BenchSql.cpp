#include "BenchSql.h"

#include "BenchTimer.h"
#include "SqliteDatabase.h"

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
