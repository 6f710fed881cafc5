#pragma once

#include <QString>

#include <string_view>

/// What the data object needs of a grid to fill it: 1-based rows and columns,
/// column 0 the row-header column that holds each row's key, row 0 the
/// captions. Widths are in characters of the grid's font.
class GridTarget {
public:
    virtual ~GridTarget() = default;
    virtual int maxCols() const = 0;
    virtual void setMaxCols(int cols) = 0;
    virtual int maxRows() const = 0;
    virtual void setMaxRows(int rows) = 0;
    /// Cell text from UTF-8 (the fast path for large fills).
    virtual void setCellUtf8(int col, int row, std::string_view text) = 0;
    virtual void setCellText(int col, int row, const QString &text) = 0;
    virtual QString cellText(int col, int row) const = 0;
    virtual double colWidth(int col) const = 0;
    virtual void setColWidth(int col, double width) = 0;
    /// The width the text needs, in characters.
    virtual double textWidthUtf8(std::string_view text) const = 0;
    virtual void setActiveCell(int col, int row) = 0;
    /// Bracket a large fill, so the grid can hold back its redrawing until the end.
    virtual void beginFill() {}
    virtual void endFill() {}
};

/// A fill bracket that is closed however the fill ends.
struct FillScope {
    GridTarget &grid;
    explicit FillScope(GridTarget &g) : grid(g) { grid.beginFill(); }
    ~FillScope() { grid.endFill(); }
    FillScope(const FillScope &) = delete;
    FillScope &operator=(const FillScope &) = delete;
};
