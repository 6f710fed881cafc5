#pragma once

#include <QString>
#include <stdexcept>

/// A run-time error as a handler's error trap sees it: a number and a
/// description, reported through ReportError. Database failures carry the
/// statement text that failed so the report can name it.
class AppError : public std::runtime_error {
public:
    AppError(double number, const QString &description, const QString &statement = QString());

    /// What a routine may do about a database failure besides reporting it.
    enum class Cause {
        Other,
        Duplicate,      // a unique index refused the row (another desk wrote it first)
        WriteConflict,  // another desk changed the same rows at the same time: run the work again
        ConnectionLost, // the server went away; nothing of the open transaction was kept
        Unreachable,    // the database server could not be reached or refused the desk
        TooLong,        // a text longer than its column holds (a typed value, the typist's to mend)
        NulCharacter,   // a text holding code 0, which no column stores (a typed value too)
    };
    AppError(double number, const QString &description, const QString &statement, Cause cause);
    Cause cause() const { return cause_; }

    double number() const { return number_; }
    const QString &description() const { return description_; }
    /// The statement as the screen wrote it (before any dialect translation); empty when not a database error.
    const QString &statement() const { return statement_; }

    // Numbers a handler's trap may see (the runtime's own and the provider's generic ones).
    static constexpr double Overflow = 6;
    static constexpr double DivisionByZero = 11;
    static constexpr double TypeMismatch = 13;
    static constexpr double NoCurrentRecord = 3021;
    static constexpr double ProviderError = -2147467259;   // 0x80004005, the provider's unspecified error
    static constexpr double SyntaxError = -2147217900;     // 0x80040E14
    static constexpr double DataTypeMismatch = -2147217913; // 0x80040E07
    static constexpr double ConnectionFailure = -2147467259; // the provider's unspecified error, as for a lost link

    /// Jet's words for a row refused by a unique index (the same on every engine).
    static QString duplicateValuesText();

private:
    double number_;
    QString description_;
    QString statement_;
    Cause cause_ = Cause::Other;
};
