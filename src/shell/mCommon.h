#pragma once

#include "SqlText.h"

#include <QString>

class QAbstractButton;
class QWidget;
class SpreadGrid;

/// Closes the screen, asking first when its save button is enabled (unsaved changes).
void ConfirmUnsavedClose(QAbstractButton *saveButton, QWidget *screen);

/// Printer orientations as the callers pass them.
inline constexpr int PrintPortrait = 1;
inline constexpr int PrintLandscape = 2;

/// Prints a grid under the heading SchoolName + " - " + heading, after telling the
/// user how many pages it takes. Printer errors reach the caller as AppError.
void PrintGridWithHeading(int orientation, const QString &heading, SpreadGrid &grid);

/// The log of workbook exports (one line per export).
QString WorkbookExportLog();

/// Asks for a file name and writes the grid there as an .xlsx workbook (the name is given that ending),
/// then says whether it worked: "Export complete." / "Export did not succeed.".
void ExportGridToWorkbook(QWidget *parent, const SpreadGrid &grid, const QString &sheetName);
