#include "frmReferenceList.h"
#include "ui_frmReferenceList.h"

#include "AppError.h"
#include "SpreadGrid.h"
#include "SqlText.h"
#include "TypedFields.h"
#include "ErrorReport.h"
#include "mCommon.h"
#include "modExtendedMsgBox.h"

frmReferenceList::frmReferenceList(const Definition &definition, QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::frmReferenceList>()), d_(definition)
{
    ui->setupUi(this);
    GuardTypedFields(this);
    setObjectName(d_.objectName);
    setWindowTitle(d_.caption);
    QLineEdit *boxes[] = {ui->txtField1, ui->txtField2, ui->txtField3};
    QLabel *labels[] = {ui->lblField1, ui->lblField2, ui->lblField3};
    for (size_t i = 0; i < 3; ++i) {
        const bool used = i < d_.fields.size();
        boxes[i]->setVisible(used);
        labels[i]->setVisible(used);
        if (!used)
            continue;
        boxes[i]->setObjectName(QLatin1String(d_.fields[i].first));
        labels[i]->setText(QString::fromUtf8(d_.fields[i].second));
        if (i < d_.fieldColumns.size())
            LimitToColumn(boxes[i], d_.table, d_.fieldColumns[i]);
        fields_.push_back(boxes[i]);
    }
    if (d_.searchBox)
        ui->txtSearch->setObjectName(QLatin1String(d_.searchBox));
    else
        ui->txtSearch->hide();
    ui->cmdAll->setText(d_.allCaption);
    ui->cmdPrint->setText(d_.printCaption);
    ui->fpSpread->defineColumns(d_.columns);

    connect(ui->cmdAll, &QPushButton::clicked, this, &frmReferenceList::cmdAll_Click);
    connect(ui->cmdSeach, &QPushButton::clicked, this, &frmReferenceList::cmdSeach_Click);
    connect(ui->txtSearch, &QLineEdit::returnPressed, this, &frmReferenceList::cmdSeach_Click);
    connect(ui->cmdAdd, &QPushButton::clicked, this, &frmReferenceList::cmdAdd_Click);
    // Enter in an entry box saves it: a change to the entry chosen from the list, else a new one.
    for (QLineEdit *box : {ui->txtField1, ui->txtField2, ui->txtField3})
        connect(box, &QLineEdit::returnPressed, this, [this] { selectedID_ != 0 ? cmdModify_Click() : cmdAdd_Click(); });
    connect(ui->cmdModify, &QPushButton::clicked, this, &frmReferenceList::cmdModify_Click);
    connect(ui->cmdDelete, &QPushButton::clicked, this, &frmReferenceList::cmdDelete_Click);
    connect(ui->cmdClear, &QPushButton::clicked, this, &frmReferenceList::cmdClear_Click);
    connect(ui->cmdPrint, &QPushButton::clicked, this, &frmReferenceList::cmdPrint_Click);
    connect(ui->cmdDone, &QPushButton::clicked, this, &QDialog::accept);
    connect(ui->fpSpread, &SpreadGrid::cellClicked, this, &frmReferenceList::fpSpread_Click);
    cmdAll_Click();
}

frmReferenceList::~frmReferenceList() = default;

frmReferenceList::Values frmReferenceList::entries(bool quoted) const
{
    Values values;
    for (const QLineEdit *box : fields_)
        values << (quoted ? Safesql(box->text().trimmed()) : box->text().trimmed());
    return values;
}

void frmReferenceList::fill(const QString &sql)
{
    data_.FillSpreadWithHeader(*ui->fpSpread, sql);
    data_.CloseCompact();
}

void frmReferenceList::cmdAll_Click()
{
    Trap(d_.addLocation, QStringLiteral("cmdAll"), [&] {
        fill(d_.listAll);
    }, [&] { data_.CloseCompact(); });
}

