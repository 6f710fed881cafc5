#include "OpacCatalogue.h"

#include "AppError.h"
#include "Clock.h"
#include "DatabaseLocations.h"
#include "Engine.h"
#include "Recordset.h"
#include "clsDataObject.h"

#include <QHash>

#include <algorithm>

namespace {

using Readers = std::counting_semaphore<16>; // as OpacCatalogue holds it

// Holds one of the readers' places for its life.
class ReadersTurn {
public:
    explicit ReadersTurn(Readers &readers) : readers_(readers) { readers_.acquire(); }
    ~ReadersTurn() { readers_.release(); }
    ReadersTurn(const ReadersTurn &) = delete;
    ReadersTurn &operator=(const ReadersTurn &) = delete;

private:
    Readers &readers_;
};

// A copy as it is now: on the shelf or out, and the fields only a title's page shows.
struct LiveCopy {
    QString accession, shelf, subtitle, publisher, series;
    bool reference = false;
    QDate due;
};

// The copies of these items that are not removed, read as they are now.
QHash<int, LiveCopy> liveCopies(Readers &readers, const std::vector<int> &itemIDs)
{
    QHash<int, LiveCopy> live;
    if (itemIDs.empty())
        return live;
    const ReadersTurn turn(readers);
    QString ids;
    for (int id : itemIDs)
        ids += (ids.isEmpty() ? QString() : QStringLiteral(",")) + QString::number(id);
    clsDataObject data;
    data.GetData(QStringLiteral(
                     "select i.ItemID, i.AccessionID, i.ShelfNumber, i.ClassificationNo, i.ReferenceItem, (select min(t.DueDate) from "
                     "tblLibTransactions t where t.ItemID = i.ItemID and t.Returned = false) as DueBack, i.ByLine, p.Publisher, s.Series from "
                     "(tblLibItems i left join tblLibPublishers p on i.Publisher = p.PublisherID) left join tblLibSeries s on i.SeriesID = "
                     "s.SeriesID where i.PhasedOut = false and i.ItemID in (")
                 + ids + QStringLiteral(")"));
    for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext())
        live.insert(rs.field(0).toInt(), LiveCopy{rs.field(1).trimmed(), rs.field(2).trimmed().isEmpty() ? rs.field(3).trimmed() : rs.field(2).trimmed(), rs.field(6).trimmed(), rs.field(7).trimmed(),
                                                  rs.field(8).trimmed(), rs.field(4).toBool(),
                                                  rs.field(5).isNull() ? QDate() : rs.field(5).toDateTime().date()});
    data.CloseCompact();
    return live;
}

// Adds one copy to its title.
void addCopyToTitle(OpacCatalogue::Title &t, const LiveCopy &c)
{
    ++t.copies;
    if (!c.reference && !c.due.isValid())
        ++t.onShelf;
    if (c.due.isValid() && (!t.dueBack.isValid() || c.due < t.dueBack))
        t.dueBack = c.due;
    t.referenceOnly = (t.copies == 1 ? c.reference : t.referenceOnly && c.reference);
}

// A title with the copies of it still on the list counted; no copies when all were removed.
OpacCatalogue::Title titleOf(const OpacTitleIndex::Title &indexed, const std::vector<int> &itemIDs, const QHash<int, LiveCopy> &live)
{
    OpacCatalogue::Title t;
    t.title = indexed.title;
    t.author = indexed.author;
    t.year = indexed.year;
    t.classification = indexed.classification;
    t.isbn = indexed.isbn;
    for (int id : itemIDs)
        if (const auto c = live.constFind(id); c != live.cend()) {
            if (t.copies == 0)
                t.itemID = id;
            addCopyToTitle(t, *c);
        }
    return t;
}

std::vector<int> itemsOf(const OpacTitleIndex::Title &t)
{
    std::vector<int> ids;
    for (const OpacTitleIndex::Copy &c : t.copies)
        ids.push_back(c.itemID);
    return ids;
}

OpacCatalogue::Page pageOf(Readers &readers, const std::vector<OpacTitleIndex::Found> &found, int page)
{
    OpacCatalogue::Page result;
    result.total = int(found.size());
    const size_t first = std::min(found.size(), size_t(std::max(0, page - 1)) * OpacCatalogue::PageSize);
    const size_t last = std::min(found.size(), first + OpacCatalogue::PageSize);
    std::vector<int> ids;
    for (size_t f = first; f < last; ++f)
        ids.insert(ids.end(), found[f].itemIDs.begin(), found[f].itemIDs.end());
    const QHash<int, LiveCopy> live = liveCopies(readers, ids);
    for (size_t f = first; f < last; ++f)
        if (const OpacCatalogue::Title t = titleOf(*found[f].title, found[f].itemIDs, live); t.copies > 0)
            result.titles << t;
    return result;
}

QString changeMark() { return EngineRegistry::installed().forLocation(LibraryDatabasePath).changeMark(LibraryDatabasePath); }

} // namespace

OpacCatalogue::OpacCatalogue(int refreshSeconds)
    : readers_(std::clamp(std::ptrdiff_t(std::thread::hardware_concurrency() / 2), std::ptrdiff_t(1), std::ptrdiff_t(16))),
      refreshSeconds_(std::max(0, refreshSeconds))
{
}

OpacCatalogue::~OpacCatalogue() { waitForRefresh(); }

void OpacCatalogue::waitForRefresh()
{
    std::thread running;
    {
        std::lock_guard lock(mutex_);
        running = std::move(refresher_);
    }
    if (running.joinable())
        running.join();
}

