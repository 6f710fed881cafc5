#pragma once

#include <QString>
#include <compare>
#include <cstdint>

/// Fixed-point currency value with four decimal places, as the library's
/// fines and payments are kept. Arithmetic is exact; converting from a double
/// rounds to the nearest ten-thousandth, so a value stored and read back is
/// the same value.
class Money {
public:
    static constexpr std::int64_t Scale = 10000;

    constexpr Money() = default;
    static constexpr Money fromUnits(std::int64_t units) { Money m; m.units_ = units; return m; }
    /// Throws AppError "Overflow" for infinity, NaN and values beyond the currency range.
    static Money fromDouble(double value);
    /// Parses "12", "12.5", "-0.0001"; returns false on anything else.
    static bool parse(const QString &text, Money *out);

    constexpr std::int64_t units() const { return units_; }
    double toDouble() const { return double(units_) / double(Scale); }
    /// Plain decimal text without trailing zeros ("1.5", "2", "0.0025"): the form spliced into SQL.
    QString toSqlText() const;
    /// Two decimals for display ("1.50").
    QString toDisplayText() const;
    /// The amount as a letter writes it: the currency's symbol (the system's, "R" where it has none)
    /// and two decimals ("R 12.50").
    QString toCurrencyText() const;

    // Arithmetic beyond the 64-bit range throws AppError "Overflow" (number 6), as the old runtime did.
    Money operator+(Money o) const;
    Money operator-(Money o) const;
    Money operator*(std::int64_t n) const;
    Money &operator+=(Money o) { return *this = *this + o; }
    constexpr auto operator<=>(const Money &) const = default;

private:
    std::int64_t units_ = 0;
};
