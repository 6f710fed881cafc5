#include "OpacCatalogue.h"

#include "Clock.h"
#include "Recordset.h"
#include "SqlText.h"
#include "clsDataObject.h"

#include <QHash>

namespace {

// Every copy's row: the title's fields, its author and its open loan's due date.
const QString CopyColumns = QStringLiteral(
    "select i.ItemID, i.Title, i.ISBN, i.YearPublished, i.ClassificationNo, i.ShelfNumber, i.ReferenceItem, i.AccessionID, "
    "a.AuthorSurname, a.AuthorFirstName, (select min(t.DueDate) from tblLibTransactions t where t.ItemID = i.ItemID and "
    "t.Returned = false) as DueBack, i.ByLine, p.Publisher, s.Series, i.Author1, i.SeriesID from ((tblLibItems i left join tblLibAuthors a on "
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

namespace {

// The titles of the copies a condition picks, grouped, in the order asked.
QList<OpacCatalogue::Title> titlesWhere(const QString &condition, const QString &order)
{
    clsDataObject data;
    data.GetData(CopyColumns + condition + QStringLiteral(" order by ") + order);
    QList<OpacCatalogue::Title> titles;
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
    return titles;
}

OpacCatalogue::Page pageOf(const QList<OpacCatalogue::Title> &titles, int page)
{
    OpacCatalogue::Page result;
    result.total = int(titles.size());
    result.titles = titles.mid(qsizetype(std::max(0, page - 1)) * OpacCatalogue::PageSize, OpacCatalogue::PageSize);
    return result;
}

} // namespace

OpacCatalogue::Page OpacCatalogue::search(const Filter &filter, int page)
{
    if (!filter.any())
        return Page();
    QString condition;
    const QString wanted = filter.text.simplified().left(200);
    if (!wanted.isEmpty()) {
        const QString q = Safesql(wanted);
        condition += QStringLiteral(
            "and (i.Title like '%") + q + QStringLiteral("%' or a.AuthorSurname like '") + q + QStringLiteral("%' or i.ISBN = '") + q
            + QStringLiteral("' or i.AccessionID = '") + q + QStringLiteral("' or i.ItemID in (select k.ItemID from tblLibItemKeywords k inner join "
                             "tblLibKeywords w on k.KeyID = w.KeyID where w.KeywordEng like '") + q + QStringLiteral("%' or w.KeywordAfr like '") + q
            + QStringLiteral("%') or i.ItemID in (select s.itemid from tblLibItemSubjects s inner join tblLibSubjectCodes c on s.subjectid = c.Id "
                             "where c.SubjectDescription like '") + q + QStringLiteral("%')) ");
    }
    const auto narrow = [&condition](const char *column, int id) {
        if (id > 0)
            condition += QStringLiteral("and i.%1 = %2 ").arg(QLatin1String(column)).arg(id);
    };
    narrow("CategoryID", filter.category);
    narrow("SubCategoryID", filter.subCategory);
    narrow("ItemLanguageID", filter.language);
    narrow("SeriesID", filter.series);
    return pageOf(titlesWhere(condition, QStringLiteral("i.Title, i.ItemID")), page);
}

QList<OpacCatalogue::Choice> OpacCatalogue::choices(List list)
{
    static const char *const sql[] = {
        "select CategoryID, Category from tblLibCategories where PhasedOut = false order by Category",
        "select s.SubCategoryID, c.Category & ': ' & s.SubCategory from tblLibSubCategories s inner join tblLibCategories c on s.CategoryID = "
        "c.CategoryID where s.PhasedOut = false and c.PhasedOut = false order by c.Category, s.SubCategory",
        "select ItemLanguageID, ItemLanguage from tblLibItemLanguages order by ItemLanguage",
        "select SeriesID, Series from tblLibSeries where PhasedOut = false order by Series"};
    clsDataObject data;
    data.GetData(QLatin1String(sql[int(list)]));
    QList<Choice> out;
    for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext())
        out << Choice{rs.field(0).toInt(), text(rs, 1)};
    data.CloseCompact();
    return out;
}

OpacCatalogue::Page OpacCatalogue::newInTheLibrary(int page)
{
    const QDate since = Clock::today().addDays(-30);
    return pageOf(titlesWhere(QStringLiteral("and i.DateAdded >= #%1# ").arg(since.toString(Qt::ISODate)),
                              QStringLiteral("i.DateAdded desc, i.ItemID desc")),
                  page);
}

QList<QPair<OpacCatalogue::Title, int>> OpacCatalogue::mostBorrowed(QDate *since)
{
    const QDate today = Clock::today();
    *since = QDate(today.year(), (today.month() - 1) / 3 * 3 + 1, 1);
    clsDataObject data;
    data.GetData(QStringLiteral("select top 200 ItemID, count(*) as Loans from tblLibTransactions where IssueDate >= #%1# group by ItemID "
                                "order by count(*) desc, ItemID")
                     .arg(since->toString(Qt::ISODate)));
    QHash<int, int> loans;
    QStringList ids;
    for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext()) {
        loans.insert(rs.field(0).toInt(), rs.field(1).toInt());
        ids << rs.field(0).toString();
    }
    data.CloseCompact();
    if (ids.isEmpty())
        return {};
    // The copies' loans add up to their title's.
    QList<QPair<Title, int>> ranked;
    QHash<QString, qsizetype> at;
    data.GetData(CopyColumns + QStringLiteral("and i.ItemID in (") + ids.join(QLatin1Char(',')) + QStringLiteral(") order by i.ItemID"));
    for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext()) {
        const QString k = key(rs);
        if (!at.contains(k)) {
            at.insert(k, ranked.size());
            ranked.append({titleOf(rs), 0});
        }
        auto &entry = ranked[at.value(k)];
        count(entry.first, rs);
        entry.second += loans.value(rs.field(0).toInt());
    }
    data.CloseCompact();
    std::stable_sort(ranked.begin(), ranked.end(), [](const auto &a, const auto &b) { return a.second > b.second; });
    return ranked.mid(0, 20);
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
    const int author = data.rst->field(14).isNull() ? 0 : data.rst->field(14).toInt();
    const int series = data.rst->field(15).isNull() ? 0 : data.rst->field(15).toInt();
    data.CloseCompact();
    const auto others = [&](const char *column, int id) {
        QList<Title> found;
        if (id > 0)
            for (const Title &t : titlesWhere(QStringLiteral("and i.%1 = %2 and i.Title <> '%3' ").arg(QLatin1String(column)).arg(id).arg(title),
                                              QStringLiteral("i.Title, i.ItemID")))
                if (found.size() < 10)
                    found << t;
        return found;
    };
    d.byAuthor = others("Author1", author);
    d.inSeries = others("SeriesID", series);
    // The title's other copies: the same title, author and ISBN.
    data.GetData(CopyColumns + QStringLiteral("and i.Title = '") + title + QStringLiteral("' order by i.AccessionID"));
    for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext()) {
        if (key(rs) != wantedKey)
            continue;
        Title one;
        count(one, rs);
        count(d.title, rs);
        d.copies << Copy{text(rs, 7), text(rs, 5).isEmpty() ? text(rs, 4) : text(rs, 5),
                         one.referenceOnly ? QStringLiteral("Reference only") : one.onShelf ? QStringLiteral("On the shelf") : one.availability(),
                         rs.field(0).toInt(), one.dueBack};
    }
    data.CloseCompact();
    return d;
}

std::optional<OpacCatalogue::Copy> OpacCatalogue::Details::toReserve() const
{
    if (title.onShelf > 0 || title.referenceOnly)
        return std::nullopt;
    std::optional<Copy> first;
    for (const Copy &c : copies)
        if (c.due.isValid() && (!first || c.due < first->due))
            first = c;
    return first;
}
