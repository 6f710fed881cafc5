#include "JetDdl.h"

#include "JetError.h"

#include <cstdlib>

namespace {

[[noreturn]] void fail(const std::string &message, std::string_view sql) { throwJetSyntaxError(message, sql); }

// Data definition: CREATE TABLE and ALTER TABLE ADD / ALTER / DROP. The grammar is read
// strictly: every token must be understood, so nothing a statement says is silently dropped.
class DdlTranslator {
public:
    DdlTranslator(const DialectTraits &traits, const std::vector<JetToken> &tokens, std::string_view sql)
        : traits_(traits), t_(tokens), sql_(sql) {}

    TranslatedStatement createTable()
    {
        // CREATE TABLE name ( column-or-constraint , ... )
        if (t_.size() < 5 || !t_[3].isSymbol("(") || !t_.back().isSymbol(")"))
            fail("Syntax error in CREATE TABLE statement.", sql_);
        const std::string table = name(t_[2]);
        struct Column { std::string name; JetColumnType type; bool identity = false; bool notNull = false; std::string defaultSql; };
        std::vector<Column> columns;
        std::vector<std::string> primaryKey;
        std::vector<std::vector<std::string>> uniques;
        size_t i = 4;
        end_ = t_.size() - 1;
        for (;;) {
            if (at(i).isWord("primary") || at(i).isWord("constraint") || at(i).isWord("unique")) {
                if (at(i).isWord("constraint")) {
                    name(at(i + 1)); // the constraint's own name is not kept
                    i += 2;
                }
                const bool isPrimary = at(i).isWord("primary");
                if (isPrimary && !at(i + 1).isWord("key"))
                    fail("Syntax error in CONSTRAINT clause.", sql_);
                if (!isPrimary && !at(i).isWord("unique"))
                    fail("Syntax error in CONSTRAINT clause.", sql_);
                i += isPrimary ? 2 : 1;
                std::vector<std::string> names = nameList(i);
                if (isPrimary)
                    primaryKey = names;
                else
                    uniques.push_back(names);
            } else {
                Column c;
                c.name = name(at(i++));
                c.type = columnType(i);
                if (c.type.base == JetColumnType::Counter)
                    c.identity = true;
                while (i < end_ && !t_[i].isSymbol(",")) {
                    if (t_[i].isWord("identity") || t_[i].isWord("autoincrement") || t_[i].isWord("counter")) {
                        c.identity = true;
                        if (i + 1 < end_ && t_[i + 1].isSymbol("(")) {
                            // (seed, increment): numbers only.
                            ++i;
                            do {
                                if (at(i + 1).kind != JetToken::Number)
                                    fail("Syntax error in field definition.", sql_);
                                i += 2;
                            } while (at(i).isSymbol(","));
                            if (!at(i).isSymbol(")"))
                                fail("Syntax error in field definition.", sql_);
                        }
                    } else if (t_[i].isWord("not") && at(i + 1).isWord("null")) {
                        c.notNull = true;
                        ++i;
                    } else if (t_[i].isWord("primary") && at(i + 1).isWord("key")) {
                        primaryKey = {c.name};
                        ++i;
                    } else if (t_[i].isWord("default")) {
                        c.defaultSql = defaultValue(i);
                    } else if (!t_[i].isWord("unique") && !t_[i].isWord("null")) {
                        fail("Syntax error in field definition.", sql_);
                    }
                    ++i;
                }
                columns.push_back(std::move(c));
            }
            if (i == end_)
                break;
            if (!t_[i].isSymbol(",") || i + 1 == end_)
                fail("Syntax error in CREATE TABLE statement.", sql_);
            ++i;
        }
        if (columns.empty())
            fail("Syntax error in CREATE TABLE statement.", sql_);
        // A counter that is the whole primary key becomes the engine's own auto-numbered key.
        std::string counterKey;
        for (const Column &c : columns)
            if (c.identity && (primaryKey.empty() || (primaryKey.size() == 1 && equalsNoCase(primaryKey[0], c.name))))
                counterKey = c.name;
        std::string sql = "CREATE TABLE " + traits_.quoteName(table) + " (";
        bool first = true;
        for (const Column &c : columns) {
            if (!first)
                sql += ", ";
            first = false;
            JetColumnType type = c.type;
            if (c.identity)
                type.base = JetColumnType::Counter;
            sql += traits_.columnDefinition(c.name, type, c.name == counterKey, c.notNull, c.defaultSql);
        }
        if (!primaryKey.empty() && counterKey.empty())
            sql += ", PRIMARY KEY (" + join(primaryKey) + ")";
        for (const auto &u : uniques)
            sql += ", UNIQUE (" + join(u) + ")";
        sql += ")";
        TranslatedStatement ts;
        ts.sql = std::move(sql);
        std::vector<DialectTraits::ColumnMade> made;
        for (const Column &c : columns)
            made.push_back({c.name, c.identity ? JetColumnType{JetColumnType::Counter, 0} : c.type, c.name == counterKey});
        traits_.afterColumnsMade(table, made, false, &ts.after);
        return ts;
    }

