#include "JetDdl.h"

#include <cstdlib>

namespace {

[[noreturn]] void fail(const std::string &message, std::string_view sql) { throwJetSyntaxError(message, sql); }

// Data definition: CREATE TABLE, CREATE INDEX, ALTER TABLE ADD / ALTER, DROP.
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
        struct Column { std::string name; JetColumnType type; bool identity = false; bool notNull = false; bool primary = false; std::string defaultSql; };
        std::vector<Column> columns;
        std::vector<std::string> primaryKey;
        std::vector<std::vector<std::string>> uniques;
        size_t i = 4;
        const size_t end = t_.size() - 1;
        while (i < end) {
            if (t_[i].isWord("primary") || t_[i].isWord("constraint") || t_[i].isWord("unique")) {
                if (t_[i].isWord("constraint"))
                    i += 2;
                const bool isPrimary = t_[i].isWord("primary");
                i += isPrimary ? 2 : 1;
                std::vector<std::string> names = nameList(i);
                if (isPrimary)
                    primaryKey = names;
                else
                    uniques.push_back(names);
            } else {
                Column c;
                c.name = name(t_[i++]);
                if (i >= end)
                    fail("Syntax error in field definition.", sql_);
                std::string_view typeName = t_[i++].text;
                int size = 0;
                if (i < end && t_[i].isSymbol("(")) {
                    size = std::atoi(std::string(t_[i + 1].text).c_str());
                    while (i < end && !t_[i].isSymbol(")"))
                        ++i;
                    ++i;
                }
                c.type = JetColumnType::fromName(typeName, size);
                if (c.type.base == JetColumnType::Unknown)
                    fail("Syntax error in field definition.", sql_);
                if (c.type.base == JetColumnType::Counter)
                    c.identity = true;
                while (i < end && !t_[i].isSymbol(",")) {
                    if (t_[i].isWord("identity") || t_[i].isWord("autoincrement") || t_[i].isWord("counter")) {
                        c.identity = true;
                        if (i + 1 < end && t_[i + 1].isSymbol("(")) {
                            while (!t_[i].isSymbol(")"))
                                ++i;
                        }
                    } else if (t_[i].isWord("not") && i + 1 < end && t_[i + 1].isWord("null")) {
                        c.notNull = true;
                        ++i;
                    } else if (t_[i].isWord("primary") && i + 1 < end && t_[i + 1].isWord("key")) {
                        c.primary = true;
                        ++i;
                    } else if (t_[i].isWord("default") && i + 1 < end) {
                        c.defaultSql = defaultValue(i);
                    } else if (!t_[i].isWord("unique") && !t_[i].isWord("null")) {
                        fail("Syntax error in field definition.", sql_);
                    }
                    ++i;
                }
                if (c.primary)
                    primaryKey = {c.name};
                columns.push_back(std::move(c));
            }
            if (i < end && t_[i].isSymbol(","))
                ++i;
        }
        // A counter that is the whole primary key becomes the engine's own auto-numbered key.
        std::string counterKey;
        for (const Column &c : columns)
            if (c.identity && (primaryKey.empty() || (primaryKey.size() == 1 && equalsNoCase(primaryKey[0], c.name))))
                counterKey = c.name;
        std::string sql = "CREATE TABLE " + table + " (";
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
        return ts;
    }

    TranslatedStatement alterTable()
    {
        // ALTER TABLE t ADD [COLUMN] c type | ALTER TABLE t ALTER [COLUMN] c type | DROP [COLUMN] c
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
        if (i < t_.size() && t_[i].isWord("column"))
            ++i;
        if (i >= t_.size())
            fail("Syntax error in ALTER TABLE statement.", sql_);
        const std::string column = name(t_[i++]);
        TranslatedStatement ts;
        if (drop) {
            ts.sql = "ALTER TABLE " + table + " DROP COLUMN " + column;
            return ts;
        }
        if (i >= t_.size())
            fail("Syntax error in field definition.", sql_);
        std::string_view typeName = t_[i++].text;
        int size = 0;
        if (i + 1 < t_.size() && t_[i].isSymbol("("))
            size = std::atoi(std::string(t_[i + 1].text).c_str());
        const JetColumnType type = JetColumnType::fromName(typeName, size);
        if (type.base == JetColumnType::Unknown)
            fail("Syntax error in field definition.", sql_);
        if (add) {
            ts.sql = "ALTER TABLE " + table + " ADD COLUMN " + traits_.columnDefinition(column, type, false, false, std::string());
            return ts;
        }
        ts.kind = TranslatedStatement::AlterColumnType;
        ts.table = table;
        ts.column = column;
        ts.newType = type;
        return ts;
    }

private:
    std::string name(const JetToken &tok) const
    {
        if (tok.kind == JetToken::Bracketed)
            return std::string(tok.text);
        if (tok.kind != JetToken::Word)
            fail("Syntax error in field definition.", sql_);
        return std::string(tok.text);
    }

    std::vector<std::string> nameList(size_t &i) const
    {
        std::vector<std::string> names;
        if (i >= t_.size() || !t_[i].isSymbol("("))
            fail("Syntax error in CONSTRAINT clause.", sql_);
        for (++i; i < t_.size() && !t_[i].isSymbol(")"); ++i)
            if (!t_[i].isSymbol(","))
                names.push_back(name(t_[i]));
        ++i;
        return names;
    }

    std::string defaultValue(size_t &i) const
    {
        const JetToken &v = t_[++i];
        if (v.isWord("true"))
            return "-1";
        if (v.isWord("false"))
            return "0";
        if (v.isSymbol("-") && i + 1 < t_.size()) {
            ++i;
            return "-" + std::string(t_[i].text);
        }
        if (v.kind == JetToken::Number || v.kind == JetToken::String || v.isWord("null"))
            return std::string(v.text);
        fail("Syntax error in DEFAULT clause.", sql_);
    }

    static std::string join(const std::vector<std::string> &names)
    {
        std::string s;
        for (const auto &n : names)
            s += (s.empty() ? "" : ", ") + n;
        return s;
    }

    const DialectTraits &traits_;
    const std::vector<JetToken> &t_;
    std::string_view sql_;
};

} // namespace

TranslatedStatement translateCreateTable(const DialectTraits &traits, const std::vector<JetToken> &tokens, std::string_view sql)
{
    return DdlTranslator(traits, tokens, sql).createTable();
}

TranslatedStatement translateAlterTable(const DialectTraits &traits, const std::vector<JetToken> &tokens, std::string_view sql)
{
    return DdlTranslator(traits, tokens, sql).alterTable();
}
