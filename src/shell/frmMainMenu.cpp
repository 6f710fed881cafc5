#include "frmMainMenu.h"

#include "AppError.h"
#include "BackupSchedule.h"
#include "Clock.h"
#include "ConnectionPool.h"
#include "DatabaseCheck.h"
#include "Engine.h"
#include "DatabaseSchema.h"
#include "DbConnection.h"
#include "Recordset.h"
#include "SchemaUpgrade.h"
#include "ScreenRegistry.h"
#include "TaskRunner.h"
#include "SchoolDatabase.h"
#include "SettingsStore.h"
#include "ErrorReport.h"
#include "DatabaseLocations.h"
#include "frmAbout.h"
#include "frmBackups.h"
#include "modExtendedMsgBox.h"

#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QShowEvent>
#include <QVBoxLayout>

#include <memory>
#include <optional>


namespace {

const QString Location = QStringLiteral("frmMainMenu");
const QString NotALibrary = DatabaseCheck::notALibraryText();

QGroupBox *frame(const char *name, const QString &caption, QWidget *parent)
{
    auto *box = new QGroupBox(caption, parent);
    box->setObjectName(QLatin1String(name));
    new QVBoxLayout(box);
    return box;
}

} // namespace

frmMainMenu::frmMainMenu(SettingsStore &settings, const ScreenRegistry &screens, QWidget *parent)
    : QWidget(parent), settings_(settings), screens_(screens)
{
    setObjectName(QStringLiteral("frmMainMenu"));
    setWindowTitle(QStringLiteral("Shelvora"));

    Label1 = new QLabel(QStringLiteral("Shelvora"), this);
    Label1->setObjectName(QStringLiteral("Label1"));
    QFont title = Label1->font();
    title.setPointSizeF(title.pointSizeF() * 2.2);
    title.setBold(true);
    Label1->setFont(title);
    lblSchool = new QLabel(this);
    lblSchool->setObjectName(QStringLiteral("lblSchool"));

    Frame3 = frame("Frame3", QStringLiteral("Library Catalogue"), this);
    cmdItems = menuButton(Frame3, "cmdItems", QStringLiteral("Maintain Catalogue Items"), QStringLiteral("frmItemList"));
    cmdCategories = menuButton(Frame3, "cmdCategories", QStringLiteral("Maintain Item Categories"), QStringLiteral("frmCategories"));
    cmdSubjectcodes = menuButton(Frame3, "cmdSubjectcodes", QStringLiteral("Maintain Subject Classification"), QStringLiteral("frmSubjectsList"));
    cmdKeywordList = menuButton(Frame3, "cmdKeywordList", QStringLiteral("Maintain Search Keywords"), QStringLiteral("frmKeywordList"));
    cmdAuthors = menuButton(Frame3, "cmdAuthors", QStringLiteral("Maintain Authors"), QStringLiteral("frmAuthor"));
    cmdPublisher = menuButton(Frame3, "cmdPublisher", QStringLiteral("Maintain Publishers"), QStringLiteral("frmPublisher"));
    cmdSeries = menuButton(Frame3, "cmdSeries", QStringLiteral("Maintain Series"), QStringLiteral("frmSeries"));
    cmdLanguage = menuButton(Frame3, "cmdLanguage", QStringLiteral("Maintain Languages"), QStringLiteral("frmLanguages"));

    Frame7 = frame("Frame7", QStringLiteral("Issue System"), this);
    Frame4 = new QGroupBox(Frame7);
    Frame4->setObjectName(QStringLiteral("Frame4"));
    auto *period = new QHBoxLayout(Frame4);
    optNormal = new QRadioButton(QStringLiteral("Normal Period"), Frame4);
    optNormal->setObjectName(QStringLiteral("optNormal"));
    optLong = new QRadioButton(QStringLiteral("Holiday period"), Frame4);
    optLong->setObjectName(QStringLiteral("optLong"));
    optNormal->setChecked(true);
    period->addWidget(optNormal);
    period->addWidget(optLong);
    Frame7->layout()->addWidget(Frame4);
    cmdissues = new QPushButton(QStringLiteral("Issues and Returns"), Frame7);
    cmdissues->setObjectName(QStringLiteral("cmdissues"));
    cmdissues->setMinimumHeight(40);
    Frame7->layout()->addWidget(cmdissues);
    connect(cmdissues, &QPushButton::clicked, this, &frmMainMenu::cmdissues_Click);
    cmdReserve = menuButton(Frame7, "cmdReserve", QStringLiteral("Reservations"), QStringLiteral("frmReserves"));
    cmdViewReservation = menuButton(Frame7, "cmdViewReservation", QStringLiteral("View Reservations"), QStringLiteral("frmReservedItems"));
    cmdFines = menuButton(Frame7, "cmdFines", QStringLiteral("Fine Transactions"), QStringLiteral("frmFinePayment"));
    cmdQuickFind = menuButton(Frame7, "cmdQuickFind", QStringLiteral("Item Quick Find"), QStringLiteral("frmQuickFind"));

    Frame2 = frame("Frame2", QStringLiteral("Users"), this);
    cmdlearners = menuButton(Frame2, "cmdlearners", QStringLiteral("Library User Records"), QStringLiteral("frmLibraryUsers"));
    Frame5 = frame("Frame5", QStringLiteral("Reports"), this);
    Command2 = menuButton(Frame5, "Command2", QStringLiteral("Reports"), QStringLiteral("frmLibraryReport"));
    cmdLabels = menuButton(Frame5, "cmdLabels", QStringLiteral("Labels"), QStringLiteral("frmLabelList"));
    cmdOverdueNotices = menuButton(Frame5, "cmdOverdueNotices", QStringLiteral("Overdue Notices"), QStringLiteral("frmOverdueNotices"));
    cmdStatistics = menuButton(Frame5, "cmdStatistics", QStringLiteral("Library Statistics"), QStringLiteral("frmLibraryStatistics"));
    cmdStocktake = menuButton(Frame3, "cmdStocktake", QStringLiteral("Stocktake"), QStringLiteral("frmStocktake"));
    cmdMarc = menuButton(Frame3, "cmdMarc", QStringLiteral("MARC Records"), QStringLiteral("frmMarcImport"));
    Frame6 = frame("Frame6", QStringLiteral("System Settings"), this);
    cmdSettings = menuButton(Frame6, "cmdSettings", QStringLiteral("General Settings"), QStringLiteral("frmSystemSettings"));

    Frame1 = new QGroupBox(QStringLiteral("Library database"), this);
    Frame1->setObjectName(QStringLiteral("Frame1"));
    auto *databaseRow = new QHBoxLayout(Frame1);
    txtDatabase = new QLineEdit(Frame1);
    txtDatabase->setObjectName(QStringLiteral("txtDatabase"));
    txtDatabase->setReadOnly(true);
    cmdBrowse = new QPushButton(QStringLiteral("Browse for Library Database"), Frame1);
    cmdBrowse->setObjectName(QStringLiteral("cmdBrowse"));
    cmdDatabases = new QPushButton(QStringLiteral("Databases..."), Frame1);
    cmdDatabases->setObjectName(QStringLiteral("cmdDatabases"));
    cmdCompact = new QPushButton(QStringLiteral("Compact Library Database"), Frame1);
    cmdCompact->setObjectName(QStringLiteral("cmdCompact"));
    databaseRow->addWidget(txtDatabase, 1);
    databaseRow->addWidget(cmdBrowse);
    databaseRow->addWidget(cmdDatabases);
    databaseRow->addWidget(cmdCompact);
    connect(cmdBrowse, &QPushButton::clicked, this, &frmMainMenu::cmdBrowse_Click);
    connect(cmdDatabases, &QPushButton::clicked, this, &frmMainMenu::cmdDatabases_Click);
    connect(cmdCompact, &QPushButton::clicked, this, &frmMainMenu::cmdCompact_Click);

    Frame8 = frame("Frame8", QStringLiteral("Backups"), this);
    lblBackup = new QLabel(Frame8);
    lblBackup->setObjectName(QStringLiteral("lblBackup"));
    lblBackup->setWordWrap(true);
    Frame8->layout()->addWidget(lblBackup);
    auto *backupRow = new QHBoxLayout;
    cmdBackup = new QPushButton(QStringLiteral("Back Up Now"), Frame8);
    cmdBackup->setObjectName(QStringLiteral("cmdBackup"));
    cmdRestore = new QPushButton(QStringLiteral("Restore from Backup..."), Frame8);
    cmdRestore->setObjectName(QStringLiteral("cmdRestore"));
    backupRow->addWidget(cmdBackup);
    backupRow->addWidget(cmdRestore);
    backupRow->addStretch(1);
    static_cast<QVBoxLayout *>(Frame8->layout())->addLayout(backupRow);
    Frame8->setEnabled(false);
    connect(cmdBackup, &QPushButton::clicked, this, &frmMainMenu::cmdBackup_Click);
    connect(cmdRestore, &QPushButton::clicked, this, &frmMainMenu::cmdRestore_Click);

    cmdAbout = new QPushButton(QStringLiteral("About Form"), this);
    cmdAbout->setObjectName(QStringLiteral("cmdAbout"));
    cmdDone = new QPushButton(QStringLiteral("Done"), this);
    cmdDone->setObjectName(QStringLiteral("cmdDone"));
    connect(cmdAbout, &QPushButton::clicked, this, [this] { frmAbout(this).exec(); });
    connect(cmdDone, &QPushButton::clicked, this, &QWidget::close);

    auto *root = new QVBoxLayout(this);
    root->addWidget(Label1);
    root->addWidget(lblSchool);
    auto *grid = new QGridLayout;
    grid->addWidget(Frame3, 0, 0, 3, 1);
    grid->addWidget(Frame7, 0, 1, 3, 1);
    grid->addWidget(Frame2, 0, 2);
    grid->addWidget(Frame5, 1, 2);
    grid->addWidget(Frame6, 2, 2);
    root->addLayout(grid);
    root->addWidget(Frame1);
    root->addWidget(Frame8);
    auto *footer = new QHBoxLayout;
    footer->addStretch(1);
    footer->addWidget(cmdAbout);
    footer->addWidget(cmdDone);
    root->addLayout(footer);
}

