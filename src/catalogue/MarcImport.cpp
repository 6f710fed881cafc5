#include "MarcImport.h"

#include "AppError.h"
#include "Clock.h"
#include "Isbn.h"
#include "ItemSheet.h"
#include "Recordset.h"
#include "SqlText.h"
#include "TaskProgress.h"
#include "clsDataObject.h"
#include "clsTSQL.h"

#include <QFile>
#include <QHash>
#include <QMap>
#include <QSet>

namespace {

QString quoted(const QString &text) { return QLatin1Char('\'') + Safesql(text) + QLatin1Char('\''); }

// Title and main author as compared for a duplicate without an ISBN.
QString titleKey(const QString &title, const QString &author)
{
    return title.simplified().toCaseFolded() + QLatin1Char('|') + author.section(QLatin1Char(','), 0, 0).simplified().toCaseFolded();
}

// A name list of the catalogue (authors, publishers, series, languages, categories): lower-case name to id.
QHash<QString, int> namesOf(clsDataObject &data, const QString &sql)
{
    QHash<QString, int> ids;
    data.GetData(sql);
    for (; !data.rst->atEnd(); data.rst->MoveNext())
        ids.insert(data.rst->field(1).toString().simplified().toCaseFolded(), data.rst->field(0).toInt());
    data.CloseCompact();
    return ids;
}

} // namespace

QList<MarcImport::Row> MarcImport::preview(const QByteArray &file)
{
    QHash<QString, QString> byIsbn, byTitle;
    clsDataObject data;
    data.GetData(QStringLiteral("select i.AccessionID, i.Title, i.ISBN, a.AuthorSurname, a.AuthorFirstName from tblLibItems i "
                                "left join tblLibAuthors a on i.Author1 = a.AuthorID where i.PhasedOut = false order by i.ItemID"));
    for (; !data.rst->atEnd(); data.rst->MoveNext()) {
        const QString held = data.rst->field(0).toString() + QLatin1Char(' ') + data.rst->field(1).toString();
        // The first copy of a title names it.
        if (const QString isbn = Isbn::normalised(data.rst->field(2).toString()); !isbn.isEmpty() && !byIsbn.contains(isbn))
            byIsbn.insert(isbn, held);
        if (const QString key = titleKey(data.rst->field(1).toString(), data.rst->field(3).toString()); !byTitle.contains(key))
            byTitle.insert(key, held);
    }
    data.CloseCompact();
    QList<Row> rows;
    for (const MarcFile::Entry &e : MarcFile::read(file)) {
        Row row;
        row.number = e.number;
        row.problem = e.problem;
        if (e.record)
            row.record = MarcMapping::fromMarc(*e.record, &row.problem);
        for (const QString &isbn : row.record.isbns)
            if (row.duplicate.isEmpty())
                row.duplicate = byIsbn.value(isbn);
        if (row.duplicate.isEmpty() && row.record.isbns.isEmpty() && !row.record.title.isEmpty())
            row.duplicate = byTitle.value(titleKey(row.record.title, row.record.authors.value(0)));
        rows << row;
    }
    return rows;
}

