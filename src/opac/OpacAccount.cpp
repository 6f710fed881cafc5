#include "OpacAccount.h"

#include "AppError.h"
#include "LoanRoutines.h"
#include "Recordset.h"
#include "SchoolDatabase.h"
#include "clsDataObject.h"

std::optional<OpacAccount::Member> OpacAccount::find(const QString &number)
{
    const QString typed = number.trimmed().left(20);
    if (typed.isEmpty())
        return std::nullopt;
    for (const char *type : {"L", "E", "S"}) {
        const QVariant id = GetMemberByIDNo(typed, QLatin1String(type));
        if (id.isNull())
            continue;
        Member m{QLatin1String(type), id.toInt(), QString()};
        const QString table = m.type == QLatin1String("L") ? QStringLiteral("Learner_info where ID = ")
                              : m.type == QLatin1String("E") ? QStringLiteral("Educators where edID = ")
                                                             : QStringLiteral("staffmembers where staffID = ");
        const auto rs = SchoolQuery(QStringLiteral("select fname, sname from ") + table + QString::number(m.id));
        if (!rs->atEnd())
            m.name = rs->field(0).toString() + QLatin1Char(' ') + rs->field(1).toString();
        return m;
    }
    return std::nullopt;
}

QList<OpacAccount::Loan> OpacAccount::loans(const Member &member, const QDate &today)
{
    clsDataObject data;
    data.GetData(QStringLiteral("select i.Title, t.AccessionID, t.DueDate from tblLibTransactions t inner join tblLibItems i on t.ItemID = i.ItemID "
                                "where t.Returned = false and t.MemberType = '%1' and t.MemberID = %2 order by t.DueDate, t.AccessionID")
                     .arg(member.type)
                     .arg(member.id));
    QList<Loan> out;
    for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext()) {
        Loan l{rs.field(0).toString(), rs.field(1).toString(), rs.field(2).toDateTime().date(), false, Money()};
        l.overdue = l.due < today;
        out << l;
    }
    data.CloseCompact();
    // The fine so far, as the desk would charge it on a return today.
    for (Loan &l : out) {
        if (!l.overdue)
            continue;
        Money amount;
        qint16 interval = 1;
        GetFineSettings(l.accession, member.type, &amount, &interval);
        try {
            l.fineSoFar = interval > 0 ? OverdueFine(today, l.due, amount, interval) : Money();
        } catch (const AppError &) {
            l.fineSoFar = Money(); // settings the desk would refuse show no fine here
        }
    }
    return out;
}

QList<OpacAccount::Fine> OpacAccount::fines(const Member &member)
{
    clsDataObject data;
    data.GetData(QStringLiteral("select i.Title, f.DateFined, f.FineAmount - f.PaymentAmount from (tblLibTransactionFines f inner join "
                                "tblLibTransactions t on f.TransactionID = t.TransactionID) inner join tblLibItems i on t.ItemID = i.ItemID "
                                "where f.FineCancelled = false and f.FineAmount > f.PaymentAmount and f.MemberType = '%1' and f.MemberID = %2 "
                                "order by f.DateFined")
                     .arg(member.type)
                     .arg(member.id));
    QList<Fine> out;
    for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext())
        out << Fine{rs.field(0).toString(), rs.field(1).isNull() ? QDate() : rs.field(1).toDateTime().date(), rs.field(2).toMoney()};
    data.CloseCompact();
    return out;
}

QList<OpacAccount::Reservation> OpacAccount::reservations(const Member &member)
{
    clsDataObject data;
    data.GetData(QStringLiteral("select r.ReserveID, i.Title, i.AccessionID, r.ReserveDate from tblLibReserves r inner join tblLibItems i on "
                                "r.ItemID = i.ItemID where r.Canceled = false and r.MemberType = '%1' and r.MemberID = %2 order by r.ReserveDate, r.ReserveID")
                     .arg(member.type)
                     .arg(member.id));
    QList<Reservation> out;
    for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext())
        out << Reservation{rs.field(0).toInt(), rs.field(1).toString(), rs.field(2).toString(),
                           rs.field(3).isNull() ? QDate() : rs.field(3).toDateTime().date()};
    data.CloseCompact();
    return out;
}
