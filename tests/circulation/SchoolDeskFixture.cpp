#include "SchoolDeskFixture.h"

#include "DbConnection.h"
#include "DatabaseLocations.h"

void SchoolDesk::SetUp()
{
    DatabaseTest::SetUp();
    Clock::setFixed(QDateTime(QDate(2026, 11, 23), QTime(10, 0)));
    central("Insert into general_info(schoolname) values ('Hillview High')");
    central("Insert into SchoolGrades(ID, Name, schoolgrade) values (8, 'Grade 8', 'Yes')");
    central("Insert into SchoolGrades(ID, Name, schoolgrade) values (9, 'Grade 9', 'Yes')");
    central("Insert into Classes(ClassID, ClassName, Grade) values (1, '8A', 8)");
    central("Insert into Classes(ClassID, ClassName, Grade) values (2, '9B', 9)");
    central("Insert into Learner_Info(ID, AccessionNo, SName, FName, Grade, Class, Status, Photoname, thedate) values (12, 'L100', 'Botha', 'Anna', 8, 1, 'C', 'L100.png', #2020-01-15#)");
    central("Insert into Learner_Info(ID, AccessionNo, SName, FName, Grade, Class, Status, thedate) values (13, 'L101', 'Old', 'Boy', 8, 1, 'A', #2019-01-15#)");
    central("Insert into Learner_Info(ID, AccessionNo, SName, FName, Grade, Class, Status, Photoname, thedate) values (14, 'L102', 'Dlamini', 'Sipho', 9, 2, 'C', 'none.png', #2021-01-15#)");
    central("Insert into Educators(EdID, SName, FName, IDNumber, Status) values (21, 'Naidoo', 'Ravi', '7001015000081', 'C')");
    central("Insert into StaffMembers(staffID, SName, FName, IDNumber, Status) values (3, 'Mokoena', 'Thabo', '8002025000082', 'C')");
    for (int i = 1; i <= 4; ++i)
        library(QString("Insert into tblLibItems(AccessionID, Title, ShelfNumber, LoanType) values ('A%1', 'Book %1', 'F%1', 'N')").arg(i));
    library("Insert into tblLibItems(AccessionID, Title, ShelfNumber, LoanType, ReferenceItem) values ('R1', 'Atlas', 'R912', 'N', true)");
    library("Insert into tblLibItems(AccessionID, Title, ShelfNumber, LoanType) values ('L1', 'Holiday Reader', 'F99', 'L')");
    const char *settings[] = {"'N','L',14,0.5,7,2,7,2,1,2", "'N','S',21,1.25,1,5,7,2,1,2", "'N','E',21,1.25,1,5,7,2,1,2",
                              "'L','L',30,1,7,3,10,2,1,2", "'L','S',30,1,7,3,10,2,1,2", "'L','E',30,1,7,3,10,2,1,2"};
    for (const char *values : settings)
        library(QString("Insert into tblLibsettings(Loantype,UserCat,Loanperiod,FineAmount,FineInterval,Maxitems,ExtDays,MaxExt,MaxRes,MaxUserRes)VALUES(%1)")
                    .arg(QLatin1String(values)));
    SchoolName = QStringLiteral("Hillview High");
    DbConnection::traceStatements(&sent_);
}

void SchoolDesk::TearDown()
{
    DbConnection::traceStatements(nullptr);
    SchoolName.clear();
    DatabaseTest::TearDown();
}

void SchoolDesk::lend(const QString &accession, int itemID, const QString &type, int member, const QDate &due, int extensions)
{
    library(QString("Insert into tblLibTransactions(accessionId,MemberType,MemberId,ItemID,Issuedate,DueDate,Extensions)VALUES('%1','%2',%3,%4,#%5#,#%6#,%7)")
                .arg(accession, type).arg(member).arg(itemID)
                .arg(due.addDays(-14).toString(Qt::ISODate), due.toString(Qt::ISODate)).arg(extensions));
}
