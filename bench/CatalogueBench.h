#pragma once

/// Benchmarks of the catalogue screens on the large school (library path set, working copy).
void benchCatalogueScreens();
/// 500 barcode labels rendered to a PDF label sheet.
void benchLabels();
