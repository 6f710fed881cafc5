#pragma once

#include "GridTarget.h"
#include "SpreadModel.h"

#include <QWidget>

#include <array>
#include <vector>
#include <utility>

class QPaintDevice;
class QPainter;
class QTableView;

/// The one grid of every list screen. Rows and columns count from 1; column 0
/// is the row-header column that holds each row's key (the header shows the
/// row number), row 0 holds the captions. Cells are text, check boxes (text
/// "1" when ticked), push buttons, combos (a pick list) or dates (yyyy-mm-dd). Widths are in characters of the grid's
/// font. The grid can draw itself page by page for printing.
class SpreadGrid : public QWidget, public GridTarget {
    Q_OBJECT
public:
    explicit SpreadGrid(QWidget *parent = nullptr);

    // GridTarget
    int maxCols() const override { return model_->maxCols(); }
    void setMaxCols(int cols) override;
    int maxRows() const override { return model_->maxRows(); }
    void setMaxRows(int rows) override;
    void setCellUtf8(int col, int row, std::string_view text) override;
    void setCellText(int col, int row, const QString &text) override;
    QString cellText(int col, int row) const override { return model_->cellText(col, row); }
    double colWidth(int col) const override;
    void setColWidth(int col, double width) override;
    double textWidthUtf8(std::string_view text) const override;
    void setActiveCell(int col, int row) override;
    void beginFill() override;
    void endFill() override;

    /// Sets the columns of a list: their number, captions and widths (characters), in order from column 1.
    void defineColumns(const std::vector<std::pair<const char *, double>> &columns);

    /// Check-box cells: ticked when the text is "1".
    bool isChecked(int col, int row) const { return model_->cellUtf8(col, row) == "1"; }
    void setChecked(int col, int row, bool checked) { setCellUtf8(col, row, checked ? "1" : "0"); }
    /// Adds one row at the end, its cells from firstColumn on; returns its number.
    int appendRow(const QStringList &cells, int firstColumn = 1);
    /// Replaces every row at once with columns prepared off the GUI thread (cells[col][row], row 0
    /// unused), then fits the columns to them: a long list costs the GUI thread a swap and a measure.
    void takeRows(std::vector<std::vector<std::string>> &&cells, int rows);
    void setColumnType(int col, SpreadModel::CellType type, const QString &buttonText = QString());
    /// Unlocked text columns may be edited in place.
    void setColumnLocked(int col, bool locked) { model_->setColumnLocked(col, locked); }
    /// One cell of a fixed sheet with its own type (a combo, a date, a check box), lock or pick list.
    void setCellType(int col, int row, SpreadModel::CellType type) { model_->setCellType(col, row, type); }
    void setCellLocked(int col, int row, bool locked) { model_->setCellLocked(col, row, locked); }
    /// The entries a combo cell offers; the user may also type a text of their own.
    void setCellList(int col, int row, const QStringList &items) { model_->setCellList(col, row, items); }
    /// A column whose cells take only these codes (a pick list; typing a code works in either case).
    void setColumnCodes(int col, const QStringList &codes) { model_->setColumnCodes(col, codes); }
    /// A column of money amounts: shown and printed with two decimals, right-aligned.
    void setColumnMoney(int col);
    /// The most characters a user may type into one cell (the database column's size; 255 unless set).
    void setCellMaxLength(int col, int row, int length) { model_->setCellMaxLength(col, row, length); }
    /// Opens the in-place editor of a cell (a combo cell's list, a date cell's date editor), as a
    /// double click or F2 does; returns it, or null when the cell is not editable.
    QWidget *editCell(int col, int row);
    void clearRows() { setMaxRows(0); }
    /// Deletes one data row; the rows below move up.
    void removeRow(int row);
    /// What a click on a check-box cell does: toggles it and reports cellEdited.
    void toggleCheck(int col, int row);

    int activeCol() const { return activeCol_; }
    int activeRow() const { return activeRow_; }
    /// Selects a whole row (1-based); 0 clears the selection.
    void selectGridRow(int row);
    /// The selected row, or 0.
    int selectedRow() const;

    /// Writes the grid as a spreadsheet workbook (.xlsx): the captions as a header row, then one
    /// row per grid row; whole numbers and decimals of up to nine digits before the point are
    /// written as numbers, everything else as text. One line per export is added to logFile.
    /// False when the file cannot be written (the reason is in the log).
    bool ExportToExcel(const QString &path, const QString &sheetName, const QString &logFile) const;

    /// Pages needed to draw every row into area on device.
    int pageCount(const QRectF &area, QPaintDevice *device) const;
    /// Draws one page (1-based) of the grid into area.
    void printPage(QPainter &painter, const QRectF &area, int page) const;

    /// A fixed sheet (a form laid out in cells): one cell is selected rather than a row, a single
    /// click or typing starts editing, and Tab moves between the cells that can be edited only.
    void setSheetEditing();
    /// Long texts wrap onto more lines and rows grow to hold them, so a wide sheet fits its window;
    /// a column is then never narrower than its longest word.
    void setWrapText();

    /// A note that runs across columns of a sheet (from col to the last column): it is shown whole
    /// without widening the column it starts in.
    void spanToEnd(int col, int row);

    QTableView *view() const { return view_; }
    SpreadModel *model() const { return model_; }

    /// Clicks as the screens see them, in grid coordinates.
    void clickCell(int col, int row);

Q_SIGNALS:
    void cellClicked(int col, int row);
    void cellDoubleClicked(int col, int row);
    void buttonClicked(int col, int row);
    /// The user ticked or unticked a check box, or edited a cell in place.
    void cellEdited(int col, int row);
    /// A caption was clicked: screens that sort re-run their statement.
    void headerClicked(int col);

protected:
    void changeEvent(QEvent *event) override;

private:
    struct PageLayout {
        double scale = 1;
        double rowHeight = 0;
        int rowsPerPage = 1;
        std::vector<double> widths; // device units, columns 1..maxCols
    };
    PageLayout pageLayout(const QRectF &area, QPaintDevice *device) const;
    void applyWidth(int col);
    void measureFont();
    void fitSheet();
    /// The width a column is shown at, in pixels: its set width, but never narrower than its
    /// caption or its widest value (both in pixels of the screen).
    int shownWidth(int col) const;
    int captionWidth(int col) const;
    int valueWidth(int col) const;
    /// Widest value of a column (screen pixels) and the row holding it; measured after a fill
    /// and grown as single cells change.
    void measureColumn(int col);
    void measureCell(int col, int row);
    double cellTextWidth(int col, int row) const;

    SpreadModel *model_;
    QTableView *view_;
    std::vector<double> widths_; // characters, index = grid column
    struct Widest {
        double px = 0;
        int row = 0;
    };
    std::vector<Widest> widest_; // index = grid column
    std::vector<std::pair<int, int>> spans_; // (col, row) of cells drawn across to the last column
    std::array<double, 128> advance_{};
    double charWidth_ = 7;
    int activeCol_ = 0;
    int activeRow_ = 0;
    bool filling_ = false;
    bool wrap_ = false;
};
