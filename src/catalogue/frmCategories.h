#pragma once

#include "clsDataObject.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmCategories;
}
class QTreeWidgetItem;

/// "Maintain Stock Categories": the two-level classification of stock in a tree, with adding,
/// renaming and phasing out at either level. The box last worked in decides the level.
class frmCategories : public QDialog {
    Q_OBJECT
public:
    explicit frmCategories(QWidget *parent = nullptr);
    ~frmCategories() override;

    /// 0 nothing chosen, 1 a category, 2 a sub-category.
    int level() const { return level_; }

public Q_SLOTS:
    void LoadTree();
    void cboCategory_Click();
    void tvwCategories_NodeClick(QTreeWidgetItem *node);
    void cmdCatAdd_Click();
    void cmdCatUpdate_Click();
    void cmdCatDelete_Click();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void fillTree(const QString &categories, const QString &subCategories);
    void afterChange();
    bool linked(const QString &sql);

    std::unique_ptr<Ui::frmCategories> ui;
    clsDataObject data_;
    int categoryID_ = 0;
    int subCategoryID_ = 0;
    int level_ = 0;
};
