#include "frmStocktake.h"
#include "ui_frmStocktake.h"

#include "AppError.h"
#include "Clock.h"
#include "DbConnection.h"
#include "Recordset.h"
#include "SpreadGrid.h"
#include "TypedFields.h"
#include "StocktakeReport.h"
#include "ErrorReport.h"
#include "DatabaseLocations.h"
#include "TaskRunner.h"
#include "frmReportViewer.h"
#include "mCommon.h"
#include "modExtendedMsgBox.h"

#include <QApplication>
#include <QListWidgetItem>

#include <algorithm>

namespace {
const QString Location = QStringLiteral("frmStocktake");
constexpr int CategoryRole = Qt::UserRole, SubCategoryRole = Qt::UserRole + 1;

const char *kindText(Stocktake::Scan scan)
{
    switch (scan) {
    case Stocktake::Scan::OnShelf: return "On the shelf";
    case Stocktake::Scan::AlreadyScanned: return "Already scanned";
    case Stocktake::Scan::Unknown: return "Unknown number";
    case Stocktake::Scan::OutsideScope: return "Outside the scope";
    case Stocktake::Scan::PhasedOut: return "Removed from the catalogue";
    case Stocktake::Scan::OnLoan: return "On loan";
    }
    return "";
}
} // namespace

frmStocktake::frmStocktake(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmStocktake>())
{
    ui->setupUi(this);
    GuardTypedFields(this);
    ui->gridScans->defineColumns({{"Scan", 24}, {"Accession No", 14}, {"Title", 40}});
    for (int c = 1; c <= 3; ++c)
        ui->gridScans->setColumnLocked(c, true);
    connect(ui->cmdStart, &QPushButton::clicked, this, &frmStocktake::cmdStart_Click);
    connect(ui->txtScan, &QLineEdit::returnPressed, this, &frmStocktake::txtScan_Enter);
    connect(ui->cmdReturn, &QPushButton::clicked, this, &frmStocktake::cmdReturn_Click);
    connect(ui->cmdFinish, &QPushButton::clicked, this, &frmStocktake::cmdFinish_Click);
    connect(ui->cmdExport, &QPushButton::clicked, this, &frmStocktake::cmdExport_Click);
    connect(ui->cmdMarkLost, &QPushButton::clicked, this, &frmStocktake::cmdMarkLost_Click);
    connect(ui->cmdClose, &QPushButton::clicked, this, &QDialog::accept);
    connect(ui->chkWhole, &QCheckBox::toggled, ui->lstScope, [this](bool whole) { ui->lstScope->setEnabled(!whole); });
    Form_Load();
}

frmStocktake::~frmStocktake() = default;

void frmStocktake::Form_Load()
{
    ui->dtStart->setDate(Clock::today());
    ui->lstScope->setEnabled(false);
    Trap(Location, QStringLiteral("Form_Load"), [&] {
        const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();
        // Categories, each followed by its sub-categories.
        auto rs = db->Execute(QStringLiteral("select c.CategoryID, c.Category, s.SubCategoryID, s.SubCategory from tblLibCategories as c left join "
                                             "tblLibSubCategories as s on s.CategoryID = c.CategoryID where c.PhasedOut = false "
                                             "order by c.Category, s.SubCategory"));
        int lastCategory = -1;
        for (; !rs->atEnd(); rs->MoveNext()) {
            const int category = rs->field(0).toInt();
            if (category != lastCategory) {
                auto *item = new QListWidgetItem(rs->field(1).toString(), ui->lstScope);
                item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
                item->setCheckState(Qt::Unchecked);
                item->setData(CategoryRole, category);
                lastCategory = category;
            }
            if (!rs->field(2).isNull()) {
                auto *item = new QListWidgetItem(QStringLiteral("    ") + rs->field(3).toString(), ui->lstScope);
                item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
                item->setCheckState(Qt::Unchecked);
                item->setData(SubCategoryRole, rs->field(2).toInt());
            }
        }
        stocktake_ = Stocktake::latest();
        if (stocktake_ && !stocktake_->finished())
            showExceptions();
    });
    showStocktake();
}

// A resumed stocktake lists again the scans that needed attention.
void frmStocktake::showExceptions()
{
    ui->gridScans->clearRows();
    for (const auto &[kind, copy] : stocktake_->exceptions())
        addScanRow(QString::fromLatin1(kindText(kind)), copy.accession, copy.title);
}

