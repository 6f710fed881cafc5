#include "JoinReduction.h"

#include <algorithm>
#include <set>
#include <string>

namespace {

using Tokens = std::vector<JetToken>;

std::string lowerName(const JetToken &t)
{
    std::string_view s = t.text;
    if (t.kind == JetToken::Bracketed && s.size() >= 2)
        s = s.substr(1, s.size() - 2);
    std::string out(s);
    std::transform(out.begin(), out.end(), out.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return out;
}

bool isName(const JetToken &t) { return t.kind == JetToken::Word || t.kind == JetToken::Bracketed; }

// A range [lo, hi) of tokens.
struct Range {
    size_t lo, hi;
};

// Strips parentheses that wrap the whole range.
Range unwrap(const Tokens &t, Range r)
{
    while (r.hi - r.lo >= 2 && t[r.lo].isSymbol("(") && t[r.hi - 1].isSymbol(")")) {
        int depth = 0;
        bool wraps = true;
        for (size_t i = r.lo; i < r.hi; ++i) {
            depth += t[i].isSymbol("(") ? 1 : t[i].isSymbol(")") ? -1 : 0;
            if (depth == 0 && i < r.hi - 1) {
                wraps = false;
                break;
            }
        }
        if (!wraps)
            break;
        r = {r.lo + 1, r.hi - 1};
    }
    return r;
}

// Splits a range at the given word where it stands outside parentheses.
std::vector<Range> split(const Tokens &t, Range r, std::string_view word)
{
    std::vector<Range> parts;
    int depth = 0;
    size_t start = r.lo;
    for (size_t i = r.lo; i < r.hi; ++i) {
        depth += t[i].isSymbol("(") ? 1 : t[i].isSymbol(")") ? -1 : 0;
        if (depth == 0 && t[i].isWord(word)) {
            parts.push_back({start, i});
            start = i + 1;
        }
    }
    parts.push_back({start, r.hi});
    return parts;
}

// "table.column": the table's name, or empty.
std::string qualifier(const Tokens &t, size_t at, size_t hi)
{
    if (at + 2 < hi && isName(t[at]) && t[at + 1].isSymbol(".") && isName(t[at + 2]))
        return lowerName(t[at]);
    return {};
}

bool isComparison(const JetToken &t)
{
    return (t.kind == JetToken::Symbol && (t.text == "=" || t.text == "<>" || t.text == "<" || t.text == ">" || t.text == "<=" || t.text == ">="))
           || t.isWord("like");
}

bool isConstant(const JetToken &t) { return t.isLiteral() || t.isWord("true") || t.isWord("false"); }

// A comparison of a qualified column with a constant or another qualified column: the tables
// whose missing row makes it fail (Null compares as unknown). Empty for anything else.
std::set<std::string> predicateTables(const Tokens &t, Range r, bool *columnsOnBothSides = nullptr)
{
    r = unwrap(t, r);
    std::set<std::string> tables;
    size_t i = r.lo;
    const std::string left = qualifier(t, i, r.hi);
    const bool leftColumn = !left.empty();
    if (leftColumn)
        i += 3;
    else if (i < r.hi && isConstant(t[i]))
        ++i;
    else
        return {};
    if (i >= r.hi || !isComparison(t[i]))
        return {};
    ++i;
    const std::string right = qualifier(t, i, r.hi);
    if (!right.empty())
        i += 3;
    else if (i < r.hi && isConstant(t[i]))
        ++i;
    else
        return {};
    if (i != r.hi || (left.empty() && right.empty()))
        return {};
    if (!left.empty())
        tables.insert(left);
    if (!right.empty())
        tables.insert(right);
    if (columnsOnBothSides)
        *columnsOnBothSides = leftColumn && !right.empty();
    return tables;
}

// Tables a condition rejects the missing rows of: AND joins them, OR keeps those of every branch.
std::set<std::string> rejectedBy(const Tokens &t, Range r, int depth = 0)
{
    if (depth > 64)
        return {};
    r = unwrap(t, r);
    const std::vector<Range> ors = split(t, r, "or");
    if (ors.size() > 1) {
        std::set<std::string> common = rejectedBy(t, ors[0], depth + 1);
        for (size_t k = 1; k < ors.size() && !common.empty(); ++k) {
            const std::set<std::string> next = rejectedBy(t, ors[k], depth + 1);
            std::set<std::string> both;
            std::set_intersection(common.begin(), common.end(), next.begin(), next.end(), std::inserter(both, both.begin()));
            common = std::move(both);
        }
        return common;
    }
    const std::vector<Range> ands = split(t, r, "and");
    if (ands.size() > 1) {
        std::set<std::string> all;
        for (const Range &part : ands)
            all.merge(rejectedBy(t, part, depth + 1));
        return all;
    }
    return predicateTables(t, r);
}

struct OuterJoin {
    size_t left;  // the LEFT token
    size_t outer; // the OUTER token, or 0
    std::string name;
    Range on;
};

} // namespace

void reduceOuterJoins(Tokens &t)
{
    if (t.empty() || !t[0].isWord("select"))
        return;
    // The main statement's FROM and WHERE clauses.
    size_t from = 0, where = 0, end = t.size();
    int depth = 0;
    for (size_t i = 0; i < t.size(); ++i) {
        depth += t[i].isSymbol("(") ? 1 : t[i].isSymbol(")") ? -1 : 0;
        if (depth != 0)
            continue;
        if (t[i].isWord("union"))
            return;
        if (t[i].isWord("from") && !from)
            from = i;
        else if (t[i].isWord("where") && from && !where)
            where = i;
        else if (where && (t[i].isWord("group") || t[i].isWord("order") || t[i].isWord("having")) && end == t.size())
            end = i;
    }
    if (!from || !where)
        return;
    for (size_t i = from + 1; i < where; ++i)
        if (t[i].isWord("select") || t[i].isWord("right") || t[i].isWord("full"))
            return;

    std::vector<OuterJoin> joins;
    for (size_t i = from + 1; i + 2 < where; ++i) {
        if (!t[i].isWord("left"))
            continue;
        size_t j = i + 1;
        const size_t outer = t[j].isWord("outer") ? j++ : 0;
        if (!t[j].isWord("join") || j + 1 >= where || !isName(t[j + 1]))
            return;
        size_t k = j + 2;
        std::string name = lowerName(t[j + 1]);
        if (k < where && t[k].isWord("as"))
            ++k;
        if (k < where && isName(t[k]) && !t[k].isWord("on"))
            name = lowerName(t[k++]);
        if (k >= where || !t[k].isWord("on"))
            return;
        // The ON condition runs to the next join or the parenthesis that closes its group.
        size_t e = k + 1;
        int d = 0;
        for (; e < where; ++e) {
            if (t[e].isSymbol("("))
                ++d;
            else if (t[e].isSymbol(")") && --d < 0)
                break;
            else if (d == 0 && (t[e].isWord("left") || t[e].isWord("inner") || t[e].isWord("join")))
                break;
        }
        joins.push_back({i, outer, name, {k + 1, e}});
    }
    if (joins.empty())
        return;

    std::set<std::string> rejected;
    for (const Range &part : split(t, {where + 1, end}, "and"))
        rejected.merge(rejectedBy(t, part));
    // A row of a rejected table matched its ON equalities, so the tables they compare it with had rows too.
    for (bool grew = true; grew;) {
        grew = false;
        for (const OuterJoin &join : joins) {
            if (!rejected.count(join.name))
                continue;
            for (const Range &part : split(t, unwrap(t, join.on), "and")) {
                bool twoColumns = false;
                const std::set<std::string> tables = predicateTables(t, part, &twoColumns);
                const Range p = unwrap(t, part);
                if (!twoColumns || !t[p.lo + 3].isSymbol("=") || !tables.count(join.name))
                    continue;
                for (const std::string &other : tables)
                    grew |= rejected.insert(other).second;
            }
        }
    }
    static constexpr std::string_view Inner = "inner";
    std::vector<size_t> dropped;
    for (const OuterJoin &join : joins) {
        if (!rejected.count(join.name))
            continue;
        t[join.left] = JetToken{JetToken::Word, Inner};
        if (join.outer)
            dropped.push_back(join.outer);
    }
    std::sort(dropped.rbegin(), dropped.rend());
    for (size_t i : dropped)
        t.erase(t.begin() + long(i));
}
