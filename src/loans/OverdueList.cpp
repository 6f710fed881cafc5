#include "OverdueList.h"

#include "DbConnection.h"
#include "LoanRoutines.h"
#include "NaturalOrder.h"
#include "Recordset.h"
#include "SchoolDatabase.h"
#include "SqlText.h"
#include "DatabaseLocations.h"

#include <QHash>

#include <algorithm>

namespace {

QString sqlDate(const QDate &d) { return d.toString(QStringLiteral("yyyy-MM-dd")); }

struct Member {
    QString name;
    QString fullName;
    QString className;
    int grade = 0;
    int classID = 0;
    bool current = true;
};

// The members of a kind, current or left, by their number in the library's loans.
QHash<int, Member> members(const QString &kind)
{
    QString sql;
    if (kind == QLatin1String("L"))
        sql = QStringLiteral("Select Learner_Info.[ID] as MemberID, Learner_Info.SName, Learner_Info.FName, Learner_Info.Grade, "
                             "Learner_Info.Class, Classes.ClassName, Learner_Info.Status from Learner_Info left join Classes on Learner_Info.Class = Classes.ClassID");
    else if (kind == QLatin1String("E"))
        sql = QStringLiteral("Select EdID as MemberID, SName, FName, Status from Educators");
    else
        sql = QStringLiteral("Select staffID as MemberID, SName, FName, Status from StaffMembers");
    QHash<int, Member> found;
    const auto rs = SchoolQuery(sql);
    const bool learners = kind == QLatin1String("L");
    for (; !rs->atEnd(); rs->MoveNext()) {
        Member m;
        m.name = rs->field(QStringLiteral("SName")).toString() + QStringLiteral(", ") + rs->field(QStringLiteral("FName")).toString();
        m.fullName = rs->field(QStringLiteral("FName")).toString() + QLatin1Char(' ') + rs->field(QStringLiteral("SName")).toString();
        m.current = rs->field(QStringLiteral("Status")).toString() == QLatin1String("C");
        if (learners) {
            m.className = rs->field(QStringLiteral("ClassName")).toString();
            m.grade = rs->field(QStringLiteral("Grade")).isNull() ? 0 : rs->field(QStringLiteral("Grade")).toInt();
            m.classID = rs->field(QStringLiteral("Class")).isNull() ? 0 : rs->field(QStringLiteral("Class")).toInt();
        }
        found.insert(rs->field(QStringLiteral("MemberID")).toInt(), m);
    }
    return found;
}

} // namespace

std::vector<OverdueRow> OverdueList::load(const OverdueQuery &query)
{
    const QString kind = query.memberType == QLatin1String("E") || query.memberType == QLatin1String("S") ? query.memberType : QStringLiteral("L");
    const QHash<int, Member> people = members(kind);
    const std::unique_ptr<DbConnection> library = OpenLibraryDatabase();
    // One statement for the whole school: the open loans due before the day, their copies and loan rules.
    const auto rs = library->Execute(
        QStringLiteral("select t.MemberID, t.AccessionID, i.Title, t.DueDate, s.FineAmount, s.FineInterval "
                       "from (tblLibTransactions as t inner join tblLibItems as i on t.ItemID = i.ItemID) "
                       "left join tblLibSettings as s on (s.LoanType = i.LoanType and s.UserCat = t.MemberType) "
                       "where t.Returned = false and t.MemberType = '")
        + kind + QStringLiteral("' and t.DueDate < #") + sqlDate(query.asAt) + QStringLiteral("#"));
    std::vector<OverdueRow> rows;
    for (; !rs->atEnd(); rs->MoveNext()) {
        const auto who = people.constFind(rs->field(0).toInt());
        if (who == people.constEnd())
            continue; // no longer at the school's records: not for a class list or a letter
        if (query.grade != 0 && who->grade != query.grade)
            continue;
        if (query.classID != 0 && who->classID != query.classID)
            continue;
        OverdueRow row;
        row.memberID = rs->field(0).toInt();
        row.memberName = who->name;
        row.fullName = who->fullName;
        row.className = who->className;
        row.leftSchool = !who->current;
        row.accession = rs->field(1).toString();
        row.title = rs->field(2).toString();
        row.dueDate = rs->field(3).toDate();
        row.daysOverdue = int(row.dueDate.daysTo(query.asAt));
        const qint16 interval = rs->field(5).isNull() ? qint16(1) : rs->field(5).toInt16();
        if (!rs->field(4).isNull() && interval > 0)
            row.fine = OverdueFine(query.asAt, row.dueDate, rs->field(4).toMoney(), interval);
        rows.push_back(std::move(row));
    }
    std::sort(rows.begin(), rows.end(), [](const OverdueRow &a, const OverdueRow &b) {
        if (a.className != b.className)
            return NaturalLess(a.className, b.className);
        if (a.memberName != b.memberName)
            return a.memberName.compare(b.memberName, Qt::CaseInsensitive) < 0;
        if (a.memberID != b.memberID)
            return a.memberID < b.memberID;
        return a.dueDate < b.dueDate;
    });
    return rows;
}

