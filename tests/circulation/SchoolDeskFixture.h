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

    template <typename T> static T *child(QWidget &screen, const char *name) { return ScreenDriver::child<T>(screen, name); }
    static void type(QWidget &screen, const char *box, const QString &text) { ScreenDriver::type(screen, box, text); }
    static void click(QWidget &screen, const char *button) { ScreenDriver::click(screen, button); }
    /// Types into a scan box and presses Enter, as a barcode scanner does.
    static void scan(QWidget &screen, const char *box, const QString &text);
    /// Chooses a combo entry by its text, as a click on the list does.
    static void choose(QWidget &screen, const char *combo, const QString &text);
    static QStringList rows(QWidget &screen, const char *grid) { return ScreenDriver::rows(screen, grid); }

    QStringList sent_;
};
