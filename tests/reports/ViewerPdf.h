#pragma once

#include "ScreenDriver.h"
#include "frmReportViewer.h"

#include <QApplication>
#include <QTimer>

#include <gtest/gtest.h>

// Presses a button that opens the report viewer; the viewer saves its PDF and is closed. Returns
// its page count (-1: no viewer opened).
inline int ViewPdf(QWidget &screen, const char *button, const QString &pdf)
{
    int pages = -1;
    QObject scope;
    QTimer::singleShot(0, &scope, [&] {
        if (auto *viewer = qobject_cast<frmReportViewer *>(QApplication::activeModalWidget())) {
            pages = viewer->pageCount();
            EXPECT_TRUE(viewer->saveAsPdf(pdf));
            viewer->close();
        }
    });
    ScreenDriver::click(screen, button);
    return pages;
}
