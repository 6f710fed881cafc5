#pragma once

#include "Money.h"

#include <QDate>
#include <QString>
#include <QVariant>

// The loan routines every circulation screen calls. Library routines open the
// shared library connection for their work and close it; member look-ups open
// the central one. Database errors reach the caller's trap as AppError;
// rule refusals are shown to the user here and answered with false. Accession and
// identity numbers are taken as typed: the routines double their quotes themselves.

/// True when the copy exists and is not phased out; its internal number goes to itemID.
bool GetItemByAccession(const QString &accession, int *itemID = nullptr);
/// True when a current member of that kind ("L", "E", "S") has that internal number.
bool MemberExists(int memberID, const QString &memberType);
/// The loan a return or renewal worked on.
struct LoanHandled {
    int transactionID = 0;
    QString memberType;
    int memberID = 0;
    QDate dueDate; // the loan's due date after the action (a renewal's new one)
};
/// Closes ("return") or extends ("renewal") the open loan of a copy, charging the overdue fine first;
/// the loan it worked on goes to handled. A renewal's due date is the later of the loan's due date
/// and newDueDate: renewing never shortens a loan.
bool ReturnOrRenewLoan(const QString &accession, const QDate &actionDate, qint16 maximumRenewals, const QString &mode,
                       const QDate &newDueDate, Money fineAmount, qint16 fineInterval, LoanHandled *handled = nullptr);
/// True when the copy has no open loan; otherwise the borrower's kind goes to borrowerType.
bool ItemAvailable(const QString &accession, QString *borrowerType = nullptr);
/// The kind and number of the member holding the item's open loan; both stay empty when it is on the shelf.
void GetItemHolder(int itemID, QString *memberType, QVariant *memberID);
/// True when the member holds fewer open loans than maximumItems.
bool MemberCanBorrow(int memberID, const QString &memberType, qint16 maximumItems);
/// True when the item's oldest open reservation belongs to another member (another kind, or another
/// number), whose name goes to reservedFor.
bool GetNextReservation(int itemID, int memberID, const QString &memberType, QString *reservedFor = nullptr);
/// Why a copy may not be issued to a member, in the order the checks are made.
enum class IssueRefusal { None, UnknownMember, LoanLimit, UnknownItem, OnLoan, ReservedForAnother };
/// The outcome of the issue checks: the refusal, or none with the copy's internal number; the
/// reserving member's name with ReservedForAnother.
struct IssueCheck {
    IssueRefusal refusal = IssueRefusal::None;
    int itemID = 0;
    QString reservedFor;
};
/// The one issue check of every screen that issues: the member is current, holds fewer than
/// maximumItems, the copy exists, is on the shelf and is not reserved for somebody else.
IssueCheck CheckIssue(int memberID, const QString &memberType, qint16 maximumItems, const QString &accession);

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
