#pragma once

#include "Money.h"

#include <QDate>
#include <QList>
#include <QString>

#include <optional>

/// What a signed-in member may see of their own: their loans and their fines.
namespace OpacAccount {
struct Member {
    QString type; // L, E or S
    int id = 0;
    QString name;
};
/// The member a number names: a current learner's admission number, else a current educator's or
/// staff member's ID number. Learners who have left are nobody here.
std::optional<Member> find(const QString &number);

struct Loan {
    QString title, accession;
    QDate due;
    bool overdue = false;
    Money fineSoFar;
};
QList<Loan> loans(const Member &member, const QDate &today);

struct Fine {
    QString title;
    QDate fined;
    Money owed;
};
/// Fines not paid in full and not cancelled.
QList<Fine> fines(const Member &member);

struct Reservation {
    int reserveID = 0;
    QString title, accession;
    QDate reserved;
};
/// The member's open reservations, oldest first.
QList<Reservation> reservations(const Member &member);
} // namespace OpacAccount
