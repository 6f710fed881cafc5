#include "frmMarcImport.h"
#include "ui_frmMarcImport.h"

#include "AppError.h"
#include "ErrorReport.h"
#include "Recordset.h"
#include "SpreadGrid.h"
#include "TaskRunner.h"
#include "clsDataObject.h"
#include "clsTSQL.h"
#include "modExtendedMsgBox.h"

#include <QFileInfo>

namespace {
const QString Location = QStringLiteral("frmMarcImport");
constexpr int TakeColumn = 7;
// A delivery file is a few megabytes; anything far larger is not one.
constexpr qint64 LargestFile = 512LL * 1024 * 1024;
} // namespace

frmMarcImport::frmMarcImport(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmMarcImport>())
{
    ui->setupUi(this);
    ui->gridRecords->defineColumns({{"Record", 7}, {"Title", 34}, {"Author", 22}, {"ISBN", 15}, {"Classification", 14}, {"Note", 40}, {"Take", 6}});
    ui->gridRecords->setColumnType(TakeColumn, SpreadModel::CellType::CheckBox);
    connect(ui->cmdChooseFile, &QPushButton::clicked, this, &frmMarcImport::cmdChooseFile_Click);
    connect(ui->cmdImport, &QPushButton::clicked, this, &frmMarcImport::cmdImport_Click);
    connect(ui->cmdExport, &QPushButton::clicked, this, &frmMarcImport::cmdExport_Click);
    connect(ui->cmdClose, &QPushButton::clicked, this, &QDialog::reject);
    Form_Load();
}

frmMarcImport::~frmMarcImport() = default;

void frmMarcImport::Form_Load()
{
    Trap(Location, QStringLiteral("Form_Load"), [&] {
        clsDataObject data;
        data.GetData(clsTSQL().spCategoriesList());
        for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext())
            ui->cboCategory->addItem(rs.field(QStringLiteral("Category")).toString());
        data.CloseCompact();
    });
    ui->cmdImport->setEnabled(false);
}

void frmMarcImport::cmdChooseFile_Click()
{
    const QString file = ShowOpenFileDialog(this, QStringLiteral("Import MARC Records"),
                                            QStringLiteral("MARC Records (*.mrc *.marc *.iso *.dat *.xml);;All Files (*)"));
    if (!file.isEmpty())
        preview(file);
}

void frmMarcImport::preview(const QString &file)
{
    ui->txtFile->setText(file);
    ui->gridRecords->clearRows();
    rows_.clear();
    ui->cmdImport->setEnabled(false);
    QFile in(file);
    if (QFileInfo(file).size() > LargestFile || !in.open(QIODevice::ReadOnly)) {
        UserMessage(QStringLiteral("%1 cannot be read as a file of MARC records.").arg(QFileInfo(file).fileName()));
        return;
    }
    const QByteArray bytes = in.readAll();
    Trap(Location, QStringLiteral("Preview"), [&] {
        const auto read = TaskRunner(this, QStringLiteral("Reading the records...")).compute<QList<MarcImport::Row>>([&](TaskProgress &) {
            return MarcImport::preview(bytes);
        });
        if (read)
            rows_ = *read;
    });
    int takeable = 0, held = 0;
    for (const MarcImport::Row &r : rows_) {
        const QString note = !r.problem.isEmpty() ? QStringLiteral("Cannot be taken: ") + r.problem
                             : !r.duplicate.isEmpty() ? QStringLiteral("Held already: ") + r.duplicate : QString();
        const int row = ui->gridRecords->appendRow({QString::number(r.number), r.record.title, r.record.authors.value(0), r.record.isbns.value(0),
                                                    r.record.classification, note});
        ui->gridRecords->setChecked(TakeColumn, row, r.canBeTaken() && r.duplicate.isEmpty());
        ui->gridRecords->setCellLocked(TakeColumn, row, !r.canBeTaken());
        takeable += r.canBeTaken() ? 1 : 0;
        held += r.canBeTaken() && !r.duplicate.isEmpty() ? 1 : 0;
    }
    ui->lblSummary->setText(QStringLiteral("%1 records: %2 can be taken (%3 of them held already, not ticked), %4 cannot.")
                                .arg(rows_.size())
                                .arg(takeable)
                                .arg(held)
                                .arg(rows_.size() - takeable));
    ui->cmdImport->setEnabled(takeable > 0);
}

void frmMarcImport::cmdImport_Click()
{
    bool number = false;
    const int copies = ui->txtCopies->text().trimmed().toInt(&number);
    if (!number || copies < 1 || copies > 20) {
        UserMessage(QStringLiteral("Copies of each title must be a number from 1 to 20."));
        ui->txtCopies->setFocus();
        return;
    }
    if (ui->cboCategory->currentText().isEmpty()) {
        UserMessage(QStringLiteral("Please choose the category of the new copies."));
        return;
    }
    QList<MarcImport::Row> chosen;
    for (qsizetype i = 0; i < rows_.size(); ++i)
        if (rows_[i].canBeTaken() && ui->gridRecords->isChecked(TakeColumn, int(i) + 1))
            chosen << rows_[i];
    if (chosen.isEmpty()) {
        UserMessage(QStringLiteral("No record is ticked."));
        return;
    }
    const MarcImport::Options options{ui->cboCategory->currentText(), ui->cboLoanType->currentText(), copies};
    std::optional<MarcImport::Result> result;
    try {
        result = TaskRunner(this, QStringLiteral("Importing %1 records...").arg(chosen.size()), TaskRunner::Cancel::Yes)
                     .compute<MarcImport::Result>([&](TaskProgress &progress) { return MarcImport::take(chosen, options, progress); });
    } catch (const AppError &e) {
        UserMessage(QStringLiteral("Nothing was imported: ") + e.description());
        return;
    }
    if (!result) {
        UserMessage(QStringLiteral("The import was cancelled; nothing was imported."));
        return;
    }
    UserMessage(QStringLiteral("%1 titles imported: %2 copies, accession numbers %3 to %4.")
                    .arg(result->titles)
                    .arg(result->accessions.size())
                    .arg(result->accessions.value(0), result->accessions.value(result->accessions.size() - 1)));
    preview(ui->txtFile->text()); // what is now held shows as such
}

void frmMarcImport::cmdExport_Click() { ExportMarcRecords(this); }

void ExportMarcRecords(QWidget *owner, const QStringList &accessions)
{
    const QString file = ShowSaveFileDialog(owner, QStringLiteral("Export MARC Records"), QStringLiteral("MARC 21 (*.mrc);;MARCXML (*.xml)"));
    if (file.isEmpty())
        return;
    const QString what = accessions.isEmpty() ? QStringLiteral("the catalogue") : QStringLiteral("%1 items").arg(accessions.size());
    std::optional<MarcImport::Written> written;
    try {
        written = TaskRunner(owner, QStringLiteral("Exporting %1...").arg(what), TaskRunner::Cancel::Yes)
                      .compute<MarcImport::Written>([&](TaskProgress &progress) { return MarcImport::exportFile(file, progress, accessions); });
    } catch (const AppError &e) {
        UserMessage(e.description());
        return;
    }
    if (written)
        UserMessage(accessions.isEmpty() ? QStringLiteral("The catalogue is written to %1.").arg(file)
                                         : QStringLiteral("The %1 items listed are written to %2.").arg(accessions.size()).arg(file));
}
