#pragma once

#include <QString>

/// A small school whose every loan and fine of the first quarter of 2026 is known (the statistics
/// tests work each figure out by hand from it): learners in 8A, 8B and 10A, an educator, six copies
/// in two categories (one phased out), loans late, on time and still out, fines fined, paid and cancelled.
void writeStatisticsSchool(const QString &library, const QString &central);
