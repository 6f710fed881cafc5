#include "SpreadModel.h"

#include <algorithm>
#include <charconv>

namespace {

const std::string Empty;

bool ticked(std::string_view text)
{
    return text == "1" || text == "-1" || text == "True" || text == "true" || text == "TRUE";
}

} // namespace

SpreadModel::SpreadModel(QObject *parent) : QAbstractTableModel(parent), columns_(1) {}

void SpreadModel::ensureRows(size_t rows)
{
    for (Column &c : columns_)
        if (c.cells.size() < rows + 1)
            c.cells.resize(rows + 1);
}

void SpreadModel::setMaxCols(int cols)
{
    cols = std::max(0, cols);
    if (cols == maxCols_)
        return;
    if (bulkDepth_ == 0)
        beginResetModel();
    columns_.resize(size_t(cols) + 1);
    maxCols_ = cols;
    ensureRows(size_t(maxRows_));
    if (bulkDepth_ == 0)
        endResetModel();
}

void SpreadModel::setMaxRows(int rows)
{
    rows = std::max(0, rows);
    if (rows == maxRows_)
        return;
    const int old = maxRows_;
    if (bulkDepth_ == 0) {
        if (rows > old)
            beginInsertRows(QModelIndex(), old, rows - 1);
        else
            beginRemoveRows(QModelIndex(), rows, old - 1);
    }
    if (rows < old)
        for (Column &c : columns_)
            c.cells.resize(std::min(c.cells.size(), size_t(rows) + 1));
    maxRows_ = rows;
    ensureRows(size_t(rows));
    if (bulkDepth_ == 0) {
        if (rows > old)
            endInsertRows();
        else
            endRemoveRows();
    }
}

void SpreadModel::takeRows(std::vector<std::vector<std::string>> &&cells, int rows)
{
    rows = std::max(0, rows);
    beginBulk();
    for (size_t c = 0; c < columns_.size(); ++c) {
        Column &column = columns_[c];
        std::vector<std::string> taken;
        if (c < cells.size())
            taken.swap(cells[c]);
        taken.resize(size_t(rows) + 1);
        taken[0] = column.cells.empty() ? std::string() : std::move(column.cells[0]);
        if (column.type == CellType::CheckBox)
            for (size_t r = 1; r < taken.size(); ++r)
                taken[r].assign(1, ticked(taken[r]) ? '1' : '0');
        column.cells.swap(taken);
    }
    maxRows_ = rows;
    endBulk();
}

void SpreadModel::setCellUtf8(int col, int row, std::string_view text)
{
    if (col < 0 || col > maxCols_ || row < 0)
        return;
    ensureRows(size_t(row));
    Column &c = columns_[size_t(col)];
    if (row > 0 && cellType(col, row) == CellType::CheckBox)
        c.cells[size_t(row)].assign(1, ticked(text) ? '1' : '0');
    else
        c.cells[size_t(row)].assign(text);
    changed(col, row);
}

const std::string &SpreadModel::cellUtf8(int col, int row) const
{
    if (col < 0 || col > maxCols_ || row < 0)
        return Empty;
    const Column &c = columns_[size_t(col)];
    return size_t(row) < c.cells.size() ? c.cells[size_t(row)] : Empty;
}

QString SpreadModel::cellText(int col, int row) const
{
    const std::string &s = cellUtf8(col, row);
    return QString::fromUtf8(s.data(), qsizetype(s.size()));
}

void SpreadModel::setColumnType(int col, CellType type, const QString &buttonText)
{
    if (col < 1 || col > maxCols_)
        return;
    Column &c = columns_[size_t(col)];
    c.type = type;
    c.buttonText = buttonText;
    if (type == CellType::CheckBox)
        c.locked = false;
    if (bulkDepth_ == 0 && maxRows_ > 0)
        Q_EMIT dataChanged(index(0, col - 1), index(maxRows_ - 1, col - 1));
}

