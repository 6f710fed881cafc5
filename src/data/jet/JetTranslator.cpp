#include "JetTranslator.h"

#include "JetDate.h"
#include "JetError.h"
#include "JetDdl.h"
#include "JoinReduction.h"


#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <set>

namespace {

constexpr size_t MaxCachedShapes = 4096;
// Deeper nesting than any statement of the program needs is refused before it is parsed
// (the parser recurses once per level).
constexpr int MaxNesting = 128;

std::string lowerCopy(std::string_view s)
{
    std::string out(s);
    for (char &c : out)
        if (c >= 'A' && c <= 'Z')
            c = char(c + 32);
    return out;
}

[[noreturn]] void fail(const std::string &message, std::string_view sql) { throwJetSyntaxError(message, sql); }

// An output token: fixed text, or a slot that receives a literal of the statement.
struct OutTok {
    std::string text;
    int slot = -1;
    JetToken::Kind literalKind = JetToken::Number;
    bool call = false; // a function or table name directly followed by its "("
};
using Out = std::vector<OutTok>;

void appendTokens(Out &to, const Out &from) { to.insert(to.end(), from.begin(), from.end()); }

bool isBoundaryKeyword(std::string_view lw)
{
    static const std::set<std::string, std::less<>> words = {
        "select", "from", "where", "group", "order", "by", "having", "on", "join", "inner", "left", "right",
        "outer", "full", "cross", "as", "set", "values", "into", "union", "all", "distinct", "distinctrow",
        "top", "asc", "desc", "and", "or", "not", "like", "in", "is", "between", "exists", "insert", "update",
        "delete", "escape", "limit"};
    return words.count(lw) != 0;
}

bool isComparison(std::string_view s)
{
    return s == "=" || s == "<>" || s == "<" || s == ">" || s == "<=" || s == ">=" || s == "!=";
}

// One item of an expression segment: an operand (name, literal, call, group) or an operator.
struct Item {
    Out toks;
    bool isOperator = false;
    std::string op;          // for operators
    bool callable = false;   // a bare name that a following group makes a call
    std::string function;    // the Jet function called, lower case
    bool simpleName = false; // a (qualified) column name
    bool stringLiteral = false;
    bool literal = false;
    std::string lastName;    // last part of a simple name, lower case
};

// Rewrites the tokens of one SELECT / INSERT / UPDATE / DELETE statement.
class Rewriter {
public:
    Rewriter(const DialectTraits &traits, const std::vector<JetToken> &tokens, std::string_view sql)
        : traits_(traits), t_(tokens), sql_(sql), slots_(tokens.size(), -1), close_(tokens.size(), 0), dropped_(tokens.size(), false)
    {
        // A literal's slot is its position among the statement's literals.
        int slot = 0;
        std::vector<size_t> open;
        for (size_t i = 0; i < tokens.size(); ++i) {
            if (tokens[i].isLiteral())
                slots_[i] = slot++;
            else if (tokens[i].isSymbol("("))
                open.push_back(i);
            else if (tokens[i].isSymbol(")") && !open.empty()) {
                close_[open.back()] = i;
                open.pop_back();
            }
        }
    }

    Out run() { return level(0, t_.size()); }

private:
    struct LevelState {
        bool inSelectList = false;
        bool inOrderBy = false;
        int limitSlot = -1;
        bool lastFlushedWasExpression = false;
        std::set<std::string> expressionAliases;
        std::vector<Item> segment;
        Out out;
    };

    size_t matchParen(size_t open, size_t hi) const
    {
        const size_t close = close_[open];
        if (close == 0 || close >= hi)
            fail("Missing ), ], or Item in query expression.", sql_);
        return close;
    }

