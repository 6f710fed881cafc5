#include "LibraryReport.h"

#include "Money.h"
#include "NaturalOrder.h"
#include "Recordset.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>

namespace {

using Columns = std::vector<std::pair<QString, QString>>;

Columns withName(std::initializer_list<std::pair<const char *, const char *>> fields)
{
    Columns columns;
    for (const auto &[caption, field] : fields) {
        columns.emplace_back(QString::fromLatin1(caption), QString::fromLatin1(field));
        if (QLatin1String(field) == QLatin1String("MemberID"))
            columns.emplace_back(QStringLiteral("Name"), QStringLiteral("mName"));
    }
    return columns;
}


} // namespace

ReportDefinition ReportDefinition::named(const QString &name)
{
    ReportDefinition d;
    d.name = name;
    d.byClass = name.endsWith(QLatin1String("ByClass"));
    const QString base = d.byClass ? name.left(name.size() - 7) : name;
    if (base == QLatin1String("crdIssuedItems") || base == QLatin1String("crdOutstandingItems")) {
        d.title = base == QLatin1String("crdIssuedItems") ? QStringLiteral("Issued Items") : QStringLiteral("Outstanding Items");
        d.periodHeading = base == QLatin1String("crdIssuedItems");
        d.columns = withName({{"Accession No", "AccessionID"}, {"Title", "Title"}, {"Shelf No", "ShelfNumber"}, {"Member", "MemberID"},
                              {"Type", "MemberType"}, {"Issued", "IssueDate"}, {"Due", "DueDate"}});
    } else if (base == QLatin1String("crdOutstandingFines")) {
        d.title = QStringLiteral("Outstanding Fines");
        d.columns = withName({{"Accession No", "AccessionID"}, {"Title", "Title"}, {"Member", "MemberID"}, {"Type", "MemberType"},
                              {"Fine", "FineAmount"}, {"Fined", "DateFined"}});
    } else if (base == QLatin1String("crdFinesPaid")) {
        d.title = QStringLiteral("Paid Fines");
        d.periodHeading = true;
        d.columns = withName({{"Accession No", "AccessionID"}, {"Title", "Title"}, {"Member", "MemberID"}, {"Type", "MemberType"},
                              {"Fine", "FineAmount"}, {"Fined", "DateFined"}, {"Paid", "PaymentDate"}, {"Cancelled", "FineCancelled"}});
    } else if (name == QLatin1String("crdReservesList")) {
        d.title = QStringLiteral("Reserved Items");
        d.columns = withName({{"Accession No", "AccessionID"}, {"Title", "Title"}, {"Shelf No", "ShelfNumber"}, {"Member", "MemberID"},
                              {"Type", "MemberType"}, {"Reserved", "ReserveDate"}, {"Cancelled", "Canceled"}});
    }
    return d;
}

LibraryReport::LibraryReport(ReportDefinition definition, const QString &schoolName, const QString &periodHeading)
    : definition_(std::move(definition)), schoolName_(schoolName), periodHeading_(definition_.periodHeading ? periodHeading : QString())
{
}

void LibraryReport::addRow(const Recordset &rs, const QString &memberName, const QString &className)
{
    Row row;
    row.className = className;
    for (const auto &[caption, field] : definition_.columns) {
        if (field == QLatin1String("mName")) {
            row.cells << memberName;
            continue;
        }
        const int index = rs.fieldIndex(field);
        QString text = index < 0 ? QString() : rs.field(index).toString();
        Money amount;
        if (field == QLatin1String("FineAmount") && Money::parse(text, &amount))
            text = amount.toDisplayText();
        row.cells << text;
    }
    rows_.push_back(std::move(row));
}

void LibraryReport::finish()
{
    if (definition_.byClass)
        std::stable_sort(rows_.begin(), rows_.end(), [](const Row &a, const Row &b) { return NaturalLess(a.className, b.className); });
    layOut();
}

void LibraryReport::layOut()
{
    std::vector<Line> &out = lines_;
    out.clear();
    out.reserve(rows_.size() + 16);
    const bool fines = moneyColumn() >= 0;
    for (int i = 0; i < rowCount();) {
        if (!definition_.byClass) {
            out.push_back({Line::Detail, i++, 0});
            continue;
        }
        int end = i;
        while (end < rowCount() && rows_[size_t(end)].className == rows_[size_t(i)].className)
            ++end;
        out.push_back({Line::ClassHeading, i, end - i});
        for (int k = i; k < end; ++k)
            out.push_back({Line::Detail, k, 0});
        out.push_back({Line::ClassCount, i, end - i});
        if (fines)
            out.push_back({Line::ClassTotal, i, end - i});
        i = end;
    }
    if (fines)
        out.push_back({Line::ReportTotal, 0, rowCount()});
}

int LibraryReport::moneyColumn() const
{
    for (size_t c = 0; c < definition_.columns.size(); ++c)
        if (definition_.columns[c].second == QLatin1String("FineAmount"))
            return int(c);
    return -1;
}

