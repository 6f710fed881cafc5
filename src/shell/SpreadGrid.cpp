#include "SpreadGrid.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QCompleter>
#include <QDateEdit>
#include <QEvent>
#include <QFontMetricsF>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace {

constexpr double DefaultWidth = 8.0; // characters, as a fresh grid column
constexpr int CellPadding = 8;       // pixels around a cell's text

constexpr const char *DateFormat = "yyyy-MM-dd";

// Draws push-button cells and gives combo and date cells their editors.
class CellDelegate : public QStyledItemDelegate {
public:
    CellDelegate(SpreadGrid *grid) : QStyledItemDelegate(grid), grid_(grid) {}

    SpreadModel::CellType type(const QModelIndex &index) const { return grid_->model()->cellType(index.column() + 1, index.row() + 1); }

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        switch (type(index)) {
        case SpreadModel::CellType::Combo: {
            auto *combo = new QComboBox(parent);
            combo->setEditable(true);
            combo->setInsertPolicy(QComboBox::NoInsert);
            combo->addItems(grid_->model()->cellList(index.column() + 1, index.row() + 1));
            combo->completer()->setCompletionMode(QCompleter::PopupCompletion);
            combo->completer()->setCaseSensitivity(Qt::CaseInsensitive);
            // A choice from the list is final at once, as the old sheet's combo cells were.
            connect(combo, &QComboBox::activated, this, [this, combo] {
                auto *self = const_cast<CellDelegate *>(this);
                Q_EMIT self->commitData(combo);
                Q_EMIT self->closeEditor(combo);
            });
            return combo;
        }
        case SpreadModel::CellType::Date: {
            auto *date = new QDateEdit(parent);
            date->setCalendarPopup(true);
            date->setDisplayFormat(QLatin1String(DateFormat));
            return date;
        }
        default: {
            QWidget *editor = QStyledItemDelegate::createEditor(parent, option, index);
            if (auto *box = qobject_cast<QLineEdit *>(editor))
                box->setMaxLength(grid_->model()->maxLength(index.column() + 1, index.row() + 1));
            return editor;
        }
        }
    }

    void setEditorData(QWidget *editor, const QModelIndex &index) const override
    {
        const QString text = index.data(Qt::EditRole).toString();
        if (auto *combo = qobject_cast<QComboBox *>(editor)) {
            combo->setCurrentIndex(combo->findText(text));
            combo->setEditText(text);
        } else if (auto *date = qobject_cast<QDateEdit *>(editor)) {
            const QDate value = QDate::fromString(text, QLatin1String(DateFormat));
            date->setDate(value.isValid() ? value : QDate::currentDate());
        } else {
            QStyledItemDelegate::setEditorData(editor, index);
        }
    }

    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override
    {
        if (auto *combo = qobject_cast<QComboBox *>(editor))
            model->setData(index, combo->currentText(), Qt::EditRole);
        else if (auto *date = qobject_cast<QDateEdit *>(editor))
            model->setData(index, date->date().toString(QLatin1String(DateFormat)), Qt::EditRole);
        else
            QStyledItemDelegate::setModelData(editor, model, index);
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        if (type(index) != SpreadModel::CellType::Button) {
            QStyledItemDelegate::paint(painter, option, index);
            return;
        }
        QStyleOptionButton button;
        button.rect = option.rect.adjusted(2, 2, -2, -2);
        button.text = index.data(Qt::DisplayRole).toString();
        button.state = QStyle::State_Enabled | QStyle::State_Raised;
        const QWidget *widget = option.widget;
        QStyle *style = widget ? widget->style() : QApplication::style();
        style->drawControl(QStyle::CE_PushButton, &button, painter, widget);
    }

private:
    SpreadGrid *grid_;
};

// The grid's table. On a sheet, Tab and Shift+Tab (and an editor closed with them) step over the
// cells that cannot be edited: the labels and the spacer column of a form.
class GridView : public QTableView {
public:
    using QTableView::QTableView;
    bool sheet = false;

protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override
    {
        if (!sheet || (action != MoveNext && action != MovePrevious) || !model())
            return QTableView::moveCursor(action, modifiers);
        const int rows = model()->rowCount(), cols = model()->columnCount();
        const QModelIndex current = currentIndex();
        int at = current.isValid() ? current.row() * cols + current.column() : -1;
        for (int step = 0; step < rows * cols; ++step) {
            at = action == MoveNext ? (at + 1) % (rows * cols) : (at - 1 + rows * cols) % (rows * cols);
            const QModelIndex index = model()->index(at / cols, at % cols);
            if (model()->flags(index) & (Qt::ItemIsEditable | Qt::ItemIsUserCheckable))
                return index;
        }
        return current;
    }
};

} // namespace

