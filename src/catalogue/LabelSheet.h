#pragma once

#include "LabelTemplates.h"

#include <QStringList>

class QPainter;
class TaskProgress;
class QPrinter;

/// Draws labels onto sheets of a label stock: barcode labels carry a Code 39 barcode of the
/// accession number with the number under the bars; spine labels the shelf number in large type,
/// shrunk or wrapped to fit, never cut off. Printing can start part-way into the first sheet.
class LabelSheet {
public:
    enum Kind { Barcode, Spine };

    LabelSheet(const LabelStock &stock, Kind kind) : stock_(stock), kind_(kind) {}

    /// Sheets needed for count labels when the first is put at startPosition (1-based).
    int sheets(int count, int startPosition) const;
    /// Sets the printer's paper to the stock's and prints every text, one label each.
    /// Throws AppError when the printer cannot be used or a barcode cannot be made.
    void print(QPrinter &printer, const QStringList &texts, int startPosition) const;
    /// The same, label by label on progress; stops the print run (TaskCancelled) when it is cancelled.
    void print(QPrinter &printer, const QStringList &texts, int startPosition, TaskProgress &progress) const;
    /// Draws one label into rect (device units) of painter.
    void drawLabel(QPainter &painter, const QRectF &rect, const QString &text) const;

private:
    void drawBarcode(QPainter &painter, const QRectF &area, const QString &accession) const;
    void drawSpine(QPainter &painter, const QRectF &area, const QString &shelfNumber) const;

    LabelStock stock_;
    Kind kind_;
};
