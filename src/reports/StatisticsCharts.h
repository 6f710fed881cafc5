#pragma once

#include "LibraryStatistics.h"

#include <QImage>
#include <QSize>

class QChart;

/// The charts of the library statistics, made from its figures (Qt Charts). Each call makes a new
/// chart; the caller owns it (a chart view takes it over).
namespace StatisticsCharts {
enum Chart { LoansPerMonth, LoansPerGrade, LoansPerClass, OverdueAndFines, NotBorrowed };
constexpr int Count = 5;
QChart *make(Chart chart, const LibraryStatistics &s);
/// The chart's file-name part ("loans-per-month") and title.
QString fileName(Chart chart);
/// A chart drawn into an image of the given size (for PNG files and the printed page).
QImage render(Chart chart, const LibraryStatistics &s, const QSize &size);
} // namespace StatisticsCharts