SpreadGrid::SpreadGrid(QWidget *parent) : QWidget(parent), model_(new SpreadModel(this)), view_(new GridView(this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view_);
    view_->setModel(model_);
    view_->setItemDelegate(new CellDelegate(this));
    view_->setSelectionBehavior(QAbstractItemView::SelectRows);
    view_->setSelectionMode(QAbstractItemView::SingleSelection);
    view_->setWordWrap(false);
    view_->setAlternatingRowColors(true);
    view_->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    view_->horizontalHeader()->setSectionsClickable(true);
    view_->horizontalHeader()->setHighlightSections(false);
    view_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    view_->verticalHeader()->setDefaultSectionSize(QFontMetrics(font()).height() + 6);
    widths_.assign(1, DefaultWidth);
    widest_.assign(1, Widest{});
    measureFont();

    connect(view_, &QTableView::clicked, this, [this](const QModelIndex &index) { clickCell(index.column() + 1, index.row() + 1); });
    connect(view_, &QTableView::doubleClicked, this,
            [this](const QModelIndex &index) { Q_EMIT cellDoubleClicked(index.column() + 1, index.row() + 1); });
    connect(model_, &SpreadModel::userEdited, this, &SpreadGrid::cellEdited);
    connect(view_->horizontalHeader(), &QHeaderView::sectionClicked, this, [this](int section) { Q_EMIT headerClicked(section + 1); });
}

void SpreadGrid::measureFont()
{
    const QFontMetricsF fm(view_->font());
    charWidth_ = std::max(1.0, fm.averageCharWidth());
    for (int c = 32; c < 128; ++c)
        advance_[size_t(c)] = fm.horizontalAdvance(QChar(c));
}

void SpreadGrid::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange) {
        measureFont();
        view_->verticalHeader()->setDefaultSectionSize(QFontMetrics(view_->font()).height() + 6);
        for (int c = 1; c <= maxCols(); ++c) {
            measureColumn(c);
            applyWidth(c);
        }
    }
    QWidget::changeEvent(event);
}

double SpreadGrid::cellTextWidth(int col, int row) const
{
    if (!spans_.empty() && std::find(spans_.begin(), spans_.end(), std::pair{col, row}) != spans_.end())
        return 0; // laid across the columns to its right
    const SpreadModel::CellType type = model_->cellType(col, row);
    if (type == SpreadModel::CellType::CheckBox)
        return view_->style()->pixelMetric(QStyle::PM_IndicatorWidth) + 4;
    const bool caption = type == SpreadModel::CellType::Button && model_->cellUtf8(col, row).empty(); // the button's own text
    if (!caption && model_->columnMoney(col)) {
        char buffer[32];
        if (const std::string_view amount = SpreadModel::moneyUtf8(model_->cellUtf8(col, row), buffer); !amount.empty())
            return textWidthUtf8(amount) * charWidth_;
    }
    if (caption || model_->columnMoney(col)) {
        const QByteArray shown = model_->shownText(col, row).toUtf8();
        return textWidthUtf8(std::string_view(shown.constData(), size_t(shown.size()))) * charWidth_ + (caption ? CellPadding : 0);
    }
    const std::string &text = model_->cellUtf8(col, row);
    if (!wrap_)
        return textWidthUtf8(text) * charWidth_;
    double widest = 0; // wrapped: the longest word
    size_t start = 0;
    while (start <= text.size()) {
        const size_t end = std::min(text.find(' ', start), text.size());
        widest = std::max(widest, textWidthUtf8(std::string_view(text).substr(start, end - start)));
        start = end + 1;
    }
    return widest * charWidth_;
}

void SpreadGrid::measureColumn(int col)
{
    Widest widest;
    for (int row = 1; row <= maxRows(); ++row) {
        const double px = cellTextWidth(col, row);
        if (px > widest.px)
            widest = {px, row};
    }
    widest_[size_t(col)] = widest;
}

