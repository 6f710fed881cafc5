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
    static Money fromDouble(double value);
    /// Parses "12", "12.5", "-0.0001"; returns false on anything else.
    static bool parse(const QString &text, Money *out);

    constexpr std::int64_t units() const { return units_; }
    double toDouble() const { return double(units_) / double(Scale); }
    /// Plain decimal text without trailing zeros ("1.5", "2", "0.0025"): the form spliced into SQL.
    QString toSqlText() const;
    /// Two decimals for display ("1.50").
    QString toDisplayText() const;

    constexpr Money operator+(Money o) const { return fromUnits(units_ + o.units_); }
    constexpr Money operator-(Money o) const { return fromUnits(units_ - o.units_); }
    constexpr Money operator*(std::int64_t n) const { return fromUnits(units_ * n); }
    Money &operator+=(Money o) { units_ += o.units_; return *this; }
    constexpr auto operator<=>(const Money &) const = default;

private:
    std::int64_t units_ = 0;
};
