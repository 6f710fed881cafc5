#include "GridFill.h"

#include "Recordset.h"
#include "SpreadGrid.h"
#include "TaskRunner.h"
#include "clsDataObject.h"

#include <QHeaderView>
#include <QTableView>

#include <algorithm>
#include <string>
#include <vector>

void GridRows::resize(int rows)
{
    count_ = std::max(0, rows);
    for (std::vector<std::string> &column : cells_)
        column.resize(size_t(count_) + 1);
}

void GridRows::put(int col, int row, std::string_view text)
{
    if (col >= 0 && size_t(col) < cells_.size() && row >= 1 && row <= count_)
        cells_[size_t(col)][size_t(row)] = std::string(text);
}

void GridRows::add(const QStringList &row)
{
    ++count_;
    for (size_t c = 0; c < cells_.size(); ++c)
        cells_[c].push_back(c < size_t(row.size()) ? row[qsizetype(c)].toStdString() : std::string());
}

void GridRows::appendTo(SpreadGrid &grid) const
{
    const int first = grid.maxRows();
    grid.beginFill();
    grid.setMaxRows(first + count_);
    for (size_t c = 0; c < cells_.size(); ++c)
        for (int r = 1; r <= count_; ++r)
            grid.setCellUtf8(int(c), first + r, cells_[c][size_t(r)]);
    grid.endFill();
}

void GridRows::moveInto(SpreadGrid &grid)
{
    grid.takeRows(std::move(cells_), count_);
    cells_.clear();
    count_ = 0;
}

bool FillGridInBackground(QWidget *owner, SpreadGrid &grid, const QString &sql, const QString &progressLabel, const RowWriter &writeRows,
                          const std::function<void(const Recordset &)> &whole)
{
    const int screenful = std::max(1, grid.view()->viewport()->height() / std::max(1, grid.view()->verticalHeader()->defaultSectionSize()) + 1);
    const int lastColumn = grid.maxCols();
    auto laid = TaskRunner(owner, progressLabel).compute<GridRows>([&](TaskProgress &) {
        clsDataObject reader;
        reader.GetData(sql, screenful, [&grid, &writeRows](const Recordset &first) {
            TaskRunner::onGuiThread(&grid, [&] {
                grid.beginFill();
                grid.setMaxRows(0);
                grid.setMaxRows(first.RecordCount());
                writeRows(first, [&grid](int col, int row, std::string_view text) { grid.setCellUtf8(col, row, text); });
                grid.endFill();
                if (grid.isVisible())
                    grid.view()->viewport()->repaint();
            });
        });
        const Recordset &rs = *reader.rst;
        GridRows out(lastColumn);
        out.resize(rs.RecordCount());
        writeRows(rs, [&out](int col, int row, std::string_view text) { out.put(col, row, text); });
        if (whole)
            whole(rs);
        return out;
    });
    if (!laid)
        return false;
    laid->moveInto(grid);
    return true;
}
