// The catalogue item screens on the large school: the stock list's "Show All" and a title search
// against the same SQL stepped through the SQLite C API, quick find by title and by keyword, and
// saving twenty copies of a new title.
#include "ItemScreensBench.h"

#include "BenchSql.h"
#include "BenchTimer.h"
#include "GuiStall.h"
#include "DbConnection.h"
#include "ScreenRegistry.h"
#include "SpreadGrid.h"
#include "DatabaseLocations.h"
#include "frmItemAddModify.h"
#include "frmItemList.h"
#include "frmQuickFind.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QLineEdit>
#include <QMap>
#include <QTableView>

#include <sqlite3.h>

#include <cmath>
#include <cstdio>

namespace {

// Notes when the grid's viewport is first painted with rows after a press.
class FirstPaint : public QObject {
public:
    FirstPaint(SpreadGrid &grid) : grid_(grid) { grid.view()->viewport()->installEventFilter(this); }
    void arm()
    {
        clock_.start();
        at_ = -1;
    }
    double at() const { return at_; }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && at_ < 0 && grid_.maxRows() > 0)
            at_ = double(clock_.nsecsElapsed()) / 1e6;
        return false;
    }

private:
    SpreadGrid &grid_;
    QElapsedTimer clock_;
    double at_ = -1;
};

// Words of the titles with the number of copies whose title holds them, and title prefixes with theirs.
struct TitleCounts {
    QMap<QString, int> words, prefixes;
};

TitleCounts countTitles(sqlite3 *db)
{
    TitleCounts counts;
    sqlite3_stmt *stmt = nullptr;
    sqlite3_prepare_v2(db, "select Title from tblLibItems where PhasedOut = 0", -1, &stmt, nullptr);
    while (sqlite3_step(stmt) == SQLITE_ROW) {
        const QString title = QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(stmt, 0)));
        for (const QString &w : title.split(QLatin1Char(' ')))
            if (w.size() > 3)
                ++counts.words[w];
        for (qsizetype k = 8; k <= title.size(); ++k) // what a librarian types: the start of a title
            ++counts.prefixes[title.left(k)];
    }
    sqlite3_finalize(stmt);
    return counts;
}

QString closest(const QMap<QString, int> &counts, int target)
{
    QString best;
    for (auto it = counts.begin(); it != counts.end(); ++it)
        if (best.isEmpty() || std::abs(it.value() - target) < std::abs(counts.value(best) - target))
            best = it.key();
    return best;
}

// The stock list from a press to a filled grid with totals, against the C API on the statement it sent.
void benchStockList(sqlite3 *db, const char *name, const std::function<void(frmItemList &)> &press)
{
    const ScreenRegistry screens;
    frmItemList screen(screens);
    screen.resize(1200, 800);
    screen.show();
    QApplication::processEvents();
    SpreadGrid &grid = *screen.findChild<SpreadGrid *>(QStringLiteral("fpSpreadStock"));
    FirstPaint firstPaint(grid);
    Samples filled, firstScreen, raw;
    GuiStall stall;
    QStringList sent;
    int rows = 0, rawRows = 0;
    for (int run = 0; run < 7; ++run) {
        DbConnection::traceStatements(&sent);
        firstPaint.arm();
        filled.time([&] { stall.time([&] { press(screen); }); });
        DbConnection::traceStatements(nullptr);
        firstScreen.add(firstPaint.at());
        rows = grid.maxRows();
        raw.add(stepThroughCApi(db, sent.last(), &rawRows));
        QApplication::processEvents();
    }
    std::printf("  %s: %d rows in the grid (C API %d), total cost %s\n", name, rows, rawRows,
                qPrintable(screen.findChild<QLineEdit *>(QStringLiteral("txtTotalCost"))->text()));
    raw.report("SQLite C API, same translated SQL");
    filled.report("press to filled grid with totals");
    firstScreen.report("press to first screenful painted");
    stall.report(name);
    std::printf("  ratio press-to-filled / C API: %.2f\n", filled.median() / raw.median());
}

} // namespace

