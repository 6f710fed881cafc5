#include "Reservations.h"

#include "Clock.h"
#include "DbConnection.h"
#include "LoanRules.h"
#include "Recordset.h"
#include "SqlText.h"
#include "DatabaseLocations.h"

namespace {

int rowsOf(DbConnection &db, const QString &sql) { return db.Execute(sql)->RecordCount(); }

} // namespace

QString PlaceReservation(const ReservationRequest &r)
{
    const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();
    const QString kind = r.memberType;
    QString refusal;
    db->RunTransaction([&] {
        refusal.clear();
        const int forItem = rowsOf(*db, QStringLiteral(" select * from tblLibReserves") + QStringLiteral(" where MemberType = '") + kind
                                            + QStringLiteral("'") + QStringLiteral(" and canceled <> true and ItemID = ") + QString::number(r.itemID));
        if (!(r.maxItemReservations > forItem)) {
            refusal = QStringLiteral("Item has reached its maximum reservation");
            return false;
        }
        const int forMember = rowsOf(*db, QStringLiteral(" select * from tblLibReserves") + QStringLiteral(" where MemberType = '") + kind
                                              + QStringLiteral("'") + QStringLiteral(" and MemberID = ") + QString::number(r.memberID)
                                              + QStringLiteral(" and canceled <> true"));
        if (r.maxMemberReservations <= forMember) {
            refusal = QStringLiteral("User exceeded the max user Reservation");
            return false;
        }
        const int out = rowsOf(*db, QStringLiteral(" select * from tblLibItems")
                                        + QStringLiteral(" inner join tblLibTransactions on tblLibTransactions.ItemID = tblLibItems.ItemID")
                                        + QStringLiteral(" where (tblLibTransactions.returned <> true or tblLibTransactions.returned = false) and tblLibTransactions.AccessionID = '")
                                        + Safesql(r.accession) + QStringLiteral("'"));
        if (out < 1) {
            refusal = QStringLiteral("This item is on the shelf and it can not be reserved");
            return false;
        }
        const int twice = rowsOf(*db, QStringLiteral(" select * from tblLibReserves") + QStringLiteral(" where (MemberType = '") + kind
                                          + QStringLiteral("'") + QStringLiteral(" and MemberID = ") + QString::number(r.memberID)
                                          + QStringLiteral(" and ItemID = ") + QString::number(r.itemID) + QStringLiteral(" And Canceled = False)"));
        if (twice > 0) {
            refusal = QStringLiteral("Members can not reserve the same item more than once");
            return false;
        }
        db->Execute(QStringLiteral(" insert into tblLibReserves(MemberType,MemberID,ItemID,ReserveDate)") + QStringLiteral(" values('") + kind
                    + QStringLiteral("',") + QString::number(r.memberID) + QLatin1Char(',') + QString::number(r.itemID) + QStringLiteral(",#")
                    + SqlDate(Clock::today()) + QStringLiteral("#)"));
        return true;
    });
    return refusal;
}

void ReservationLimits(qint16 *perCopy, qint16 *perMember)
{
    *perCopy = *perMember = 0;
    const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();
    const auto rs = db->Execute(QStringLiteral("select top 1 maxuserres,maxres from tblLibSettings"));
    if (rs->atEnd())
        return;
    *perCopy = rs->field(QStringLiteral("MaxRes")).isNull() ? qint16(0) : rs->field(QStringLiteral("MaxRes")).toInt16();
    *perMember = rs->field(QStringLiteral("MaxUserRes")).isNull() ? qint16(0) : rs->field(QStringLiteral("MaxUserRes")).toInt16();
}

bool CancelOwnReservation(int reserveID, const QString &memberType, int memberID)
{
    const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();
    int changed = 0;
    db->Execute(QStringLiteral("update tblLibReserves set canceled = true where ReserveID = %1 and MemberType = '%2' and MemberID = %3 and "
                               "canceled = false")
                    .arg(reserveID)
                    .arg(memberType == QLatin1String("L") || memberType == QLatin1String("E") ? memberType : QStringLiteral("S"))
                    .arg(memberID),
                &changed);
    return changed == 1;
}