void SpreadGrid::measureCell(int col, int row)
{
    if (col < 1 || col > maxCols() || row < 1 || row > maxRows())
        return;
    Widest &widest = widest_[size_t(col)];
    const double px = cellTextWidth(col, row);
    if (px > widest.px) {
        widest = {px, row};
        applyWidth(col);
    } else if (widest.row == row && px < widest.px) {
        measureColumn(col); // the widest value got shorter
        applyWidth(col);
    }
}

int SpreadGrid::captionWidth(int col) const
{
    const QHeaderView *header = view_->horizontalHeader();
    const QString caption = model_->cellText(col, 0);
    if (caption.isEmpty())
        return 0;
    QFont bold = header->font();
    bold.setBold(true); // some styles draw captions bold: leave room for it
    return int(std::ceil(QFontMetricsF(bold).horizontalAdvance(caption))) + 2 * header->style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, header)
           + CellPadding;
}

int SpreadGrid::valueWidth(int col) const
{
    if (col < 1 || col > maxCols())
        return 0;
    const Widest &widest = widest_[size_t(col)];
    if (widest.row < 1)
        return 0;
    // The widest value measured exactly, whatever the quick estimate was.
    const QString text = model_->shownText(col, widest.row);
    int textPx = int(std::ceil(widest.px));
    if (!text.isEmpty()) {
        const QFontMetricsF fm(view_->font());
        textPx = 0;
        for (const QString &word : wrap_ ? text.split(QLatin1Char(' ')) : QStringList{text})
            textPx = std::max(textPx, int(std::ceil(fm.horizontalAdvance(word))));
    }
    return textPx + 2 * (view_->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, view_) + 1) + CellPadding;
}

int SpreadGrid::shownWidth(int col) const
{
    return std::max({int(std::lround(colWidth(col) * charWidth_)) + CellPadding, captionWidth(col), valueWidth(col)});
}

void SpreadGrid::setCellUtf8(int col, int row, std::string_view text)
{
    model_->setCellUtf8(col, row, text);
    if (filling_)
        return;
    if (row == 0 && col >= 1 && col <= maxCols())
        applyWidth(col);
    else
        measureCell(col, row);
}