void benchItemScreens()
{
    std::printf("Catalogue items: stock list, quick find, saving twenty copies\n");
    sqlite3 *db = nullptr;
    sqlite3_open_v2(LibraryDatabasePath.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr);
    const TitleCounts counts = countTitles(db);
    const QString word = closest(counts.words, 5000);
    const QString prefix = closest(counts.prefixes, 50);

    benchStockList(db, "\"Show All\"", [](frmItemList &s) { s.findChild<QAbstractButton *>(QStringLiteral("cmdAll"))->click(); });
    benchStockList(db, qPrintable(QStringLiteral("title search \"%1\"").arg(word)), [&word](frmItemList &s) {
        s.findChild<QLineEdit *>(QStringLiteral("txtTitle"))->setText(word);
        s.findChild<QAbstractButton *>(QStringLiteral("cmdSearch"))->click();
    });

    // Quick find: a title prefix of about 50 copies, and the keyword linked to about as many.
    // The school's keywords are each linked to hundreds of copies; a keyword of about 50 copies
    // (spread over the catalogue, some of them out) is added to this working copy.
    const QString keyword = QStringLiteral("Quickfind");
    {
        DbConnection c;
        c.DataSource = LibraryDatabasePath;
        c.Open();
        c.BeginTrans();
        c.Execute(QStringLiteral("Insert into tblLibKeywords (KeywordEng, KeywordAfr) values ('Quickfind', 'Snelsoek')"));
        const int keyID = c.Execute(QStringLiteral("Select max(KeyID) from tblLibKeywords"))->field(0).toInt();
        for (int i = 0; i < 50; ++i)
            c.Execute(QStringLiteral("Insert into tblLibItemKeywords (KeyID, ItemID) values (%1, %2)").arg(keyID).arg(1 + i * 1987));
        c.CommitTrans();
    }
    const QString common = QStringLiteral("friendship");
    sqlite3_close(db);
    frmQuickFind find;
    SpreadGrid &located = *find.findChild<SpreadGrid *>(QStringLiteral("gridLocation"));
    for (const auto &[box, text] : {std::pair{"txttitle", prefix}, {"txtKeyword", keyword}, {"txtKeyword", common}}) {
        Samples quick;
        for (const char *other : {"txtAccNumber", "txtAuthor", "txttitle", "txtKeyword"})
            find.findChild<QLineEdit *>(QLatin1String(other))->clear();
        find.findChild<QLineEdit *>(QLatin1String(box))->setText(text);
        for (int run = 0; run < 15; ++run)
            quick.time([&] { find.findChild<QAbstractButton *>(QStringLiteral("cmdFind"))->click(); });
        int out = 0;
        for (int r = 1; r <= located.maxRows(); ++r)
            out += located.cellText(2, r) == QLatin1String("Out") ? 1 : 0;
        std::printf("  quick find %s \"%s\": %d copies found, %d of them out\n", box, qPrintable(text), located.maxRows(), out);
        quick.report("quick find to filled grid");
    }

    // Saving twenty copies of a new title (mode 0): from the press to "Saved Successfully".
    Samples save;
    const ScreenRegistry screens;
    for (int run = 0; run < 7; ++run) {
        frmItemAddModify editor(screens);
        SpreadGrid &sheet = *editor.findChild<SpreadGrid *>(QStringLiteral("griditems"));
        sheet.setCellText(2, 2, QStringLiteral("Fiction"));
        sheet.setCellText(2, 3, QStringLiteral("Fiction"));
        sheet.setCellText(2, 4, sheet.model()->cellList(2, 4).value(0));
        sheet.setCellText(2, 7, QStringLiteral("Bench Title %1").arg(run));
        sheet.setCellText(5, 5, sheet.model()->cellList(5, 5).value(0));
        sheet.setCellText(5, 6, QStringLiteral("F BEN"));
        for (int copy = 0; copy < 20; ++copy)
            sheet.setCellText(copy < 10 ? 2 : 5, 13 + copy % 10, QStringLiteral("BENCH-%1-%2").arg(run).arg(copy + 1));
        save.time([&] { editor.findChild<QAbstractButton *>(QStringLiteral("cmdSave"))->click(); });
        if (editor.savedItems().size() != 20)
            std::printf("  run %d saved %lld copies\n", run, qlonglong(editor.savedItems().size()));
    }
    save.report("save twenty copies of a new title");
}
