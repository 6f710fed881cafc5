#pragma once

#include "MarcRecord.h"

#include <QString>
#include <QStringList>

/// A title as the catalogue holds it, taken from a MARC record or to be written as one.
struct CatalogueRecord {
    QString title, subtitle;
    QStringList authors; // "Surname, First names" or a body's name, main entry first
    QString publisher, year, edition;
    QStringList isbns; // ISBN-13s, normalised and checked
    QString classification, series;
    QString language; // the language's English name, from 008/35-37 ("Afrikaans"), or empty
    QStringList subjects; // "Heading -- subdivision"
    struct Copy {
        QString accession, shelf;
    };
    QList<Copy> copies; // one 852 each ($p accession number, $h classification)
};

/// What a MARC 21 bibliographic record becomes in the catalogue, and back.
namespace MarcMapping {
/// The catalogue's fields of a record; *problem says why it cannot be taken (no title).
CatalogueRecord fromMarc(const MarcRecord &record, QString *problem);
/// A record of a title and its copies (an 852 per copy with accession and classification numbers).
MarcRecord toMarc(const CatalogueRecord &title);
/// The English name of a MARC language code, or empty.
QString languageName(const QString &code);
} // namespace MarcMapping
