#pragma once

#include <string>
#include <string_view>
#include <vector>

/// One lexical token of a Jet SQL statement.
struct JetToken {
    enum Kind : char {
        Word = 'w',      // name or keyword
        Bracketed = 'b', // [name]
        String = 's',    // '...' or "..." (text holds the raw literal with its quotes)
        Date = 'd',      // #...# (text holds the raw literal with its # signs)
        Number = 'n',
        Symbol = 'o',
    };
    Kind kind;
    std::string_view text;

    bool isLiteral() const { return kind == String || kind == Date || kind == Number; }
    bool isWord(std::string_view lowerWord) const;
    bool isSymbol(std::string_view s) const { return kind == Symbol && text == s; }
};

/// Splits Jet SQL text into tokens. Exactly one statement is accepted: a
/// trailing ";" is allowed, anything after it is an error.
class JetLexer {
public:
    /// Returns false and sets *error when the text cannot be split (an unterminated
    /// literal, a second statement, an unknown character).
    static bool tokenize(std::string_view sql, std::vector<JetToken> *out, std::string *error);
};

bool equalsNoCase(std::string_view a, std::string_view b);