MarcImport::Result MarcImport::take(const QList<Row> &rows, const Options &options, TaskProgress &progress)
{
    const QString loanType = options.loanType.trimmed().toUpper();
    if (loanType != QLatin1String("S") && loanType != QLatin1String("N") && loanType != QLatin1String("L"))
        throw AppError(AppError::ProviderError, QStringLiteral("The loan type must be S, N or L."));
    if (options.copies < 1 || options.copies > 20)
        throw AppError(AppError::ProviderError, QStringLiteral("The number of copies must be 1 to 20."));
    clsDataObject data;
    const QHash<QString, int> categories = namesOf(data, QStringLiteral("select CategoryID, Category from tblLibCategories where PhasedOut = false"));
    const int category = categories.value(options.category.simplified().toCaseFolded(), -1);
    if (category < 0)
        throw AppError(AppError::ProviderError, QStringLiteral("There is no category named \"%1\".").arg(options.category));
    QHash<QString, int> authors = namesOf(data, QStringLiteral("select AuthorID, AuthorSurname & ', ' & AuthorFirstName from tblLibAuthors where PhasedOut = false"));
    for (auto [name, id] : namesOf(data, QStringLiteral("select AuthorID, AuthorSurname from tblLibAuthors where PhasedOut = false and "
                                                        "(AuthorFirstName is null or AuthorFirstName = '')")).asKeyValueRange())
        authors.insert(name, id);
    QHash<QString, int> publishers = namesOf(data, QStringLiteral("select PublisherID, Publisher from tblLibPublishers where PhasedOut = false"));
    QHash<QString, int> series = namesOf(data, QStringLiteral("select SeriesID, Series from tblLibSeries where PhasedOut = false"));
    const QHash<QString, int> languages = namesOf(data, QStringLiteral("select ItemLanguageID, ItemLanguage from tblLibItemLanguages"));

    int takeable = 0;
    for (const Row &r : rows)
        takeable += r.canBeTaken() ? 1 : 0;
    progress.setMaximum(takeable);
    progress.setValue(0);
    Result result;
    data.RunTransaction([&] {
        result = Result();
        data.GetData(clsTSQL().spItemLastAccession());
        QString accession = data.rst->atEnd() ? QString() : data.rst->field(0).toString();
        data.CloseCompact();
        QSet<QString> held;
        data.GetData(QStringLiteral("select AccessionID from tblLibItems"));
        for (; !data.rst->atEnd(); data.rst->MoveNext())
            held.insert(data.rst->field(0).toString().toCaseFolded());
        data.CloseCompact();
        // A name the catalogue lacks is added once, in the same transaction.
        const auto idOf = [&](QHash<QString, int> &known, const QString &name, const std::function<QString()> &insert, const QString &key) {
            if (name.trimmed().isEmpty())
                return 0;
            const QString folded = name.simplified().toCaseFolded();
            if (!known.contains(folded))
                known.insert(folded, int(data.InsertReturningKey(insert(), key)));
            return known.value(folded);
        };
        const auto authorID = [&](const QString &name) {
            const QString surname = name.section(QLatin1Char(','), 0, 0).trimmed(), first = name.section(QLatin1Char(','), 1).trimmed();
            return idOf(authors, first.isEmpty() ? surname : surname + QStringLiteral(", ") + first, [&] {
                return QStringLiteral("insert into tblLibAuthors(AuthorSurname, AuthorFirstName) values(") + quoted(surname.left(100))
                       + QLatin1Char(',') + quoted(first.left(100)) + QLatin1Char(')');
            }, QStringLiteral("AuthorID"));
        };
        for (const Row &r : rows) {
            if (!r.canBeTaken())
                continue;
            progress.check();
            const CatalogueRecord &c = r.record;
            ItemDetails item;
            item.categoryID = category;
            item.title = c.title.left(255);
            item.byLine = c.subtitle.left(255);
            item.author1 = authorID(c.authors.value(0));
            item.author2 = authorID(c.authors.value(1));
            item.author3 = authorID(c.authors.value(2));
            item.publisher = idOf(publishers, c.publisher.left(100), [&] {
                return QStringLiteral("insert into tblLibPublishers(Publisher) values(") + quoted(c.publisher.left(100)) + QLatin1Char(')');
            }, QStringLiteral("PublisherID"));
            item.seriesID = idOf(series, c.series.left(100), [&] {
                return QStringLiteral("insert into tblLibSeries(Series) values(") + quoted(c.series.left(100)) + QLatin1Char(')');
            }, QStringLiteral("SeriesID"));
            item.itemLanguageID = languages.value(c.language.toCaseFolded(), 0);
            item.yearPublished = c.year.isEmpty() ? Clock::today().year() : c.year.toInt();
            item.edition = c.edition.isEmpty() || c.edition.size() > 4 ? 0 : c.edition.toInt();
            item.isbn = c.isbns.value(0);
            item.classificationNo = c.classification.left(50);
            item.mainSubject = c.subjects.value(0).left(255);
            item.datePurchased = Clock::today();
            // A record from another library keeps its copies' accession numbers where they are free here.
            const int copies = c.copies.isEmpty() ? options.copies : int(c.copies.size());
            for (int copy = 0; copy < copies; ++copy) {
                const QString own = copy < c.copies.size() ? c.copies[copy].accession.left(50) : QString();
                if (!own.isEmpty() && !held.contains(own.toCaseFolded())) {
                    item.accessionID = own;
                } else {
                    do
                        accession = NextAccessionAfter(accession, AccessionRange::Wide);
                    while (held.contains(accession.toCaseFolded()));
                    item.accessionID = accession;
                }
                held.insert(item.accessionID.toCaseFolded());
                const qint64 id = data.InsertReturningKey(clsTSQL().spItemsInsert(item), QStringLiteral("ItemID"));
                if (loanType != QLatin1String("N"))
                    data.ExecuteNonQuery(QStringLiteral("Update tblLibItems set LoanType = '") + loanType + QStringLiteral("' where ItemID = ")
                                         + QString::number(id));
                result.accessions << item.accessionID;
            }
            ++result.titles;
            progress.advance();
        }
        return true;
    });
    return result;
}

