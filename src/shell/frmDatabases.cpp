#include "frmDatabases.h"
#include "ui_frmDatabases.h"

#include "AppError.h"
#include "DatabaseCheck.h"
#include "DatabaseSchema.h"
#include "SettingsStore.h"
#include "TypedFields.h"
#include "ErrorReport.h"
#include "modExtendedMsgBox.h"

#include <QDir>
#include <QFileInfo>

namespace {
const QString Location = QStringLiteral("frmDatabases");
const QString DatabaseFiles = QStringLiteral("Database Files (*.db *.sqlite *.sqlite3 *.mdb);;All Files (*)");
} // namespace

frmDatabases::frmDatabases(SettingsStore &settings, std::function<QString()> demoSchool, QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::frmDatabases>()), settings_(settings), demoSchool_(std::move(demoSchool))
{
    ui->setupUi(this);
    GuardTypedFields(this);
    ui->txtLibrary->setText(settings_.value(QLatin1String(SettingsStore::LibraryDatabaseKey)));
    ui->txtSchool->setText(settings_.value(QLatin1String(SettingsStore::CentralDatabaseKey)));
    ui->txtProgramFolder->setText(ApplicationFolder());
    showPhotoFolder();
    connect(ui->txtProgramFolder, &QLineEdit::textChanged, this, &frmDatabases::showPhotoFolder);
    connect(ui->cmdNewLibrary, &QPushButton::clicked, this, &frmDatabases::cmdNewLibrary_Click);
    connect(ui->cmdOpenLibrary, &QPushButton::clicked, this, &frmDatabases::cmdOpenLibrary_Click);
    connect(ui->cmdOpenSchool, &QPushButton::clicked, this, &frmDatabases::cmdOpenSchool_Click);
    connect(ui->cmdChooseFolder, &QPushButton::clicked, this, &frmDatabases::cmdChooseFolder_Click);
    connect(ui->cmdDemo, &QPushButton::clicked, this, &frmDatabases::cmdDemo_Click);
    connect(ui->cmdSave, &QPushButton::clicked, this, &frmDatabases::cmdSave_Click);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

frmDatabases::~frmDatabases() = default;

void frmDatabases::showPhotoFolder()
{
    ui->lblPhotos->setText(QStringLiteral("Learner photos are read from %1. A folder on the school's network can be shared by every desk.")
                               .arg(QDir(ui->txtProgramFolder->text().trimmed()).filePath(QStringLiteral("LearnerPhotos"))));
}

void frmDatabases::cmdNewLibrary_Click()
{
    QString file = ShowSaveFileDialog(this, QStringLiteral("New Empty Library"), DatabaseFiles);
    if (file.isEmpty())
        return;
    if (QFileInfo(file).suffix().isEmpty())
        file += QStringLiteral(".db");
    if (QFileInfo::exists(file)) {
        UserMessage(QStringLiteral("%1 already exists: choose it with Open Library File, or give the new library another name.").arg(file));
        return;
    }
    if (Trap(Location, QStringLiteral("cmdNewLibrary_Click"), [&] { DatabaseSchema::createLibraryDatabase(file); }))
        ui->txtLibrary->setText(file);
}

void frmDatabases::cmdOpenLibrary_Click()
{
    const QString file = ShowOpenFileDialog(this, QStringLiteral("Library Database"), DatabaseFiles);
    if (!file.isEmpty())
        ui->txtLibrary->setText(file);
}

void frmDatabases::cmdOpenSchool_Click()
{
    const QString file = ShowOpenFileDialog(this, QStringLiteral("School Administration Database"), DatabaseFiles);
    if (!file.isEmpty())
        ui->txtSchool->setText(file);
}

void frmDatabases::cmdChooseFolder_Click()
{
    const QString folder = ShowFolderDialog(this, QStringLiteral("Program Folder"));
    if (!folder.isEmpty())
        ui->txtProgramFolder->setText(folder);
}

void frmDatabases::cmdDemo_Click()
{
    QString folder;
    if (!Trap(Location, QStringLiteral("cmdDemo_Click"), [&] { folder = demoSchool_(); }))
        return;
    // Its learner photos are found where it keeps them.
    ui->txtLibrary->setText(QDir(folder).filePath(QStringLiteral("library.db")));
    ui->txtSchool->setText(QDir(folder).filePath(QStringLiteral("central.db")));
    ui->txtProgramFolder->setText(folder);
    cmdSave_Click();
}

void frmDatabases::cmdSave_Click()
{
    const QString library = ui->txtLibrary->text().trimmed(), school = ui->txtSchool->text().trimmed();
    const QString folder = ui->txtProgramFolder->text().trimmed();
    // Both are checked as start-up checks them; nothing is kept unless both work.
    if (const QString refusal = DatabaseCheck::library(library); !refusal.isEmpty()) {
        UserMessage(QStringLiteral("Library database: ") + refusal);
        ui->txtLibrary->setFocus();
        return;
    }
    if (const QString refusal = DatabaseCheck::school(school); !refusal.isEmpty()) {
        UserMessage(QStringLiteral("School administration database: ") + refusal);
        ui->txtSchool->setFocus();
        return;
    }
    if (folder.isEmpty() || !QDir().mkpath(folder)) {
        UserMessage(QStringLiteral("The program folder %1 cannot be made; please choose another.").arg(folder));
        ui->txtProgramFolder->setFocus();
        return;
    }
    settings_.setValue(QLatin1String(SettingsStore::LibraryDatabaseKey), library);
    settings_.setValue(QLatin1String(SettingsStore::CentralDatabaseKey), school);
    settings_.setValue(QLatin1String(SettingsStore::ProgramFolderKey), QDir(folder).absolutePath());
    SetApplicationFolder(folder);
    accept();
}
