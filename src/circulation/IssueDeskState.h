#pragma once

#include <QObject>
#include <QString>

/// The issue desk's public values that other screens and the loan routines
/// hand it: the loan being returned, its borrower, the item and the name of a
/// member holding a reservation. One per process, as there is one desk; the
/// desk screen shows and edits it.
class IssueDeskState : public QObject {
    Q_OBJECT
    Q_PROPERTY(int ReturnTransaction MEMBER ReturnTransaction)
    Q_PROPERTY(QString UserReturnType MEMBER UserReturnType)
    Q_PROPERTY(int MemberID MEMBER MemberID)
    Q_PROPERTY(int ItemID MEMBER ItemID)
    Q_PROPERTY(QString ReserveMember MEMBER ReserveMember)
    Q_PROPERTY(QString LoanType MEMBER LoanType)

public:
    static IssueDeskState &desk();
    void reset();

    int ReturnTransaction = 0;
    QString UserReturnType;
    int MemberID = 0;
    int ItemID = 0;
    QString ReserveMember;
    QString LoanType = QStringLiteral("N");

private:
    IssueDeskState() = default;
};