MarcImport::Written MarcImport::exportFile(const QString &fileName, TaskProgress &progress, const QStringList &accessions)
{
    const bool xml = fileName.endsWith(QLatin1String(".xml"), Qt::CaseInsensitive);
    const QList<MarcRecord> records = exportCatalogue(progress, accessions);
    const QByteArray bytes = MarcFile::write(records, xml ? MarcFile::Format::MarcXml : MarcFile::Format::Iso2709);
    QFile out(fileName);
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size())
        throw AppError(AppError::ProviderError, QStringLiteral("%1 cannot be written.").arg(fileName));
    Written written;
    written.titles = records.size();
    for (const MarcRecord &r : records)
        written.copies += r.all(QStringLiteral("852")).size();
    return written;
}

QList<MarcRecord> MarcImport::exportCatalogue(TaskProgress &progress, const QStringList &accessions)
{
    const QSet<QString> only(accessions.begin(), accessions.end());
    clsDataObject data;
    data.GetData(QStringLiteral(
        "select i.AccessionID, i.Title, i.ByLine, i.ISBN, i.ClassificationNo, i.YearPublished, i.Edition, i.ShelfNumber, i.MainSubject, "
        "a1.AuthorSurname, a1.AuthorFirstName, a2.AuthorSurname, a2.AuthorFirstName, a3.AuthorSurname, a3.AuthorFirstName, "
        "p.Publisher, s.Series, l.ItemLanguage from ((((((tblLibItems i left join tblLibAuthors a1 on i.Author1 = a1.AuthorID) "
        "left join tblLibAuthors a2 on i.Author2 = a2.AuthorID) left join tblLibAuthors a3 on i.Author3 = a3.AuthorID) "
        "left join tblLibPublishers p on i.Publisher = p.PublisherID) left join tblLibSeries s on i.SeriesID = s.SeriesID) "
        "left join tblLibItemLanguages l on i.ItemLanguageID = l.ItemLanguageID) where i.PhasedOut = false order by i.ItemID"));
    QList<CatalogueRecord> titles;
    QHash<QString, int> seen; // title, authors and ISBN: the copies of one title
    Recordset &rs = *data.rst;
    for (; !rs.atEnd(); rs.MoveNext()) {
        const auto text = [&rs](int f) { return rs.field(f).trimmed(); };
        if (!only.isEmpty() && !only.contains(rs.field(0).toString()))
            continue;
        CatalogueRecord t;
        t.title = text(1);
        t.subtitle = text(2);
        if (const QString isbn = Isbn::normalised(text(3)); !isbn.isEmpty())
            t.isbns << isbn;
        t.classification = text(4);
        t.year = text(5) == QLatin1String("0") ? QString() : text(5);
        t.edition = text(6) == QLatin1String("0") ? QString() : text(6);
        if (!text(8).isEmpty())
            t.subjects << text(8);
        for (int a = 9; a <= 13; a += 2)
            if (!text(a).isEmpty())
                t.authors << (text(a + 1).isEmpty() ? text(a) : text(a) + QStringLiteral(", ") + text(a + 1));
        t.publisher = text(15);
        t.series = text(16);
        t.language = text(17);
        const QString key = t.title + QLatin1Char('|') + t.authors.join(QLatin1Char(';')) + QLatin1Char('|') + t.isbns.value(0) + QLatin1Char('|') + text(3);
        if (!seen.contains(key)) {
            seen.insert(key, int(titles.size()));
            titles << t;
        }
        titles[seen.value(key)].copies << CatalogueRecord::Copy{text(0), t.classification};
        progress.check();
    }
    data.CloseCompact();
    QList<MarcRecord> records;
    progress.setMaximum(int(titles.size()));
    for (const CatalogueRecord &t : titles) {
        records << MarcMapping::toMarc(t);
        progress.advance();
    }
    return records;
}
