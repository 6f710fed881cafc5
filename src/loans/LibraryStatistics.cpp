#include "LibraryStatistics.h"
#include "SqlText.h"

#include "DbConnection.h"
#include "NaturalOrder.h"
#include "Recordset.h"
#include "SchoolDatabase.h"
#include "DatabaseLocations.h"

#include <QHash>

#include <algorithm>

namespace {


QString monthOf(const Field &year, const Field &month)
{
    return QStringLiteral("%1-%2").arg(year.toInt()).arg(month.toInt(), 2, 10, QLatin1Char('0'));
}

// Most first, then by name; at most the first limit.
std::vector<LibraryStatistics::Count> topOf(std::vector<LibraryStatistics::Count> counts, size_t limit)
{
    std::stable_sort(counts.begin(), counts.end(), [](const auto &a, const auto &b) {
        return a.count != b.count ? a.count > b.count : NaturalLess(a.name, b.name);
    });
    if (counts.size() > limit)
        counts.resize(limit);
    return counts;
}

} // namespace

LibraryStatistics LibraryStatistics::compute(const QDate &from, const QDate &to)
{
    TaskProgress unwatched;
    return compute(from, to, unwatched);
}

LibraryStatistics LibraryStatistics::compute(const QDate &from, const QDate &to, TaskProgress &progress)
{
    LibraryStatistics s;
    s.from = from;
    s.to = to;
    std::map<QString, Month> months;
    for (QDate m(from.year(), from.month(), 1); m <= to; m = m.addMonths(1))
        months[m.toString(QStringLiteral("yyyy-MM"))].month = m.toString(QStringLiteral("yyyy-MM"));
    const QString issued = QStringLiteral(" IssueDate >= ") + JetDate(from) + QStringLiteral(" and IssueDate < ") + JetDate(to.addDays(1));
    const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();
    progress.setMaximum(int(months.size()) + 4);

    // Month by month (a range of the issue-date index each, no grouping to sort): how many loans of each member
    // kind, and how many of them went overdue (returned late, or still out past their due date at the period's end).
    for (auto &entry : months) {
        const QDate first = QDate::fromString(entry.first + QStringLiteral("-01"), Qt::ISODate);
        const QDate start = std::max(first, from), end = std::min(first.addMonths(1), to.addDays(1));
        progress.check();
        progress.advance();
        auto rs = db->Execute(QStringLiteral("select sum(IIf(MemberType = 'L', 1, 0)) as l, sum(IIf(MemberType = 'E', 1, 0)) as e, "
                                             "sum(IIf(MemberType = 'S', 1, 0)) as s, sum(IIf((Returned = true and ReturnDate > DueDate) or "
                                             "(Returned = false and DueDate < ")
                              + JetDate(to) + QStringLiteral("), 1, 0)) as late from tblLibTransactions where IssueDate >= ") + JetDate(start)
                              + QStringLiteral(" and IssueDate < ") + JetDate(end));
        Month &m = entry.second;
        const auto number = [&](int f) { return rs->atEnd() || rs->field(f).isNull() ? 0 : rs->field(f).toInt(); };
        m.learners = number(0);
        m.educators = number(1);
        m.staff = number(2);
        m.overdue = number(3);
    }
    progress.check();
    progress.advance();
    // Fines by the month of their own date: fined (charged, and cancelled when cancelled) and paid.
    const QString range = QStringLiteral(" >= ") + JetDate(from) + QStringLiteral(" and %1 < ") + JetDate(to.addDays(1));
    auto f = db->Execute(QStringLiteral("select Year(DateFined) as y, Month(DateFined) as m, sum(FineAmount) as charged, "
                                        "sum(IIf(FineCancelled = true, FineAmount, 0)) as cancelled from tblLibTransactionFines where DateFined")
                         + range.arg(QStringLiteral("DateFined")) + QStringLiteral(" group by Year(DateFined), Month(DateFined)"));
    for (; !f->atEnd(); f->MoveNext()) {
        Month &m = months[monthOf(f->field(0), f->field(1))];
        m.charged += f->field(2).toMoney();
        m.cancelled += f->field(3).toMoney();
    }
    f = db->Execute(QStringLiteral("select Year(PaymentDate) as y, Month(PaymentDate) as m, sum(PaymentAmount) as paid from tblLibTransactionFines "
                                   "where PaymentDate")
                    + range.arg(QStringLiteral("PaymentDate")) + QStringLiteral(" group by Year(PaymentDate), Month(PaymentDate)"));
    for (; !f->atEnd(); f->MoveNext())
        months[monthOf(f->field(0), f->field(1))].paid += f->field(2).toMoney();
    for (auto &entry : months)
        s.months.push_back(entry.second);

    progress.check();
    progress.advance();
    // Learners' loans per learner (counted by the database), then to their grades and classes.
    QHash<int, int> perLearner;
    auto rs = db->Execute(QStringLiteral("select MemberID, count(*) as n from tblLibTransactions where MemberType = 'L' and") + issued
                     + QStringLiteral(" group by MemberID"));
    for (; !rs->atEnd(); rs->MoveNext())
        perLearner.insert(rs->field(0).toInt(), rs->field(1).toInt());
    std::map<int, Count> grades;
    QHash<QString, int> classes;
    auto learners = SchoolQuery(QStringLiteral("select Learner_Info.[ID], Learner_Info.Grade, SchoolGrades.Name, Classes.ClassName from (Learner_Info "
                                               "left join SchoolGrades on Learner_Info.Grade = SchoolGrades.ID) left join Classes on Learner_Info.Class = Classes.ClassID"));
    for (; !learners->atEnd(); learners->MoveNext()) {
        const int loans = perLearner.value(learners->field(0).toInt());
        if (loans == 0)
            continue;
        const int grade = learners->field(1).isNull() ? 0 : learners->field(1).toInt();
        Count &g = grades[grade];
        g.name = learners->field(2).isNull() ? QStringLiteral("(no grade)") : learners->field(2).toString();
        g.count += loans;
        const QString className = learners->field(3).isNull() ? QStringLiteral("(no class)") : learners->field(3).toString();
        classes[className] += loans;
    }
    for (auto &entry : grades)
        s.loansByGrade.push_back(entry.second);
    for (auto it = classes.cbegin(); it != classes.cend(); ++it)
        s.loansByClass.push_back({it.key(), it.value()});
    std::sort(s.loansByClass.begin(), s.loansByClass.end(), [](const Count &a, const Count &b) { return NaturalLess(a.name, b.name); });
    s.topClasses = topOf(s.loansByClass, 20);

    progress.check();
    progress.advance();
    // Every copy with its loans in the period, counted per copy by the database (one grouping of the period's
    // loans): the titles' totals and the copies never borrowed both come from this one reading of the catalogue.
    rs = db->Execute(QStringLiteral("select i.Title, i.AccessionID, c.Category, i.PhasedOut, g.n from (tblLibItems as i left join tblLibCategories as c "
                                    "on i.CategoryID = c.CategoryID) left join (select ItemID, count(*) as n from tblLibTransactions where")
                     + issued + QStringLiteral(" group by ItemID) as g on g.ItemID = i.ItemID"));
    QHash<QString, Count> titles; // by the title in lower case: titles differing only in case are one, as Jet groups them
    std::map<QString, int> categories;
    for (; !rs->atEnd(); rs->MoveNext()) {
        const int loans = rs->field(4).isNull() ? 0 : rs->field(4).toInt();
        const QString title = rs->field(0).toString();
        if (loans > 0) {
            Count &t = titles[title.toLower()];
            if (t.name.isEmpty())
                t.name = title;
            t.count += loans;
        } else if (!rs->field(3).toBool()) {
            const QString category = rs->field(2).isNull() ? QStringLiteral("(no category)") : rs->field(2).toString();
            s.unborrowed.push_back({rs->field(1).toString(), title, category});
        }
    }
    progress.check();
    progress.advance();
    // The weeding list by category and accession number (sorted here: only the unborrowed part of the catalogue needs an order).
    std::sort(s.unborrowed.begin(), s.unborrowed.end(), [](const Unborrowed &a, const Unborrowed &b) {
        const int byCategory = a.category.compare(b.category, Qt::CaseInsensitive);
        return byCategory != 0 ? byCategory < 0 : a.accession.compare(b.accession, Qt::CaseInsensitive) < 0;
    });
    for (const Unborrowed &u : s.unborrowed) {
        if (s.unborrowedByCategory.empty() || s.unborrowedByCategory.back().name.compare(u.category, Qt::CaseInsensitive) != 0)
            s.unborrowedByCategory.push_back({u.category, 0});
        ++s.unborrowedByCategory.back().count;
    }
    std::vector<Count> borrowed;
    for (const Count &t : titles)
        borrowed.push_back(t);
    s.topTitles = topOf(std::move(borrowed), 20);
    return s;
}
