#pragma once

#include "clsDataObject.h"

#include <QWidget>

class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class ScreenRegistry;
class SettingsStore;

/// The start-up screen and hub: finds the two databases, reads the school's
/// name, checks and upgrades the library database, and opens every other
/// screen. Closing it ends the program.
class frmMainMenu : public QWidget {
    Q_OBJECT
public:
    frmMainMenu(SettingsStore &settings, const ScreenRegistry &screens, QWidget *parent = nullptr);

    /// The load handler: paths, school name, library check, enabling, structure upgrades.
    void Form_Load();
    void cmdBrowse_Click();
    /// Takes a PostgreSQL server address (postgresql://user@host:port/database) as the library database.
    /// "Databases...": the setup screen, then start-up again on what was chosen.
    void cmdDatabases_Click();
    void cmdCompact_Click();
    void cmdissues_Click();
    /// "Back Up Now": a backup into the backup folder(s), with progress.
    void cmdBackup_Click();
    /// "Restore from Backup...": the backups screen; a restore opens the library afresh.
    void cmdRestore_Click();

    // Users
    QGroupBox *Frame2;
    QPushButton *cmdlearners;
    // Issue System
    QGroupBox *Frame7;
    QPushButton *cmdFines, *cmdReserve, *cmdQuickFind, *cmdViewReservation, *cmdissues;
    QGroupBox *Frame4;
    QRadioButton *optLong, *optNormal;
    // System Settings
    QGroupBox *Frame6;
    QPushButton *cmdSettings;
    // Reports
    QGroupBox *Frame5;
    QPushButton *cmdLabels, *Command2, *cmdOverdueNotices, *cmdStatistics, *cmdStocktake;
    // Library Catalogue
    QGroupBox *Frame3;
    QPushButton *cmdKeywordList, *cmdLanguage, *cmdItems, *cmdSubjectcodes, *cmdCategories, *cmdSeries, *cmdPublisher, *cmdAuthors, *cmdMarc;
    // The library database
    QGroupBox *Frame1;
    QPushButton *cmdCompact, *cmdBrowse, *cmdDatabases;
    QLineEdit *txtDatabase;
    QLabel *Label1;
    QLabel *lblSchool;
    // Backups
    QGroupBox *Frame8;
    QLabel *lblBackup;
    QPushButton *cmdBackup, *cmdRestore;
    QPushButton *cmdAbout, *cmdDone;

Q_SIGNALS:
    /// Emitted once the menu has been shown (start-up timing).
    void shown();

protected:
    void showEvent(QShowEvent *event) override;
    /// A day's changes are backed up as the menu closes.
    void closeEvent(QCloseEvent *event) override;

private:
    QPushButton *menuButton(QGroupBox *frame, const char *name, const QString &caption, const QString &screen);
    void readSchoolName();
    /// Whether LibraryDatabasePath names a library database (looked at read only).
    bool isLibraryDatabase();
    void enableMenu(bool enabled, bool askToBrowse = true);
    void showLibraryLocation(const QString &location);
    void upgradeStructure();
    /// Takes a backup through the task runner; false when it failed (said once when automatic).
    bool backUp(bool automatic);
    void showBackupStatus();

    clsDataObject data_;
    SettingsStore &settings_;
    const ScreenRegistry &screens_;
    bool setupShown_ = false; // the first-start setup screen is offered once a run
    bool libraryOpen_ = false; // the library checked and open for work: backups may run
};
