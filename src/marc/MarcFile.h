#pragma once

#include "MarcRecord.h"

#include <QByteArray>
#include <QList>
#include <optional>

/// Files of MARC records, read and written with YAZ: ISO 2709 (whatever its leader claims, a
/// record whose bytes are valid UTF-8 is read as UTF-8 and any other as MARC-8) and MARCXML.
class MarcFile {
public:
    /// One record of a file as read: the record, or why it could not be read.
    struct Entry {
        int number = 0; // 1 for the file's first record
        std::optional<MarcRecord> record;
        QString problem;
    };
    /// Every record of the file's bytes, in order. A file that is neither is one entry with the problem.
    static QList<Entry> read(const QByteArray &bytes);

    enum class Format { Iso2709, MarcXml };
    enum class Characters { Utf8, Marc8 };
    /// The records as a file: ISO 2709 (UTF-8, leader position 9 "a"; or MARC-8 for tests of
    /// other systems' files) or a MARCXML collection.
    static QByteArray write(const QList<MarcRecord> &records, Format format, Characters characters = Characters::Utf8);
};
