#include "LabelSheet.h"

#include "AppError.h"
#include "TaskProgress.h"

#include <QFontMetricsF>
#include <QPageSize>
#include <QPainter>
#include <QPrinter>

#include <zint.h>

#include <memory>

namespace {

// Code 39 proper takes digits, capitals, blank and - . $ / + %; anything else is written in
// Extended Code 39, which covers all of ASCII.
bool plainCode39(const QString &text)
{
    for (const QChar c : text)
        if (!(c.isDigit() || (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) || QStringLiteral(" -.$/+%").contains(c)))
            return false;
    return true;
}

// The largest font, up to start points, at which text fits into area on one line; 0 when none down to 6 points does.
double fittingSize(const QFont &font, const QString &text, const QSizeF &area, double start, QPaintDevice *device)
{
    QFont f = font;
    for (double size = start; size >= 6.0; size -= 0.5) {
        f.setPointSizeF(size);
        const QFontMetricsF fm(f, device);
        if (fm.horizontalAdvance(text) <= area.width() && fm.height() <= area.height())
            return size;
    }
    return 0;
}

} // namespace

int LabelSheet::sheets(int count, int startPosition) const
{
    const int perSheet = std::max(1, stock_.perSheet());
    const int first = std::clamp(startPosition, 1, perSheet) - 1;
    return count <= 0 ? 0 : (first + count + perSheet - 1) / perSheet;
}

void LabelSheet::print(QPrinter &printer, const QStringList &texts, int startPosition) const
{
    TaskProgress unwatched;
    print(printer, texts, startPosition, unwatched);
}

void LabelSheet::print(QPrinter &printer, const QStringList &texts, int startPosition, TaskProgress &progress) const
{
    printer.setFullPage(true);
    printer.setPageSize(QPageSize(stock_.page, QPageSize::Point, stock_.paper, QPageSize::ExactMatch));
    printer.setPageMargins(QMarginsF(0, 0, 0, 0), QPageLayout::Point);
    QPainter painter;
    if (!painter.begin(&printer))
        throw AppError(482, QStringLiteral("Printer error"));
    const double scale = printer.resolution() / 72.0; // points to device units
    int position = std::clamp(startPosition, 1, stock_.perSheet()) - 1;
    progress.setMaximum(int(texts.size()));
    for (const QString &text : texts) {
        if (progress.cancelled()) {
            printer.abort();
            throw TaskCancelled{};
        }
        progress.advance();
        if (position == stock_.perSheet()) {
            printer.newPage();
            position = 0;
        }
        const QRectF r = stock_.labelRect(position++);
        drawLabel(painter, QRectF(r.x() * scale, r.y() * scale, r.width() * scale, r.height() * scale), text);
    }
    painter.end();
}

void LabelSheet::drawLabel(QPainter &painter, const QRectF &rect, const QString &text) const
{
    const double scale = painter.device()->logicalDpiX() / 72.0;
    const double margin = std::max(stock_.margin, 3.0) * scale;
    const QRectF area = rect.adjusted(margin, margin, -margin, -margin);
    if (kind_ == Barcode)
        drawBarcode(painter, area, text);
    else
        drawSpine(painter, area, text);
}

void LabelSheet::drawBarcode(QPainter &painter, const QRectF &area, const QString &accession) const
{
    std::unique_ptr<zint_symbol, void (*)(zint_symbol *)> symbol(ZBarcode_Create(), ZBarcode_Delete);
    if (!symbol)
        throw AppError(7, QStringLiteral("Out of memory"));
    symbol->symbology = plainCode39(accession) ? BARCODE_CODE39 : BARCODE_EXCODE39;
    symbol->show_hrt = 0; // the number is drawn below in the label's own font
    symbol->whitespace_width = 10;
    const QByteArray data = accession.toLatin1();
    if (ZBarcode_Encode(symbol.get(), reinterpret_cast<const unsigned char *>(data.constData()), int(data.size())) >= ZINT_ERROR
        || ZBarcode_Buffer_Vector(symbol.get(), 0) >= ZINT_ERROR)
        throw AppError(5, QStringLiteral("The accession number '%1' cannot be printed as a barcode: %2").arg(accession, QString::fromLatin1(symbol->errtxt)));

    // The number under the bars takes a quarter of the label at most.
    QFont font = painter.font();
    const QSizeF textArea(area.width(), area.height() * 0.25);
    const double size = fittingSize(font, accession, textArea, 12.0, painter.device());
    font.setPointSizeF(size > 0 ? size : 6.0);
    const double textHeight = QFontMetricsF(font, painter.device()).height();
    const QRectF bars(area.x(), area.y(), area.width(), area.height() - textHeight);
    const zint_vector &vector = *symbol->vector;
    const double sx = bars.width() / vector.width;
    const double sy = bars.height() / vector.height;
    painter.save();
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    for (const zint_vector_rect *r = vector.rectangles; r; r = r->next)
        painter.drawRect(QRectF(bars.x() + r->x * sx, bars.y() + r->y * sy, r->width * sx, r->height * sy));
    painter.restore();
    painter.save();
    painter.setFont(font);
    painter.drawText(QRectF(area.x(), bars.bottom(), area.width(), textHeight), Qt::AlignCenter | Qt::TextWrapAnywhere, accession);
    painter.restore();
}

void LabelSheet::drawSpine(QPainter &painter, const QRectF &area, const QString &shelfNumber) const
{
    QFont font = painter.font();
    font.setBold(true);
    const double size = fittingSize(font, shelfNumber, area.size(), 28.0, painter.device());
    painter.save();
    if (size > 0) {
        font.setPointSizeF(size);
        painter.setFont(font);
        painter.drawText(area, Qt::AlignCenter, shelfNumber);
    } else {
        // Too long for one line even at 6 points: wrapped, shrinking until every line is inside.
        double wrapped = 12.0;
        QRectF needed;
        do {
            font.setPointSizeF(wrapped);
            needed = QFontMetricsF(font, painter.device()).boundingRect(area, Qt::AlignCenter | Qt::TextWrapAnywhere, shelfNumber);
            wrapped -= 0.5;
        } while (wrapped > 2.0 && (needed.height() > area.height() || needed.width() > area.width()));
        painter.setFont(font);
        painter.drawText(area, Qt::AlignCenter | Qt::TextWrapAnywhere, shelfNumber);
    }
    painter.restore();
}
