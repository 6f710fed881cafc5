#include "LoanRules.h"

#include "AppError.h"

#include "Clock.h"
#include "Recordset.h"
#include "SqlText.h"
#include "clsDataObject.h"

void LoanRules::load(clsDataObject &data, const QString &accession, const QString &category)
{
    if (data.GetData(QStringLiteral("select referenceitem, restricted, loantype from tbllibitems where accessionid = '") + Safesql(accession.trimmed())
                     + QStringLiteral("'"))
        > 0) {
        ReferenceItem = data.rst->field(QStringLiteral("referenceitem")).toBool();
        RestrictedItem = data.rst->field(QStringLiteral("restricted")).toBool();
        if (LoanType != QLatin1String("L"))
            LoanType = data.rst->field(QStringLiteral("loantype")).toString();
    }
    data.CloseCompact();

    if (data.GetData(QStringLiteral("select * from tbllibsettings where loantype = '") + LoanType + QStringLiteral("' and usercat ='")
                     + category + QStringLiteral("'"))
        < 1) {
        data.CloseCompact();
        // Period 1 day, 1 item, no fine, interval 1, extension 1.
        shown = {LoanType, QStringLiteral("1"), QStringLiteral("1"), Money().toDisplayText(), QStringLiteral("1"), QStringLiteral("1")};
        LoanPeriod = 1;
        FineAmount = Money();
        FineInterval = 1;
        ExtensionDays = 1;
        return;
    }
    const Recordset &row = *data.rst;
    LoanPeriod = row.field(QStringLiteral("loanperiod")).toInt16();
    FineAmount = row.field(QStringLiteral("fineamount")).toMoney();
    const qint16 interval = row.field(QStringLiteral("fineinterval")).toInt16();
    FineInterval = interval > 0 ? interval : qint16(1);
    ExtensionDays = row.field(QStringLiteral("extdays")).toInt16();
    shown = {LoanType, row.field(QStringLiteral("loanperiod")).toString(), row.field(QStringLiteral("maxitems")).toString(),
             FineAmount.toDisplayText(), QString::number(FineInterval), row.field(QStringLiteral("extdays")).toString()};
    data.CloseCompact();
}

qint16 LoanRules::maxRenewals(clsDataObject &data)
{
    qint16 limit = 0;
    data.GetData(QStringLiteral("Select * from tblLibSettings"));
    for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext())
        limit = rs.field(QStringLiteral("maxext")).isNull() ? qint16(0) : rs.field(QStringLiteral("maxext")).toInt16();
    data.CloseCompact();
    return limit;
}

QString SqlDate(const QDate &date) { return date.toString(QStringLiteral("yyyy-MM-dd")); }

int RecordIssue(const QString &accession, const QString &memberType, int memberID, int itemID, const QDate &dueDate)
{
    const QString today = SqlDate(Clock::today());
    clsDataObject data;
    qint64 transaction = 0;
    try {
        data.RunTransaction([&] {
            transaction = data.InsertReturningKey(
                QStringLiteral("Insert into tblLibTransactions(accessionId,MemberType,MemberId,ItemID,Issuedate,DueDate)VALUES('")
                    + Safesql(accession) + QStringLiteral("','") + memberType + QStringLiteral("',") + QString::number(memberID)
                    + QLatin1Char(',') + QString::number(itemID) + QStringLiteral(",#") + today + QStringLiteral("#,#") + SqlDate(dueDate)
                    + QStringLiteral("#)"),
                QStringLiteral("TransactionID"));
            data.ExecuteNonQuery(QStringLiteral("Delete from tblLibreserves where itemid = ") + QString::number(itemID)
                                 + QStringLiteral(" and membertype = '") + memberType + QStringLiteral("' and memberid = ")
                                 + QString::number(memberID));
            return true;
        });
    } catch (const AppError &e) {
        // Another desk lent this copy between the checks and this insert: the database keeps one open loan per copy.
        if (e.cause() == AppError::Cause::Duplicate)
            return LentElsewhere;
        throw;
    }
    return int(transaction);
}
