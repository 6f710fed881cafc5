#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>

#include <vector>

/// One label stock: a sheet of equal rectangular labels as the glabels templates describe it.
/// Lengths are in points (1/72 inch).
struct LabelStock {
    QString name;        // brand and part, "Avery L7160"
    QString description;
    QString paper;       // "A4" or "US-Letter"
    QSizeF page;
    QSizeF label;
    double margin = 0;   // kept clear inside each label
    int columns = 0;
    int rows = 0;
    QPointF origin;      // top left of the first label
    QSizeF pitch;        // from one label to the next, across and down
    int perSheet() const { return columns * rows; }
    /// The rectangle of the label at a 0-based position on the sheet (across, then down).
    QRectF labelRect(int position) const;
};

/// The label stocks installed with glabels' templates (Debian's glabels-data): rectangular labels
/// on A4 or US Letter sheets, one layout a sheet. Equivalent part numbers name the same stock.
class LabelTemplates {
public:
    /// Where glabels-data installs its templates.
    static QString defaultFolder();
    explicit LabelTemplates(const QString &folder = defaultFolder());

    const std::vector<LabelStock> &stocks() const { return stocks_; }
    /// The stock of that name ("Avery L7160"), or null when the templates do not hold it.
    const LabelStock *find(const QString &name) const;

private:
    void readFile(const QString &path);
    std::vector<LabelStock> stocks_;
};

/// A glabels length ("2.625in", "63.5mm", "181.4" in points) in points; 0 when it cannot be read.
double glabelsLength(const QString &text);
