#pragma once

#include <QDialog>

#include <functional>
#include <memory>

class SettingsStore;

namespace Ui {
class frmDatabases;
}

/// "Databases": where the library database is (a new empty library, an existing file or a server
/// address), where the school administration database is, and the program folder (where learner
/// photos are read from), or the demo school. Each choice is checked as start-up checks it, and
/// the settings are written only when both databases work. Shown on the first start and from the
/// main menu.
class frmDatabases : public QDialog {
    Q_OBJECT
public:
    /// demoSchool gives the folder holding the demo school (library.db, central.db, LearnerPhotos),
    /// writing it first when it is not there yet; it throws AppError when it cannot.
    frmDatabases(SettingsStore &settings, std::function<QString()> demoSchool, QWidget *parent = nullptr);
    ~frmDatabases() override;

public Q_SLOTS:
    void cmdNewLibrary_Click();
    void cmdOpenLibrary_Click();
    void cmdOpenSchool_Click();
    void cmdChooseFolder_Click();
    void cmdDemo_Click();
    void cmdSave_Click();

private:
    void showPhotoFolder();

    std::unique_ptr<Ui::frmDatabases> ui;
    SettingsStore &settings_;
    std::function<QString()> demoSchool_;
};
