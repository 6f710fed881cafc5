#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

/// A Jet statement the translator cannot take: Jet's error number and words, and the statement as
/// written. The data layer reports it as the database's own error.
class JetError : public std::runtime_error {
public:
    /// A NUL character is no fault of the statement's writer but of a typed value.
    enum class Problem { Statement, NulCharacter };
    JetError(double number, const std::string &message, std::string_view statement, Problem problem = Problem::Statement)
        : std::runtime_error(message), number_(number), statement_(statement), problem_(problem) {}
    double number() const { return number_; }
    Problem problem() const { return problem_; }
    const std::string &statement() const { return statement_; }

    static constexpr double Overflow = 6;
    static constexpr double SyntaxError = -2147217900; // 0x80040E14

private:
    double number_;
    std::string statement_;
    Problem problem_;
};

/// Throws the syntax error of a statement that cannot be translated, keeping its text.
[[noreturn]] void throwJetSyntaxError(const std::string &message, std::string_view sql);
