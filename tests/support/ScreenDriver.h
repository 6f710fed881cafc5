#pragma once

#include "SpreadGrid.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QFontMetricsF>
#include <QHeaderView>
#include <QTableView>
#include <QTest>
#include <QLineEdit>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>

#include <gtest/gtest.h>

/// Drives a screen's real widgets by their object names, as a user would.
namespace ScreenDriver {

template <typename T> T *child(QWidget &screen, const char *name)
{
    T *widget = screen.findChild<T *>(QLatin1String(name));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
}

/// Acts once on the first modal window of type T that is open while the returned watch lives
/// (the report viewer a button opens, after any long work's progress dialog has come and gone).
template <typename T> std::unique_ptr<QTimer> whenModal(std::function<void(T *)> act)
{
    auto watch = std::make_unique<QTimer>();
    watch->setInterval(5);
    QTimer *self = watch.get();
    QObject::connect(self, &QTimer::timeout, [self, act = std::move(act)] {
        auto *modal = qobject_cast<T *>(QApplication::activeModalWidget());
        if (modal && modal->objectName() != QLatin1String("TaskProgressDialog")) {
            self->stop();
            act(modal);
        }
    });
    watch->start();
    return watch;
}

inline void type(QWidget &screen, const char *box, const QString &text) { child<QLineEdit>(screen, box)->setText(text); }
inline void click(QWidget &screen, const char *button) { child<QAbstractButton>(screen, button)->click(); }
/// Types into a scan box and presses Enter, as a barcode scanner does.
inline void scan(QWidget &screen, const char *box, const QString &text)
{
    QLineEdit *edit = child<QLineEdit>(screen, box);
    edit->setFocus();
    edit->setText(text);
    QTest::keyClick(edit, Qt::Key_Return);
}

/// Every data row of a grid, its cells from column 1 joined by '|'.
inline QStringList rows(QWidget &screen, const char *grid)
{
    const SpreadGrid *g = child<SpreadGrid>(screen, grid);
    QStringList out;
    for (int r = 1; r <= g->maxRows(); ++r) {
        QStringList cells;
        for (int c = 1; c <= g->maxCols(); ++c)
            cells << g->cellText(c, r);
        out << cells.join('|');
    }
    return out;
}

/// One column of a grid's data rows (1-based column).
inline QStringList column(QWidget &screen, const char *grid, int col)
{
    const SpreadGrid *g = child<SpreadGrid>(screen, grid);
    QStringList out;
    for (int r = 1; r <= g->maxRows(); ++r)
        out << g->cellText(col, r);
    return out;
}

/// Chooses an entry of a combo by its text, as a click in its list does.
inline void choose(QWidget &screen, const char *combo, const QString &text)
{
    QComboBox *box = child<QComboBox>(screen, combo);
    const int index = box->findText(text);
    ASSERT_GE(index, 0) << text.toStdString();
    box->setCurrentIndex(index);
    Q_EMIT box->activated(index);
}

/// Every column of a grid at least as wide as its caption (measured bold) and as each value it
/// shows (the first 300 rows; a wrapping grid word by word, a spanning note across its span).
inline void expectColumnsHoldTheirText(const SpreadGrid &grid, const std::string &where)
{
    const QTableView *view = grid.view();
    const QFontMetricsF values(view->font());
    QFont bold = view->horizontalHeader()->font();
    bold.setBold(true);
    const QFontMetricsF captions(bold);
    const bool wraps = view->wordWrap();
    for (int c = 1; c <= grid.maxCols(); ++c) {
        const int width = view->columnWidth(c - 1);
        EXPECT_GE(width, captions.horizontalAdvance(grid.cellText(c, 0))) << where << " caption " << grid.cellText(c, 0).toStdString();
        for (int r = 1; r <= std::min(grid.maxRows(), 300); ++r) {
            const QString shown = grid.model()->data(grid.model()->index(r - 1, c - 1), Qt::DisplayRole).toString();
            int room = 0; // a note spanning several columns has their width
            for (int k = 0; k < view->columnSpan(r - 1, c - 1); ++k)
                room += view->columnWidth(c - 1 + k);
            for (const QString &piece : wraps ? shown.split(' ') : QStringList{shown})
                ASSERT_GE(room, values.horizontalAdvance(piece) + 4) << where << " row " << r << " column " << c << ": " << piece.toStdString();
        }
    }
}

} // namespace ScreenDriver