QPushButton *frmMainMenu::menuButton(QGroupBox *frame, const char *name, const QString &caption, const QString &screen)
{
    auto *button = new QPushButton(caption, frame);
    button->setObjectName(QLatin1String(name));
    button->setMinimumHeight(32);
    frame->layout()->addWidget(button);
    connect(button, &QPushButton::clicked, this, [this, screen, caption] { screens_.open(screen, caption, this); });
    return button;
}

void frmMainMenu::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    Q_EMIT shown();
}

void frmMainMenu::Form_Load()
{
    Trap(Location, QStringLiteral("Form_Load"), [&] {
        // A first start (nothing chosen yet, or a chosen file gone) begins with the setup screen.
        auto missing = [](const QString &location) {
            return location.isEmpty() || !EngineRegistry::installed().refusal(location).isEmpty();
        };
        if (!setupShown_ && screens_.has(QStringLiteral("frmDatabases"))
            && (missing(settings_.value(QLatin1String(SettingsStore::LibraryDatabaseKey)))
                || missing(settings_.value(QLatin1String(SettingsStore::CentralDatabaseKey))))) {
            setupShown_ = true;
            std::unique_ptr<QDialog> setup(screens_.make(QStringLiteral("frmDatabases"), this));
            setup->exec();
        }
        CentralDatabasePath = settings_.value(QLatin1String(SettingsStore::CentralDatabaseKey));
        LibraryDatabasePath = settings_.value(QLatin1String(SettingsStore::LibraryDatabaseKey));
        readSchoolName();
        bool opened = false;
        try {
            opened = data_.ConOpen();
        } catch (const AppError &e) {
            // A library server that cannot be reached: said once, naming it and why; the settings stay.
            if (e.cause() != AppError::Cause::Unreachable)
                throw;
            enableMenu(false, false);
            if (!screens_.has(QStringLiteral("frmDatabases"))) {
                UserMessage(e.description());
                return;
            }
            if (UserQuestion(e.description() + QStringLiteral("\n\nDo you want to choose the databases now (\"Databases...\")?")))
                cmdDatabases_Click();
            return;
        }
        if (!opened) {
            enableMenu(false);
            return;
        }
        data_.ConClose();
        // However the path came in (settings file, --library), only a library database is used.
        if (!isLibraryDatabase()) {
            UserMessage(NotALibrary);
            enableMenu(false);
            return;
        }
        enableMenu(true);
        upgradeStructure();
        libraryOpen_ = true;
        Frame8->setEnabled(true);
        // A library not backed up for a day is backed up before the day's work starts.
        if (BackupSchedule(settings_, LibraryDatabasePath).dueAtStart(Clock::now()))
            backUp(true);
        showBackupStatus();
    });
}