void frmStocktake::showStocktake()
{
    // Open: scanning. Finished: its result stays at hand (shown, exported, missing copies marked
    // lost) until the next stocktake is started.
    const bool open = stocktake_ && !stocktake_->finished();
    const bool result = stocktake_.has_value();
    for (QWidget *w : {static_cast<QWidget *>(ui->txtName), static_cast<QWidget *>(ui->dtStart), static_cast<QWidget *>(ui->chkWhole),
                       static_cast<QWidget *>(ui->cmdStart)})
        w->setEnabled(!open);
    for (QWidget *w : {static_cast<QWidget *>(ui->txtScan), static_cast<QWidget *>(ui->cmdReturn)})
        w->setEnabled(open);
    for (QWidget *w : {static_cast<QWidget *>(ui->cmdFinish), static_cast<QWidget *>(ui->cmdExport), static_cast<QWidget *>(ui->cmdMarkLost)})
        w->setEnabled(result);
    ui->cmdFinish->setText(open || !result ? QStringLiteral("&Finish and Show Result") : QStringLiteral("&Show Result"));
    if (!result) {
        ui->lstScope->setEnabled(!ui->chkWhole->isChecked());
        ui->lblOpen->setText(QStringLiteral("No stocktake is open: name one and start it."));
        ui->lblCount->clear();
        return;
    }
    // The scope it was started with.
    const std::vector<int> categories = stocktake_->categories(), subCategories = stocktake_->subCategories();
    ui->chkWhole->setChecked(categories.empty() && subCategories.empty());
    for (int i = 0; i < ui->lstScope->count(); ++i) {
        QListWidgetItem *item = ui->lstScope->item(i);
        const bool ticked = item->data(CategoryRole).isValid()
                                ? std::find(categories.begin(), categories.end(), item->data(CategoryRole).toInt()) != categories.end()
                                : std::find(subCategories.begin(), subCategories.end(), item->data(SubCategoryRole).toInt()) != subCategories.end();
        item->setCheckState(ticked ? Qt::Checked : Qt::Unchecked);
    }
    ui->lstScope->setEnabled(!open && !ui->chkWhole->isChecked());
    if (!open) {
        ui->lblOpen->setText(QStringLiteral("Stocktake \"%1\" started %2 is finished: its result can be shown, exported and acted on "
                                            "until the next stocktake starts.")
                                 .arg(stocktake_->name(), stocktake_->startDate().toString(Qt::ISODate)));
        showCounts();
        return;
    }
    ui->txtName->setText(stocktake_->name());
    ui->dtStart->setDate(stocktake_->startDate());
    ui->lblOpen->setText(QStringLiteral("Stocktake \"%1\" started %2 is open: scan the copies on the shelves.")
                             .arg(stocktake_->name(), stocktake_->startDate().toString(Qt::ISODate)));
    showCounts();
    ui->txtScan->setFocus();
}

void frmStocktake::showCounts()
{
    Trap(Location, QStringLiteral("Counts"), [&] {
        ui->lblCount->setText(QStringLiteral("Scanned %1 of %2").arg(stocktake_->scannedCount()).arg(stocktake_->expectedCount()));
    });
}

void frmStocktake::cmdStart_Click()
{
    std::vector<int> categories, subCategories;
    if (!ui->chkWhole->isChecked()) {
        for (int i = 0; i < ui->lstScope->count(); ++i) {
            const QListWidgetItem *item = ui->lstScope->item(i);
            if (item->checkState() != Qt::Checked)
                continue;
            if (item->data(CategoryRole).isValid())
                categories.push_back(item->data(CategoryRole).toInt());
            else
                subCategories.push_back(item->data(SubCategoryRole).toInt());
        }
        if (categories.empty() && subCategories.empty()) {
            UserMessage(QStringLiteral("Please tick the categories to count, or choose the whole catalogue."));
            return;
        }
    }
    if (ui->txtName->text().trimmed().isEmpty()) {
        UserMessage(QStringLiteral("Please give the stocktake a name."));
        ui->txtName->setFocus();
        return;
    }
    Trap(Location, QStringLiteral("cmdStart_Click"), [&] {
        stocktake_ = Stocktake::start(ui->txtName->text(), ui->dtStart->date(), categories, subCategories);
        ui->gridScans->clearRows();
    });
    showStocktake();
}

void frmStocktake::addScanRow(const QString &kind, const QString &accession, const QString &title)
{
    ui->gridScans->appendRow({kind, accession, title});
}