    Out level(size_t lo, size_t hi)
    {
        LevelState st;
        for (size_t i = lo; i < hi; ++i) {
            const JetToken &tok = t_[i];
            if (tok.isSymbol("(")) {
                const size_t close = matchParen(i, hi);
                if (loneTable(i, close)) {
                    // FROM (tblLibItems) or JOIN (t AS x): Jet allows brackets round a single table, not every engine does.
                    dropped_[close] = true;
                    continue;
                }
                if (close == i + 1 && i > lo && t_[i - 1].isWord("in"))
                    fail("Syntax error (missing operator) in query expression: an IN list needs at least one value.", sql_);
                Out group{OutTok{"("}};
                appendTokens(group, level(i + 1, close));
                group.push_back(OutTok{")"});
                if (!st.segment.empty() && st.segment.back().callable) {
                    Item &call = st.segment.back();
                    appendTokens(call.toks, group);
                    call.callable = false;
                    call.simpleName = false;
                    wrapNumericCall(call);
                } else {
                    Item item;
                    item.toks = std::move(group);
                    st.segment.push_back(std::move(item));
                }
                i = close;
                continue;
            }
            if (tok.isSymbol(")")) {
                if (dropped_[i])
                    continue;
                fail("Extra ) in query expression.", sql_);
            }
            if (tok.isLiteral()) {
                Item item;
                item.toks.push_back(OutTok{std::string(), slots_[i], tok.kind});
                item.literal = true;
                item.stringLiteral = tok.kind == JetToken::String;
                st.segment.push_back(std::move(item));
                continue;
            }
            if (tok.kind == JetToken::Bracketed) {
                Item item;
                item.toks.push_back(OutTok{traits_.bracketedName(tok.text.substr(1, tok.text.size() - 2))});
                item.simpleName = true;
                item.lastName = lowerCopy(tok.text.substr(1, tok.text.size() - 2));
                st.segment.push_back(std::move(item));
                continue;
            }
            if (tok.isSymbol(".")) {
                if (st.segment.empty() || st.segment.back().isOperator || i + 1 >= hi)
                    fail("Syntax error in query expression.", sql_);
                Item &prev = st.segment.back();
                const JetToken &next = t_[++i];
                // Only a name or * follows the dot; a literal there would bypass its slot.
                if (next.kind != JetToken::Word && next.kind != JetToken::Bracketed && !next.isSymbol("*"))
                    fail("Syntax error in query expression.", sql_);
                prev.toks.push_back(OutTok{"."});
                prev.toks.push_back(OutTok{next.kind == JetToken::Bracketed ? traits_.bracketedName(next.text.substr(1, next.text.size() - 2))
                                                                            : std::string(next.text)});
                prev.lastName = next.kind == JetToken::Bracketed ? lowerCopy(next.text.substr(1, next.text.size() - 2))
                                                                  : lowerCopy(next.text);
                prev.callable = false;
                continue;
            }
            if (tok.kind == JetToken::Symbol) {
                if (tok.text == "," || isComparison(tok.text)) {
                    flush(st);
                    st.out.push_back(OutTok{tok.text == "!=" ? std::string("<>") : std::string(tok.text)});
                    continue;
                }
                if (tok.text == "\\" || tok.text == "^" || tok.text == "!")
                    fail("Syntax error in query expression near '" + std::string(tok.text) + "'.", sql_);
                Item item;
                item.isOperator = true;
                item.op = std::string(tok.text);
                item.toks.push_back(OutTok{tok.text == "/" ? std::string(traits_.divideOperator()) : std::string(tok.text)});
                st.segment.push_back(std::move(item));
                continue;
            }
            // A word.
            const std::string lw = lowerCopy(tok.text);
            const bool followedByGroup = i + 1 < hi && t_[i + 1].isSymbol("(");
            const bool afterDot = i > lo && t_[i - 1].isSymbol(".");
            if (!afterDot && isBoundaryKeyword(lw) && !(followedByGroup && (lw == "left" || lw == "right"))) {
                flush(st);
                i = keyword(st, lw, i, hi);
                continue;
            }
            Item item;
            if (!afterDot && !followedByGroup && lw == "mod" && !st.segment.empty() && !st.segment.back().isOperator) {
                // Jet's Mod operator: the remainder, as % on the engines.
                item.isOperator = true;
                item.op = "%";
                item.toks.push_back(OutTok{"%"});
                st.segment.push_back(std::move(item));
                continue;
            }
            if (!afterDot && !followedByGroup && (lw == "true" || lw == "false")) {
                item.toks.push_back(OutTok{lw == "true" ? "-1" : "0"});
                item.literal = true;
            } else if (followedByGroup) {
                const std::string native = traits_.functionName(lw);
                item.toks.push_back(OutTok{native.empty() ? std::string(tok.text) : native});
                item.toks.back().call = true;
                item.callable = true;
                item.function = lw;
            } else {
                item.toks.push_back(OutTok{std::string(tok.text)});
                item.simpleName = true;
                item.lastName = lw;
            }
            st.segment.push_back(std::move(item));
        }
        flush(st);
        if (st.limitSlot >= 0) {
            st.out.push_back(OutTok{"LIMIT"});
            st.out.push_back(OutTok{std::string(), st.limitSlot, JetToken::Number});
        }
        return std::move(st.out);
    }