void frmMainMenu::readSchoolName()
{
    SchoolName.clear();
    try {
        const auto rs = SchoolQuery(QStringLiteral("Select schoolname from general_info"));
        if (!rs->atEnd())
            SchoolName = rs->field(QStringLiteral("schoolname")).toString();
    } catch (const AppError &e) {
        // The failed open was reported (a server that cannot be reached is said here); start-up goes on without the name.
        if (e.cause() == AppError::Cause::Unreachable)
            UserMessage(e.description());
    }
    lblSchool->setText(SchoolName);
}

void frmMainMenu::enableMenu(bool enabled, bool askToBrowse)
{
    libraryOpen_ = libraryOpen_ && enabled;
    Frame8->setEnabled(libraryOpen_);
    for (QGroupBox *box : {Frame3, Frame7, Frame6, Frame2, Frame5})
        box->setEnabled(enabled);
    if (!enabled && askToBrowse)
        UserMessage(QStringLiteral("Please browse for your Library Database."));
}

void frmMainMenu::showLibraryLocation(const QString &location)
{
    // A server address is long; the box widens to show all of it and starts at its beginning.
    txtDatabase->setText(location);
    txtDatabase->setToolTip(location);
    txtDatabase->setMinimumWidth(txtDatabase->fontMetrics().horizontalAdvance(location) + 16);
    txtDatabase->setCursorPosition(0);
}

