#pragma once

#include "JetColumnType.h"

#include <string>
#include <string_view>
#include <vector>

/// What differs between the engines a Jet statement is translated for.
class DialectTraits {
public:
    virtual ~DialectTraits() = default;
    virtual const char *name() const = 0;
    /// The Jet engine itself (an Access file through ODBC) takes the text unchanged.
    virtual bool passThrough() const { return false; }
    /// Native name for a Jet function (lower-case input), or empty to keep the name as written.
    virtual std::string functionName(std::string_view lowerJetName) const = 0;
    /// A date literal from "yyyy-mm-dd" or "yyyy-mm-dd hh:mm:ss".
    virtual std::string dateLiteral(const std::string &iso) const = 0;
    /// Appended to ORDER BY terms that are expressions, so text sorts without regard to case as Jet sorts it.
    virtual std::string caseInsensitiveOrder() const = 0;
    /// A table, column or constraint name (bare, as validObjectName accepts it) quoted for the engine.
    virtual std::string quoteName(std::string_view bareName) const = 0;
    /// One column of CREATE TABLE / ALTER TABLE ADD; name is bare.
    virtual std::string columnDefinition(const std::string &name, JetColumnType type, bool counterKey, bool notNull,
                                         const std::string &defaultSql) const = 0;
    /// Tokens to put before and after a call of a Jet function that yields a number, so that
    /// comparing it with a quoted number compares numbers as Jet does; none by default.
    struct Wrapper {
        std::vector<std::string> before;
        std::vector<std::string> after;
    };
    virtual Wrapper numericCall(std::string_view lowerJetName) const
    {
        (void)lowerJetName;
        return {};
    }
    /// Whether TOP n becomes LIMIT n at the end of its SELECT.
    virtual bool topAsLimit() const { return true; }
    /// A [bracketed] name in a statement, as the engine reads it; bare is without its brackets.
    virtual std::string bracketedName(std::string_view bare) const
    {
        std::string name;
        name.reserve(bare.size() + 2);
        name += '[';
        name.append(bare);
        name += ']';
        return name;
    }
    /// Jet's Like compares without regard to case; the engine's keyword that does.
    virtual const char *likeKeyword() const { return "LIKE"; }
    /// Jet's / always divides as decimals; the engine's operator text that does.
    virtual const char *divideOperator() const { return "/"; }
    /// Round a whole concatenation (& or + with text), so that it compares and sorts without regard to case as Jet does.
    virtual Wrapper concatenation() const { return {}; }
    /// An operand of Jet's & (any type; Null counts as empty) made into text.
    virtual Wrapper concatOperand() const { return {{"ifnull", "("}, {",", "''", ")"}}; }
    /// Statements to run after CREATE TABLE (or ALTER TABLE ADD when adding is set).
    struct ColumnMade {
        std::string name;
        JetColumnType type;
        bool counterKey = false;
    };
    virtual void afterColumnsMade(const std::string &table, const std::vector<ColumnMade> &columns, bool adding,
                                  std::vector<std::string> *after) const
    {
        (void)table;
        (void)columns;
        (void)adding;
        (void)after;
    }
};
