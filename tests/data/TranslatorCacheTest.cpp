// The shape cache is an optimisation only: for every statement the program or its tests
// write, and for variants of each that differ in letter case or literals, a translation
// served from a warm cache must equal a fresh translation (text, kind, or error).
#include "JetError.h"
#include "JetTranslator.h"
#include "SqlCorpus.h"
#include "SqliteDialect.h"

#include <gtest/gtest.h>

#include <iostream>

namespace {

std::string outcome(JetTranslator &translator, const QString &sql)
{
    const QByteArray utf8 = sql.toUtf8();
    try {
        const TranslatedStatement ts = translator.translate(std::string_view(utf8.constData(), size_t(utf8.size())));
        return std::to_string(int(ts.kind)) + ":" + ts.sql + "|" + ts.table + "|" + ts.column;
    } catch (const JetError &e) {
        return "error " + std::to_string(e.number()) + ": " + e.what();
    }
}

} // namespace

TEST(TranslatorCache, ACachedTranslationEqualsAFreshOneForEveryStatement)
{
    const QStringList corpus = jetStatementCorpus(QStringLiteral(SHELVORA_SOURCE_DIR));
    ASSERT_GT(corpus.size(), 400);
    QStringList inputs;
    for (const QString &statement : corpus)
        inputs << statement << shapeVariants(statement);

    JetTranslator warm(std::make_unique<SqliteDialect>());
    JetTranslator fresh(std::make_unique<SqliteDialect>());
    int differing = 0, translated = 0;
    for (int pass = 0; pass < 2; ++pass) {
        for (const QString &sql : inputs) {
            fresh.clearCache();
            const std::string expected = outcome(fresh, sql);
            translated += expected.rfind("error", 0) == 0 ? 0 : 1;
            if (outcome(warm, sql) != expected && ++differing <= 10)
                ADD_FAILURE() << sql.toStdString() << "\n  fresh: " << expected << "\n  warm:  " << outcome(warm, sql);
        }
    }
    EXPECT_EQ(differing, 0);
    std::cout << corpus.size() << " statements, " << inputs.size() << " with their variants, " << translated / 2 << " translated\n";
}
