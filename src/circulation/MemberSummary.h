#pragma once

#include "Money.h"

#include <QDate>
#include <QString>

class clsDataObject;

/// Who a member is and where they stand with the library, as the desk shows it beside the
/// member number: name, grade and class (learners) or kind, the photo file if there is one, and
/// counts of loans, overdue loans, open fines and live reservations.
struct MemberSummary {
    bool found = false;
    QString kind;      // "L", "E" or "S"
    int memberID = 0;  // the member's internal number
    QString name;      // "Surname, First name"
    QString grade;     // learners
    QString className; // learners
    QString photoFile; // full path of an existing photo, or empty
    int itemsOut = 0;
    int overdue = 0;
    int openFines = 0;
    Money finesTotal;
    int reservations = 0;
    int readyToCollect = 0; // reserved copies on the shelf with this member first in the queue

    /// "2B" for a learner, "Educator" or "Staff member" otherwise.
    QString standing() const;

    /// Reads a member by kind and internal number (0: not found). Errors reach the caller as AppError.
    static MemberSummary load(clsDataObject &library, const QString &kind, int memberID, const QDate &today);
};
