#include "JetLexer.h"

namespace {

bool isWordStart(unsigned char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c >= 0x80; }
bool isWordChar(unsigned char c) { return isWordStart(c) || (c >= '0' && c <= '9') || c == '$'; }
bool isDigit(unsigned char c) { return c >= '0' && c <= '9'; }
char lower(char c) { return (c >= 'A' && c <= 'Z') ? char(c + 32) : c; }

} // namespace

bool equalsNoCase(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (lower(a[i]) != lower(b[i]))
            return false;
    return true;
}

bool JetToken::isWord(std::string_view lowerWord) const
{
    return kind == Word && equalsNoCase(text, lowerWord);
}

bool JetLexer::tokenize(std::string_view sql, std::vector<JetToken> *out, std::string *error)
{
    out->clear();
    const size_t n = sql.size();
    size_t i = 0;
    bool ended = false;
    // A NUL cannot be stored in a text and ends the text early for the engines: refuse it anywhere.
    if (sql.find('\0') != std::string_view::npos) {
        *error = "The statement contains a NUL character (code 0), which cannot be stored in the database.";
        return false;
    }
    while (i < n) {
        const unsigned char c = static_cast<unsigned char>(sql[i]);
        if (c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v') {
            ++i;
            continue;
        }
        if (ended) {
            *error = "Characters found after end of SQL statement.";
            return false;
        }
        const size_t start = i;
        if (isWordStart(c)) {
            while (i < n && isWordChar(static_cast<unsigned char>(sql[i])))
                ++i;
            out->push_back({JetToken::Word, sql.substr(start, i - start)});
        } else if (isDigit(c) || (c == '.' && i + 1 < n && isDigit(static_cast<unsigned char>(sql[i + 1]))
                                  && (out->empty() || out->back().kind == JetToken::Symbol))) {
            while (i < n && isDigit(static_cast<unsigned char>(sql[i])))
                ++i;
            if (i < n && sql[i] == '.') {
                ++i;
                while (i < n && isDigit(static_cast<unsigned char>(sql[i])))
                    ++i;
            }
            if (i < n && (sql[i] == 'e' || sql[i] == 'E')) {
                size_t j = i + 1;
                if (j < n && (sql[j] == '+' || sql[j] == '-'))
                    ++j;
                if (j < n && isDigit(static_cast<unsigned char>(sql[j]))) {
                    i = j;
                    while (i < n && isDigit(static_cast<unsigned char>(sql[i])))
                        ++i;
                }
            }
            out->push_back({JetToken::Number, sql.substr(start, i - start)});
        } else if (c == '\'' || c == '"') {
            ++i;
            for (;;) {
                if (i >= n) {
                    *error = "Syntax error in string in query expression.";
                    return false;
                }
                if (static_cast<unsigned char>(sql[i]) == c) {
                    if (i + 1 < n && static_cast<unsigned char>(sql[i + 1]) == c) {
                        i += 2;
                        continue;
                    }
                    ++i;
                    break;
                }
                ++i;
            }
            out->push_back({JetToken::String, sql.substr(start, i - start)});
        } else if (c == '#') {
            const size_t close = sql.find('#', i + 1);
            if (close == std::string_view::npos) {
                *error = "Syntax error in date in query expression.";
                return false;
            }
            i = close + 1;
            out->push_back({JetToken::Date, sql.substr(start, i - start)});
        } else if (c == '[') {
            const size_t close = sql.find(']', i + 1);
            if (close == std::string_view::npos) {
                *error = "Invalid bracketing of name.";
                return false;
            }
            i = close + 1;
            out->push_back({JetToken::Bracketed, sql.substr(start, i - start)});
        } else if (c == ';') {
            ++i;
            ended = true;
        } else {
            size_t len = 1;
            if (i + 1 < n) {
                const char d = sql[i + 1];
                if ((c == '<' && (d == '>' || d == '=')) || (c == '>' && d == '=') || (c == '!' && d == '='))
                    len = 2;
            }
            switch (c) {
            case '(': case ')': case ',': case '.': case '*': case '+': case '-': case '/': case '\\':
            case '&': case '=': case '<': case '>': case '^': case '!':
                break;
            default:
                *error = std::string("Invalid character in query expression: '") + char(c) + "'.";
                return false;
            }
            out->push_back({JetToken::Symbol, sql.substr(start, len)});
            i += len;
        }
    }
    if (out->empty()) {
        *error = "Invalid SQL statement; expected 'DELETE', 'INSERT', 'PROCEDURE', 'SELECT', or 'UPDATE'.";
        return false;
    }
    return true;
}