    TranslatedStatement alterTable()
    {
        // ALTER TABLE t ADD [COLUMN] c type | ALTER TABLE t ALTER [COLUMN] c type | DROP [COLUMN] c
        end_ = t_.size();
        if (t_.size() < 5)
            fail("Syntax error in ALTER TABLE statement.", sql_);
        const std::string table = name(t_[2]);
        size_t i = 3;
        const bool add = t_[i].isWord("add");
        const bool alter = t_[i].isWord("alter");
        const bool drop = t_[i].isWord("drop");
        if (!add && !alter && !drop)
            fail("Syntax error in ALTER TABLE statement.", sql_);
        ++i;
        if (at(i).isWord("column"))
            ++i;
        const std::string column = name(at(i++));
        TranslatedStatement ts;
        if (drop) {
            if (i != end_)
                fail("Syntax error in ALTER TABLE statement.", sql_);
            ts.sql = "ALTER TABLE " + traits_.quoteName(table) + " DROP COLUMN " + traits_.quoteName(column);
            return ts;
        }
        const JetColumnType type = columnType(i);
        if (i != end_)
            fail("Syntax error in field definition.", sql_);
        if (add) {
            ts.sql = "ALTER TABLE " + traits_.quoteName(table) + " ADD COLUMN "
                     + traits_.columnDefinition(column, type, false, false, std::string());
            traits_.afterColumnsMade(table, {{column, type, false}}, true, &ts.after);
            return ts;
        }
        ts.kind = TranslatedStatement::AlterColumnType;
        ts.table = table;
        ts.column = column;
        ts.newType = type;
        return ts;
    }

private:
    // The token at i, or an error when the definition ends before it.
    const JetToken &at(size_t i) const
    {
        if (i >= end_)
            fail("Syntax error in field definition.", sql_);
        return t_[i];
    }

    // A table, column or constraint name, bare (without its brackets).
    std::string name(const JetToken &tok) const
    {
        std::string_view bare;
        if (tok.kind == JetToken::Bracketed)
            bare = tok.text.substr(1, tok.text.size() - 2);
        else if (tok.kind == JetToken::Word)
            bare = tok.text;
        else
            fail("Syntax error in field definition.", sql_);
        if (!validObjectName(bare))
            fail("'" + std::string(bare) + "' is not a valid name.  Make sure that it does not include invalid characters "
                 "or punctuation and that it is not too long.", sql_);
        return std::string(bare);
    }

    // type [ ( size ) ]
    JetColumnType columnType(size_t &i) const
    {
        const JetToken &typeName = at(i++);
        if (typeName.kind != JetToken::Word)
            fail("Syntax error in field definition.", sql_);
        int size = 0;
        if (i < end_ && t_[i].isSymbol("(")) {
            const JetToken &n = at(i + 1);
            if (n.kind != JetToken::Number || n.text.find_first_not_of("0123456789") != std::string_view::npos || n.text.size() > 3
                || !at(i + 2).isSymbol(")"))
                fail("Syntax error in field definition.", sql_);
            size = std::atoi(std::string(n.text).c_str());
            if (size < 1 || size > 255)
                fail("Size of field '" + std::string(typeName.text) + "' is too long.", sql_);
            i += 3;
        }
        const JetColumnType type = JetColumnType::fromName(typeName.text, size);
        if (type.base == JetColumnType::Unknown)
            fail("Syntax error in field definition.", sql_);
        return type;
    }

    std::vector<std::string> nameList(size_t &i) const
    {
        std::vector<std::string> names;
        if (!at(i).isSymbol("("))
            fail("Syntax error in CONSTRAINT clause.", sql_);
        do {
            names.push_back(name(at(i + 1)));
            i += 2;
        } while (at(i).isSymbol(","));
        if (!at(i).isSymbol(")"))
            fail("Syntax error in CONSTRAINT clause.", sql_);
        ++i;
        return names;
    }

    std::string defaultValue(size_t &i) const
    {
        const JetToken &v = at(++i);
        if (v.isWord("true"))
            return "-1";
        if (v.isWord("false"))
            return "0";
        if (v.isSymbol("-") && at(i + 1).kind == JetToken::Number) {
            ++i;
            return "-" + std::string(t_[i].text);
        }
        if (v.kind == JetToken::Number || v.isWord("null"))
            return std::string(v.text);
        if (v.kind == JetToken::String && v.text.front() == '\'')
            return std::string(v.text);
        fail("Syntax error in DEFAULT clause.", sql_);
    }

    std::string join(const std::vector<std::string> &names) const
    {
        std::string s;
        for (const auto &n : names)
            s += (s.empty() ? "" : ", ") + traits_.quoteName(n);
        return s;
    }

    const DialectTraits &traits_;
    const std::vector<JetToken> &t_;
    std::string_view sql_;
    size_t end_ = 0; // one past the last token of the definition
};

} // namespace

bool validObjectName(std::string_view name)
{
    // Jet's rules: at most 64 characters, no leading blank, no control characters, no . ! ` [ ].
    if (name.empty() || name.size() > 64 * 4 || name.front() == ' ')
        return false;
    for (unsigned char c : name)
        if (c < 0x20 || c == 0x7f || c == '.' || c == '!' || c == '`' || c == '[' || c == ']')
            return false;
    return true;
}

TranslatedStatement translateCreateTable(const DialectTraits &traits, const std::vector<JetToken> &tokens, std::string_view sql)
{
    return DdlTranslator(traits, tokens, sql).createTable();
}

TranslatedStatement translateAlterTable(const DialectTraits &traits, const std::vector<JetToken> &tokens, std::string_view sql)
{
    return DdlTranslator(traits, tokens, sql).alterTable();
}
