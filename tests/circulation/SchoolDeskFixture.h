#pragma once

#include "Clock.h"
#include "ScreenDriver.h"
#include "SpreadGrid.h"
#include "TestDatabases.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDateEdit>
#include <QLineEdit>
#include <QTest>

using namespace ScreenDriver; // every circulation screen test drives its widgets through these

// A small school at the circulation counter, on 2026-11-23: learners 12 (admission 'L100',
// Anna Botha, 8A) and 14 ('L102', Sipho Dlamini, 9B), a learner who has left (13, 'L101'),
// educator 21 ('7001015000081', Ravi Naidoo), staff member 3 ('8002025000082', Thabo Mokoena);
// copies A1..A4 (normal loan), R1 (reference), L1 (long loan); settings for every loan type.
class SchoolDesk : public DatabaseTest {
protected:
    void SetUp() override;
    void TearDown() override;

    /// A loan of a copy, issued 14 days before its due date.
    void lend(const QString &accession, int itemID, const QString &type, int member, const QDate &due, int extensions = 0);
    QStringList loans() { return libraryRows("select AccessionID, MemberType, MemberID, IssueDate, DueDate, Returned, Extensions from tblLibTransactions order by TransactionID"); }
    QStringList fines() { return libraryRows("select TransactionID, MemberType, MemberID, FineAmount, PaymentDate, PaymentAmount, FineCancelled from tblLibTransactionFines order by TransactionID"); }

    QStringList sent_;
};
