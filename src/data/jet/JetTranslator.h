#pragma once

#include "DialectTraits.h"
#include "JetLexer.h"
#include "TranslatedStatement.h"

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// Translates Jet (Access) SQL, as the screens and the query catalogue write it,
/// into the SQL of one engine. Statements of a shape seen before (the same text but
/// for literal values) are filled from a cache instead of being parsed again.
/// Thread-safe.
class JetTranslator {
public:
    explicit JetTranslator(std::unique_ptr<DialectTraits> traits);
    ~JetTranslator();

    /// Throws JetError (a syntax error carrying the original text) when the statement cannot be translated.
    TranslatedStatement translate(std::string_view jetSql) const;

    const DialectTraits &traits() const { return *traits_; }
    size_t cachedShapes() const;
    void clearCache();

    struct Piece {
        std::string fixed;      // text before the slot
        int slot = -1;          // literal index, -1 for the tail
        JetToken::Kind literalKind = JetToken::Number;
    };
    struct Template {
        TranslatedStatement::Kind kind = TranslatedStatement::Command;
        std::vector<Piece> pieces;
        std::shared_ptr<const std::vector<std::string>> spelledNames;
    };

private:
    std::string renderLiteral(const JetToken &token) const;
    std::unique_ptr<DialectTraits> traits_;
    mutable std::mutex mutex_;
    mutable std::unordered_map<std::string, std::shared_ptr<const Template>> cache_;
};