std::shared_ptr<const OpacTitleIndex> OpacCatalogue::index()
{
    if (refreshSeconds_ == 0)
        return OpacTitleIndex::read();
    std::lock_guard lock(mutex_);
    const QDateTime now = Clock::now();
    if (!index_) {
        // The first request reads the index; the others wait for it on the lock.
        const QString mark = changeMark();
        index_ = OpacTitleIndex::read();
        mark_ = mark;
        checkedAt_ = now;
    } else if (!refreshing_ && checkedAt_.secsTo(now) >= refreshSeconds_) {
        checkedAt_ = now;
        refreshing_ = true;
        if (refresher_.joinable())
            refresher_.join();
        refresher_ = std::thread([this] {
            try {
                const QString mark = changeMark();
                QString before;
                {
                    std::lock_guard read(mutex_);
                    before = mark_;
                }
                if (mark != before) {
                    auto fresh = OpacTitleIndex::read();
                    std::lock_guard swap(mutex_);
                    index_ = std::move(fresh);
                    mark_ = mark;
                }
            } catch (const AppError &) {
                // The index in hand serves on; the next interval tries again.
            }
            refreshing_ = false;
        });
    }
    return index_;
}

QString OpacCatalogue::Title::availability() const
{
    if (referenceOnly)
        return QStringLiteral("Reference only");
    if (onShelf > 0)
        return QStringLiteral("%1 of %2 on the shelf").arg(onShelf).arg(copies);
    return dueBack.isValid() ? QStringLiteral("Due back ") + dueBack.toString(Qt::ISODate) : QStringLiteral("Not on the shelf");
}

OpacCatalogue::Page OpacCatalogue::search(const Filter &filter, int page)
{
    if (!filter.any())
        return Page();
    return pageOf(readers_, index()->search(filter), page);
}

QList<OpacCatalogue::Choice> OpacCatalogue::choices(List list) { return index()->choices(list); }

OpacCatalogue::Page OpacCatalogue::newInTheLibrary(int page) { return pageOf(readers_, index()->addedSince(Clock::today().addDays(-30)), page); }

QList<QPair<OpacCatalogue::Title, int>> OpacCatalogue::mostBorrowed(QDate *since)
{
    const QDate today = Clock::today();
    *since = QDate(today.year(), (today.month() - 1) / 3 * 3 + 1, 1);
    const auto titles = index();
    clsDataObject data;
    data.GetData(QStringLiteral("select top 200 ItemID, count(*) as Loans from tblLibTransactions where IssueDate >= #%1# group by ItemID "
                                "order by count(*) desc, ItemID")
                     .arg(since->toString(Qt::ISODate)));
    // The copies' loans add up to their title's.
    QHash<const OpacTitleIndex::Title *, int> loans;
    std::vector<const OpacTitleIndex::Title *> order;
    for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext())
        if (const OpacTitleIndex::Title *t = titles->titleOf(rs.field(0).toInt())) {
            if (!loans.contains(t))
                order.push_back(t);
            loans[t] += rs.field(1).toInt();
        }
    data.CloseCompact();
    std::stable_sort(order.begin(), order.end(), [&loans](const auto *a, const auto *b) { return loans.value(a) > loans.value(b); });
    order.resize(std::min<size_t>(order.size(), 20));
    std::vector<int> ids;
    for (const OpacTitleIndex::Title *t : order)
        for (int id : itemsOf(*t))
            ids.push_back(id);
    const QHash<int, LiveCopy> live = liveCopies(readers_, ids);
    QList<QPair<Title, int>> ranked;
    for (const OpacTitleIndex::Title *t : order)
        if (const Title shown = titleOf(*t, itemsOf(*t), live); shown.copies > 0)
            ranked.append({shown, loans.value(t)});
    return ranked;
}

std::optional<OpacCatalogue::Details> OpacCatalogue::details(int itemID)
{
    const auto titles = index();
    const OpacTitleIndex::Title *indexed = titles->titleOf(itemID);
    if (!indexed)
        return std::nullopt;
    const auto byAuthor = titles->byAuthor(indexed->authorID, indexed->title, 10);
    const auto inSeries = titles->inSeries(indexed->seriesID, indexed->title, 10);
    // One reading of every copy the page shows.
    std::vector<int> ids = itemsOf(*indexed);
    for (const auto *list : {&byAuthor, &inSeries})
        for (const OpacTitleIndex::Title *t : *list)
            for (int id : itemsOf(*t))
                ids.push_back(id);
    const QHash<int, LiveCopy> live = liveCopies(readers_, ids);
    if (!live.contains(itemID))
        return std::nullopt;
    Details d;
    d.title = titleOf(*indexed, itemsOf(*indexed), live);
    d.title.itemID = itemID;
    const LiveCopy &asked = live.value(itemID);
    d.subtitle = asked.subtitle;
    d.publisher = asked.publisher;
    d.series = asked.series;
    for (int id : itemsOf(*indexed))
        if (const auto c = live.constFind(id); c != live.cend()) {
            Title one;
            addCopyToTitle(one, *c);
            d.copies << Copy{c->accession, c->shelf,
                             one.referenceOnly ? QStringLiteral("Reference only") : one.onShelf ? QStringLiteral("On the shelf") : one.availability(),
                             id, one.dueBack};
        }
    std::sort(d.copies.begin(), d.copies.end(), [](const Copy &a, const Copy &b) { return a.accession < b.accession; });
    for (const auto &[list, into] : {std::pair{&byAuthor, &d.byAuthor}, std::pair{&inSeries, &d.inSeries}})
        for (const OpacTitleIndex::Title *t : *list)
            if (const Title shown = titleOf(*t, itemsOf(*t), live); shown.copies > 0)
                *into << shown;
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
