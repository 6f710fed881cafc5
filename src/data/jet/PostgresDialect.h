#pragma once

#include "DialectTraits.h"

/// Jet SQL as PostgreSQL runs it: names folded to lower case as the server folds them,
/// text columns of type citext so that comparison, Like and sorting ignore case as Jet
/// does, Booleans stored as -1/0 (domain jet_bit), currency as numeric(19,4) (domain
/// jet_currency), dates as timestamp(0), counters as identity columns, and Jet's
/// functions provided by the database under jet_ names (see PostgresSupport).
class PostgresDialect : public DialectTraits {
public:
    const char *name() const override { return "PostgreSQL"; }
    std::string functionName(std::string_view lowerJetName) const override;
    std::string dateLiteral(const std::string &iso) const override { return "CAST('" + iso + "' AS timestamp(0))"; }
    // citext columns already sort without regard to case; an expression of another type takes no collation.
    std::string caseInsensitiveOrder() const override { return std::string(); }
    std::string quoteName(std::string_view bareName) const override;
    std::string bracketedName(std::string_view bare) const override { return quoteName(bare); }
    const char *likeKeyword() const override { return "ILIKE"; }
    const char *divideOperator() const override { return "* 1.0 /"; }
    Wrapper concatenation() const override { return {{"CAST", "("}, {"AS", "citext", ")"}}; }
    Wrapper concatOperand() const override { return {{"COALESCE", "(", "CAST", "("}, {"AS", "text", ")", ",", "''", ")"}}; }
    std::string columnDefinition(const std::string &name, JetColumnType type, bool counterKey, bool notNull,
                                 const std::string &defaultSql) const override;
    /// The checks a column of this type carries (size of a text, range of a byte), each " CONSTRAINT ...".
    std::string constraintsFor(const std::string &bare, JetColumnType type) const;
    /// The quoted name of a column's check of one kind (prefix SizeCheckPrefix or RangeCheckPrefix).
    std::string checkName(const char *prefix, const std::string &bare) const;
    /// The server's type for a Jet type.
    static std::string nativeType(JetColumnType type);
    void afterColumnsMade(const std::string &table, const std::vector<ColumnMade> &columns, bool adding,
                          std::vector<std::string> *after) const override;

    /// Constraint-name prefixes whose failures are reported as Jet reports them (as for SQLite).
    static constexpr const char *SizeCheckPrefix = "size_";
    static constexpr const char *RangeCheckPrefix = "range_";
};
