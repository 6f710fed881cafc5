#pragma once

#include "DialectTraits.h"

/// Jet SQL as SQLite runs it: Booleans -1/0, dates as ISO text, text compared
/// without regard to case (NOCASE columns), Jet's functions provided by the
/// connection under jet_ names.
class SqliteDialect : public DialectTraits {
public:
    const char *name() const override { return "SQLite"; }
    std::string functionName(std::string_view lowerJetName) const override;
    std::string dateLiteral(const std::string &iso) const override { return "'" + iso + "'"; }
    std::string caseInsensitiveOrder() const override { return "COLLATE NOCASE"; }
    std::string quoteName(std::string_view bareName) const override;
    Wrapper concatenation() const override { return {{"("}, {"COLLATE", "NOCASE", ")"}}; }
    /// Year(), Month(), Day(), Len() ... as CAST(... AS INTEGER): a call has no affinity in SQLite,
    /// so Year(d) <= '2026' would compare a number with text, which is always true there.
    Wrapper numericCall(std::string_view lowerJetName) const override;
    std::string columnDefinition(const std::string &name, JetColumnType type, bool counterKey, bool notNull,
                                 const std::string &defaultSql) const override;

    /// Declared type written for a Jet type; JetColumnType::fromName reads it back.
    static std::string declaredType(JetColumnType type);
    /// Constraint-name prefixes whose failures are reported as Jet reports them.
    static constexpr const char *TypeCheckPrefix = "type_";
    static constexpr const char *SizeCheckPrefix = "size_";
    static constexpr const char *RangeCheckPrefix = "range_";
};
