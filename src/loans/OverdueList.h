#pragma once

#include "Money.h"

#include <QDate>
#include <QString>

#include <vector>

/// Who is asked for: a member kind ("L" learners, "E" educators, "S" staff), for learners
/// optionally one grade (the school's grade number) and one class (its ClassID).
struct OverdueQuery {
    QDate asAt;
    QString memberType = QStringLiteral("L");
    int grade = 0;   // 0: every grade
    int classID = 0; // 0: every class of the grade
};

/// One overdue copy with its borrower, as the notices show it.
struct OverdueRow {
    int memberID = 0;
    QString memberName; // "Surname, First name"
    QString fullName;   // "First name Surname", as a letter addresses the learner
    QString className;  // learners only
    QString accession;
    QString title;
    QDate dueDate;
    int daysOverdue = 0;
    Money fine; // so far, by the loan rules: a fine for every started interval
    bool leftSchool = false; // no longer a current member (still holds the book): on no class list
};

/// The copies out on loan past their due date at a day, for one member kind (and grade or class),
/// ordered by class in natural order (1A, 1B, 2A ... 10A), member and due date. The loans come from
/// the library database in one statement, the members (current or left) from the school's in one more; the fine of
/// each is the loan engine's overdue fine on the settings row of its loan type and member category.
class OverdueList {
public:
    /// Throws AppError when a database cannot be read.
    static std::vector<OverdueRow> load(const OverdueQuery &query);
    /// The first day that can be asked about: the earliest issue date of any loan (invalid without loans).
    static QDate firstLoanDay();
};

/// The wording of the letter to parents, kept in the library database (tblLibNoticeTemplate) and
/// edited on the Overdue Notices screen. Placeholders: {learner}, {class}, {school}, {items}, {date},
/// and the words that follow the number of books: {books} (book/books), {was} (was/were), {has}
/// (has/have), {them} (it/them).
class NoticeTemplate {
public:
    static QString defaultText();
    /// The kept wording, or the default when none is kept.
    static QString load();
    static void save(const QString &text);
    /// The wording with its placeholders filled.
    static QString fill(const QString &text, const QString &learner, const QString &className, const QString &school,
                        const QString &items, const QDate &date, int books);
};
