#include "NoticeDocument.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPaintDevice>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>

namespace {

constexpr int HeaderLines = 6; // school, title, date, blank, column captions, rule
constexpr int FooterLines = 4; // signature line and its space

std::vector<NoticeDocument::Group> groupsBy(const std::vector<OverdueRow> &rows, bool byClass)
{
    std::vector<NoticeDocument::Group> groups;
    for (size_t i = 0; i < rows.size(); ++i) {
        const bool same = i > 0 && (byClass ? rows[i].className == rows[i - 1].className : rows[i].memberID == rows[i - 1].memberID);
        if (!same)
            groups.push_back({i, i});
        groups.back().last = i + 1;
    }
    return groups;
}

QString longDate(const QDate &d) { return d.toString(QStringLiteral("d MMMM yyyy")); }

constexpr int LetterHeaderLines = 7; // school (two), date, blank, learner line, blank
const PageFonts &letterFonts()
{
    static const PageFonts fonts(10, 15);
    return fonts;
}

// A device of the page's resolution, so text is measured as it will be drawn.
QImage measuringDevice(double dpi)
{
    QImage device(1, 1, QImage::Format_ARGB32);
    device.setDotsPerMeterX(int(dpi / 0.0254 + 0.5));
    device.setDotsPerMeterY(int(dpi / 0.0254 + 0.5));
    return device;
}

} // namespace

NoticeDocument::NoticeDocument(Kind kind, std::vector<OverdueRow> rows, const QString &schoolName, const QDate &asAt,
                               const QString &letterWording)
    : kind_(kind), rows_(std::move(rows)), school_(schoolName), asAt_(asAt), wording_(letterWording)
{
    // A class list is for the class teacher: only the class's current learners.
    if (kind_ == ClassLists)
        rows_.erase(std::remove_if(rows_.begin(), rows_.end(), [](const OverdueRow &r) { return r.leftSchool; }), rows_.end());
    classes_ = groupsBy(rows_, true);
    learners_ = groupsBy(rows_, false);
}

QString NoticeDocument::title() const
{
    return kind_ == ClassLists ? QStringLiteral("Overdue Books - Class Lists") : QStringLiteral("Overdue Books - Letters to Parents");
}

std::vector<NoticeDocument::Page> NoticeDocument::layout(const QRectF &page, double dpi) const
{
    std::vector<Page> pages;
    if (kind_ == Letters) {
        // A letter longer than a page goes on over the next, under the learner's name again.
        const int perPage = std::max(1, int(page.height() / PrintLineHeight(dpi)) - LetterHeaderLines);
        for (size_t g = 0; g < learners_.size(); ++g) {
            const int lines = int(letterLines(learners_[g], page.width(), dpi).size());
            for (int first = 0; first < std::max(lines, 1); first += perPage)
                pages.push_back({g, learners_[g].first, learners_[g].last, true, first, std::min(lines, first + perPage)});
        }
        return pages;
    }
    const int lines = std::max(1, int(page.height() / PrintLineHeight(dpi)) - HeaderLines - FooterLines);
    for (size_t g = 0; g < classes_.size(); ++g) {
        for (size_t first = classes_[g].first; first < classes_[g].last; first += size_t(lines)) {
            const size_t last = std::min(classes_[g].last, first + size_t(lines));
            pages.push_back({g, first, last, last == classes_[g].last});
        }
    }
    return pages;
}

std::shared_ptr<const std::vector<NoticeDocument::Page>> NoticeDocument::pages(const QRectF &page, double dpi) const
{
    std::lock_guard lock(layoutMutex_);
    if (!laidOut_ || laidOutPage_ != page || laidOutDpi_ != dpi) {
        laidOut_ = std::make_shared<const std::vector<Page>>(layout(page, dpi));
        laidOutPage_ = page;
        laidOutDpi_ = dpi;
    }
    return laidOut_;
}

int NoticeDocument::pageCount(const QRectF &page, double dpi) const { return int(pages(page, dpi)->size()); }

void NoticeDocument::paintPage(QPainter &painter, const QRectF &page, int pageNumber) const
{
    const auto laidOut = pages(page, painter.device()->logicalDpiY());
    if (pageNumber < 1 || size_t(pageNumber) > laidOut->size())
        return;
    painter.save();
    if (kind_ == ClassLists)
        paintClassPage(painter, page, (*laidOut)[size_t(pageNumber - 1)]);
    else
        paintLetter(painter, page, (*laidOut)[size_t(pageNumber - 1)]);
    painter.restore();
}