void frmStocktake::txtScan_Enter()
{
    const QString accession = ui->txtScan->text().trimmed();
    ui->txtScan->clear();
    ui->txtScan->setFocus();
    if (accession.isEmpty() || !stocktake_)
        return;
    Stocktake::Scan outcome = Stocktake::Scan::OnShelf;
    if (!Trap(Location, QStringLiteral("txtScan_Enter"), [&] { outcome = stocktake_->scan(accession); }))
        return;
    ui->lblLastScan->setText(QStringLiteral("%1: %2").arg(accession, QString::fromLatin1(kindText(outcome))));
    if (outcome == Stocktake::Scan::AlreadyScanned)
        QApplication::beep(); // a second scan of one copy changes nothing
    if (outcome != Stocktake::Scan::OnShelf)
        Trap(Location, QStringLiteral("Title"), [&] {
            const std::unique_ptr<DbConnection> db = OpenLibraryDatabase();
            const auto rs = db->Execute(QStringLiteral("select Title from tblLibItems where AccessionID = '") + Safesql(accession) + QStringLiteral("'"));
            addScanRow(QString::fromLatin1(kindText(outcome)), accession, rs->atEnd() ? QString() : rs->field(0).toString());
        });
    showCounts();
}

void frmStocktake::cmdReturn_Click()
{
    SpreadGrid &grid = *ui->gridScans;
    const int row = grid.selectedRow();
    if (row < 1 || grid.cellText(1, row) != QLatin1String(kindText(Stocktake::Scan::OnLoan))) {
        UserMessage(QStringLiteral("Please select a copy listed as on loan."));
        return;
    }
    const QString accession = grid.cellText(2, row);
    bool returned = false;
    Money fine;
    Trap(Location, QStringLiteral("cmdReturn_Click"), [&] { returned = stocktake_->returnToShelf(accession, &fine); });
    if (returned) {
        grid.setCellText(1, row, QStringLiteral("Returned"));
        // The fine is named, as the desk names it.
        UserMessage(fine > Money() ? QStringLiteral("%1 has been returned - fine %2.").arg(accession, fine.toDisplayText())
                                   : QStringLiteral("%1 has been returned.").arg(accession));
        showCounts();
    }
    ui->txtScan->setFocus();
}

std::optional<Stocktake::Result> frmStocktake::result()
{
    std::optional<Stocktake::Result> r;
    Trap(Location, QStringLiteral("Result"), [&] {
        r = TaskRunner(this, QStringLiteral("Comparing the scans with the catalogue..."), TaskRunner::Cancel::Yes)
                .compute<Stocktake::Result>([&](TaskProgress &) { return stocktake_->result(); });
    });
    return r;
}

void frmStocktake::cmdFinish_Click()
{
    if (!stocktake_)
        return;
    const std::optional<Stocktake::Result> r = result();
    if (!r)
        return;
    if (!stocktake_->finished()) {
        if (!UserQuestion(QStringLiteral("Finish the stocktake \"%1\"? %2 of %3 copies were found; %4 are missing.")
                              .arg(stocktake_->name())
                              .arg(r->scanned)
                              .arg(r->expected)
                              .arg(r->missing.size())))
            return;
        if (!Trap(Location, QStringLiteral("cmdFinish_Click"), [&] { stocktake_->finish(); }))
            return;
        showStocktake();
    }
    const StocktakeReport report(SchoolName, stocktake_->name(), stocktake_->startDate(), *r);
    frmReportViewer viewer(report, this);
    viewer.exec();
}

void frmStocktake::cmdExport_Click()
{
    const std::optional<Stocktake::Result> r = result();
    if (!r)
        return;
    // The result as one list: what each copy is, its number and title.
    SpreadGrid sheet;
    sheet.defineColumns({{"Result", 30}, {"Accession No", 14}, {"Title", 40}});
    const std::pair<const char *, const std::vector<Stocktake::Copy> *> lists[] = {
        {"Missing", &r->missing}, {"Scanned although removed", &r->phasedOut}, {"On loan", &r->onLoan},
        {"Unknown number", &r->unknown}, {"Outside the scope", &r->outside}};
    for (const auto &[kind, copies] : lists)
        for (const Stocktake::Copy &c : *copies)
            sheet.appendRow({QString::fromLatin1(kind), c.accession, c.title});
    ExportGridToWorkbook(this, sheet, QStringLiteral("Stocktake"));
}

void frmStocktake::cmdMarkLost_Click()
{
    const std::optional<Stocktake::Result> r = result();
    if (!r)
        return;
    if (r->missing.empty()) {
        UserMessage(QStringLiteral("No copy is missing."));
        return;
    }
    if (!UserQuestion(QStringLiteral("Mark the %1 missing copies as lost (phased out with the reason \"Lost\" and the date %2)?")
                          .arg(r->missing.size())
                          .arg(stocktake_->startDate().toString(Qt::ISODate))))
        return;
    int marked = 0;
    if (Trap(Location, QStringLiteral("cmdMarkLost_Click"), [&] {
            TaskRunner(this, QStringLiteral("Marking the missing copies as lost...")).run([&](TaskProgress &) { marked = stocktake_->markMissingLost(); });
        }))
        UserMessage(QStringLiteral("%1 copies have been marked as lost.").arg(marked));
    showCounts();
}
