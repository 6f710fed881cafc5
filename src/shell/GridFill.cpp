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

bool FillGridInBackground(QWidget *owner, SpreadGrid &grid, const QString &sql, const QString &progressLabel, const RowWriter &writeRows,
                          const std::function<void(const Recordset &)> &whole)
{
    const int screenful = std::max(1, grid.view()->viewport()->height() / std::max(1, grid.view()->verticalHeader()->defaultSectionSize()) + 1);
    const size_t columns = size_t(grid.maxCols()) + 1;
    struct Laid {
        std::vector<std::vector<std::string>> cells;
        int rows = 0;
    };
    auto laid = TaskRunner(owner, progressLabel).compute<Laid>([&](TaskProgress &) {
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
        Laid out;
        out.rows = rs.RecordCount();
        out.cells.assign(columns, std::vector<std::string>(size_t(out.rows) + 1));
        writeRows(rs, [&out](int col, int row, std::string_view text) {
            if (col >= 0 && size_t(col) < out.cells.size())
                out.cells[size_t(col)][size_t(row)] = std::string(text);
        });
        if (whole)
            whole(rs);
        return out;
    });
    if (!laid)
        return false;
    grid.takeRows(std::move(laid->cells), laid->rows);
    return true;
}
