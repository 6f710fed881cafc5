#include "BenchDesk.h"

#include "BenchTimer.h"
#include "Clock.h"
#include "DbConnection.h"
#include "LoanRoutines.h"
#include "LoanRules.h"
#include "Money.h"
#include "Recordset.h"

QStringList firstRows(const QString &location, const QString &sql)
{
    DbConnection c;
    c.DataSource = location;
    c.Open();
    QStringList out;
    for (auto rs = c.Execute(sql); !rs->atEnd(); rs->MoveNext())
        out << rs->field(0).toString();
    return out;
}

double issueAndReturn(const QString &copy, int member)
{
    const QDate today = Clock::today();
    const double issue = Samples::measure([&] {
        const IssueCheck check = CheckIssue(member, QStringLiteral("L"), 1000, copy);
        if (check.refusal == IssueRefusal::None)
            RecordIssue(copy, QStringLiteral("L"), member, check.itemID, today.addDays(14));
    });
    ReturnOrRenewLoan(copy, today, 0, QStringLiteral("return"), QDate(), Money::fromUnits(5000), 1);
    return issue;
}

QStringList copiesOnTheShelf(const QString &location, int count)
{
    return firstRows(location, QStringLiteral("select top %1 AccessionID from tblLibItems i where PhasedOut = false and ReferenceItem = false and "
                                              "Restricted = false and LoanType = 'N' and not exists (select * from tblLibTransactions t where "
                                              "t.ItemID = i.ItemID and t.Returned = false) and not exists (select * from tblLibReserves r where "
                                              "r.ItemID = i.ItemID) order by ItemID").arg(count));
}
