#pragma once

/// Overdue notices on the large school: the whole school's overdue list, and 500 letters to parents to PDF.
void benchOverdueNotices();

/// The statistics screen for the last twelve months on the large school.
void benchLibraryStatistics();

/// A stocktake of the whole large school: scans with their counts, and the result.
void benchStocktake();
