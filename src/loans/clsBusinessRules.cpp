#include "clsBusinessRules.h"

#include "AppError.h"
#include "ErrorReport.h"
#include "clsDataObject.h"
#include "clsTSQL.h"

const QString clsBusinessRules::IssuedText = QStringLiteral("Item is already issued");
const QString clsBusinessRules::ReservedText = QStringLiteral("Reserved Items can't be issued");

namespace {

// Runs one catalogue look-up for the item: the flag tells whether it found a row.
void lookUp(const QString &column, const QString &tableAndCondition, int itemID, const QString &whenFound, const char *procedure,
            bool &flag, QString &failureText)
{
    flag = false;
    Trap(QStringLiteral("Business Rules"), QString::fromLatin1(procedure), [&] {
        clsDataObject data;
        flag = data.GetData(clsTSQL().spGetAID(column, tableAndCondition + QString::number(itemID))) > 0;
        data.CloseCompact();
        failureText = flag ? whenFound : QString();
    });
}

} // namespace

void clsBusinessRules::ItemIssued(int itemID, bool &issued, QString &failureText) const
{
    lookUp(QStringLiteral("TransactionID"), QStringLiteral("tblLibTransactions where Returned = false and ItemID = "), itemID, IssuedText,
           "ItemIssued", issued, failureText);
}

void clsBusinessRules::ItemReserved(int itemID, bool &reserved, QString &failureText) const
{
    lookUp(QStringLiteral("ReserveID"), QStringLiteral("tblLibReserves where Canceled = false and ItemID = "), itemID, ReservedText,
           "ItemReserved", reserved, failureText);
}
