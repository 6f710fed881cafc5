#pragma once

#include "LabelTemplates.h"
#include "ItemCriteria.h"
#include "clsDataObject.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmLabelList;
}
class SettingsStore;

/// "Label Printing": finds catalogue items, takes the ticked ones and prints barcode labels
/// (Code 39 of the accession number) or spine labels (the shelf number) on a label stock from
/// the installed templates, starting at any label of a part-used sheet. The merge data file
/// "libdata1.txt" is written for each print, as a word processor's mail merge reads it, and
/// removed afterwards.
class frmLabelList : public QDialog {
    Q_OBJECT
public:
    /// The settings store remembers the label stock last used.
    explicit frmLabelList(SettingsStore &settings, QWidget *parent = nullptr);
    ~frmLabelList() override;

    static constexpr const char *LabelStockKey = "LabelStock";
    /// Writes the merge data file of the ticked rows into the application folder; returns its path.
    QString CreateList();

public Q_SLOTS:
    void cmdAll_Click();
    void cmdSearch_Click();
    void cmbCategory_Click();
    void chkAll_Click();
    void OrderItems(int column);
    void cmdPrint_Click();

private:
    void fill(const QString &sql);
    QStringList tickedTexts(bool barcodes) const;

    std::unique_ptr<Ui::frmLabelList> ui;
    SettingsStore &settings_;
    LabelTemplates templates_;
    clsDataObject data_;
    QString listStatement_; // the last list, without its order
    ItemCriteria criteria_;
    ItemListOrder order_;
};
