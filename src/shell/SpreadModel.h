#pragma once

#include <QAbstractTableModel>

#include <string>
#include <string_view>
#include <vector>

/// The cells of a SpreadGrid: grid column 0 holds each row's key, grid row 0
/// the captions; the model shows grid columns 1..maxCols and rows 1..maxRows.
/// Texts are kept as UTF-8 and turned into QString only when shown, so a
/// list of 100,000 rows stays small and fills quickly.
class SpreadModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum class CellType { Text, CheckBox, Button };

    explicit SpreadModel(QObject *parent = nullptr);

    int maxCols() const { return maxCols_; }
    int maxRows() const { return maxRows_; }
    void setMaxCols(int cols);
    void setMaxRows(int rows);

    /// Rows past maxRows may be written; they are kept but not shown.
    void setCellUtf8(int col, int row, std::string_view text);
    QString cellText(int col, int row) const;
    const std::string &cellUtf8(int col, int row) const;

    void setColumnType(int col, CellType type, const QString &buttonText = QString());
    CellType columnType(int col) const;
    void setColumnLocked(int col, bool locked);

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
    };
    void ensureRows(size_t rows);
    void changed(int col, int row);

    std::vector<Column> columns_; // index = grid column (0 = keys)
    int maxCols_ = 0;
    int maxRows_ = 0;
    int bulkDepth_ = 0;
};
