#pragma once

#include "MarcRecord.h"

#include <QList>
#include <QString>
#include <QStringList>

class TaskProgress;

/// A catalogue that answers searches for records: a Z39.50 server (host:port/database) or an SRU
/// service (an http:// or https:// address).
struct RecordSource {
    QString name;
    QString address;
    bool sru = false;
    QString syntax = QStringLiteral("usmarc"); // the record syntax asked for
    int timeoutSeconds = 10;
    /// The records' character set when it is neither MARC-8 nor UTF-8 (e.g. "iso-8859-1"): they are
    /// converted to UTF-8 as they come. Empty: MARC-8 or UTF-8, told apart by their bytes.
    QString characterSet = QString();
};

/// Finds a book's records at every source at once (YAZ's ZOOM, without blocking on any one of
/// them): each answers within its own time or is named as not answering, and the others still count.
class Z3950Search {
public:
    struct Found {
        QString source;
        MarcRecord record;
    };
    struct Outcome {
        QList<Found> found;
        QStringList problems; // one plain line for each source that did not answer
    };
    /// The records for an ISBN (any form; the ISBN-10 and -13 are both asked for). Throws
    /// TaskCancelled when cancelled.
    static Outcome byIsbn(const QList<RecordSource> &sources, const QString &isbn, TaskProgress &progress);
};