    bool loneTable(size_t open, size_t close) const
    {
        if (open == 0 || !(t_[open - 1].isWord("from") || t_[open - 1].isWord("join")))
            return false;
        auto name = [&](size_t k) {
            return t_[k].kind == JetToken::Bracketed || (t_[k].kind == JetToken::Word && !isBoundaryKeyword(lowerCopy(t_[k].text)));
        };
        const size_t n = close - open - 1;
        if (n == 1)
            return name(open + 1);
        if (n == 2)
            return name(open + 1) && name(open + 2);
        return n == 3 && name(open + 1) && t_[open + 2].isWord("as") && name(open + 3);
    }

    void wrapNumericCall(Item &call) const
    {
        const DialectTraits::Wrapper wrapper = traits_.numericCall(call.function);
        if (wrapper.before.empty() && wrapper.after.empty())
            return;
        Out out;
        for (size_t k = 0; k < wrapper.before.size(); ++k) {
            out.push_back(OutTok{wrapper.before[k]});
            out.back().call = k + 1 < wrapper.before.size() && wrapper.before[k + 1] == "(";
        }
        appendTokens(out, call.toks);
        for (const std::string &t : wrapper.after)
            out.push_back(OutTok{t});
        call.toks = std::move(out);
    }

    // Handles a clause keyword at index i; returns the index of the last token consumed.
    size_t keyword(LevelState &st, const std::string &lw, size_t i, size_t hi)
    {
        if (lw == "select") {
            st.out.push_back(OutTok{"SELECT"});
            st.inSelectList = true;
            st.inOrderBy = false;
            if (i + 1 < hi && (t_[i + 1].isWord("distinct") || t_[i + 1].isWord("distinctrow"))) {
                st.out.push_back(OutTok{"DISTINCT"});
                ++i;
            }
            if (i + 2 < hi && t_[i + 1].isWord("top") && t_[i + 2].kind == JetToken::Number) {
                if (i + 3 < hi && t_[i + 3].isWord("percent"))
                    fail("TOP n PERCENT is not supported by this database engine.", sql_);
                if (traits_.topAsLimit()) {
                    st.limitSlot = slots_[i + 2];
                } else {
                    st.out.push_back(OutTok{"TOP"});
                    st.out.push_back(OutTok{std::string(), slots_[i + 2], JetToken::Number});
                }
                i += 2;
            }
            return i;
        }
        if (lw == "from") {
            st.inSelectList = false;
        } else if (lw == "order" && i + 1 < hi && t_[i + 1].isWord("by")) {
            st.out.push_back(OutTok{"ORDER BY"});
            st.inOrderBy = true;
            st.inSelectList = false;
            return i + 1;
        } else if (lw == "as" && st.inSelectList && st.lastFlushedWasExpression && i + 1 < hi) {
            const JetToken &alias = t_[i + 1];
            st.expressionAliases.insert(alias.kind == JetToken::Bracketed
                                            ? lowerCopy(alias.text.substr(1, alias.text.size() - 2))
                                            : lowerCopy(alias.text));
        } else if (lw == "union") {
            st.inOrderBy = false;
        } else if (lw == "where" || lw == "group" || lw == "having") {
            st.inSelectList = false;
            st.inOrderBy = false;
        }
        if (lw == "like")
            st.out.push_back(OutTok{traits_.likeKeyword()});
        else
            st.out.push_back(OutTok{lw == "distinctrow" ? std::string("DISTINCT") : std::string(t_[i].text)});
        return i;
    }

