#include "MarcRecord.h"

QStringList MarcField::values(QChar code) const
{
    QStringList out;
    for (const auto &[c, value] : subfields)
        if (c == code)
            out << value;
    return out;
}

QList<MarcField> MarcRecord::all(const QString &tag) const
{
    QList<MarcField> out;
    for (const MarcField &f : fields)
        if (f.tag == tag)
            out << f;
    return out;
}

QString MarcRecord::first(const QString &tag, QChar code) const
{
    for (const MarcField &f : fields)
        if (f.tag == tag)
            if (const QStringList v = f.values(code); !v.isEmpty())
                return v.first();
    return QString();
}

QString MarcRecord::control(const QString &tag) const
{
    for (const MarcField &f : fields)
        if (f.tag == tag)
            return f.data;
    return QString();
}

MarcField &MarcRecord::addControl(const QString &tag, const QString &data)
{
    MarcField f;
    f.tag = tag;
    f.data = data;
    fields << f;
    return fields.last();
}

MarcField &MarcRecord::addData(const QString &tag, QChar ind1, QChar ind2, const QList<QPair<QChar, QString>> &subfields)
{
    MarcField f;
    f.tag = tag;
    f.ind1 = ind1;
    f.ind2 = ind2;
    f.subfields = subfields;
    fields << f;
    return fields.last();
}
