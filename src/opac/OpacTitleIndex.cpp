#include "OpacTitleIndex.h"

#include "Recordset.h"
#include "clsDataObject.h"

#include <algorithm>
#include <cstring>

namespace {

int id(Recordset &rs, int f) { return rs.field(f).isNull() ? 0 : rs.field(f).toInt(); }

// Every copy on the shelves' list, its title's fields and its main author, in title order.
const char *const CopiesSql =
    "select i.ItemID, i.Title, i.ISBN, i.YearPublished, i.ClassificationNo, i.AccessionID, a.AuthorSurname, a.AuthorFirstName, i.Author1, "
    "i.SeriesID, i.CategoryID, i.SubCategoryID, i.ItemLanguageID, i.DateAdded from tblLibItems i left join tblLibAuthors a on i.Author1 = "
    "a.AuthorID where i.PhasedOut = false order by i.Title, i.ItemID";

// Each word a copy is described by: its keywords in both languages and its subjects.
const char *const TermsSql[] = {
    "select k.ItemID, w.KeywordEng, w.KeywordAfr from tblLibItemKeywords k inner join tblLibKeywords w on k.KeyID = w.KeyID",
    "select s.itemid, c.SubjectDescription, c.SubjectDescription from tblLibItemSubjects s inner join tblLibSubjectCodes c on s.subjectid = c.Id"};

const char *const ChoicesSql[] = {
    "select CategoryID, Category from tblLibCategories where PhasedOut = false order by Category",
    "select s.SubCategoryID, c.Category & ': ' & s.SubCategory from tblLibSubCategories s inner join tblLibCategories c on s.CategoryID = "
    "c.CategoryID where s.PhasedOut = false and c.PhasedOut = false order by c.Category, s.SubCategory",
    "select ItemLanguageID, ItemLanguage from tblLibItemLanguages order by ItemLanguage",
    "select SeriesID, Series from tblLibSeries where PhasedOut = false order by Series"};

} // namespace

bool OpacTitleIndex::Filter::admits(const Copy &c) const
{
    return (!category || c.category == category) && (!subCategory || c.subCategory == subCategory) && (!language || c.language == language)
           && (!series || c.series == series);
}

std::shared_ptr<const OpacTitleIndex> OpacTitleIndex::read()
{
    auto index = std::make_shared<OpacTitleIndex>();
    clsDataObject data;
    // Copies of one title are neighbours in title order; the key tells the titles of one name apart.
    QHash<QString, int> titleOfKey;
    std::vector<QString> surnames; // each title's main author's, case folded
    data.GetData(QLatin1String(CopiesSql));
    for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext()) {
        const QString surname = rs.field(6).trimmed(), first = rs.field(7).trimmed();
        const QString author = first.isEmpty() ? surname : surname + QStringLiteral(", ") + first;
        const QString key = rs.field(1).trimmed().toCaseFolded() + QLatin1Char('|') + author.toCaseFolded() + QLatin1Char('|') + rs.field(2).trimmed();
        auto at = titleOfKey.constFind(key);
        if (at == titleOfKey.cend()) {
            Title t;
            t.title = rs.field(1).trimmed();
            t.isbn = rs.field(2).trimmed();
            t.year = rs.field(3).trimmed() == QLatin1String("0") ? QString() : rs.field(3).trimmed();
            t.classification = rs.field(4).trimmed();
            t.author = author;
            t.authorID = id(rs, 8);
            t.seriesID = id(rs, 9);
            at = titleOfKey.insert(key, int(index->titles_.size()));
            index->titles_.push_back(std::move(t));
            surnames.push_back(surname.toCaseFolded());
            index->titleStarts_.push_back(index->foldedTitles_.size());
            index->foldedTitles_ += index->titles_.back().title.toCaseFolded().replace(QLatin1Char('\n'), QLatin1Char(' ')).toUtf8() + '\n';
            if (!index->titles_.back().isbn.isEmpty())
                index->titlesOfIsbn_[index->titles_.back().isbn.toCaseFolded()].push_back(*at);
        }
        const int itemID = rs.field(0).toInt();
        index->titles_[size_t(*at)].copies.push_back(
            Copy{itemID, id(rs, 10), id(rs, 11), id(rs, 12), id(rs, 9), rs.field(13).isNull() ? QDate() : rs.field(13).toDateTime().date()});
        index->titleOfItem_.insert(itemID, *at);
        if (const QString accession = rs.field(5).trimmed(); !accession.isEmpty())
            index->titleOfAccession_.insert(accession.toCaseFolded(), *at);
    }
    for (Title &t : index->titles_)
        std::sort(t.copies.begin(), t.copies.end(), [](const Copy &a, const Copy &b) { return a.itemID < b.itemID; });

    QHash<QString, std::vector<int>> terms;
    for (size_t t = 0; t < surnames.size(); ++t)
        if (!surnames[t].isEmpty())
            terms[surnames[t]].push_back(int(t));
    for (const char *sql : TermsSql) {
        data.GetData(QLatin1String(sql));
        for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext()) {
            const auto title = index->titleOfItem_.constFind(rs.field(0).toInt());
            if (title == index->titleOfItem_.cend())
                continue;
            for (int f : {1, 2})
                if (const QString term = rs.field(f).trimmed().toCaseFolded(); !term.isEmpty()) {
                    std::vector<int> &titles = terms[term];
                    if (titles.empty() || titles.back() != *title)
                        titles.push_back(*title);
                }
        }
    }
    for (auto it = terms.begin(); it != terms.end(); ++it)
        index->terms_.emplace_back(it.key(), std::move(it.value()));

    for (int list = 0; list < int(List::Count); ++list) {
        data.GetData(QLatin1String(ChoicesSql[list]));
        for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext())
            index->choices_[list] << Choice{rs.field(0).toInt(), rs.field(1).trimmed()};
    }
    data.CloseCompact();
    return index;
}