    void flush(LevelState &st)
    {
        std::vector<Item> seg = std::move(st.segment);
        st.segment.clear();
        st.lastFlushedWasExpression = false;
        if (seg.empty())
            return;
        const bool expression = seg.size() > 1 || !seg[0].simpleName;
        const bool plainColumn = seg.size() == 1 && seg[0].simpleName && !st.expressionAliases.count(seg[0].lastName);
        const bool position = seg.size() == 1 && seg[0].literal;
        if (st.inSelectList)
            st.lastFlushedWasExpression = expression && !(seg.size() == 1 && seg[0].literal);
        // Jet's & joins texts, a Null counting as empty; it binds looser than arithmetic.
        std::vector<std::vector<Item>> parts(1);
        for (Item &item : seg) {
            if (item.isOperator && item.op == "&")
                parts.emplace_back();
            else
                parts.back().push_back(std::move(item));
        }
        Out emitted;
        if (parts.size() > 1) {
            emitted.push_back(OutTok{"("});
            for (size_t p = 0; p < parts.size(); ++p) {
                if (parts[p].empty())
                    fail("Syntax error (missing operator) in query expression.", sql_);
                if (p > 0)
                    emitted.push_back(OutTok{"||"});
                if (parts[p].size() == 1 && parts[p][0].stringLiteral) {
                    appendTokens(emitted, parts[p][0].toks);
                    continue;
                }
                const DialectTraits::Wrapper text = traits_.concatOperand();
                for (size_t k = 0; k < text.before.size(); ++k)
                    emitted.push_back(OutTok{text.before[k], -1, JetToken::Number, k + 1 < text.before.size() && text.before[k + 1] == "("});
                appendTokens(emitted, plusChain(parts[p]));
                for (const std::string &t : text.after)
                    emitted.push_back(OutTok{t});
            }
            emitted.push_back(OutTok{")"});
        } else {
            emitted = plusChain(parts[0]);
        }
        // A concatenation made here (not one inside a group, which was wrapped where it was made).
        bool concatenated = false;
        int depth = 0;
        for (const OutTok &t : emitted) {
            depth += t.text == "(" ? 1 : t.text == ")" ? -1 : 0;
            concatenated = concatenated || (t.text == "||" && depth == 1);
        }
        if (concatenated) {
            const DialectTraits::Wrapper whole = traits_.concatenation();
            if (!whole.before.empty() || !whole.after.empty()) {
                Out wrapped;
                for (size_t k = 0; k < whole.before.size(); ++k)
                    wrapped.push_back(OutTok{whole.before[k], -1, JetToken::Number, k + 1 < whole.before.size() && whole.before[k + 1] == "("});
                appendTokens(wrapped, emitted);
                for (const std::string &t : whole.after)
                    wrapped.push_back(OutTok{t});
                emitted = std::move(wrapped);
            }
        }
        appendTokens(st.out, emitted);
        if (st.inOrderBy && !plainColumn && !position)
            st.out.push_back(OutTok{traits_.caseInsensitiveOrder()});
    }

    // Jet's + between texts concatenates (a Null gives Null); between numbers it adds.
    // A chain with a text literal among its terms is a concatenation.
    Out plusChain(const std::vector<Item> &part)
    {
        bool hasPlus = false, hasOtherOp = false, hasTextTerm = false;
        for (size_t k = 0; k < part.size(); ++k) {
            if (part[k].isOperator) {
                if (part[k].op == "+" && k > 0 && !part[k - 1].isOperator)
                    hasPlus = true;
                else
                    hasOtherOp = true;
            } else if (part[k].stringLiteral) {
                hasTextTerm = true;
            }
        }
        Out out;
        if (hasPlus && hasTextTerm && !hasOtherOp) {
            out.push_back(OutTok{"("});
            for (const Item &item : part) {
                if (item.isOperator) {
                    out.push_back(OutTok{"||"});
                } else {
                    out.push_back(OutTok{"("});
                    appendTokens(out, item.toks);
                    out.push_back(OutTok{")"});
                }
            }
            out.push_back(OutTok{")"});
            return out;
        }
        for (const Item &item : part)
            appendTokens(out, item.toks);
        return out;
    }

