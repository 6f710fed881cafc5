#pragma once

#include <QStringList>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

class QWidget;
class Recordset;
class SpreadGrid;

/// Where a row writer puts one cell: grid column (0 holds the row's key), grid row (1-based), UTF-8 text.
using CellSink = std::function<void(int col, int row, std::string_view text)>;
/// Writes every row of a result through the sink, result row r as grid row r + 1.
using RowWriter = std::function<void(const Recordset &, const CellSink &)>;

/// A grid's rows laid out where the window need not wait for them (on a worker thread): grid
/// columns 0 (the row's key) to the last, kept as the grid takes them in one go.
class GridRows {
public:
    explicit GridRows(int lastColumn) : cells_(size_t(lastColumn) + 1, std::vector<std::string>(1)) {}
    /// Makes room for rows 1..rows, each cell empty until put.
    void resize(int rows);
    void put(int col, int row, std::string_view text);
    /// One more row after the others, its cells from column 0.
    void add(const QStringList &row);
    int count() const { return count_; }
    QString cell(int col, int row) const { return QString::fromStdString(cells_[size_t(col)][size_t(row)]); }
    /// Below the grid's own rows, in one fill.
    void appendTo(SpreadGrid &grid) const;
    /// In place of the grid's rows; the rows are the grid's afterwards.
    void moveInto(SpreadGrid &grid);

private:
    std::vector<std::vector<std::string>> cells_; // [column][row], row 0 unused
    int count_ = 0;
};

/// Reads a list that may run to thousands of rows on a worker thread and fills grid with it: the
/// first screenful shows as soon as it is read, the rest is laid out on the worker and the grid takes
/// the finished columns at once, so the window never waits on a row. whole, when given, also runs on
/// the worker with the complete result (totals, what each row was listed with). False when the work
/// was refused; an error reaches the caller's trap.
bool FillGridInBackground(QWidget *owner, SpreadGrid &grid, const QString &sql, const QString &progressLabel, const RowWriter &writeRows,
                          const std::function<void(const Recordset &)> &whole = {});
