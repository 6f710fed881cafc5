#pragma once

#include "PagedDocument.h"
#include "Stocktake.h"

#include <QStringList>

/// A stocktake's result as printed: its name and date, the totals, then each list (missing, scanned
/// although removed, on loan, unknown numbers, outside the scope) with its copies.
class StocktakeReport : public PagedDocument {
public:
    StocktakeReport(const QString &schoolName, const QString &name, const QDate &date, const Stocktake::Result &result);
    QString title() const override { return QStringLiteral("Stocktake Result"); }
    int pageCount(const QRectF &page, double dpi) const override;
    void paintPage(QPainter &painter, const QRectF &page, int pageNumber) const override;
    /// The report's lines (a heading starts with "#"), in print order.
    const QStringList &lines() const { return lines_; }

private:
    int linesPerPage(const QRectF &page, double dpi) const;
    QString school_, name_;
    QDate date_;
    QStringList lines_;
};
