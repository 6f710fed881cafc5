#include "StatisticsSchool.h"

#include "TestDatabases.h"

namespace {

void loan(const QString &library, int id, const char *type, int member, int item, const char *issued, const char *due, const char *returned)
{
    runOn(library, QString("Insert into tblLibTransactions(TransactionID, AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate, ReturnDate, Returned) "
                           "values (%1, 'F%2', '%3', %4, %2, #%5#, #%6#, %7, %8)")
                       .arg(id).arg(item).arg(type).arg(member).arg(issued, due, returned ? QString("#%1#").arg(returned) : QString("Null"),
                                                                    returned ? "true" : "false"));
}

void fine(const QString &library, int transaction, int member, const char *fined, double amount, const char *paidOn, double paid, bool cancelled)
{
    runOn(library, QString("Insert into tblLibTransactionFines(TransactionID, MemberID, MemberType, FineAmount, DateFined, PaymentDate, PaymentAmount, FineCancelled) "
                           "values (%1, %2, 'L', %3, #%4#, %5, %6, %7)")
                       .arg(transaction).arg(member).arg(amount).arg(fined).arg(paidOn ? QString("#%1#").arg(paidOn) : QString("Null"))
                       .arg(paid).arg(cancelled ? "true" : "false"));
}

} // namespace

void writeStatisticsSchool(const QString &library, const QString &central)
{
    for (int g : {8, 10})
        writeSchool(central, QString("Insert into SchoolGrades(ID, Name, schoolgrade) values (%1, 'Grade %1', 'Yes')").arg(g));
    writeSchool(central, "Insert into Classes(ClassID, ClassName, Grade) values (1, '8A', 8)");
    writeSchool(central, "Insert into Classes(ClassID, ClassName, Grade) values (2, '8B', 8)");
    writeSchool(central, "Insert into Classes(ClassID, ClassName, Grade) values (3, '10A', 10)");
    writeSchool(central, "Insert into Learner_Info(ID, SName, FName, Grade, Class, Status) values (1, 'Botha', 'Anna', 8, 1, 'C')");
    writeSchool(central, "Insert into Learner_Info(ID, SName, FName, Grade, Class, Status) values (2, 'Dube', 'Sipho', 8, 2, 'C')");
    writeSchool(central, "Insert into Learner_Info(ID, SName, FName, Grade, Class, Status) values (3, 'Nel', 'Piet', 10, 3, 'C')");
    runOn(library, "Insert into tblLibCategories(CategoryID, Category) values (1, 'Fiction')");
    runOn(library, "Insert into tblLibCategories(CategoryID, Category) values (2, 'Science')");
    for (int i = 1; i <= 6; ++i)
        runOn(library, QString("Insert into tblLibItems(ItemID, AccessionID, Title, CategoryID, PhasedOut) values (%1, 'F%1', 'Book %1', %2, %3)")
                           .arg(i).arg(i <= 4 ? 1 : 2).arg(i == 6 ? "true" : "false"));
    loan(library, 1, "L", 1, 1, "2026-01-05", "2026-01-19", "2026-01-25"); // late
    loan(library, 2, "L", 1, 2, "2026-01-10", "2026-01-24", "2026-01-20");
    loan(library, 3, "L", 2, 1, "2026-02-03", "2026-02-17", nullptr);      // still out past its due date
    loan(library, 4, "L", 3, 3, "2026-02-14", "2026-02-28", "2026-02-27");
    loan(library, 5, "E", 5, 3, "2026-03-02", "2026-03-23", "2026-03-30"); // late
    loan(library, 6, "L", 1, 2, "2025-12-20", "2026-01-03", "2026-01-02"); // before the quarter
    loan(library, 7, "L", 3, 5, "2026-04-02", "2026-04-16", nullptr);      // after it
    fine(library, 1, 1, "2026-01-25", 3, "2026-02-02", 3, false);
    fine(library, 5, 5, "2026-03-30", 1.5, nullptr, 0, true);
    fine(library, 6, 1, "2025-12-28", 2, nullptr, 0, false);
}
