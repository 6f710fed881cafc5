#pragma once

#include <QString>

/// The main menu's long work on the large school: "Back Up Now" and "Compact Library Database", each
/// from the press to its last message beside the GUI thread's longest stall.
void benchMenuWork(const QString &workFolder);
