#include "NaturalOrder.h"

namespace {

// The digits starting at i, without leading zeros; i is left after them.
QStringView digitRun(const QString &text, qsizetype &i)
{
    const qsizetype start = i;
    while (i < text.size() && text[i].isDigit())
        ++i;
    qsizetype first = start;
    while (first + 1 < i && text[first] == QLatin1Char('0'))
        ++first;
    return QStringView(text).mid(first, i - first);
}

} // namespace

int NaturalCompare(const QString &a, const QString &b)
{
    qsizetype i = 0, j = 0;
    while (i < a.size() && j < b.size()) {
        if (a[i].isDigit() && b[j].isDigit()) {
            const QStringView x = digitRun(a, i);
            const QStringView y = digitRun(b, j);
            if (x.size() != y.size())
                return x.size() < y.size() ? -1 : 1;
            if (const int c = x.compare(y); c != 0)
                return c < 0 ? -1 : 1;
            continue;
        }
        const QChar x = a[i].toCaseFolded(), y = b[j].toCaseFolded();
        if (x != y)
            return x < y ? -1 : 1;
        ++i;
        ++j;
    }
    if (i < a.size() || j < b.size())
        return i < a.size() ? 1 : -1;
    return QString::compare(a, b, Qt::CaseSensitive) < 0 ? -1 : (a == b ? 0 : 1);
}
