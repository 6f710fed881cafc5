#include "StatisticsDocument.h"

#include "StatisticsCharts.h"

#include <QPaintDevice>
#include <QPainter>

namespace {

// The page's parts: its title lines at the top, "Page n of m" at the foot, the body between.
struct Frame {
    QRectF body, upper, lower;
    double line;
    Frame(const QRectF &page, double dpi) : line(PrintLineHeight(dpi))
    {
        body = QRectF(page.left(), page.top() + line * 3, page.width(), page.height() - line * 4.5);
        upper = QRectF(body.left(), body.top(), body.width(), body.height() * 0.45);
        lower = QRectF(body.left(), body.top() + body.height() * 0.5, body.width(), body.height() * 0.5);
    }
    QRectF area(StatisticsDocument::Area a) const
    {
        switch (a) {
        case StatisticsDocument::Area::Upper: return upper;
        case StatisticsDocument::Area::Lower: return lower;
        case StatisticsDocument::Area::LowerLeft: return QRectF(lower.left(), lower.top(), lower.width() / 2 - 8, lower.height());
        case StatisticsDocument::Area::LowerRight: return QRectF(lower.center().x() + 8, lower.top(), lower.width() / 2 - 8, lower.height());
        default: return body;
        }
    }
    // Rows of a table (besides its heading and caption row) that fit an area.
    int rowsIn(StatisticsDocument::Area a) const { return std::max(1, int((area(a).height() - line * 1.3) / line) - 1); }
};

// Rows [first, last) of a table under its heading and caption row, columns of equal share.
void drawTable(QPainter &painter, const QRectF &area, const QString &heading, const QStringList &rows, int first, int last, double line)
{
    double y = area.top();
    QFont bold = painter.font();
    bold.setBold(true);
    const QFont plain = painter.font();
    painter.setFont(bold);
    painter.drawText(QRectF(area.left(), y, area.width(), line), Qt::AlignLeft | Qt::AlignVCenter,
                     first > 0 ? heading + QStringLiteral(" (continued)") : heading);
    y += line * 1.3;
    auto drawRow = [&](const QString &row, bool caption) {
        const QStringList cells = row.split(QLatin1Char('|'));
        painter.setFont(caption ? bold : plain);
        const double firstWidth = area.width() * (cells.size() > 4 ? 0.16 : cells.size() > 2 ? 0.3 : 0.7);
        const double rest = cells.size() > 1 ? (area.width() - firstWidth) / double(cells.size() - 1) : 0;
        for (int c = 0; c < cells.size(); ++c) {
            const QRectF cell(c == 0 ? area.left() : area.left() + firstWidth + rest * (c - 1), y, c == 0 ? firstWidth : rest - 4, line);
            painter.drawText(cell, (c == 0 ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter, cells[c]);
        }
        y += line;
    };
    drawRow(rows.value(0), true);
    for (int r = first; r < last; ++r)
        drawRow(rows[r + 1], false);
    painter.setFont(plain);
}

void drawChart(QPainter &painter, const QRectF &area, StatisticsCharts::Chart chart, const LibraryStatistics &s)
{
    // Drawn at a screen's resolution (96 pixels an inch) to the area's size on paper, so its lettering
    // prints at its own point size.
    const double dpi = painter.device()->logicalDpiX();
    const QSize pixels(int(area.width() / dpi * 96), int(area.height() / dpi * 96));
    painter.drawImage(area, StatisticsCharts::render(chart, s, pixels));
}

QStringList countRows(const char *caption, const std::vector<LibraryStatistics::Count> &counts)
{
    QStringList rows{QString::fromLatin1(caption) + QStringLiteral("|Loans")};
    for (const auto &c : counts)
        rows << c.name + QLatin1Char('|') + QString::number(c.count);
    return rows;
}

} // namespace

StatisticsDocument::StatisticsDocument(const LibraryStatistics &statistics, const QString &schoolName) : s_(statistics), school_(schoolName) {}

std::vector<StatisticsDocument::Table> StatisticsDocument::tables() const
{
    QStringList months{QStringLiteral("Month|Learners|Educators|Staff|Overdue %|Charged|Paid|Cancelled")};
    for (const auto &m : s_.months)
        months << QStringLiteral("%1|%2|%3|%4|%5|%6|%7|%8")
                      .arg(m.month).arg(m.learners).arg(m.educators).arg(m.staff)
                      .arg(QString::number(100.0 * m.overdueRate(), 'f', 1), m.charged.toDisplayText(), m.paid.toDisplayText(),
                           m.cancelled.toDisplayText());
    QStringList categories{QStringLiteral("Category|Copies")};
    for (const auto &c : s_.unborrowedByCategory)
        categories << c.name + QLatin1Char('|') + QString::number(c.count);
    return {{QStringLiteral("Figures per month"), months},
            {QStringLiteral("Most borrowed titles"), countRows("Title", s_.topTitles)},
            {QStringLiteral("Most active classes"), countRows("Class", s_.topClasses)},
            {QStringLiteral("Copies not borrowed in the period (%1)").arg(s_.unborrowed.size()), categories}};
}

std::vector<StatisticsDocument::Sheet> StatisticsDocument::layout(const QRectF &page, double dpi) const
{
    const Frame frame(page, dpi);
    const std::vector<Table> all = tables();
    std::vector<Sheet> sheets;
    // A chart page with the first rows of its tables, then whole pages for the rest of each table.
    auto add = [&](std::vector<std::pair<int, Area>> charts, std::vector<std::pair<int, Area>> placed) {
        Sheet sheet{std::move(charts), {}};
        std::vector<std::pair<int, int>> rest; // table, first row left
        for (const auto &[table, area] : placed) {
            const int rows = int(all[size_t(table)].rows.size()) - 1;
            const int shown = std::min(rows, frame.rowsIn(area));
            sheet.slices.push_back({table, 0, shown, area});
            if (shown < rows)
                rest.emplace_back(table, shown);
        }
        sheets.push_back(std::move(sheet));
        for (const auto &[table, from] : rest) {
            const int rows = int(all[size_t(table)].rows.size()) - 1;
            for (int first = from; first < rows; first += frame.rowsIn(Area::Whole))
                sheets.push_back({{}, {{table, first, std::min(rows, first + frame.rowsIn(Area::Whole)), Area::Whole}}});
        }
    };
    add({{StatisticsCharts::LoansPerMonth, Area::Upper}}, {{0, Area::Lower}});
    add({{StatisticsCharts::LoansPerGrade, Area::Upper}, {StatisticsCharts::LoansPerClass, Area::Lower}}, {});
    add({{StatisticsCharts::OverdueAndFines, Area::Upper}}, {{1, Area::LowerLeft}, {2, Area::LowerRight}});
    add({{StatisticsCharts::NotBorrowed, Area::Upper}}, {{3, Area::Lower}});
    return sheets;
}

int StatisticsDocument::pageCount(const QRectF &page, double dpi) const { return int(layout(page, dpi).size()); }

void StatisticsDocument::paintPage(QPainter &painter, const QRectF &page, int pageNumber) const
{
    const double dpi = painter.device()->logicalDpiY();
    const std::vector<Sheet> sheets = layout(page, dpi);
    if (pageNumber < 1 || size_t(pageNumber) > sheets.size())
        return;
    const Frame frame(page, dpi);
    const double line = frame.line;
    painter.save();
    const PageFonts fonts;
    const QFont &font = fonts.plain, &big = fonts.big;
    painter.setFont(big);
    painter.drawText(QRectF(page.left(), page.top(), page.width(), line * 1.5), Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("%1 - Library Statistics").arg(school_));
    painter.setFont(font);
    painter.drawText(QRectF(page.left(), page.top() + line * 1.5, page.width(), line), Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("%1 to %2").arg(s_.from.toString(Qt::ISODate), s_.to.toString(Qt::ISODate)));
    painter.drawText(QRectF(page.left(), page.bottom() - line, page.width(), line), Qt::AlignRight | Qt::AlignVCenter,
                     QStringLiteral("Page %1 of %2").arg(pageNumber).arg(sheets.size()));
    const Sheet &sheet = sheets[size_t(pageNumber - 1)];
    for (const auto &[chart, area] : sheet.charts)
        drawChart(painter, frame.area(area), StatisticsCharts::Chart(chart), s_);
    const std::vector<Table> all = tables();
    for (const Slice &slice : sheet.slices)
        drawTable(painter, frame.area(slice.area), all[size_t(slice.table)].heading, all[size_t(slice.table)].rows, slice.first, slice.last, line);
    painter.restore();
}