QDate OverdueList::firstLoanDay()
{
    const std::unique_ptr<DbConnection> library = OpenLibraryDatabase();
    const auto rs = library->Execute(QStringLiteral("select min(IssueDate) from tblLibTransactions"));
    return rs->atEnd() || rs->field(0).isNull() ? QDate() : rs->field(0).toDate();
}

QString NoticeTemplate::defaultText()
{
    return QStringLiteral("Dear Parent or Guardian of {learner} ({class}),\n\n"
                          "Our records at {school} show that the following library {books}, borrowed by {learner}, "
                          "{was} due back and {has} not yet been returned:\n\n{items}\n\n"
                          "Please help {learner} to bring {them} back to the library as soon as possible. A fine is charged "
                          "for every started period a book is late; the amount shown is the fine up to {date}. If a book has "
                          "been lost, please contact the librarian.\n\nThank you for your help.\n\nThe School Librarian");
}

QString NoticeTemplate::load()
{
    const std::unique_ptr<DbConnection> library = OpenLibraryDatabase();
    const auto rs = library->Execute(QStringLiteral("select Body from tblLibNoticeTemplate order by TemplateID desc"));
    if (rs->atEnd() || rs->field(0).toString().trimmed().isEmpty())
        return defaultText();
    return rs->field(0).toString();
}

void NoticeTemplate::save(const QString &text)
{
    const std::unique_ptr<DbConnection> library = OpenLibraryDatabase();
    library->RunTransaction([&] {
        library->Execute(QStringLiteral("Delete * from tblLibNoticeTemplate"));
        library->Execute(QStringLiteral("Insert into tblLibNoticeTemplate (Body) Values ('") + Safesql(text) + QStringLiteral("')"));
        return true;
    });
}

QString NoticeTemplate::fill(const QString &text, const QString &learner, const QString &className, const QString &school,
                             const QString &items, const QDate &date, int books)
{
    QString filled = text;
    const bool one = books == 1;
    filled.replace(QLatin1String("{books}"), one ? QStringLiteral("book") : QStringLiteral("books"));
    filled.replace(QLatin1String("{was}"), one ? QStringLiteral("was") : QStringLiteral("were"));
    filled.replace(QLatin1String("{has}"), one ? QStringLiteral("has") : QStringLiteral("have"));
    filled.replace(QLatin1String("{them}"), one ? QStringLiteral("it") : QStringLiteral("them"));
    filled.replace(QLatin1String("{learner}"), learner);
    filled.replace(QLatin1String("{class}"), className);
    filled.replace(QLatin1String("{school}"), school);
    filled.replace(QLatin1String("{items}"), items);
    filled.replace(QLatin1String("{date}"), date.toString(QStringLiteral("d MMMM yyyy")));
    return filled;
}
