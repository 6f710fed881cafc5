#pragma once

#include "MarcFile.h"
#include "MarcMapping.h"

#include <QByteArray>
#include <QList>
#include <QString>

class TaskProgress;

/// A supplier's or another library's MARC records brought into the catalogue. The preview says
/// what every record becomes, which titles the catalogue holds already (by ISBN, else by title and
/// main author) and which records cannot be taken and why; the import then writes the chosen
/// records, each with its copies, in one transaction: all of them or none.
class MarcImport {
public:
    struct Row {
        int number = 0; // the record's place in the file
        CatalogueRecord record;
        QString problem;   // why it cannot be taken (not read, no title), else empty
        QString duplicate; // the catalogue's copy of the same title ("A0012 Title"), else empty
        bool canBeTaken() const { return problem.isEmpty(); }
    };
    /// Reads the file's bytes and looks each record up in the library. Throws AppError (the library).
    static QList<Row> preview(const QByteArray &file);

    struct Options {
        QString category; // a category's name, as the category list holds it
        QString loanType = QStringLiteral("N"); // S, N or L
        int copies = 1;
    };
    struct Result {
        int titles = 0;
        QStringList accessions; // of every copy written, in order
    };
    /// Writes rows that can be taken: a record's own copies (852 $p, numbers kept where free), else
    /// options.copies copies, accession numbers continuing from the newest.
    /// Throws AppError (nothing written) for an unknown category or loan type or a failed write;
    /// TaskCancelled when cancelled (nothing written).
    static Result take(const QList<Row> &rows, const Options &options, TaskProgress &progress);
    /// The whole catalogue as MARC records (or only the copies with these accession numbers): one per
    /// title (its copies grouped by title, authors and ISBN), an 852 for each copy. Removed copies
    /// are left out.
    static QList<MarcRecord> exportCatalogue(TaskProgress &progress, const QStringList &accessions = {});
    struct Written {
        qsizetype titles = 0, copies = 0;
    };
    /// The same written to fileName: MARCXML when it ends in ".xml", else MARC 21 (UTF-8). Throws
    /// AppError when the file cannot be written.
    static Written exportFile(const QString &fileName, TaskProgress &progress, const QStringList &accessions = {});
};
