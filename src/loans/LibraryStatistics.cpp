#include "LibraryStatistics.h"

#include "DbConnection.h"
#include "NaturalOrder.h"
#include "Recordset.h"
#include "SchoolDatabase.h"
#include "UpdateDatabase.h"

#include <QHash>

#include <algorithm>

namespace {

QString jetDate(const QDate &d) { return QLatin1Char('#') + d.toString(QStringLiteral("yyyy-MM-dd")) + QLatin1Char('#'); }

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
    LibraryStatistics s;
    s.from = from;
    s.to = to;
    std::map<QString, Month> months;
    for (QDate m(from.year(), from.month(), 1); m <= to; m = m.addMonths(1))
        months[m.toString(QStringLiteral("yyyy-MM"))].month = m.toString(QStringLiteral("yyyy-MM"));
    const QString issued = QStringLiteral(" IssueDate >= ") + jetDate(from) + QStringLiteral(" and IssueDate < ") + jetDate(to.addDays(1));
    const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();

    auto rs = db->Execute(QStringLiteral("select Year(IssueDate) as y, Month(IssueDate) as m, MemberType, count(*) as n from tblLibTransactions where")
                          + issued + QStringLiteral(" group by Year(IssueDate), Month(IssueDate), MemberType"));
    for (; !rs->atEnd(); rs->MoveNext()) {
        Month &m = months[monthOf(rs->field(0), rs->field(1))];
        const QString kind = rs->field(2).toString();
        (kind == QLatin1String("L") ? m.learners : kind == QLatin1String("E") ? m.educators : m.staff) += rs->field(3).toInt();
    }
    rs = db->Execute(QStringLiteral("select Year(IssueDate) as y, Month(IssueDate) as m, count(*) as n from tblLibTransactions where")
                     + issued + QStringLiteral(" and ((Returned = true and ReturnDate > DueDate) or (Returned = false and DueDate < ")
                     + jetDate(to) + QStringLiteral(")) group by Year(IssueDate), Month(IssueDate)"));
    for (; !rs->atEnd(); rs->MoveNext())
        months[monthOf(rs->field(0), rs->field(1))].overdue += rs->field(2).toInt();
    // Fines by the month of their own date: fined (charged, and cancelled when cancelled), paid.
    const auto fines = [&](const char *dateColumn, const char *amountColumn, const char *extra, Money Month::*into) {
        const QString column = QLatin1String(dateColumn);
        auto f = db->Execute(QStringLiteral("select Year(%1) as y, Month(%1) as m, sum(%2) as total from tblLibTransactionFines where %1 >= ")
                                 .arg(column, QLatin1String(amountColumn))
                             + jetDate(from) + QStringLiteral(" and ") + column + QStringLiteral(" < ") + jetDate(to.addDays(1))
                             + QLatin1String(extra) + QStringLiteral(" group by Year(%1), Month(%1)").arg(column));
        for (; !f->atEnd(); f->MoveNext())
            months[monthOf(f->field(0), f->field(1))].*into += f->field(2).toMoney();
    };
    fines("DateFined", "FineAmount", "", &Month::charged);
    fines("PaymentDate", "PaymentAmount", "", &Month::paid);
    fines("DateFined", "FineAmount", " and FineCancelled = true", &Month::cancelled);
    for (auto &entry : months)
        s.months.push_back(entry.second);

    // Learners' loans per learner (counted by the database), then to their grades and classes.
    QHash<int, int> perLearner;
    rs = db->Execute(QStringLiteral("select MemberID, count(*) as n from tblLibTransactions where MemberType = 'L' and") + issued
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

    std::vector<Count> titles;
    rs = db->Execute(QStringLiteral("select i.Title, count(*) as n from tblLibTransactions as t inner join tblLibItems as i on t.ItemID = i.ItemID where t.")
                     + issued.trimmed() + QStringLiteral(" group by i.Title"));
    for (; !rs->atEnd(); rs->MoveNext())
        titles.push_back({rs->field(0).toString(), rs->field(1).toInt()});
    s.topTitles = topOf(std::move(titles), 20);

    const QString notBorrowed = QStringLiteral(" from tblLibItems as i inner join tblLibCategories as c on i.CategoryID = c.CategoryID "
                                               "where i.PhasedOut = false and not exists (select * from tblLibTransactions as t where t.ItemID = i.ItemID and t.")
                                + issued.trimmed() + QStringLiteral(")");
    rs = db->Execute(QStringLiteral("select c.Category, count(*) as n") + notBorrowed + QStringLiteral(" group by c.Category order by c.Category"));
    for (; !rs->atEnd(); rs->MoveNext())
        s.unborrowedByCategory.push_back({rs->field(0).toString(), rs->field(1).toInt()});
    rs = db->Execute(QStringLiteral("select i.AccessionID, i.Title, c.Category") + notBorrowed + QStringLiteral(" order by c.Category, i.AccessionID"));
    for (; !rs->atEnd(); rs->MoveNext())
        s.unborrowed.push_back({rs->field(0).toString(), rs->field(1).toString(), rs->field(2).toString()});
    return s;
}
