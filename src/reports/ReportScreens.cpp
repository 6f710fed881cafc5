#include "ReportScreens.h"

#include "ScreenRegistry.h"
#include "frmLibraryReport.h"

void registerReportScreens(ScreenRegistry &screens)
{
    screens.add(QStringLiteral("frmLibraryReport"), [](QWidget *parent) { return new frmLibraryReport(parent); });
}
