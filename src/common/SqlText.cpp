#include "SqlText.h"

QString Safesql(const QString &text)
{
    QString doubled = text;
    doubled.replace(QLatin1Char('\''), QLatin1String("''"));
    return doubled;
}

QString NullIfZero(qint16 value)
{
    return value == 0 ? QStringLiteral("Null") : QString::number(value);
}

QString JetDate(const QDate &date) { return QLatin1Char('#') + date.toString(QStringLiteral("yyyy-MM-dd")) + QLatin1Char('#'); }