    const DialectTraits &traits_;
    const std::vector<JetToken> &t_;
    std::string_view sql_;
    std::vector<int> slots_; // per token: its literal slot, or -1
    std::vector<size_t> close_; // per "(": the index of its ")", 0 when unmatched
    std::vector<bool> dropped_; // per ")": closes brackets that were left out
};

// The shape of a statement: its tokens exactly as written, literals reduced to their kind.
// Letter case is kept: the translation copies names and aliases as they are written.

std::string shapeKey(const std::vector<JetToken> &tokens)
{
    std::string key;
    key.reserve(256);
    for (const JetToken &tok : tokens) {
        key += char(tok.kind);
        if (!tok.isLiteral())
            key += tok.text;
        key += '\x1f';
    }
    return key;
}

bool needsSpace(const std::string &prev, bool prevCall, const std::string &cur)
{
    if (prev.empty() || prevCall)
        return false;
    return !(prev == "(" || prev == "." || cur == ")" || cur == "," || cur == ".");
}

// The names written with capitals, brackets taken off.
std::shared_ptr<const std::vector<std::string>> spelledNames(const std::vector<JetToken> &tokens)
{
    auto names = std::make_shared<std::vector<std::string>>();
    for (const JetToken &tok : tokens) {
        if (tok.kind != JetToken::Word && tok.kind != JetToken::Bracketed)
            continue;
        const std::string_view name = tok.kind == JetToken::Bracketed ? tok.text.substr(1, tok.text.size() - 2) : tok.text;
        if (std::any_of(name.begin(), name.end(), [](char c) { return c >= 'A' && c <= 'Z'; }))
            names->emplace_back(name);
    }
    return names;
}

JetTranslator::Template compile(TranslatedStatement::Kind kind, const Out &out)
{
    JetTranslator::Template tpl;
    tpl.kind = kind;
    std::string fixed;
    std::string prev;
    bool prevCall = false;
    for (const OutTok &tok : out) {
        const std::string &cur = tok.slot >= 0 ? std::string("'") : tok.text;
        if (needsSpace(prev, prevCall, cur))
            fixed += ' ';
        prevCall = tok.call;
        if (tok.slot >= 0) {
            tpl.pieces.push_back({std::move(fixed), tok.slot, tok.literalKind});
            fixed.clear();
        } else {
            fixed += tok.text;
        }
        prev = cur;
    }
    tpl.pieces.push_back({std::move(fixed), -1, JetToken::Number});
    return tpl;
}

} // namespace

JetTranslator::JetTranslator(std::unique_ptr<DialectTraits> traits) : traits_(std::move(traits)) {}
JetTranslator::~JetTranslator() = default;

size_t JetTranslator::cachedShapes() const
{
    std::lock_guard lock(mutex_);
    return cache_.size();
}

void JetTranslator::clearCache()
{
    std::lock_guard lock(mutex_);
    cache_.clear();
}

std::string JetTranslator::renderLiteral(const JetToken &token) const
{
    switch (token.kind) {
    case JetToken::String:
        if (token.text.front() == '\'')
            return std::string(token.text);
        {
            // "text" in Jet is a text literal: requote it for engines that read "" as a name.
            std::string s = "'";
            const std::string_view inner = token.text.substr(1, token.text.size() - 2);
            for (size_t k = 0; k < inner.size(); ++k) {
                if (inner[k] == '"' && k + 1 < inner.size() && inner[k + 1] == '"')
                    ++k;
                if (inner[k] == '\'')
                    s += '\'';
                s += inner[k];
            }
            return s + "'";
        }
    case JetToken::Date: {
        std::string iso;
        if (!parseJetDate(token.text.substr(1, token.text.size() - 2), &iso))
            return std::string();
        return traits_->dateLiteral(iso);
    }
    default:
        return std::string(token.text);
    }
}