QString LibraryReport::total(int first, int count) const
{
    const int column = moneyColumn();
    Money sum;
    for (int k = first; k < first + count; ++k) {
        Money amount;
        if (Money::parse(rows_[size_t(k)].cells.value(column), &amount))
            sum += amount;
    }
    return sum.toDisplayText();
}

QString LibraryReport::summaryText(const Line &l) const
{
    const QString cls = l.kind == Line::ReportTotal ? QString() : rows_[size_t(l.index)].className;
    const QString name = cls.isEmpty() ? QStringLiteral("(none)") : cls;
    switch (l.kind) {
    case Line::ClassHeading:
        return QStringLiteral("Class: ") + name;
    case Line::ClassCount:
        return QStringLiteral("Learners' items in ") + name + QStringLiteral(": ") + QString::number(l.count);
    case Line::ClassTotal:
        return QStringLiteral("Total fines in ") + name + QStringLiteral(": ") + total(l.index, l.count);
    case Line::ReportTotal:
        return QStringLiteral("Total fines: ") + total(l.index, l.count);
    case Line::Detail:
        break;
    }
    return QString();
}

QStringList LibraryReport::summaryLines() const
{
    QStringList lines;
    for (const Line &l : lines_)
        if (l.kind != Line::Detail)
            lines << summaryText(l);
    return lines;
}

// Layout in points: 12 pt lines; the header takes 5 lines (school, title, period, gap, captions), the foot 2.
int LibraryReport::linesPerPage(const QRectF &page, double dpi) const
{
    const double lineHeight = PrintLineHeight(dpi);
    return std::max(1, int(page.height() / lineHeight) - 7);
}

int LibraryReport::pageCount(const QRectF &page, double dpi) const
{
    const int total = int(lines_.size());
    const int perPage = linesPerPage(page, dpi);
    return std::max(1, (total + perPage - 1) / perPage);
}

void LibraryReport::paintPage(QPainter &painter, const QRectF &page, int pageNumber) const
{
    const double dpi = painter.device()->logicalDpiY();
    const double line = PrintLineHeight(dpi);
    const std::vector<Line> &all = lines_;
    const int perPage = linesPerPage(page, dpi);
    const int pages = std::max(1, (int(all.size()) + perPage - 1) / perPage);
    const PageFonts fonts(8, 12);
    const QFont &font = fonts.plain, &bold = fonts.bold, &big = fonts.big;

    painter.save();
    double y = page.top();
    painter.setFont(big);
    painter.drawText(QRectF(page.left(), y, page.width(), line), Qt::AlignLeft | Qt::AlignVCenter, schoolName_ + QStringLiteral(" - ") + definition_.title);
    y += line * 1.5;
    painter.setFont(bold);
    if (!periodHeading_.isEmpty())
        painter.drawText(QRectF(page.left(), y, page.width(), line), Qt::AlignLeft | Qt::AlignVCenter, periodHeading_);
    y += line * 1.5;

    // Column widths: the title takes what the fixed columns leave.
    const int columns = int(definition_.columns.size());
    std::vector<double> widths(size_t(columns), page.width() / (columns + 2));
    for (int c = 0; c < columns; ++c)
        if (definition_.columns[size_t(c)].second == QLatin1String("Title") || definition_.columns[size_t(c)].second == QLatin1String("mName"))
            widths[size_t(c)] *= 2;
    const QFontMetricsF plainMetrics(font, painter.device());
    const QFontMetricsF boldMetrics(bold, painter.device());
    const int money = moneyColumn();
    auto drawCells = [&](const QStringList &cells) {
        double x = page.left();
        const QFontMetricsF &fm = painter.font().bold() ? boldMetrics : plainMetrics;
        for (int c = 0; c < columns; ++c) {
            const QRectF cell(x, y, widths[size_t(c)] - 4, line);
            const Qt::Alignment align = c == money ? Qt::AlignRight : Qt::AlignLeft;
            painter.drawText(cell, align | Qt::AlignVCenter, fm.elidedText(cells.value(c), Qt::ElideRight, cell.width()));
            x += widths[size_t(c)];
        }
        y += line;
    };
    QStringList captions;
    for (const auto &column : definition_.columns)
        captions << column.first;
    drawCells(captions);
    painter.drawLine(QPointF(page.left(), y), QPointF(page.right(), y));

    const size_t first = size_t(pageNumber - 1) * size_t(perPage);
    for (size_t i = first; i < all.size() && i < first + size_t(perPage); ++i) {
        const Line &l = all[i];
        if (l.kind == Line::Detail) {
            painter.setFont(font);
            drawCells(rows_[size_t(l.index)].cells);
        } else {
            painter.setFont(bold);
            painter.drawText(QRectF(page.left(), y, page.width(), line), Qt::AlignLeft | Qt::AlignVCenter, summaryText(l));
            y += line;
        }
    }
    painter.setFont(font);
    painter.drawText(QRectF(page.left(), page.bottom() - line, page.width(), line), Qt::AlignRight | Qt::AlignVCenter,
                     QStringLiteral("Page %1 of %2").arg(pageNumber).arg(pages));
    painter.restore();
}
