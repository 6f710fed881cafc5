#pragma once

#include "LibraryBackup.h"

#include <QDialog>

#include <memory>

class SettingsStore;

namespace Ui {
class frmBackups;
}

/// "Backups": the folders backups go to, and the backups in the first one with what each holds;
/// restoring one (or another file) puts the library back as it was then, after the library as it
/// is now has been set aside. Opened from the main menu's "Restore from Backup...".
class frmBackups : public QDialog {
    Q_OBJECT
public:
    frmBackups(SettingsStore &settings, QString library, QWidget *parent = nullptr);
    ~frmBackups() override;

    /// Whether a restore went through (the main menu then opens the library afresh).
    bool restored() const { return restored_; }

public Q_SLOTS:
    void Form_Load();
    void cmdChooseFolder_Click();
    void cmdChooseSecondFolder_Click();
    void cmdSaveFolders_Click();
    void cmdRestore_Click();
    void cmdOtherFile_Click();

private:
    /// Asks, restores file and tells how it went.
    void restoreFrom(const QString &file, const QString &taken, const LibraryFigures &figures);

    std::unique_ptr<Ui::frmBackups> ui;
    SettingsStore &settings_;
    QString library_;
    struct Listed {
        LibraryBackup::Entry entry;
        LibraryFigures figures;
    };
    std::vector<Listed> listed_;
    bool restored_ = false;
};
