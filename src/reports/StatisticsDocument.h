#pragma once

#include "LibraryStatistics.h"
#include "PagedDocument.h"

#include <QStringList>

#include <utility>
#include <vector>

/// The statistics page as printed (report viewer: print, PDF): the charts with the figures beside them.
class StatisticsDocument : public PagedDocument {
public:
    StatisticsDocument(const LibraryStatistics &statistics, const QString &schoolName);
    QString title() const override { return QStringLiteral("Library Statistics"); }
    int pageCount(const QRectF &page, double dpi) const override;
    bool paintsOffThread() const override { return false; } // its charts are drawn by chart widgets
    void paintPage(QPainter &painter, const QRectF &page, int pageNumber) const override;

    /// Where a chart or a piece of a table goes on a page.
    enum class Area { Upper, Lower, LowerLeft, LowerRight, Whole };
    struct Slice {
        int table;       // into tables()
        int first, last; // its rows (after the caption row) on this page
        Area area;
    };
    struct Sheet {
        std::vector<std::pair<int, Area>> charts; // StatisticsCharts::Chart
        std::vector<Slice> slices;
    };

private:
    struct Table {
        QString heading;
        QStringList rows; // captions first, cells joined by '|'
    };
    std::vector<Table> tables() const;
    /// The pages: each chart page with the start of its tables, then pages that carry on the tables
    /// that did not fit (a ten-year period has 120 months).
    std::vector<Sheet> layout(const QRectF &page, double dpi) const;

    const LibraryStatistics &s_;
    QString school_;
};
