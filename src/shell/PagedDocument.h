#pragma once

#include <QFont>
#include <QString>

class QPainter;
class QRectF;

/// A document drawn by Qt page by page: what the report viewer shows, prints and saves as PDF.
class PagedDocument {
public:
    virtual ~PagedDocument() = default;
    /// The viewer's window title.
    virtual QString title() const = 0;
    /// Pages needed for a page area (device units of the painter's device at that resolution).
    virtual int pageCount(const QRectF &page, double dpi) const = 0;
    /// Draws one page (1-based).
    virtual void paintPage(QPainter &painter, const QRectF &page, int pageNumber) const = 0;
    /// Whether the pages may be drawn on a worker thread (text and lines only; charts are widgets and may not).
    virtual bool paintsOffThread() const { return true; }
};

/// The printed pages' lettering: plain text, bold headings, and the big bold title.
struct PageFonts {
    QFont plain, bold, big;
    explicit PageFonts(double plainPoints = 9, double bigPoints = 13) : plain(QStringLiteral("Sans Serif"))
    {
        plain.setPointSizeF(plainPoints);
        bold = plain;
        bold.setBold(true);
        big = bold;
        big.setPointSizeF(bigPoints);
    }
};

/// The height of one printed line (12 points) at a resolution.
inline double PrintLineHeight(double dpi) { return 12.0 / 72.0 * dpi; }
