#include "IssueDeskState.h"

IssueDeskState &IssueDeskState::desk()
{
    static IssueDeskState state;
    return state;
}

void IssueDeskState::reset()
{
    ReturnTransaction = 0;
    UserReturnType.clear();
    MemberID = 0;
    ItemID = 0;
    ReserveMember.clear();
    LoanType = QStringLiteral("N");
}
