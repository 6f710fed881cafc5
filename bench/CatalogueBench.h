#pragma once

/// Benchmarks of the catalogue screens on the large school (library path set, working copy).
void benchCatalogueScreens();
