#pragma once

#include <QAbstractTableModel>
#include <QStringList>

#include <map>
#include <string>
#include <string_view>
#include <vector>

/// The cells of a SpreadGrid: grid column 0 holds each row's key, grid row 0
/// the captions; the model shows grid columns 1..maxCols and rows 1..maxRows.
/// Texts are kept as UTF-8 and turned into QString only when shown, so a
/// list of 100,000 rows stays small and fills quickly. A column has one cell
/// type; single cells of a fixed sheet (a property sheet) may have their own
/// type, lock and pick list.
class SpreadModel : public QAbstractTableModel {
    Q_OBJECT
public:
    /// Combo cells are edited with a drop-down of the cell's pick list (free text allowed);
    /// date cells with a date editor, the text kept as yyyy-mm-dd.
    enum class CellType { Text, CheckBox, Button, Combo, Date };

    explicit SpreadModel(QObject *parent = nullptr);

    int maxCols() const { return maxCols_; }
    int maxRows() const { return maxRows_; }
    void setMaxCols(int cols);
    void setMaxRows(int rows);

    /// Rows past maxRows may be written; they are kept but not shown.
    void setCellUtf8(int col, int row, std::string_view text);
    /// Takes whole columns written elsewhere (a long list prepared on a worker thread) as the grid's
    /// rows 1..rows: cells[col][row], row 0 unused. Captions stay; ticks are read as setCellUtf8 reads them.
    void takeRows(std::vector<std::vector<std::string>> &&cells, int rows);
    QString cellText(int col, int row) const;
    const std::string &cellUtf8(int col, int row) const;

    void setColumnType(int col, CellType type, const QString &buttonText = QString());
    CellType columnType(int col) const;
    void setColumnLocked(int col, bool locked);

    /// One cell's own type, lock and pick list, overriding its column's. Meant for sheets whose
    /// rows do not move: the settings stay with the (column, row) position.
    void setCellType(int col, int row, CellType type);
    CellType cellType(int col, int row) const;
    void setCellLocked(int col, int row, bool locked);
    bool cellLocked(int col, int row) const;
    void setCellList(int col, int row, const QStringList &items);
    QStringList cellList(int col, int row) const;
    /// A column of codes: its cells are combos of these codes and take nothing else (what is typed
    /// is matched without regard to case; any other text leaves the cell as it was).
    void setColumnCodes(int col, const QStringList &codes);
    /// A column of money amounts: a number is shown with two decimals and right-aligned; the
    /// stored text stays as written.
    void setColumnMoney(int col);
    bool columnMoney(int col) const { return col >= 1 && col <= maxCols_ && columns_[size_t(col)].money; }
    /// The text a cell shows (a money amount with two decimals); empty for check boxes.
    QString shownText(int col, int row) const;
    /// A stored amount as a money column shows it, written into buffer without a QString (a long
    /// list's amounts are measured from it); empty when the text is not a plain number.
    static std::string_view moneyUtf8(std::string_view stored, char (&buffer)[32]);
    /// The most characters a user may put into a cell (its database column's size); 255 unless set.
    void setCellMaxLength(int col, int row, int length);
    int maxLength(int col, int row) const;

    /// Deletes one data row (1-based); the rows below move up and the row count drops by one.
    void removeGridRow(int row);

    /// Suspends change signals while a large fill runs; the view is reset once at the end.
    void beginBulk();
    void endBulk();

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

Q_SIGNALS:
    /// The user changed a cell in the view (ticked a box, edited a text); programs' writes are not reported.
    void userEdited(int col, int row);

private:
    struct Column {
        std::vector<std::string> cells; // index = grid row (0 = caption)
        CellType type = CellType::Text;
        QString buttonText;
        bool locked = true;
        QStringList codes;
        bool money = false;
    };
    struct CellSetting {
        bool hasType = false;
        CellType type = CellType::Text;
        int locked = -1; // -1: as the column
        QStringList items;
        int maxLength = 0; // 0: the default
    };
    static constexpr int DefaultMaxLength = 255; // the widest text column of the library database
    void ensureRows(size_t rows);
    const CellSetting *cellSetting(int col, int row) const;
    void changed(int col, int row);

    std::vector<Column> columns_; // index = grid column (0 = keys)
    std::map<std::pair<int, int>, CellSetting> cells_; // (column, row) of cells with their own settings
    int maxCols_ = 0;
    int maxRows_ = 0;
    int bulkDepth_ = 0;
};
