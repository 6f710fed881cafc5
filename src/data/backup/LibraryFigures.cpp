#include "LibraryFigures.h"

#include "DbConnection.h"
#include "Recordset.h"

LibraryFigures LibraryFigures::of(const QString &location)
{
    DbConnection db;
    db.DataSource = location;
    db.ReadOnly = true;
    db.Open();
    const auto count = [&db](const QString &sql) { return db.Execute(sql)->field(0).toLongLong(); };
    LibraryFigures f;
    f.items = count(QStringLiteral("select count(*) from tblLibItems"));
    f.openLoans = count(QStringLiteral("select count(*) from tblLibTransactions where Returned = false"));
    f.membersWithFines = count(QStringLiteral("select count(*) from (select distinct MemberType, MemberID from tblLibTransactionFines "
                                              "where FineCancelled = false and FineAmount > PaymentAmount) as owing"));
    db.Close();
    return f;
}