SpreadModel::CellType SpreadModel::columnType(int col) const
{
    return col >= 1 && col <= maxCols_ ? columns_[size_t(col)].type : CellType::Text;
}

void SpreadModel::setColumnLocked(int col, bool locked)
{
    if (col >= 1 && col <= maxCols_)
        columns_[size_t(col)].locked = locked;
}

const SpreadModel::CellSetting *SpreadModel::cellSetting(int col, int row) const
{
    if (cells_.empty())
        return nullptr;
    const auto it = cells_.find({col, row});
    return it == cells_.end() ? nullptr : &it->second;
}

void SpreadModel::setCellType(int col, int row, CellType type)
{
    CellSetting &cell = cells_[{col, row}];
    cell.hasType = true;
    cell.type = type;
    if (type == CellType::CheckBox) {
        const std::string current = cellUtf8(col, row);
        setCellUtf8(col, row, current); // normalised to "1" / "0"
    }
    changed(col, row);
}

SpreadModel::CellType SpreadModel::cellType(int col, int row) const
{
    const CellSetting *cell = cellSetting(col, row);
    return cell && cell->hasType ? cell->type : columnType(col);
}

void SpreadModel::setCellLocked(int col, int row, bool locked) { cells_[{col, row}].locked = locked ? 1 : 0; }

bool SpreadModel::cellLocked(int col, int row) const
{
    const CellSetting *cell = cellSetting(col, row);
    if (cell && cell->locked >= 0)
        return cell->locked == 1;
    return col < 1 || col > maxCols_ || columns_[size_t(col)].locked;
}

void SpreadModel::setCellList(int col, int row, const QStringList &items) { cells_[{col, row}].items = items; }

QStringList SpreadModel::cellList(int col, int row) const
{
    const CellSetting *cell = cellSetting(col, row);
    if (cell && !cell->items.isEmpty())
        return cell->items;
    return col >= 1 && col <= maxCols_ ? columns_[size_t(col)].codes : QStringList();
}

void SpreadModel::setColumnCodes(int col, const QStringList &codes)
{
    if (col < 1 || col > maxCols_)
        return;
    columns_[size_t(col)].codes = codes;
    columns_[size_t(col)].type = CellType::Combo;
}

void SpreadModel::setColumnMoney(int col)
{
    if (col >= 1 && col <= maxCols_)
        columns_[size_t(col)].money = true;
}

QString SpreadModel::shownText(int col, int row) const
{
    const CellType type = cellType(col, row);
    if (type == CellType::CheckBox)
        return QString();
    if (type == CellType::Button && cellUtf8(col, row).empty())
        return columns_[size_t(col)].buttonText;
    if (row < 1 || !columnMoney(col))
        return cellText(col, row);
    char buffer[32];
    if (const std::string_view amount = moneyUtf8(cellUtf8(col, row), buffer); !amount.empty())
        return QString::fromUtf8(amount.data(), qsizetype(amount.size()));
    const QString text = cellText(col, row); // what only Qt reads as a number (blanks, a plus sign)
    bool number = false;
    const double amount = text.toDouble(&number);
    return number ? QString::number(amount, 'f', 2) : text;
}

std::string_view SpreadModel::moneyUtf8(std::string_view stored, char (&buffer)[32])
{
    double amount = 0;
    const char *end = stored.data() + stored.size();
    if (stored.empty() || std::from_chars(stored.data(), end, amount).ptr != end)
        return {};
    const std::to_chars_result written = std::to_chars(buffer, buffer + sizeof buffer, amount, std::chars_format::fixed, 2);
    return written.ec == std::errc() ? std::string_view(buffer, size_t(written.ptr - buffer)) : std::string_view();
}

void SpreadModel::setCellMaxLength(int col, int row, int length) { cells_[{col, row}].maxLength = length; }

int SpreadModel::maxLength(int col, int row) const
{
    const CellSetting *cell = cellSetting(col, row);
    return cell && cell->maxLength > 0 ? cell->maxLength : DefaultMaxLength;
}

