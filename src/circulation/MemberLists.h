#pragma once

#include <QString>
#include <QStringList>

#include <memory>

class QAbstractButton;
class QComboBox;
class Recordset;

/// Runs a statement on the school database, opened for it and closed after; errors reach the caller as AppError.
std::shared_ptr<Recordset> CentralQuery(const QString &sql);

/// Fills a member combo from a statement on the school database: one entry a row, its text the
/// named fields joined by single blanks, its item data the member's internal number (idField).
/// The list is emptied first; errors reach the caller as AppError.
void FillMemberCombo(QComboBox *combo, const QString &sql, const QString &idField, const QStringList &textFields);

/// The member kind chosen with the three option buttons: "L" learner, "E" educator, else "S" staff member.
QString MemberKind(const QAbstractButton *learner, const QAbstractButton *educator);

/// The year the learner lists are drawn up for (learners admitted up to this year).
QString CurrentYear();

/// The reservation screens' member list of a kind: learners by surname, first name, class and
/// admission number; educators by surname and first name; staff members with their number.
void FillReservationMembers(QComboBox *combo, const QString &memberKind);