void frmMainMenu::upgradeStructure()
{
    // The upgrades write: they run on a library database only, never on another file the path may name.
    const bool library = data_.TableExist(QStringLiteral("select ItemID from tblLibItems"));
    data_.ConClose();
    showLibraryLocation(LibraryDatabasePath);
    if (!library)
        return;
    ConnectionPool::shared().keepReadOnly(LibraryDatabasePath, false);
    const SchemaUpgrade::Outcome outcome = SchemaUpgrade::run(LibraryDatabasePath);
    if (outcome.kind == SchemaUpgrade::Outcome::Newer)
        ConnectionPool::shared().keepReadOnly(LibraryDatabasePath);
    const QString message = SchemaUpgrade::message(outcome);
    if (!message.isEmpty())
        UserMessage(message);
}

bool frmMainMenu::isLibraryDatabase()
{
    bool isLibrary = true;
    // Read only: finding out what the file is must not change it.
    const std::unique_ptr<DbConnection> library = OpenLibraryDatabase(true);
    try {
        library->ExecuteCommand(QStringLiteral("Select * from tblLibItems"));
    } catch (const AppError &) {
        isLibrary = false;
    }
    return isLibrary;
}

void frmMainMenu::cmdBrowse_Click()
{
    const QString file = ShowOpenFileDialog(this, QStringLiteral("Browse for Library Database"),
                                            QStringLiteral("Database Files (*.db *.sqlite *.sqlite3 *.mdb);;All Files (*)"));
    if (file.isEmpty())
        return;
    // The path is taken before the test, and kept even when the file is refused.
    LibraryDatabasePath = file;
    if (!isLibraryDatabase()) {
        UserMessage(NotALibrary);
        return;
    }
    settings_.setValue(QLatin1String(SettingsStore::LibraryDatabaseKey), file);
    showLibraryLocation(file);
    Form_Load();
}

void frmMainMenu::cmdDatabases_Click()
{
    if (!screens_.has(QStringLiteral("frmDatabases")))
        return;
    std::unique_ptr<QDialog> setup(screens_.make(QStringLiteral("frmDatabases"), this));
    if (setup->exec() == QDialog::Accepted)
        Form_Load(); // the chosen databases, checked and upgraded as at start-up
}

void frmMainMenu::cmdCompact_Click()
{
    const QString work = QDir(ApplicationFolder()).filePath(QStringLiteral("library/compact"));
    Trap(Location, QStringLiteral("cmdCompact_Click"), [&] {
        const Engine &engine = EngineRegistry::installed().forLocation(LibraryDatabasePath);
        // A server database is not a file to copy: the server reclaims space and refreshes its statistics in place.
        if (!engine.isFile()) {
            data_.CloseCompact();
            TaskRunner(this, QStringLiteral("Compacting the library database...")).run([&](TaskProgress &) {
                engine.compact(LibraryDatabasePath, QString());
            });
            UserMessage(QStringLiteral("The library database on the server has been compacted (VACUUM ANALYZE): free space is reused "
                                       "and the server's statistics are up to date."));
            return;
        }
        if (!UserQuestion(QStringLiteral("Please make sure that you have backed up your database before performing this action. "
                                         "Are you sure you want to continue?")))
            return;
        data_.CloseCompact();
        QDir(work).removeRecursively();
        QDir().mkpath(work);
        const QString copy = QDir(work).filePath(QStringLiteral("copy.mdb"));
        // The copy is written beside the library; until the librarian says to use it nothing has changed.
        Engine::Compaction sizes;
        if (!TaskRunner(this, QStringLiteral("Compacting the library database..."), TaskRunner::Cancel::Yes).run([&](TaskProgress &progress) {
                sizes = engine.compact(LibraryDatabasePath, copy);
                progress.check();
            })) {
            QDir(work).removeRecursively();
            return;
        }
        const bool useCopy = UserQuestion(QStringLiteral("Your database has been compacted from ")
                                          + NumberText(double(Engine::Compaction::kilobytes(sizes.before))) + QStringLiteral("kb to ")
                                          + NumberText(double(Engine::Compaction::kilobytes(sizes.after))) + QStringLiteral("kb")
                                          + QStringLiteral("\r\n") + QStringLiteral("Do you want to use the compacted database?"));
        // Putting the copy in place, or deleting a file the library's size, can take longer than the window may wait.
        const bool done = TaskRunner(this, QStringLiteral("Compacting the library database...")).run([&](TaskProgress &) {
            if (useCopy)
                engine.replace(LibraryDatabasePath, copy);
            QDir(work).removeRecursively();
        });
        if (done)
            UserMessage(useCopy ? QStringLiteral("Your database has been compacted") : QStringLiteral("Your old database has been restored"));
    }, [&] { QDir(work).removeRecursively(); });
}

