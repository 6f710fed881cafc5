#include "MemberScreens.h"

#include "ScreenRegistry.h"
#include "frmLibraryUsers.h"

void registerMemberScreens(ScreenRegistry &screens)
{
    screens.add(QStringLiteral("frmLibraryUsers"), [](QWidget *parent) { return new frmLibraryUsers(parent); });
}
