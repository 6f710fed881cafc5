#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class frmRecordSources;
}

/// "Record Sources": the catalogues "Find by ISBN..." searches (name, address, Z39.50 or SRU,
/// record syntax, timeout, on or off), edited in one grid and saved together.
class frmRecordSources : public QDialog {
    Q_OBJECT
public:
    explicit frmRecordSources(QWidget *parent = nullptr);
    ~frmRecordSources() override;

public Q_SLOTS:
    void cmdAddSource_Click();
    void cmdSave_Click();

private:
    void Form_Load();

    std::unique_ptr<Ui::frmRecordSources> ui;
};
