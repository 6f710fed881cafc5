#include "StocktakeReport.h"

#include <QPaintDevice>
#include <QPainter>

#include <algorithm>

StocktakeReport::StocktakeReport(const QString &schoolName, const QString &name, const QDate &date, const Stocktake::Result &r)
    : school_(schoolName), name_(name), date_(date)
{
    lines_ << QStringLiteral("#Totals")
           << QStringLiteral("Copies in the scope: %1").arg(r.expected) << QStringLiteral("Found on the shelves: %1").arg(r.scanned)
           << QStringLiteral("Missing: %1").arg(r.missing.size()) << QStringLiteral("Scanned although removed: %1").arg(r.phasedOut.size())
           << QStringLiteral("On loan: %1").arg(r.onLoan.size()) << QStringLiteral("Unknown numbers: %1").arg(r.unknown.size())
           << QStringLiteral("Outside the scope: %1").arg(r.outside.size());
    const std::pair<const char *, const std::vector<Stocktake::Copy> *> lists[] = {
        {"Missing (in the scope, not scanned, not on loan)", &r.missing}, {"Scanned although removed", &r.phasedOut},
        {"On loan, found on the shelf", &r.onLoan}, {"Unknown numbers", &r.unknown}, {"Outside the scope", &r.outside}};
    for (const auto &[heading, copies] : lists) {
        lines_ << QString() << QLatin1Char('#') + QString::fromLatin1(heading) + QStringLiteral(" (%1)").arg(copies->size());
        for (const Stocktake::Copy &c : *copies)
            lines_ << c.accession + QStringLiteral("    ") + c.title;
    }
}

int StocktakeReport::linesPerPage(const QRectF &page, double dpi) const
{
    return std::max(1, int(page.height() / PrintLineHeight(dpi)) - 5);
}

int StocktakeReport::pageCount(const QRectF &page, double dpi) const
{
    const int per = linesPerPage(page, dpi);
    return std::max(1, (int(lines_.size()) + per - 1) / per);
}

void StocktakeReport::paintPage(QPainter &painter, const QRectF &page, int pageNumber) const
{
    const double dpi = painter.device()->logicalDpiY();
    const double line = PrintLineHeight(dpi);
    const int per = linesPerPage(page, dpi);
    painter.save();
    const PageFonts fonts;
    const QFont &font = fonts.plain, &bold = fonts.bold, &big = fonts.big;
    painter.setFont(big);
    painter.drawText(QRectF(page.left(), page.top(), page.width(), line * 1.5), Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("%1 - Stocktake \"%2\"").arg(school_, name_));
    painter.setFont(font);
    painter.drawText(QRectF(page.left(), page.top() + line * 1.5, page.width(), line), Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("Started %1").arg(date_.toString(Qt::ISODate)));
    double y = page.top() + line * 3;
    for (int i = (pageNumber - 1) * per; i < std::min(int(lines_.size()), pageNumber * per); ++i) {
        const QString &text = lines_[i];
        painter.setFont(text.startsWith(QLatin1Char('#')) ? bold : font);
        painter.drawText(QRectF(page.left(), y, page.width(), line), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                         text.startsWith(QLatin1Char('#')) ? text.mid(1) : text);
        y += line;
    }
    painter.setFont(font);
    painter.drawText(QRectF(page.left(), page.bottom() - line, page.width(), line), Qt::AlignRight | Qt::AlignVCenter,
                     QStringLiteral("Page %1 of %2").arg(pageNumber).arg(pageCount(page, dpi)));
    painter.restore();
}
