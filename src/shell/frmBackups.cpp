#include "frmBackups.h"
#include "ui_frmBackups.h"

#include "AppError.h"
#include "BackupSchedule.h"
#include "Clock.h"
#include "SettingsStore.h"
#include "TaskRunner.h"
#include "modExtendedMsgBox.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

namespace {
const QString Shown = QStringLiteral("yyyy-MM-dd HH:mm");

QString figuresText(const LibraryFigures &f)
{
    return QStringLiteral("%1 items, %2 open loans, %3 members with fines").arg(f.items).arg(f.openLoans).arg(f.membersWithFines);
}
} // namespace

frmBackups::frmBackups(SettingsStore &settings, QString library, QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::frmBackups>()), settings_(settings), library_(std::move(library))
{
    ui->setupUi(this);
    ui->gridBackups->defineColumns({{"Taken", 17}, {"Items", 8}, {"Open loans", 11}, {"Members with fines", 19}, {"File", 36}});
    ui->gridBackups->setColumnLocked(1, true);
    const BackupSchedule schedule(settings_, library_);
    ui->txtFolder->setText(QDir::toNativeSeparators(schedule.folder()));
    ui->txtSecondFolder->setText(QDir::toNativeSeparators(schedule.secondFolder()));
    connect(ui->cmdChooseFolder, &QPushButton::clicked, this, &frmBackups::cmdChooseFolder_Click);
    connect(ui->cmdChooseSecondFolder, &QPushButton::clicked, this, &frmBackups::cmdChooseSecondFolder_Click);
    connect(ui->cmdSaveFolders, &QPushButton::clicked, this, &frmBackups::cmdSaveFolders_Click);
    connect(ui->cmdRestore, &QPushButton::clicked, this, &frmBackups::cmdRestore_Click);
    connect(ui->cmdOtherFile, &QPushButton::clicked, this, &frmBackups::cmdOtherFile_Click);
    connect(ui->cmdClose, &QPushButton::clicked, this, &QDialog::reject);
    connect(ui->gridBackups, &SpreadGrid::cellDoubleClicked, this, [this] { cmdRestore_Click(); });
}

frmBackups::~frmBackups() = default;

void frmBackups::Form_Load()
{
    const QString folder = BackupSchedule(settings_, library_).folder();
    // Each backup is opened to count what it holds: on the worker thread, a few dozen files take a moment.
    const auto found = TaskRunner(this, QStringLiteral("Reading the backups...")).compute<std::vector<Listed>>([folder](TaskProgress &progress) {
        std::vector<Listed> all;
        const QList<LibraryBackup::Entry> entries = LibraryBackup::list(folder);
        progress.setMaximum(int(entries.size()));
        for (const LibraryBackup::Entry &e : entries) {
            try {
                all.push_back({e, LibraryFigures::of(e.path)});
            } catch (const AppError &) {
                all.push_back({e, LibraryFigures{-1, -1, -1}}); // shown, and refused when chosen
            }
            progress.advance();
        }
        return all;
    });
    listed_ = found ? *found : std::vector<Listed>{};
    ui->gridBackups->clearRows();
    for (const Listed &l : listed_) {
        const auto number = [](qint64 n) { return n < 0 ? QStringLiteral("?") : QString::number(n); };
        ui->gridBackups->appendRow({l.entry.taken.toString(Shown), number(l.figures.items), number(l.figures.openLoans),
                                    number(l.figures.membersWithFines), QFileInfo(l.entry.path).fileName()});
    }
    if (!listed_.empty())
        ui->gridBackups->selectGridRow(1);
    ui->cmdRestore->setEnabled(!listed_.empty());
}

void frmBackups::cmdChooseFolder_Click()
{
    const QString folder = ShowFolderDialog(this, QStringLiteral("Backup Folder"));
    if (!folder.isEmpty())
        ui->txtFolder->setText(QDir::toNativeSeparators(folder));
}

void frmBackups::cmdChooseSecondFolder_Click()
{
    const QString folder = ShowFolderDialog(this, QStringLiteral("Second Backup Folder"));
    if (!folder.isEmpty())
        ui->txtSecondFolder->setText(QDir::toNativeSeparators(folder));
}

void frmBackups::cmdSaveFolders_Click()
{
    const QString folder = QDir::fromNativeSeparators(ui->txtFolder->text().trimmed());
    const QString second = QDir::fromNativeSeparators(ui->txtSecondFolder->text().trimmed());
    for (const QString &f : {folder, second}) {
        if (f.isEmpty())
            continue;
        const QFileInfo info(f);
        if (!info.isDir() || !info.isWritable()) {
            UserMessage(QStringLiteral("The folder %1 is not there or cannot be written; the folders were not changed.").arg(QDir::toNativeSeparators(f)));
            return;
        }
    }
    if (!second.isEmpty() && QFileInfo(second).canonicalFilePath() == QFileInfo(folder.isEmpty() ? LibraryBackup::defaultFolder() : folder).canonicalFilePath()) {
        UserMessage(QStringLiteral("The second folder is the backup folder itself; please choose another disk or leave it empty."));
        return;
    }
    // The per-user default is kept as "no choice", so it follows the user.
    settings_.setValue(QLatin1String(SettingsStore::BackupFolderKey), folder == LibraryBackup::defaultFolder() ? QString() : folder);
    settings_.setValue(QLatin1String(SettingsStore::SecondBackupFolderKey), second);
    Form_Load();
}

void frmBackups::cmdRestore_Click()
{
    const int row = ui->gridBackups->selectedRow();
    if (row < 1 || row > int(listed_.size())) {
        UserMessage(QStringLiteral("Please choose a backup from the list."));
        return;
    }
    const Listed &chosen = listed_[size_t(row - 1)];
    restoreFrom(chosen.entry.path, chosen.entry.taken.toString(Shown), chosen.figures);
}

void frmBackups::cmdOtherFile_Click()
{
    const QString file = ShowOpenFileDialog(this, QStringLiteral("Restore from Backup"), QStringLiteral("Library Backups (*.db);;All Files (*)"));
    if (file.isEmpty())
        return;
    LibraryFigures figures;
    try {
        figures = LibraryBackup::check(file);
    } catch (const AppError &e) {
        UserMessage(e.description() + QStringLiteral(" Nothing was changed."));
        return;
    }
    restoreFrom(file, QFileInfo(file).fileName(), figures);
}

void frmBackups::restoreFrom(const QString &file, const QString &taken, const LibraryFigures &figures)
{
    if (!UserQuestion(QStringLiteral("Put the library back as it was in the backup of %1 (%2)?\n\nEverything done since then is taken out of the "
                                     "library; the library as it is now is kept aside first.")
                          .arg(taken, figuresText(figures))))
        return;
    const QString aside = BackupSchedule(settings_, library_).folder();
    std::optional<QString> kept;
    try {
        kept = TaskRunner(this, QStringLiteral("Restoring the library...")).compute<QString>([&](TaskProgress &progress) {
            return LibraryBackup::restore(library_, file, aside, Clock::now(), progress);
        });
    } catch (const AppError &e) {
        UserMessage(e.description());
        return;
    }
    if (!kept)
        return;
    restored_ = true;
    UserMessage(QStringLiteral("The library is back as it was in the backup of %1. The library as it was before the restore is kept in %2.")
                    .arg(taken, QDir::toNativeSeparators(*kept)));
    accept();
}
