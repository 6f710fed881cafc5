#pragma once

#include "clsDataObject.h"

#include <QDialog>

#include <memory>
#include <vector>

namespace Ui {
class frmQuickFind;
}

/// "Quick Find for Libary Item": answers "is this book in?" at the counter. Finds copies by
/// accession number, author, title or keyword (the first box filled decides) and shows for each
/// whether it is on the shelf, or out with its due date and borrower.
class frmQuickFind : public QDialog {
    Q_OBJECT
public:
    explicit frmQuickFind(QWidget *parent = nullptr);
    ~frmQuickFind() override;

public Q_SLOTS:
    void cmdFind_Click();

private:
    /// Fills Status, Due Date and User of rows 1.. for the copies found (item numbers in row order).
    /// Lists the removed copies with this accession number ("Removed: Lost, 2026-11-24"); false when there is none.
    bool showRemoved(const QString &accession);
    void showAvailability(const std::vector<int> &items);

    std::unique_ptr<Ui::frmQuickFind> ui;
    clsDataObject data_;
};
