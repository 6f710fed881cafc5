#pragma once

#include <QDate>
#include <QString>

/// Doubles every single quote, for user-typed text placed between quotes in SQL.
QString Safesql(const QString &text);
/// The number as text, or the word "Null" for 0 (optional keys in INSERT and UPDATE).
QString NullIfZero(qint16 value);
/// A date as a Jet literal: #yyyy-mm-dd#.
QString JetDate(const QDate &date);
