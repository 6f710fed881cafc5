#include "Money.h"

#include <cmath>

Money Money::fromDouble(double value)
{
    return fromUnits(std::llround(value * double(Scale)));
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
    const std::int64_t magnitude = units_ < 0 ? -units_ : units_;
    QString text = QString::number(magnitude / Scale);
    std::int64_t fraction = magnitude % Scale;
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
