#include "OpacCatalogue.h"

#include "Recordset.h"
#include "SqlText.h"
#include "clsDataObject.h"

#include <QHash>

namespace {

// Every copy's row: the title's fields, its author and its open loan's due date.
const QString CopyColumns = QStringLiteral(
    "select i.ItemID, i.Title, i.ISBN, i.YearPublished, i.ClassificationNo, i.ShelfNumber, i.ReferenceItem, i.AccessionID, "
    "a.AuthorSurname, a.AuthorFirstName, (select min(t.DueDate) from tblLibTransactions t where t.ItemID = i.ItemID and "
    "t.Returned = false) as DueBack, i.ByLine, p.Publisher, s.Series from ((tblLibItems i left join tblLibAuthors a on "
    "i.Author1 = a.AuthorID) left join tblLibPublishers p on i.Publisher = p.PublisherID) left join tblLibSeries s on "
    "i.SeriesID = s.SeriesID where i.PhasedOut = false ");

QString text(Recordset &rs, int f) { return rs.field(f).isNull() ? QString() : rs.field(f).toString().trimmed(); }

QString authorOf(Recordset &rs)
{
    const QString surname = text(rs, 8), first = text(rs, 9);
    return first.isEmpty() ? surname : surname + QStringLiteral(", ") + first;
}

QString key(Recordset &rs) { return text(rs, 1).toCaseFolded() + QLatin1Char('|') + authorOf(rs).toCaseFolded() + QLatin1Char('|') + text(rs, 2); }

// Adds one copy to its title.
void count(OpacCatalogue::Title &t, Recordset &rs)
{
    ++t.copies;
    const bool reference = rs.field(6).toBool();
    const QDate due = rs.field(10).isNull() ? QDate() : rs.field(10).toDateTime().date();
    if (!reference && !due.isValid())
        ++t.onShelf;
    if (due.isValid() && (!t.dueBack.isValid() || due < t.dueBack))
        t.dueBack = due;
    t.referenceOnly = (t.copies == 1 ? reference : t.referenceOnly && reference);
}

OpacCatalogue::Title titleOf(Recordset &rs)
{
    OpacCatalogue::Title t;
    t.itemID = rs.field(0).toInt();
    t.title = text(rs, 1);
    t.isbn = text(rs, 2);
    t.year = text(rs, 3) == QLatin1String("0") ? QString() : text(rs, 3);
    t.classification = text(rs, 4);
    t.author = authorOf(rs);
    return t;
}

} // namespace

QString OpacCatalogue::Title::availability() const
{
    if (referenceOnly)
        return QStringLiteral("Reference only");
    if (onShelf > 0)
        return QStringLiteral("%1 of %2 on the shelf").arg(onShelf).arg(copies);
    return dueBack.isValid() ? QStringLiteral("Due back ") + dueBack.toString(Qt::ISODate) : QStringLiteral("Not on the shelf");
}

OpacCatalogue::Page OpacCatalogue::search(const QString &typed, int page)
{
    Page result;
    const QString wanted = typed.simplified().left(200);
    if (wanted.isEmpty())
        return result;
    const QString q = Safesql(wanted);
    const QString sql = CopyColumns + QStringLiteral(
        "and (i.Title like '%") + q + QStringLiteral("%' or a.AuthorSurname like '") + q + QStringLiteral("%' or i.ISBN = '") + q
        + QStringLiteral("' or i.AccessionID = '") + q + QStringLiteral("' or i.ItemID in (select k.ItemID from tblLibItemKeywords k inner join "
                         "tblLibKeywords w on k.KeyID = w.KeyID where w.KeywordEng like '") + q + QStringLiteral("%' or w.KeywordAfr like '") + q
        + QStringLiteral("%') or i.ItemID in (select s.itemid from tblLibItemSubjects s inner join tblLibSubjectCodes c on s.subjectid = c.Id "
                         "where c.SubjectDescription like '") + q + QStringLiteral("%')) order by i.Title, i.ItemID");
    clsDataObject data;
    data.GetData(sql);
    QList<Title> titles;
    QHash<QString, qsizetype> at;
    for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext()) {
        const QString k = key(rs);
        if (!at.contains(k)) {
            at.insert(k, titles.size());
            titles << titleOf(rs);
        }
        count(titles[at.value(k)], rs);
    }
    data.CloseCompact();
    result.total = int(titles.size());
    result.titles = titles.mid(qsizetype(std::max(0, page - 1)) * PageSize, PageSize);
    return result;
}

std::optional<OpacCatalogue::Details> OpacCatalogue::details(int itemID)
{
    clsDataObject data;
    data.GetData(CopyColumns + QStringLiteral("and i.ItemID = ") + QString::number(itemID));
    if (data.rst->atEnd()) {
        data.CloseCompact();
        return std::nullopt;
    }
    Details d;
    d.title = titleOf(*data.rst);
    d.subtitle = text(*data.rst, 11);
    d.publisher = text(*data.rst, 12);
    d.series = text(*data.rst, 13);
    const QString wantedKey = key(*data.rst);
    const QString title = Safesql(d.title.title);
    data.CloseCompact();
    // The title's other copies: the same title, author and ISBN.
    data.GetData(CopyColumns + QStringLiteral("and i.Title = '") + title + QStringLiteral("' order by i.AccessionID"));
    for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext()) {
        if (key(rs) != wantedKey)
            continue;
        Title one;
        count(one, rs);
        count(d.title, rs);
        d.copies << Copy{text(rs, 7), text(rs, 5).isEmpty() ? text(rs, 4) : text(rs, 5),
                         one.referenceOnly ? QStringLiteral("Reference only") : one.onShelf ? QStringLiteral("On the shelf") : one.availability()};
    }
    data.CloseCompact();
    return d;
}
