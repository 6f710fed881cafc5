#pragma once

#include "Money.h"

#include <QDate>
#include <QString>
#include <QVariant>

class QObject;

// The loan routines every circulation screen calls. Library routines open the
// shared library connection for their work and close it; member look-ups open
// the central one. Database errors reach the caller's trap as AppError;
// rule refusals are shown to the user here and answered with false. Accession and
// identity numbers are taken as typed: the routines double their quotes themselves.

/// True when the copy exists and is not phased out; sets the screen's "ItemID" property.
bool GetItemByAccession(const QString &accession, QObject *screen);
/// True when a current member of that kind ("L", "E", "S") has that internal number.
bool MemberExists(int memberID, const QString &memberType);
/// Closes ("return") or extends ("renewal") the open loan of a copy, charging the overdue fine first.
bool ReturnOrRenewLoan(const QString &accession, const QDate &actionDate, qint16 maximumRenewals, const QString &mode,
                       const QDate &newDueDate, Money fineAmount, qint16 fineInterval);
/// True when the copy has no open loan; otherwise the desk's UserReturnType becomes the borrower's kind.
bool ItemAvailable(const QString &accession);
/// The kind and number of the member holding the item's open loan; both stay empty when it is on the shelf.
void GetItemHolder(int itemID, QString *memberType, QVariant *memberID);
/// True when the member holds fewer open loans than maximumItems.
bool MemberCanBorrow(int memberID, const QString &memberType, qint16 maximumItems);
/// True when the item's oldest open reservation belongs to another member; names that member in the screen's "ReserveMember".
bool GetNextReservation(int itemID, int memberID, const QString &memberType, QObject *screen);
/// A member's identity number (admission number for learners) from the internal number; empty when not current.
QVariant GetMemberIDNo(int memberID, const QString &memberType);
/// A current member's internal number from the identity number; empty when there is none.
QVariant GetMemberByIDNo(const QString &identityNumber, const QString &memberType);
/// Warns that the item on loan to this member will be returned; true when the librarian continues.
bool GetLoanHolderMessage(int memberID, const QString &memberType);
/// The fine amount and interval for the copy's loan type and a member category.
void GetFineSettings(const QString &accession, const QString &userCategory, Money *fineAmount, qint16 *fineInterval);

/// The overdue fine: one amount per started interval of days late. Throws AppError on a zero
/// interval (division by zero) or more than 32,767 days (overflow), as the old routine did.
Money OverdueFine(const QDate &actionDate, const QDate &dueDate, Money fineAmount, qint16 fineInterval);
