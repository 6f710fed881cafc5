#pragma once

#include <QChar>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

/// One field of a MARC record: a control field (001 to 009) holds data, a data field two
/// indicators and its subfields in order.
struct MarcField {
    QString tag;
    QString data; // control fields
    QChar ind1 = QLatin1Char(' '), ind2 = QLatin1Char(' ');
    QList<QPair<QChar, QString>> subfields;

    bool isControl() const { return tag < QLatin1String("010"); }
    /// Every value of subfield code, in order.
    QStringList values(QChar code) const;
};

/// A bibliographic record as read (text in Unicode, composed) or to be written.
struct MarcRecord {
    QString leader;
    QList<MarcField> fields;

    /// The fields with this tag, in order.
    QList<MarcField> all(const QString &tag) const;
    /// The first value of subfield code in the first field with this tag that has one, or empty.
    QString first(const QString &tag, QChar code) const;
    /// A control field's data, or empty.
    QString control(const QString &tag) const;

    MarcField &addControl(const QString &tag, const QString &data);
    MarcField &addData(const QString &tag, QChar ind1, QChar ind2, const QList<QPair<QChar, QString>> &subfields);
};