void NoticeDocument::paintClassPage(QPainter &painter, const QRectF &page, const Page &p) const
{
    const double dpi = painter.device()->logicalDpiY();
    const double line = PrintLineHeight(dpi);
    const PageFonts fonts;
    const QFont &font = fonts.plain, &bold = fonts.bold, &big = fonts.big;
    const QString className = rows_[p.first].className.isEmpty() ? QStringLiteral("(no class)") : rows_[p.first].className;
    double y = page.top();
    auto text = [&](const QFont &f, double x, double width, const QString &s, Qt::Alignment align = Qt::AlignLeft) {
        painter.setFont(f);
        painter.drawText(QRectF(x, y, width, line * (f.pointSizeF() > 10 ? 1.5 : 1.0)), align | Qt::AlignVCenter | Qt::TextSingleLine,
                         QFontMetricsF(f, painter.device()).elidedText(s, Qt::ElideRight, width));
    };
    text(big, page.left(), page.width(), school_);
    y += line * 1.5;
    text(bold, page.left(), page.width(), QStringLiteral("Overdue library books - Class %1").arg(className));
    y += line;
    text(font, page.left(), page.width(), QStringLiteral("As at %1").arg(longDate(asAt_)));
    y += line * 2;
    // Columns: learner, accession, title, due, days, fine.
    const double w = page.width();
    const double xs[] = {0, 0.26, 0.38, 0.72, 0.84, 0.91, 1.0};
    const QString captions[] = {QStringLiteral("Learner"), QStringLiteral("Accession"), QStringLiteral("Title"),
                                QStringLiteral("Due"),     QStringLiteral("Days"),      QStringLiteral("Fine")};
    for (int c = 0; c < 6; ++c)
        text(bold, page.left() + xs[c] * w, (xs[c + 1] - xs[c]) * w - 4, captions[c], c >= 4 ? Qt::AlignRight : Qt::AlignLeft);
    y += line;
    painter.drawLine(QPointF(page.left(), y), QPointF(page.right(), y));
    for (size_t i = p.first; i < p.last; ++i) {
        const OverdueRow &r = rows_[i];
        const bool firstOfLearner = i == p.first || rows_[i - 1].memberID != r.memberID;
        const QString cells[] = {firstOfLearner ? r.memberName : QString(), r.accession, r.title, r.dueDate.toString(Qt::ISODate),
                                 QString::number(r.daysOverdue), r.fine.toDisplayText()};
        for (int c = 0; c < 6; ++c)
            text(font, page.left() + xs[c] * w, (xs[c + 1] - xs[c]) * w - 4, cells[c], c >= 4 ? Qt::AlignRight : Qt::AlignLeft);
        y += line;
    }
    if (p.closing) {
        y += line * 2;
        text(font, page.left(), page.width(), QStringLiteral("Class teacher's signature: ______________________________    Date: ______________"));
    }
}

QString NoticeDocument::letterText(const Group &learner) const
{
    QStringList items;
    Money total;
    for (size_t i = learner.first; i < learner.last; ++i) {
        const OverdueRow &r = rows_[i];
        items << QStringLiteral("    %1   %2 (due %3, fine %4)").arg(r.accession, r.title, longDate(r.dueDate), r.fine.toCurrencyText());
        total += r.fine;
    }
    if (learner.last - learner.first > 1)
        items << QStringLiteral("    Total fine so far: %1").arg(total.toCurrencyText());
    const OverdueRow &first = rows_[learner.first];
    return NoticeTemplate::fill(wording_, first.fullName, first.className, school_, items.join(QLatin1Char('\n')), asAt_,
                                int(learner.last - learner.first));
}

QStringList NoticeDocument::letterLines(const Group &learner, double width, double dpi) const
{
    QImage device = measuringDevice(dpi);
    QStringList lines;
    for (const QString &paragraph : letterText(learner).split(QLatin1Char('\n'))) {
        if (paragraph.isEmpty()) {
            lines << QString();
            continue;
        }
        QTextLayout layout(paragraph, letterFonts().plain, &device);
        layout.beginLayout();
        for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
            line.setLineWidth(width);
            lines << paragraph.mid(line.textStart(), line.textLength()).trimmed();
        }
        layout.endLayout();
    }
    return lines;
}

void NoticeDocument::paintLetter(QPainter &painter, const QRectF &page, const Page &p) const
{
    const double dpi = painter.device()->logicalDpiY();
    const double line = PrintLineHeight(dpi);
    const QFont &font = letterFonts().plain, &big = letterFonts().big;
    painter.setFont(big);
    painter.drawText(QRectF(page.left(), page.top(), page.width(), line * 2), Qt::AlignHCenter | Qt::AlignVCenter, school_);
    double y = page.top() + line * 3;
    painter.setFont(font);
    painter.drawText(QRectF(page.left(), y, page.width(), line), Qt::AlignRight | Qt::AlignVCenter, longDate(asAt_));
    y += line * 2;
    const OverdueRow &first = rows_[p.first];
    QString heading = QStringLiteral("Learner: %1    Class: %2").arg(first.memberName, first.className);
    if (p.firstLine > 0)
        heading += QStringLiteral("    (continued)");
    painter.drawText(QRectF(page.left(), y, page.width(), line), Qt::AlignLeft | Qt::AlignVCenter, heading);
    y += line * 2;
    const QStringList lines = letterLines(learners_[p.group], page.width(), dpi);
    for (int i = p.firstLine; i < p.lastLine && i < lines.size(); ++i, y += line)
        painter.drawText(QRectF(page.left(), y, page.width(), line), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, lines[i]);
}
