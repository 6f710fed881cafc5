#pragma once

#include "Stocktake.h"

#include <QDialog>

#include <memory>
#include <optional>

namespace Ui {
class frmStocktake;
}

/// "Stocktake": starts a stocktake (name, date, whole catalogue or chosen categories) or resumes the
/// open one; a barcode scanner types each accession number and Enter into one box, the scan is
/// recorded at once, the box is cleared and keeps the focus, and the counts and the copies that need
/// attention (already scanned, unknown, outside the scope, removed, on loan) are shown. A copy found
/// on the shelf although on loan is returned as the desk would. Finishing shows the result in the
/// report viewer; it exports as a workbook; the missing copies can be marked lost.
class frmStocktake : public QDialog {
    Q_OBJECT
public:
    explicit frmStocktake(QWidget *parent = nullptr);
    ~frmStocktake() override;

public Q_SLOTS:
    void Form_Load();
    void cmdStart_Click();
    void txtScan_Enter();
    void cmdReturn_Click();
    void cmdFinish_Click();
    void cmdExport_Click();
    void cmdMarkLost_Click();

private:
    void showStocktake();
    void showCounts();
    void addScanRow(const QString &kind, const QString &accession, const QString &title);
    void showExceptions();
    std::optional<Stocktake::Result> result();

    std::unique_ptr<Ui::frmStocktake> ui;
    std::optional<Stocktake> stocktake_;
};
