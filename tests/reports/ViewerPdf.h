#pragma once

#include "ScreenDriver.h"
#include "frmReportViewer.h"


#include <gtest/gtest.h>

// Presses a button that opens the report viewer; the viewer saves its PDF and is closed. Returns
// its page count (-1: no viewer opened).
inline int ViewPdf(QWidget &screen, const char *button, const QString &pdf)
{
    int pages = -1;
    const auto watch = ScreenDriver::whenModal<frmReportViewer>([&](frmReportViewer *viewer) {
        pages = viewer->pageCount();
        EXPECT_EQ(viewer->saveAsPdf(pdf), frmReportViewer::Saved::Yes);
        viewer->close();
    });
    ScreenDriver::click(screen, button);
    return pages;
}