void frmMainMenu::cmdissues_Click()
{
    Trap(Location, QStringLiteral("cmdissues_Click"), [&] {
        const int rows = data_.GetData(QStringLiteral("Select * from tblLibSettings"));
        data_.CloseCompact();
        if (rows < 1) {
            UserMessage(QStringLiteral("Please enter library settings to continue."));
            return;
        }
        screens_.open(QStringLiteral("frmIssueSystem"), cmdissues->text(), this, ScreenOptions{optLong->isChecked()});
    });
}

bool frmMainMenu::backUp(bool automatic)
{
    BackupSchedule schedule(settings_, LibraryDatabasePath);
    data_.CloseCompact();
    std::optional<LibraryBackup::Taken> taken;
    try {
        taken = TaskRunner(this, QStringLiteral("Backing up the library..."), TaskRunner::Cancel::Yes)
                    .compute<LibraryBackup::Taken>([&](TaskProgress &progress) { return schedule.run(Clock::now(), progress); });
    } catch (const AppError &) {
        // Recorded by the schedule: the status line warns, and the next backup tries again.
    }
    showBackupStatus();
    // An automatic backup's failure is told once; the librarian's own is always answered.
    const QString failure = schedule.untoldFailure();
    if (!taken || !taken->secondProblem.isEmpty()) {
        const QString status = lblBackup->text();
        if (!automatic)
            UserMessage(taken ? QStringLiteral("The library is backed up, but not into the second folder: ") + taken->secondProblem : status);
        else if (!failure.isEmpty())
            UserMessage(QStringLiteral("The library could not be backed up: ") + failure
                        + QStringLiteral("\n\nThe next backup will try again; \"Restore from Backup...\" lets you choose the folders."));
        return false;
    }
    if (!automatic)
        UserMessage(QStringLiteral("The library is backed up: %1 (%2 items, %3 open loans, %4 members with fines).")
                        .arg(QDir::toNativeSeparators(taken->file))
                        .arg(taken->figures.items)
                        .arg(taken->figures.openLoans)
                        .arg(taken->figures.membersWithFines));
    return true;
}

void frmMainMenu::showBackupStatus()
{
    const BackupSchedule::Status status = BackupSchedule(settings_, LibraryDatabasePath).status(Clock::now());
    lblBackup->setText(status.text);
    lblBackup->setProperty("warning", status.warning);
    lblBackup->setStyleSheet(status.warning ? QStringLiteral("color: #a00000; font-weight: bold;") : QString());
}

void frmMainMenu::cmdBackup_Click()
{
    if (libraryOpen_)
        backUp(false);
}

void frmMainMenu::cmdRestore_Click()
{
    if (!libraryOpen_)
        return;
    data_.CloseCompact();
    frmBackups backups(settings_, LibraryDatabasePath, this);
    backups.Form_Load();
    backups.exec();
    if (backups.restored())
        Form_Load(); // the restored library is checked (and its structure brought up to date) as at start-up
    else
        showBackupStatus(); // the folders may have changed
}

void frmMainMenu::closeEvent(QCloseEvent *event)
{
    if (libraryOpen_ && !TaskRunner::busy() && BackupSchedule(settings_, LibraryDatabasePath).dueAtClose())
        backUp(true);
    QWidget::closeEvent(event);
}
