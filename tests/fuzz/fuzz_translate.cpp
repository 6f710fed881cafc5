// libFuzzer target: Jet translation alone. A finding is a sanitizer report, an exception other
// than AppError, or a translation served from the shape cache that differs from a fresh one.
#include "AppError.h"
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
    } catch (const AppError &e) {
        return "error " + std::to_string(e.number()) + ": " + e.description().toStdString();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // One translator keeps every shape it has seen across inputs; the other starts empty each time.
    static JetTranslator warm(std::make_unique<SqliteDialect>());
    static JetTranslator fresh(std::make_unique<SqliteDialect>());
    const std::string_view sql(reinterpret_cast<const char *>(data), size);
    fresh.clearCache();
    const std::string expected = outcome(fresh, sql);
    const std::string cached = outcome(warm, sql);
    if (cached != expected) {
        std::fprintf(stderr, "cached translation differs\n  fresh:  %s\n  cached: %s\n", expected.c_str(), cached.c_str());
        std::abort();
    }
    return 0;
}
