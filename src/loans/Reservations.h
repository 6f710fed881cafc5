#pragma once

#include <QString>

/// What the reservation rule answers: nullptr when the reservation was written, else the refusal
/// shown to the librarian.
struct ReservationRequest {
    QString memberType;
    int memberID = 0;
    int itemID = 0;
    QString accession;
    qint16 maxItemReservations = 0;   // per copy
    qint16 maxMemberReservations = 0; // per member
};

/// Places a reservation after its checks (the copy's and the member's limits, the copy out on loan,
/// no second reservation of the same copy by the member), checks and insert in one transaction, so
/// desks reserving at the same moment never pass a limit together. Returns the refusal text, or an
/// empty string when the reservation was written.
QString PlaceReservation(const ReservationRequest &request);

/// The reservation limits as every desk reads them (the first settings row): per copy and per member.
void ReservationLimits(qint16 *perCopy, qint16 *perMember);
/// Cancels a member's own reservation (the web catalogue); false when it is not theirs or not open.
bool CancelOwnReservation(int reserveID, const QString &memberType, int memberID);