void SpreadGrid::setSheetEditing()
{
    static_cast<GridView *>(view_)->sheet = true;
    view_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    fitSheet();
    view_->setSelectionBehavior(QAbstractItemView::SelectItems);
    view_->setEditTriggers(QAbstractItemView::CurrentChanged | QAbstractItemView::SelectedClicked | QAbstractItemView::DoubleClicked
                           | QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
}

void SpreadGrid::spanToEnd(int col, int row)
{
    spans_.emplace_back(col, row);
    view_->setSpan(row - 1, col - 1, 1, maxCols() - col + 1);
    measureColumn(col);
    applyWidth(col);
}

void SpreadGrid::setWrapText()
{
    wrap_ = true;
    view_->setWordWrap(true);
    view_->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    for (int c = 1; c <= maxCols(); ++c) {
        measureColumn(c);
        applyWidth(c);
    }
}

void SpreadGrid::setColumnMoney(int col)
{
    model_->setColumnMoney(col);
    if (col >= 1 && col <= maxCols()) {
        measureColumn(col);
        applyWidth(col);
    }
}

void SpreadGrid::setMaxCols(int cols)
{
    model_->setMaxCols(cols);
    widths_.resize(size_t(std::max(0, cols)) + 1, DefaultWidth);
    widest_.resize(widths_.size());
    for (int c = 1; c <= cols; ++c)
        applyWidth(c);
}

void SpreadGrid::setMaxRows(int rows)
{
    const int old = maxRows();
    model_->setMaxRows(rows);
    if (filling_ || rows >= old)
        return;
    for (int c = 1; c <= maxCols(); ++c)
        if (widest_[size_t(c)].row > rows) {
            measureColumn(c);
            applyWidth(c);
        }
}

void SpreadGrid::removeRow(int row)
{
    model_->removeGridRow(row);
    for (int c = 1; c <= maxCols(); ++c) {
        measureColumn(c);
        applyWidth(c);
    }
}

void SpreadGrid::setCellText(int col, int row, const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    setCellUtf8(col, row, std::string_view(utf8.constData(), size_t(utf8.size())));
}

double SpreadGrid::colWidth(int col) const
{
    return col >= 0 && size_t(col) < widths_.size() ? widths_[size_t(col)] : DefaultWidth;
}

void SpreadGrid::setColWidth(int col, double width)
{
    if (col < 0 || col > maxCols())
        return;
    widths_[size_t(col)] = width;
    applyWidth(col);
}

void SpreadGrid::applyWidth(int col)
{
    if (filling_ || col < 1)
        return; // column 0 holds keys; the row header shows row numbers at its own width
    view_->setColumnWidth(col - 1, shownWidth(col));
    if (static_cast<GridView *>(view_)->sheet)
        fitSheet();
}

void SpreadGrid::fitSheet()
{
    // A sheet is a form: all of its columns in view, never behind a horizontal scroll bar.
    int width = 2 * view_->frameWidth() + view_->verticalHeader()->sizeHint().width() + view_->verticalScrollBar()->sizeHint().width();
    for (int c = 0; c < maxCols(); ++c)
        width += view_->columnWidth(c);
    setMinimumWidth(width);
}

double SpreadGrid::textWidthUtf8(std::string_view text) const
{
    double px = 0;
    for (unsigned char c : text) {
        if (c >= 128) {
            // Outside ASCII: measure the whole text properly.
            const QFontMetricsF fm(view_->font());
            return fm.horizontalAdvance(QString::fromUtf8(text.data(), qsizetype(text.size()))) / charWidth_;
        }
        px += c >= 32 ? advance_[c] : 0;
    }
    return px / charWidth_;
}

void SpreadGrid::setActiveCell(int col, int row)
{
    activeCol_ = col;
    activeRow_ = row;
}

void SpreadGrid::beginFill()
{
    filling_ = true;
    model_->beginBulk();
}

int SpreadGrid::appendRow(const QStringList &cells, int firstColumn)
{
    const int row = maxRows() + 1;
    setMaxRows(row);
    for (int i = 0; i < cells.size(); ++i)
        setCellText(firstColumn + i, row, cells[i]);
    return row;
}

void SpreadGrid::takeRows(std::vector<std::vector<std::string>> &&cells, int rows)
{
    beginFill();
    model_->takeRows(std::move(cells), rows);
    endFill();
}

void SpreadGrid::endFill()
{
    model_->endBulk();
    filling_ = false;
    for (int c = 1; c <= maxCols(); ++c) {
        measureColumn(c);
        applyWidth(c);
    }
}

void SpreadGrid::setColumnType(int col, SpreadModel::CellType type, const QString &buttonText)
{
    model_->setColumnType(col, type, buttonText);
}

void SpreadGrid::selectGridRow(int row)
{
    if (row < 1 || row > maxRows()) {
        view_->clearSelection();
        return;
    }
    view_->selectRow(row - 1);
}

int SpreadGrid::selectedRow() const
{
    const QModelIndexList rows = view_->selectionModel()->selectedRows();
    return rows.isEmpty() ? 0 : rows.first().row() + 1;
}

void SpreadGrid::defineColumns(const std::vector<std::pair<const char *, double>> &columns)
{
    setMaxCols(int(columns.size()));
    int col = 0;
    for (const auto &[caption, width] : columns) {
        ++col;
        setCellText(col, 0, QString::fromUtf8(caption));
        setColWidth(col, width);
    }
}

void SpreadGrid::toggleCheck(int col, int row)
{
    if (row < 1 || row > maxRows() || model_->cellType(col, row) != SpreadModel::CellType::CheckBox)
        return;
    model_->setData(model_->index(row - 1, col - 1), isChecked(col, row) ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
}

void SpreadGrid::clickCell(int col, int row)
{
    setActiveCell(col, row);
    Q_EMIT cellClicked(col, row);
    if (model_->cellType(col, row) == SpreadModel::CellType::Button && row >= 1 && row <= maxRows())
        Q_EMIT buttonClicked(col, row);
}

QWidget *SpreadGrid::editCell(int col, int row)
{
    const QModelIndex index = model_->index(row - 1, col - 1);
    if (!index.isValid() || !(model_->flags(index) & Qt::ItemIsEditable))
        return nullptr;
    view_->setCurrentIndex(index);
    view_->edit(index);
    return view_->indexWidget(index);
}

SpreadGrid::PageLayout SpreadGrid::pageLayout(const QRectF &area, QPaintDevice *device) const
{
    PageLayout layout;
    const QFontMetricsF fm(view_->font(), device);
    const double charWidth = std::max(1.0, fm.averageCharWidth());
    layout.rowHeight = fm.height() * 1.5;
    double total = 0;
    QFont boldFont(view_->font(), device);
    boldFont.setBold(true);
    const QFontMetricsF bold(boldFont, device);
    for (int c = 1; c <= maxCols(); ++c) {
        // On paper as on screen: never narrower than the caption (printed bold) or the widest value.
        const Widest &widest = widest_[size_t(c)];
        double text = std::max(colWidth(c) * charWidth, bold.horizontalAdvance(model_->cellText(c, 0)));
        if (wrap_) // paper does not wrap: every text on one line
            for (int row = 1; row <= maxRows(); ++row)
                text = std::max(text, fm.horizontalAdvance(model_->shownText(c, row)));
        else if (widest.row > 0)
            text = std::max(text, fm.horizontalAdvance(model_->shownText(c, widest.row)));
        layout.widths.push_back(text + fm.height() * 0.8);
        total += layout.widths.back();
    }
    layout.scale = total > area.width() && total > 0 ? area.width() / total : 1.0;
    layout.rowsPerPage = std::max(1, int(std::floor((area.height() / layout.scale - layout.rowHeight) / layout.rowHeight)));
    return layout;
}

int SpreadGrid::pageCount(const QRectF &area, QPaintDevice *device) const
{
    const PageLayout layout = pageLayout(area, device);
    return std::max(1, (maxRows() + layout.rowsPerPage - 1) / layout.rowsPerPage);
}

void SpreadGrid::printPage(QPainter &painter, const QRectF &area, int page) const
{
    const PageLayout layout = pageLayout(area, painter.device());
    painter.save();
    painter.setFont(QFont(view_->font(), painter.device()));
    painter.translate(area.topLeft());
    painter.scale(layout.scale, layout.scale);
    const double pad = layout.rowHeight * 0.2;
    const QPen gridPen(QColor(160, 160, 160), 0);

    auto drawRow = [&](double y, int row, bool caption) {
        double x = 0;
        for (int c = 1; c <= maxCols(); ++c) {
            double width = layout.widths[size_t(c - 1)];
            const bool spans = !caption && std::find(spans_.begin(), spans_.end(), std::pair{c, row}) != spans_.end();
            if (spans) // a note across the rest of the row, as on screen
                for (int k = c + 1; k <= maxCols(); ++k)
                    width += layout.widths[size_t(k - 1)];
            const QRectF cell(x, y, width, layout.rowHeight);
            if (caption)
                painter.fillRect(cell, QColor(230, 230, 230));
            painter.setPen(gridPen);
            painter.drawRect(cell);
            painter.setPen(Qt::black);
            if (!caption && model_->cellType(c, row) == SpreadModel::CellType::CheckBox) {
                const double box = layout.rowHeight * 0.5;
                const QRectF square(cell.center().x() - box / 2, cell.center().y() - box / 2, box, box);
                painter.drawRect(square);
                if (isChecked(c, row)) {
                    painter.drawLine(square.topLeft(), square.bottomRight());
                    painter.drawLine(square.topRight(), square.bottomLeft());
                }
            } else {
                const QString text = caption ? cellText(c, 0) : model_->shownText(c, row);
                const QRectF inner = cell.adjusted(pad, 0, -pad, 0);
                const Qt::Alignment align = !caption && model_->columnMoney(c) ? Qt::AlignRight : Qt::AlignLeft;
                painter.drawText(inner, Qt::AlignVCenter | align, text);
            }
            x += cell.width();
            if (spans)
                break;
        }
    };
    QFont bold = painter.font();
    bold.setBold(true);
    painter.setFont(bold);
    drawRow(0, 0, true);
    bold.setBold(false);
    painter.setFont(bold);
    const int first = (page - 1) * layout.rowsPerPage + 1;
    const int last = std::min(maxRows(), first + layout.rowsPerPage - 1);
    for (int row = first; row <= last; ++row)
        drawRow(layout.rowHeight * (row - first + 1), row, false);
    painter.restore();
}