void frmReferenceList::cmdSeach_Click()
{
    Trap(d_.addLocation, QStringLiteral("cmdSeach"), [&] {
        QString text = ui->txtSearch->text();
        if (!d_.searchBox) { // the keyword list searches by what is typed in the entry
            const Values v = entries(false);
            text = v.value(0).isEmpty() ? v.value(1) : v.value(0);
        }
        fill(d_.search(Safesql(text)));
        if (ui->fpSpread->maxRows() < 1)
            UserMessage(QStringLiteral("Match not found"));
    }, [&] { data_.CloseCompact(); });
}

// Runs the checks in order; the first that finds a row shows its message.
bool frmReferenceList::refused(const std::vector<Check> &checks)
{
    for (const Check &check : checks) {
        const int rows = data_.GetData(check.sql);
        data_.CloseCompact();
        if (rows > 0) {
            UserMessage(check.message);
            return true;
        }
    }
    return false;
}

void frmReferenceList::cmdAdd_Click()
{
    Trap(d_.addLocation, QStringLiteral("cmdAdd"), [&] {
        const Values raw = entries(false);
        const Values v = entries(true);
        QString refusal = d_.missing(raw);
        if (refusal.isEmpty() && d_.differentTexts)
            refusal = d_.differentTexts(raw, false);
        if (!refusal.isEmpty()) {
            UserMessage(refusal);
            return;
        }
        if (refused(d_.duplicates(v)))
            return;
        data_.ExecuteNonQuery(d_.insert(v));
        UserMessage(d_.added);
        cmdAll_Click();
        cmdClear_Click();
    });
}

void frmReferenceList::cmdModify_Click()
{
    Trap(d_.addLocation, QStringLiteral("cmdModify"), [&] {
        if (selectedID_ == 0) {
            UserMessage(d_.noneToEdit);
            return;
        }
        const Values raw = entries(false);
        if (d_.updateChecks) {
            QString refusal = d_.missing(raw);
            if (refusal.isEmpty())
                refusal = d_.differentTexts(raw, true);
            if (refusal.isEmpty() && raw == shown_)
                refusal = QStringLiteral("No changes to save");
            if (!refusal.isEmpty()) {
                UserMessage(refusal);
                return;
            }
            if (refused(d_.updateChecks(entries(true))))
                return;
        }
        data_.ExecuteNonQuery(d_.update(selectedID_, entries(true)));
        UserMessage(d_.updated);
        selectedID_ = 0;
        cmdAll_Click();
    });
}

void frmReferenceList::cmdDelete_Click()
{
    Trap(d_.addLocation, QStringLiteral("cmdDelete"), [&] {
        if (selectedID_ == 0) {
            UserMessage(d_.noneToDelete);
            return;
        }
        if (d_.inUse && refused(d_.inUse(selectedID_, entries(true))))
            return;
        if (!UserQuestion(d_.confirmDelete))
            return;
        data_.ExecuteNonQuery(d_.phaseOut(selectedID_));
        UserMessage(d_.deleted);
        cmdAll_Click();
        cmdClear_Click();
    });
}

void frmReferenceList::cmdClear_Click()
{
    for (QLineEdit *box : fields_)
        box->clear();
    shown_.clear();
    selectedID_ = 0;
}

void frmReferenceList::fpSpread_Click(int col, int row)
{
    Q_UNUSED(col);
    const SpreadGrid &grid = *ui->fpSpread;
    if (row < 1 || row > grid.maxRows())
        return;
    for (size_t i = 0; i < fields_.size(); ++i)
        fields_[i]->setText(grid.cellText(int(i) + 1, row));
    shown_ = entries(false);
    selectedID_ = grid.cellText(0, row).toInt();
}

void frmReferenceList::cmdPrint_Click()
{
    Trap(d_.printLocation, QStringLiteral("Print Routine"), [&] {
        PrintGridWithHeading(PrintPortrait, d_.printHeading, *ui->fpSpread);
    });
}