std::vector<OpacTitleIndex::Found> OpacTitleIndex::search(const Filter &filter) const
{
    std::vector<char> chosen(titles_.size(), 0);
    const QString wanted = filter.text.simplified().toCaseFolded();
    if (wanted.isEmpty()) {
        std::fill(chosen.begin(), chosen.end(), 1);
    } else {
        const QByteArray word = wanted.toUtf8();
        const char *from = foldedTitles_.constData(), *end = from + foldedTitles_.size();
        while (const void *at = memmem(from, size_t(end - from), word.constData(), size_t(word.size()))) {
            const auto start = std::upper_bound(titleStarts_.begin(), titleStarts_.end(), static_cast<const char *>(at) - foldedTitles_.constData());
            const size_t t = size_t(start - titleStarts_.begin()) - 1;
            chosen[t] = 1;
            // On to the next title.
            from = t + 1 < titleStarts_.size() ? foldedTitles_.constData() + titleStarts_[t + 1] : end;
        }
        for (const auto &[term, titles] : terms_)
            if (term.startsWith(wanted))
                for (int t : titles)
                    chosen[size_t(t)] = 1;
        if (const auto t = titleOfAccession_.constFind(wanted); t != titleOfAccession_.cend())
            chosen[size_t(*t)] = 1;
        for (int t : titlesOfIsbn_.value(wanted))
            chosen[size_t(t)] = 1;
    }
    std::vector<Found> found;
    for (size_t t = 0; t < titles_.size(); ++t) {
        if (!chosen[t])
            continue;
        Found f{&titles_[t], {}};
        for (const Copy &c : titles_[t].copies)
            if (filter.admits(c))
                f.itemIDs.push_back(c.itemID);
        if (!f.itemIDs.empty())
            found.push_back(std::move(f));
    }
    return found;
}

std::vector<OpacTitleIndex::Found> OpacTitleIndex::addedSince(const QDate &since) const
{
    std::vector<std::pair<std::pair<QDate, int>, Found>> newest; // (newest copy's date and id, title)
    for (const Title &t : titles_) {
        Found f{&t, {}};
        std::pair<QDate, int> last;
        for (const Copy &c : t.copies)
            if (c.added.isValid() && c.added >= since) {
                f.itemIDs.push_back(c.itemID);
                last = std::max(last, std::pair{c.added, c.itemID});
            }
        if (!f.itemIDs.empty())
            newest.emplace_back(last, std::move(f));
    }
    std::sort(newest.begin(), newest.end(), [](const auto &a, const auto &b) { return a.first > b.first; });
    std::vector<Found> found;
    for (auto &n : newest)
        found.push_back(std::move(n.second));
    return found;
}

const OpacTitleIndex::Title *OpacTitleIndex::titleOf(int itemID) const
{
    const auto t = titleOfItem_.constFind(itemID);
    return t == titleOfItem_.cend() ? nullptr : &titles_[size_t(*t)];
}

std::vector<const OpacTitleIndex::Title *> OpacTitleIndex::others(int Title::*field, int value, const QString &title, int max) const
{
    std::vector<const Title *> found;
    for (const Title &t : titles_)
        if (value > 0 && t.*field == value && t.title != title && int(found.size()) < max)
            found.push_back(&t);
    return found;
}

std::vector<const OpacTitleIndex::Title *> OpacTitleIndex::byAuthor(int authorID, const QString &title, int max) const
{
    return others(&Title::authorID, authorID, title, max);
}

std::vector<const OpacTitleIndex::Title *> OpacTitleIndex::inSeries(int seriesID, const QString &title, int max) const
{
    return others(&Title::seriesID, seriesID, title, max);
}