void SpreadModel::beginBulk()
{
    if (bulkDepth_++ == 0)
        beginResetModel();
}

void SpreadModel::endBulk()
{
    if (bulkDepth_ > 0 && --bulkDepth_ == 0)
        endResetModel();
}

void SpreadModel::removeGridRow(int row)
{
    if (row < 1 || row > maxRows_)
        return;
    if (bulkDepth_ == 0)
        beginRemoveRows(QModelIndex(), row - 1, row - 1);
    for (Column &c : columns_)
        if (size_t(row) < c.cells.size())
            c.cells.erase(c.cells.begin() + row);
    --maxRows_;
    ensureRows(size_t(maxRows_));
    if (bulkDepth_ == 0)
        endRemoveRows();
}

void SpreadModel::changed(int col, int row)
{
    if (bulkDepth_ > 0)
        return;
    if (row == 0 && col > 0)
        Q_EMIT headerDataChanged(Qt::Horizontal, col - 1, col - 1);
    else if (col > 0 && row <= maxRows_)
        Q_EMIT dataChanged(index(row - 1, col - 1), index(row - 1, col - 1));
}

int SpreadModel::rowCount(const QModelIndex &parent) const { return parent.isValid() ? 0 : maxRows_; }

int SpreadModel::columnCount(const QModelIndex &parent) const { return parent.isValid() ? 0 : maxCols_; }

QVariant SpreadModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= maxRows_ || index.column() >= maxCols_)
        return QVariant();
    const int col = index.column() + 1;
    const int row = index.row() + 1;
    const Column &c = columns_[size_t(col)];
    const CellType type = cellType(col, row);
    switch (role) {
    case Qt::DisplayRole:
        if (type == CellType::CheckBox)
            return QVariant();
        return shownText(col, row);
    case Qt::TextAlignmentRole:
        return c.money ? QVariant(Qt::AlignRight | Qt::AlignVCenter) : QVariant();
    case Qt::EditRole:
        return cellText(col, row);
    case Qt::CheckStateRole:
        if (type == CellType::CheckBox)
            return cellUtf8(col, row) == "1" ? Qt::Checked : Qt::Unchecked;
        return QVariant();
    default:
        return QVariant();
    }
}

bool SpreadModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid())
        return false;
    const int col = index.column() + 1;
    const int row = index.row() + 1;
    if (role == Qt::CheckStateRole && cellType(col, row) == CellType::CheckBox) {
        setCellUtf8(col, row, value.toInt() == Qt::Checked ? "1" : "0");
        Q_EMIT userEdited(col, row);
        return true;
    }
    if (role == Qt::EditRole) {
        // What a person types or pastes: never a NUL, never more than the column holds, a code only from its list.
        QString text = value.toString();
        text.remove(QChar(0));
        const QStringList codes = col >= 1 && col <= maxCols_ ? columns_[size_t(col)].codes : QStringList();
        if (!codes.isEmpty()) {
            const auto code = std::find_if(codes.begin(), codes.end(),
                                           [&](const QString &c) { return c.compare(text.trimmed(), Qt::CaseInsensitive) == 0; });
            if (code == codes.end())
                return false;
            text = *code;
        }
        text.truncate(maxLength(col, row));
        setCellUtf8(col, row, text.toStdString());
        Q_EMIT userEdited(col, row);
        return true;
    }
    return false;
}

QVariant SpreadModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return QVariant();
    if (orientation == Qt::Vertical)
        return section + 1; // the row header shows the row number; the key stays hidden
    return cellText(section + 1, 0);
}

Qt::ItemFlags SpreadModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    const int col = index.column() + 1;
    const int row = index.row() + 1;
    const CellType type = cellType(col, row);
    Qt::ItemFlags f = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (type == CellType::CheckBox)
        f |= Qt::ItemIsUserCheckable;
    else if (type == CellType::Combo || type == CellType::Date || (type == CellType::Text && !cellLocked(col, row)))
        f |= Qt::ItemIsEditable;
    return f;
}
