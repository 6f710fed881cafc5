#include "SqliteDialect.h"

#include <unordered_map>

std::string SqliteDialect::functionName(std::string_view lowerJetName) const
{
    static const std::unordered_map<std::string_view, std::string> names = {
        {"date", "jet_date"},   {"now", "jet_now"},         {"time", "jet_time"},       {"year", "jet_year"},
        {"month", "jet_month"}, {"day", "jet_day"},         {"dateadd", "jet_dateadd"}, {"datediff", "jet_datediff"},
        {"isnull", "jet_isnull"}, {"nz", "jet_nz"},         {"len", "length"},          {"left", "jet_left"},
        {"right", "jet_right"}, {"mid", "substr"},          {"ucase", "upper"},         {"lcase", "lower"},
        {"cstr", "jet_cstr"},   {"cint", "jet_cint"},       {"clng", "jet_clng"},       {"cdbl", "jet_cdbl"},
        {"ccur", "jet_ccur"},   {"val", "jet_val"},         {"int", "jet_int"},         {"datevalue", "jet_datevalue"},
        {"iif", "iif"},         {"trim", "trim"},           {"ltrim", "ltrim"},         {"rtrim", "rtrim"},
        {"instr", "instr"},     {"abs", "abs"},             {"round", "round"},         {"sgn", "sign"},
        {"count", "count"},     {"sum", "sum"},             {"max", "max"},             {"min", "min"},
        {"avg", "avg"},         {"format", "jet_format"},
    };
    auto it = names.find(lowerJetName);
    return it == names.end() ? std::string() : it->second;
}

DialectTraits::Wrapper SqliteDialect::numericCall(std::string_view lowerJetName) const
{
    static const std::unordered_map<std::string_view, const char *> numeric = {
        {"year", "INTEGER"}, {"month", "INTEGER"}, {"day", "INTEGER"}, {"len", "INTEGER"}, {"datediff", "INTEGER"},
        {"cint", "INTEGER"}, {"clng", "INTEGER"}, {"int", "INTEGER"}, {"cdbl", "REAL"}, {"ccur", "REAL"}, {"val", "REAL"}};
    const auto it = numeric.find(lowerJetName);
    if (it == numeric.end())
        return {};
    return {{"CAST", "("}, {"AS", it->second, ")"}};
}

std::string SqliteDialect::declaredType(JetColumnType type)
{
    switch (type.base) {
    case JetColumnType::Counter: return "INTEGER";
    case JetColumnType::Byte: return "TINYINT";
    case JetColumnType::Int16: return "SMALLINT";
    case JetColumnType::Int32: return "INT";
    case JetColumnType::Double: return "DOUBLE";
    case JetColumnType::Currency: return "CURRENCY";
    case JetColumnType::Bool: return "BIT";
    case JetColumnType::Date: return "DATETIME";
    case JetColumnType::Text: return "TEXT(" + std::to_string(type.size) + ")";
    case JetColumnType::Memo: return "LONGTEXT";
    case JetColumnType::Unknown: break;
    }
    return "TEXT";
}

std::string SqliteDialect::quoteName(std::string_view bareName) const
{
    std::string quoted = "\"";
    for (char c : bareName) {
        if (c == '"')
            quoted += '"';
        quoted += c;
    }
    return quoted + "\"";
}

std::string SqliteDialect::columnDefinition(const std::string &bare, JetColumnType type, bool counterKey, bool notNull,
                                            const std::string &defaultSql) const
{
    const std::string name = quoteName(bare);
    std::string def = name + " " + declaredType(type);
    if (counterKey)
        return def + " PRIMARY KEY AUTOINCREMENT";
    // Jet's yes/no columns are never Null: an added or unset flag is false.
    if (type.base == JetColumnType::Bool) {
        notNull = true;
    }
    if (notNull)
        def += " NOT NULL";
    if (!defaultSql.empty())
        def += " DEFAULT " + defaultSql;
    else if (type.base == JetColumnType::Bool)
        def += " DEFAULT 0";
    auto constraint = [&](const char *prefix) { return " CONSTRAINT " + quoteName(prefix + bare) + " CHECK ("; };
    // A CHECK passes on Null, so every test is written to be true or false, never Null.
    const std::string typeCheck = constraint(TypeCheckPrefix) + name + " IS NULL OR ";
    switch (type.base) {
    case JetColumnType::Counter:
    case JetColumnType::Int32:
        def += typeCheck + "(typeof(" + name + ") = 'integer' AND " + name + " BETWEEN -2147483648 AND 2147483647))";
        break;
    case JetColumnType::Int16:
        def += typeCheck + "(typeof(" + name + ") = 'integer' AND " + name + " BETWEEN -32768 AND 32767))";
        break;
    case JetColumnType::Byte:
        def += typeCheck + "(typeof(" + name + ") = 'integer' AND " + name + " BETWEEN 0 AND 255))";
        break;
    case JetColumnType::Bool:
        def += typeCheck + "typeof(" + name + ") = 'integer')";
        break;
    case JetColumnType::Double:
        def += typeCheck + "typeof(" + name + ") IN ('integer', 'real'))";
        def += constraint(RangeCheckPrefix) + name + " IS NULL OR " + name + " BETWEEN -1.7976931348623157e308 AND 1.7976931348623157e308)";
        break;
    case JetColumnType::Currency:
        def += typeCheck + "typeof(" + name + ") IN ('integer', 'real'))";
        def += constraint(RangeCheckPrefix) + name + " IS NULL OR " + name + " BETWEEN -922337203685477.5808 AND 922337203685477.5807)";
        break;
    case JetColumnType::Date:
        // Only a real calendar date (or date and time) in the stored form: through a day number,
        // "2026-02-30" comes back as another day and anything else as Null, so both differ from the value.
        def += typeCheck + "(typeof(" + name + ") = 'text' AND (" + name + " IS date(julianday(" + name + ")) OR " + name
               + " IS datetime(julianday(" + name + ")))))";
        break;
    case JetColumnType::Text:
        def += " COLLATE NOCASE" + constraint(SizeCheckPrefix) + "length(" + name + ") <= " + std::to_string(type.size) + ")";
        break;
    case JetColumnType::Memo:
        def += " COLLATE NOCASE";
        break;
    case JetColumnType::Unknown:
        break;
    }
    return def;
}
