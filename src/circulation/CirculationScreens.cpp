#include "CirculationScreens.h"

#include "ScreenRegistry.h"
#include "frmFinePayment.h"
#include "frmIssueSystem.h"
#include "frmReservedItems.h"
#include "frmReserves.h"
#include "frmSystemSettings.h"

void registerCirculationScreens(ScreenRegistry &screens)
{
    screens.addWithOptions(QStringLiteral("frmIssueSystem"), [](QWidget *parent, const ScreenOptions &options) {
        return new frmIssueSystem(parent, options.holidayPeriod ? QStringLiteral("L") : QStringLiteral("N"));
    });
    screens.add(QStringLiteral("frmSystemSettings"), [](QWidget *parent) { return new frmSystemSettings(parent); });
    screens.add(QStringLiteral("frmReserves"), [](QWidget *parent) { return new frmReserves(parent); });
    screens.add(QStringLiteral("frmReservedItems"), [](QWidget *parent) { return new frmReservedItems(parent); });
    screens.add(QStringLiteral("frmFinePayment"), [](QWidget *parent) { return new frmFinePayment(parent); });
}
