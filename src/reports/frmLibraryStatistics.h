#pragma once

#include "LibraryStatistics.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmLibraryStatistics;
}
class QChartView;
class SpreadGrid;

/// "Library Statistics": how the library was used in a period (the last twelve months unless
/// chosen): loans per month by member kind, by grade and class, the most borrowed titles and most
/// active classes, the copies not borrowed (the weeding candidates), overdue rate and fines per
/// month. Charts save as PNG, figures as workbooks, the whole page prints or saves as PDF.
class frmLibraryStatistics : public QDialog {
    Q_OBJECT
public:
    explicit frmLibraryStatistics(QWidget *parent = nullptr);
    ~frmLibraryStatistics() override;

    const LibraryStatistics &statistics() const { return statistics_; }

public Q_SLOTS:
    void cmdShow_Click();
    void cmdSaveCharts_Click();
    void cmdExportFigures_Click();
    void cmdExportUnborrowed_Click();
    void cmdPrint_Click();

private:
    void fillGrids();
    void fillCharts();
    bool shown() const;

    std::unique_ptr<Ui::frmLibraryStatistics> ui;
    LibraryStatistics statistics_;
    std::vector<QChartView *> views_;
};