TranslatedStatement JetTranslator::translate(std::string_view sql) const
{
    std::vector<JetToken> tokens;
    std::string error;
    if (!JetLexer::tokenize(sql, &tokens, &error)) {
        if (sql.find('\0') != std::string_view::npos)
            throw JetError(JetError::SyntaxError, error, sql, JetError::Problem::NulCharacter);
        fail(error, sql);
    }

    if (traits_->passThrough()) {
        TranslatedStatement ts;
        ts.kind = tokens[0].isWord("select") || tokens[0].isWord("transform") ? TranslatedStatement::Rows : TranslatedStatement::Command;
        ts.sql = std::string(sql);
        return ts;
    }

    int depth = 0;
    for (const JetToken &tok : tokens) {
        if (tok.isSymbol("(") && ++depth > MaxNesting)
            throw JetError(JetError::SyntaxError, "Query is too complex.", sql);
        if (tok.isSymbol(")"))
            --depth;
    }

    const JetToken &first = tokens[0];
    if (first.isWord("create") && tokens.size() > 2 && tokens[1].isWord("table"))
        return translateCreateTable(*traits_, tokens, sql);
    if (first.isWord("alter") && tokens.size() > 2 && tokens[1].isWord("table"))
        return translateAlterTable(*traits_, tokens, sql);

    const std::string key = shapeKey(tokens);
    std::shared_ptr<const Template> tpl;
    {
        std::lock_guard lock(mutex_);
        auto it = cache_.find(key);
        if (it != cache_.end())
            tpl = it->second;
    }
    if (!tpl) {
        const bool schemaObject = tokens.size() > 2
                                  && (tokens[1].isWord("index") || tokens[1].isWord("table")
                                      || (first.isWord("create") && tokens[1].isWord("unique") && tokens[2].isWord("index")));
        if (!(first.isWord("select") || first.isWord("insert") || first.isWord("update") || first.isWord("delete")
              || ((first.isWord("create") || first.isWord("drop")) && schemaObject)))
            fail("Invalid SQL statement; expected 'DELETE', 'INSERT', 'PROCEDURE', 'SELECT', or 'UPDATE'.", sql);
        std::vector<JetToken> body = tokens;
        // Jet's "DELETE * FROM t" and "DELETE t.* FROM t": the engines want "DELETE FROM t".
        if (first.isWord("delete")) {
            auto from = std::find_if(body.begin(), body.end(), [](const JetToken &t) { return t.isWord("from"); });
            if (from == body.end())
                fail("Syntax error in DELETE statement.", sql);
            // Between DELETE and FROM: nothing, * or table.* only.
            const auto between = from - (body.begin() + 1);
            const bool star = between == 1 && body[1].isSymbol("*");
            const bool tableStar = between == 3 && (body[1].kind == JetToken::Word || body[1].kind == JetToken::Bracketed)
                                   && body[2].isSymbol(".") && body[3].isSymbol("*");
            if (between != 0 && !star && !tableStar)
                fail("Syntax error in DELETE statement.", sql);
            body.erase(body.begin() + 1, from);
        }
        if (first.isWord("select"))
            reduceOuterJoins(body);
        const Out out = Rewriter(*traits_, body, sql).run();
        Template compiled = compile(first.isWord("select") ? TranslatedStatement::Rows : TranslatedStatement::Command, out);
        compiled.spelledNames = spelledNames(tokens);
        auto made = std::make_shared<const Template>(std::move(compiled));
        std::lock_guard lock(mutex_);
        if (cache_.size() >= MaxCachedShapes)
            cache_.clear();
        cache_.emplace(key, made);
        tpl = std::move(made);
    }

    // Fill the template with this statement's literals.
    std::vector<const JetToken *> literals;
    literals.reserve(16);
    for (const JetToken &tok : tokens)
        if (tok.isLiteral())
            literals.push_back(&tok);
    TranslatedStatement ts;
    ts.kind = tpl->kind;
    ts.spelledNames = tpl->spelledNames;
    ts.sql.reserve(sql.size() + 32);
    for (const Piece &piece : tpl->pieces) {
        ts.sql += piece.fixed;
        if (piece.slot < 0)
            continue;
        if (size_t(piece.slot) >= literals.size())
            fail("Syntax error in query expression.", sql);
        const JetToken &lit = *literals[size_t(piece.slot)];
        if (lit.kind == JetToken::Number) {
            // A number beyond the range of a double would reach the engine as infinity.
            if ((lit.text.find_first_of("eE") != std::string_view::npos || lit.text.size() > 300)
                && !std::isfinite(std::strtod(std::string(lit.text).c_str(), nullptr)))
                throw JetError(JetError::Overflow, "Overflow", sql);
            ts.sql += lit.text;
            continue;
        }
        const std::string rendered = renderLiteral(lit);
        if (rendered.empty())
            fail("Syntax error in date in query expression '" + std::string(lit.text) + "'.", sql);
        ts.sql += rendered;
    }
    return ts;
}


void throwJetSyntaxError(const std::string &message, std::string_view sql)
{
    throw JetError(JetError::SyntaxError, message, sql);
}
