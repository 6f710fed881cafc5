#pragma once

/// Benchmarks of the circulation screens on the large school (library path set, working copy).
void benchCirculationScreens();
