#include "Isbn.h"

#include <QRegularExpression>

namespace {

int digit(QChar c) { return c.unicode() - u'0'; }

QString checked13(const QString &d)
{
    int sum = 0;
    for (int i = 0; i < 12; ++i)
        sum += digit(d[i]) * (i % 2 == 0 ? 1 : 3);
    return (10 - sum % 10) % 10 == digit(d[12]) ? d : QString();
}

QChar check10(const QString &nine)
{
    int sum = 0;
    for (int i = 0; i < 9; ++i)
        sum += digit(nine[i]) * (10 - i);
    const int c = (11 - sum % 11) % 11;
    return c == 10 ? QChar(u'X') : QChar(u'0' + c);
}

} // namespace

QString Isbn::normalised(const QString &text)
{
    // The first run of digits, hyphens and spaces (with a final X): "0-19-852663-6 (pbk.)" gives 0198526636.
    static const QRegularExpression number(QStringLiteral("[0-9][0-9\\- ]*[0-9Xx]?"));
    const QRegularExpressionMatch m = number.match(text);
    if (!m.hasMatch())
        return QString();
    QString d = m.captured(0);
    d.remove(u'-').remove(u' ');
    d = d.toUpper();
    if (d.size() == 15 || d.size() == 18) // an EAN with its price add-on
        d.truncate(13);
    if (d.size() == 13 && !d.contains(u'X') && (d.startsWith(QLatin1String("978")) || d.startsWith(QLatin1String("979"))))
        return checked13(d);
    if (d.size() == 10 && !d.left(9).contains(u'X') && check10(d.left(9)) == d[9]) {
        const QString twelve = QStringLiteral("978") + d.left(9);
        int sum = 0;
        for (int i = 0; i < 12; ++i)
            sum += digit(twelve[i]) * (i % 2 == 0 ? 1 : 3);
        return twelve + QChar(u'0' + (10 - sum % 10) % 10);
    }
    return QString();
}

QString Isbn::isbn10(const QString &isbn13)
{
    if (isbn13.size() != 13 || !isbn13.startsWith(QLatin1String("978")))
        return QString();
    const QString nine = isbn13.mid(3, 9);
    return nine + check10(nine);
}
