#include "StatisticsDocument.h"

#include "StatisticsCharts.h"

#include <QPaintDevice>
#include <QPainter>

namespace {

constexpr int Pages = 4;

// A table of rows (cells joined by '|'), captions first, columns of equal share.
double drawTable(QPainter &painter, const QRectF &area, const QString &heading, const QStringList &rows, double line)
{
    double y = area.top();
    QFont bold = painter.font();
    bold.setBold(true);
    const QFont plain = painter.font();
    painter.setFont(bold);
    painter.drawText(QRectF(area.left(), y, area.width(), line), Qt::AlignLeft | Qt::AlignVCenter, heading);
    y += line * 1.3;
    for (int r = 0; r < rows.size() && y + line <= area.bottom(); ++r) {
        const QStringList cells = rows[r].split(QLatin1Char('|'));
        painter.setFont(r == 0 ? bold : plain);
        const double first = area.width() * (cells.size() > 4 ? 0.16 : cells.size() > 2 ? 0.3 : 0.7);
        const double rest = cells.size() > 1 ? (area.width() - first) / double(cells.size() - 1) : 0;
        for (int c = 0; c < cells.size(); ++c) {
            const QRectF cell(c == 0 ? area.left() : area.left() + first + rest * (c - 1), y, c == 0 ? first : rest - 4, line);
            painter.drawText(cell, (c == 0 ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter, cells[c]);
        }
        y += line;
    }
    painter.setFont(plain);
    return y;
}

void drawChart(QPainter &painter, const QRectF &area, StatisticsCharts::Chart chart, const LibraryStatistics &s)
{
    // Drawn at a screen's size and scaled onto the page, so its lettering keeps its proportion to the chart.
    const double width = 900.0;
    const QImage image = StatisticsCharts::render(chart, s, QSize(int(width), int(width * area.height() / area.width())));
    painter.drawImage(area, image);
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

int StatisticsDocument::pageCount(const QRectF &, double) const { return Pages; }

void StatisticsDocument::paintPage(QPainter &painter, const QRectF &page, int pageNumber) const
{
    const double dpi = painter.device()->logicalDpiY();
    const double line = PrintLineHeight(dpi);
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
                     QStringLiteral("Page %1 of %2").arg(pageNumber).arg(Pages));
    const QRectF body(page.left(), page.top() + line * 3, page.width(), page.height() - line * 4.5);
    const QRectF upper(body.left(), body.top(), body.width(), body.height() * 0.45);
    const QRectF lower(body.left(), body.top() + body.height() * 0.5, body.width(), body.height() * 0.5);
    switch (pageNumber) {
    case 1: {
        drawChart(painter, upper, StatisticsCharts::LoansPerMonth, s_);
        QStringList rows{QStringLiteral("Month|Learners|Educators|Staff|Overdue %|Charged|Paid|Cancelled")};
        for (const auto &m : s_.months)
            rows << QStringLiteral("%1|%2|%3|%4|%5|%6|%7|%8")
                        .arg(m.month).arg(m.learners).arg(m.educators).arg(m.staff)
                        .arg(QString::number(100.0 * m.overdueRate(), 'f', 1), m.charged.toDisplayText(), m.paid.toDisplayText(),
                             m.cancelled.toDisplayText());
        drawTable(painter, lower, QStringLiteral("Figures per month"), rows, line);
        break;
    }
    case 2:
        drawChart(painter, upper, StatisticsCharts::LoansPerGrade, s_);
        drawChart(painter, lower, StatisticsCharts::LoansPerClass, s_);
        break;
    case 3:
        drawChart(painter, upper, StatisticsCharts::OverdueAndFines, s_);
        drawTable(painter, QRectF(lower.left(), lower.top(), lower.width() / 2 - 8, lower.height()), QStringLiteral("Most borrowed titles"),
                  countRows("Title", s_.topTitles), line);
        drawTable(painter, QRectF(lower.center().x() + 8, lower.top(), lower.width() / 2 - 8, lower.height()),
                  QStringLiteral("Most active classes"), countRows("Class", s_.topClasses), line);
        break;
    default: {
        drawChart(painter, upper, StatisticsCharts::NotBorrowed, s_);
        QStringList rows{QStringLiteral("Category|Copies")};
        for (const auto &c : s_.unborrowedByCategory)
            rows << c.name + QLatin1Char('|') + QString::number(c.count);
        drawTable(painter, lower, QStringLiteral("Copies not borrowed in the period (%1)").arg(s_.unborrowed.size()), rows, line);
    }
    }
    painter.restore();
}
