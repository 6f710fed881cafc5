#pragma once

#include "PagedDocument.h"

#include <QString>
#include <QStringList>

#include <vector>

class QPainter;
class QRectF;
class Recordset;

/// One of the nine report definitions: its name, title, the fields of its statement it shows,
/// whether it groups learners by class, and whether it carries the period heading.
struct ReportDefinition {
    QString name;  // crdIssuedItems ...
    QString title; // "Issued Items" ...
    std::vector<std::pair<QString, QString>> columns; // caption, statement field ("mName": the member's name)
    bool byClass = false;
    bool periodHeading = false;

    /// The definition of a name ("crdFinesPaidByClass"); an empty definition for an unknown one.
    static ReportDefinition named(const QString &name);
};

/// A report ready to show: its definition, headings and rows (grouped by class when the definition
/// does so), laid out on pages and drawn by Qt: a page header with the school's name and the
/// report's title, the period heading where the definition has one, a table of the fields with the
/// member's name, a count per class in the by-class reports, and "Page n of m" at the foot. Money
/// shows two decimals, right-aligned; the fines reports total each class and the whole report.
class LibraryReport : public PagedDocument {
public:
    LibraryReport() = default;
    LibraryReport(ReportDefinition definition, const QString &schoolName, const QString &periodHeading);

    /// Adds a row: the statement's fields by name, with the member's name and class.
    void addRow(const Recordset &rs, const QString &memberName, const QString &className);
    /// Puts the rows in class order (by-class definitions; the order within a class is kept) and lays
    /// out the report's lines; call once every row is added.
    void finish();

    const ReportDefinition &definition() const { return definition_; }
    QString title() const override { return definition_.title; }
    const QString &periodHeading() const { return periodHeading_; }
    int rowCount() const { return int(rows_.size()); }
    /// A row's cells as shown, in column order.
    const QStringList &row(int index) const { return rows_[size_t(index)].cells; }
    const QString &classOf(int index) const { return rows_[size_t(index)].className; }
    /// The report's lines after the rows' own: class headings, counts and totals, in print order.
    QStringList summaryLines() const;

    /// Pages needed for a page area (device units of the painter's device at that resolution).
    int pageCount(const QRectF &page, double dpi) const override;
    /// Draws one page (1-based).
    void paintPage(QPainter &painter, const QRectF &page, int pageNumber) const override;

private:
    struct Row {
        QStringList cells;
        QString className;
    };
    // One line of the laid-out report: a class heading, a row, or a class count.
    struct Line {
        enum Kind { ClassHeading, Detail, ClassCount, ClassTotal, ReportTotal } kind;
        int index; // row index, or the class's first row for headings and counts
        int count;
    };
    void layOut();
    /// The column holding a money amount, or -1.
    int moneyColumn() const;
    /// The sum of the money column over rows [first, first + count).
    QString total(int first, int count) const;
    QString summaryText(const Line &line) const;
    int linesPerPage(const QRectF &page, double dpi) const;

    ReportDefinition definition_;
    QString schoolName_;
    QString periodHeading_;
    std::vector<Row> rows_;
    std::vector<Line> lines_; // laid out by finish()
};
