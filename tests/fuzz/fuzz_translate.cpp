// libFuzzer target: Jet translation alone. A finding is a sanitizer report, an exception other
// than JetError, or a translation served from the shape cache that differs from a fresh one.
#include "JetError.h"
#include "JetTranslator.h"
#include "PostgresDialect.h"
#include "SqliteDialect.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

std::string outcome(JetTranslator &translator, std::string_view sql)
{
    try {
        const TranslatedStatement ts = translator.translate(sql);
        return std::to_string(int(ts.kind)) + ":" + ts.sql + "|" + ts.table + "|" + ts.column;
    } catch (const JetError &e) {
        return "error " + std::to_string(e.number()) + ": " + e.what();
    }
}

// One translator keeps every shape it has seen across inputs; the other starts empty each time.
void compare(JetTranslator &warm, JetTranslator &fresh, std::string_view sql)
{
    fresh.clearCache();
    const std::string expected = outcome(fresh, sql);
    const std::string cached = outcome(warm, sql);
    if (cached != expected) {
        std::fprintf(stderr, "cached %s translation differs\n  fresh:  %s\n  cached: %s\n", fresh.traits().name(), expected.c_str(),
                     cached.c_str());
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static JetTranslator sqliteWarm(std::make_unique<SqliteDialect>()), sqliteFresh(std::make_unique<SqliteDialect>());
    static JetTranslator serverWarm(std::make_unique<PostgresDialect>()), serverFresh(std::make_unique<PostgresDialect>());
    const std::string_view sql(reinterpret_cast<const char *>(data), size);
    compare(sqliteWarm, sqliteFresh, sql);
    compare(serverWarm, serverFresh, sql);
    return 0;
}
