#pragma once

#include <functional>
#include <string_view>

class QString;
class QWidget;
class Recordset;
class SpreadGrid;

/// Where a row writer puts one cell: grid column (0 holds the row's key), grid row (1-based), UTF-8 text.
using CellSink = std::function<void(int col, int row, std::string_view text)>;
/// Writes every row of a result through the sink, result row r as grid row r + 1.
using RowWriter = std::function<void(const Recordset &, const CellSink &)>;

/// Reads a list that may run to thousands of rows on a worker thread and fills grid with it: the
/// first screenful shows as soon as it is read, the rest is laid out on the worker and the grid takes
/// the finished columns at once, so the window never waits on a row. whole, when given, also runs on
/// the worker with the complete result (totals, what each row was listed with). False when the work
/// was refused; an error reaches the caller's trap.
bool FillGridInBackground(QWidget *owner, SpreadGrid &grid, const QString &sql, const QString &progressLabel, const RowWriter &writeRows,
                          const std::function<void(const Recordset &)> &whole = {});
