#include "Money.h"

#include <QLocale>

#include "AppError.h"

#include <cmath>

namespace {
[[noreturn]] void overflow() { throw AppError(AppError::Overflow, QStringLiteral("Overflow")); }
} // namespace

Money Money::fromDouble(double value)
{
    const double scaled = value * double(Scale);
    // 2^63 is the first value a 64-bit count of ten-thousandths cannot hold.
    if (!std::isfinite(scaled) || std::fabs(scaled) >= 9223372036854775808.0)
        overflow();
    return fromUnits(std::llround(scaled));
}

Money Money::operator+(Money o) const
{
    std::int64_t r = 0;
    if (__builtin_add_overflow(units_, o.units_, &r))
        overflow();
    return fromUnits(r);
}

Money Money::operator-(Money o) const
{
    std::int64_t r = 0;
    if (__builtin_sub_overflow(units_, o.units_, &r))
        overflow();
    return fromUnits(r);
}

Money Money::operator*(std::int64_t n) const
{
    std::int64_t r = 0;
    if (__builtin_mul_overflow(units_, n, &r))
        overflow();
    return fromUnits(r);
}

bool Money::parse(const QString &text, Money *out)
{
    const QString t = text.trimmed();
    if (t.isEmpty())
        return false;
    int i = 0;
    bool negative = false;
    if (t[0] == QLatin1Char('-') || t[0] == QLatin1Char('+')) {
        negative = t[0] == QLatin1Char('-');
        ++i;
    }
    std::int64_t whole = 0, fraction = 0;
    int wholeDigits = 0, fractionDigits = 0;
    for (; i < t.size() && t[i].isDigit(); ++i, ++wholeDigits) {
        if (wholeDigits >= 14)
            return false;
        whole = whole * 10 + t[i].digitValue();
    }
    if (i < t.size() && (t[i] == QLatin1Char('.') || t[i] == QLatin1Char(','))) {
        for (++i; i < t.size() && t[i].isDigit(); ++i, ++fractionDigits) {
            if (fractionDigits >= 4)
                return false;
            fraction = fraction * 10 + t[i].digitValue();
        }
    }
    if (i != t.size() || wholeDigits + fractionDigits == 0)
        return false;
    for (int d = fractionDigits; d < 4; ++d)
        fraction *= 10;
    const std::int64_t units = whole * Scale + fraction;
    *out = fromUnits(negative ? -units : units);
    return true;
}

QString Money::toSqlText() const
{
    const std::uint64_t magnitude = units_ < 0 ? 0 - std::uint64_t(units_) : std::uint64_t(units_);
    QString text = QString::number(magnitude / std::uint64_t(Scale));
    const std::uint64_t fraction = magnitude % std::uint64_t(Scale);
    if (fraction != 0) {
        QString digits = QString::number(fraction).rightJustified(4, QLatin1Char('0'));
        while (digits.endsWith(QLatin1Char('0')))
            digits.chop(1);
        text += QLatin1Char('.') + digits;
    }
    return units_ < 0 ? QLatin1Char('-') + text : text;
}

QString Money::toDisplayText() const
{
    return QString::number(toDouble(), 'f', 2);
}

QString Money::toCurrencyText() const
{
    const QString symbol = QLocale().currencySymbol(QLocale::CurrencySymbol);
    return (symbol.isEmpty() ? QStringLiteral("R") : symbol) + QLatin1Char(' ') + toDisplayText();
}
