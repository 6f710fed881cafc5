#pragma once

#include "clsDataObject.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmSystemSettings;
}

/// "Library System Settings": the loan rules of every loan type and user category, and the
/// issue restrictions, kept in tblLibSettings (one row per loan type and category).
class frmSystemSettings : public QDialog {
    Q_OBJECT
public:
    explicit frmSystemSettings(QWidget *parent = nullptr);
    ~frmSystemSettings() override;

public Q_SLOTS:
    void GetSettings();
    void cmdSave_Click();
    void cmdprint_Click();
    void cmdDone_Click();
    /// Escape leaves as "Done" does.
    void reject() override;

private:
    void layOutGrid();

    std::unique_ptr<Ui::frmSystemSettings> ui;
    clsDataObject data_;
    bool unsaved_ = false;
};
