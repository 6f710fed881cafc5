#pragma once

#include "TaskProgress.h"

#include "Money.h"

#include <QDate>
#include <QString>

#include <map>
#include <vector>

/// How the library was used in a period: every figure worked out by the database (grouped and
/// counted in SQL), the members' grades and classes looked up in the school's database for the
/// learners who borrowed. Months are "yyyy-MM".
class LibraryStatistics {
public:
    struct Month {
        QString month;
        int learners = 0, educators = 0, staff = 0; // loans issued
        int overdue = 0;                            // of those loans: returned late, or out past their due date at the period's end
        Money charged, paid, cancelled;             // fines by the month they were fined, paid or (fined and) cancelled
        int loans() const { return learners + educators + staff; }
        double overdueRate() const { return loans() ? double(overdue) / loans() : 0.0; }
    };
    struct Count {
        QString name;
        int count = 0;
    };
    struct Unborrowed {
        QString accession;
        QString title;
        QString category;
    };

    /// Throws AppError when a database cannot be read.
    static LibraryStatistics compute(const QDate &from, const QDate &to);
    /// The same, telling progress each step and stopping (TaskCancelled) when it is cancelled.
    static LibraryStatistics compute(const QDate &from, const QDate &to, TaskProgress &progress);

    QDate from, to;
    std::vector<Month> months;             // every month of the period, in order
    std::vector<Count> loansByGrade;       // learners' loans, grade by grade in the school's order
    std::vector<Count> loansByClass;       // learners' loans, classes in natural order (1A, 1B, 2A ... 10A)
    std::vector<Count> topTitles;          // the 20 most borrowed titles, most first
    std::vector<Count> topClasses;         // the 20 most active classes, most first
    std::vector<Count> unborrowedByCategory; // copies on the shelf list not borrowed in the period, per category
    std::vector<Unborrowed> unborrowed;    // and the copies themselves (the weeding candidates)
};
