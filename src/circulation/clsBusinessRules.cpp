#include "clsBusinessRules.h"

#include "AppError.h"
#include "UpdateDatabase.h"
#include "clsDataObject.h"
#include "clsTSQL.h"

const QString clsBusinessRules::IssuedText = QStringLiteral("Item is already issued");
const QString clsBusinessRules::ReservedText = QStringLiteral("Reserved Items can't be issued");

namespace {

// Runs one catalogue statement and tells whether it found a row.
bool anyRow(const QString &sql)
{
    clsDataObject data;
    const bool found = data.GetData(sql) > 0;
    data.CloseCompact();
    return found;
}

} // namespace

void clsBusinessRules::ItemIssued(int itemID, bool &issued, QString &failureText) const
{
    issued = false;
    try {
        issued = anyRow(clsTSQL().spGetAID(QStringLiteral("TransactionID"),
                                           QStringLiteral("tblLibTransactions where Returned = false and ItemID = ") + QString::number(itemID)));
        failureText = issued ? IssuedText : QString();
    } catch (const AppError &e) {
        ReportError(QStringLiteral("Business Rules"), QStringLiteral("ItemIssued"), e);
    }
}

void clsBusinessRules::ItemReserved(int itemID, bool &reserved, QString &failureText) const
{
    reserved = false;
    try {
        reserved = anyRow(clsTSQL().spGetAID(QStringLiteral("ReserveID"),
                                             QStringLiteral("tblLibReserves where Canceled = false and ItemID = ") + QString::number(itemID)));
        failureText = reserved ? ReservedText : QString();
    } catch (const AppError &e) {
        ReportError(QStringLiteral("Business Rules"), QStringLiteral("ItemReserved"), e);
    }
}
