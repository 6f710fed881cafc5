#pragma once

#include "LibraryStatistics.h"
#include "PagedDocument.h"

/// The statistics page as printed (report viewer: print, PDF): the charts with the figures beside them.
class StatisticsDocument : public PagedDocument {
public:
    StatisticsDocument(const LibraryStatistics &statistics, const QString &schoolName);
    QString title() const override { return QStringLiteral("Library Statistics"); }
    int pageCount(const QRectF &page, double dpi) const override;
    void paintPage(QPainter &painter, const QRectF &page, int pageNumber) const override;

private:
    const LibraryStatistics &s_;
    QString school_;
};
