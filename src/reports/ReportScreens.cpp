#include "ReportScreens.h"

#include "ScreenRegistry.h"
#include "frmLibraryReport.h"
#include "frmLibraryStatistics.h"
#include "frmOverdueNotices.h"

void registerReportScreens(ScreenRegistry &screens)
{
    screens.add(QStringLiteral("frmLibraryReport"), [](QWidget *parent) { return new frmLibraryReport(parent); });
    screens.add(QStringLiteral("frmOverdueNotices"), [](QWidget *parent) { return new frmOverdueNotices(parent); });
    screens.add(QStringLiteral("frmLibraryStatistics"), [](QWidget *parent) { return new frmLibraryStatistics(parent); });
}
