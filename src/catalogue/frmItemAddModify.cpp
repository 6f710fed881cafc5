#include "frmItemAddModify.h"
#include "ui_frmItemAddModify.h"

#include "AppError.h"
#include "Clock.h"
#include "Isbn.h"
#include "LoanRoutines.h"
#include "RecordSources.h"
#include "TaskRunner.h"
#include "frmRecordChoice.h"
#include "ScreenRegistry.h"
#include "SearchTerms.h"
#include "SpreadGrid.h"
#include "SqlText.h"
#include "TypedFields.h"
#include "ErrorReport.h"
#include "clsTSQL.h"
#include "mCommon.h"
#include "modExtendedMsgBox.h"

#include <QHeaderView>
#include <QTableView>

namespace {

const QString Location = QStringLiteral("frmItemAddModify");
constexpr int FirstAccessionRow = ItemSheet::FirstAccessionRow;
const QColor Yellow(255, 255, 0); // 65535: draws the eye to "Next" once a title is saved

} // namespace

frmItemAddModify::frmItemAddModify(const ScreenRegistry &screens, const ScreenOptions &options, QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::frmItemAddModify>()), screens_(screens), mode_(options.itemEditMode),
      itemID_(options.itemEditMode == 1 || options.itemEditMode == 2 ? options.itemID : 0)
{
    ui->setupUi(this);
    GuardTypedFields(this);
    sheet_ = std::make_unique<ItemSheet>(*ui->griditems);
    ui->griditems->view()->horizontalHeader()->hide();
    ui->griditems->view()->setSelectionBehavior(QAbstractItemView::SelectItems);
    ui->griditems->view()->setEditTriggers(QAbstractItemView::AllEditTriggers);
    ui->griditems->view()->setAlternatingRowColors(false);
    sheet_->layOut();
    ui->gridSearchTerms->defineColumns({{"Subject Search Term", 40}});
    ui->gridKSearchTerms->defineColumns({{"English Keyword", 20}, {"Afrikaans Keyword", 20}});
    ui->cboWeed->addItems({QStringLiteral("Lost"), QStringLiteral("Damaged"), QStringLiteral("Under Repair"), QStringLiteral("Weed")});
    ui->cboWeed->setCurrentIndex(-1);
    ui->dt1->setDate(Clock::today());

    connect(ui->cmdSave, &QPushButton::clicked, this, &frmItemAddModify::cmdSave_Click);
    connect(ui->cmdFindIsbn, &QPushButton::clicked, this, &frmItemAddModify::cmdFindIsbn_Click);
    connect(ui->txtFindIsbn, &QLineEdit::returnPressed, this, &frmItemAddModify::cmdFindIsbn_Click);
    connect(ui->cmdNext, &QPushButton::clicked, this, &frmItemAddModify::cmdNext_Click);
    connect(ui->cmdPrint, &QPushButton::clicked, this, &frmItemAddModify::cmdPrint_Click);
    connect(ui->cmdCancel, &QPushButton::clicked, this, &QDialog::accept);
    connect(ui->cmdFillcombo, &QPushButton::clicked, this, &frmItemAddModify::cmdFillcombo_Click);
    connect(ui->cmdGo, &QPushButton::clicked, this, &frmItemAddModify::cmdGo_Click);
    connect(ui->cmdGoK, &QPushButton::clicked, this, &frmItemAddModify::cmdGoK_Click);
    connect(ui->txtSubjectTerm, &QLineEdit::returnPressed, this, &frmItemAddModify::cmdFillcombo_Click);
    connect(ui->txtSubject, &QLineEdit::returnPressed, this, &frmItemAddModify::cmdGo_Click);
    connect(ui->txtKeyword, &QLineEdit::returnPressed, this, &frmItemAddModify::cmdGoK_Click);
    connect(ui->cboSubjectClass, &QComboBox::activated, this, &frmItemAddModify::cboSubjectClass_Click);
    connect(ui->cboSearch, &QComboBox::activated, this, &frmItemAddModify::cboSearch_Click);
    connect(ui->cboSearchKeywords, &QComboBox::activated, this, &frmItemAddModify::cboSearchKeywords_Click);
    connect(ui->cmdRemove, &QPushButton::clicked, this, &frmItemAddModify::cmdRemove_Click);
    connect(ui->cmdKRemove, &QPushButton::clicked, this, &frmItemAddModify::cmdKRemove_Click);
    connect(ui->gridKSearchTerms, &SpreadGrid::cellDoubleClicked, this, [this](int, int row) { ui->gridKSearchTerms->removeRow(row); });
    connect(ui->cmdSaveterms, &QPushButton::clicked, this, &frmItemAddModify::cmdSaveterms_Click);
    connect(ui->cmdSaveKterms, &QPushButton::clicked, this, &frmItemAddModify::cmdSaveKterms_Click);
    connect(ui->cmdClear, &QPushButton::clicked, this, [this] { ui->cboWeed->setCurrentIndex(-1); });
    connect(ui->ccmdSubject, &QPushButton::clicked, this, [this] { openList("frmSubjectsList", ui->ccmdSubject->text()); });
    connect(ui->cmdKeywords, &QPushButton::clicked, this, [this] { openList("frmKeywordList", ui->cmdKeywords->text()); });
    connect(ui->cmdRecordSources, &QPushButton::clicked, this, [this] { openList("frmRecordSources", ui->cmdRecordSources->text()); });
    connect(ui->griditems, &SpreadGrid::cellEdited, this, &frmItemAddModify::griditems_Change);
    connect(ui->griditems, &SpreadGrid::cellClicked, this, [this](int col, int row) {
        if (col == 2 && row == 3)
            refreshSubCategories(); // the sub-category list always follows the category in row 2
    });
    Form_Load();
}

frmItemAddModify::~frmItemAddModify()
{
    // An editor still open on the sheet commits as the window goes; the sheet behind it is gone by then.
    ui->griditems->blockSignals(true);
}

void frmItemAddModify::Form_Load()
{
    Trap(Location, QStringLiteral("Form_Load"), [&] {
        PopulateCombo();
        sheet_->LoadCombos(data_);
        switch (mode_) {
        case 0:
            setWindowTitle(QStringLiteral("Maintain Catalogue: ADD NEW ITEMS"));
            ui->cmdSave->setText(QStringLiteral("&Save"));
            sheet_->setValue(2, 2, QStringLiteral("Book"));
            sheet_->loadSubCategories(data_);
            sheet_->setValue(2, FirstAccessionRow, NextAccessionNumber());
            break;
        case 1:
            setWindowTitle(QStringLiteral("Maintain Catalogue: ADD EXISTING ITEMS"));
            PopulateData();
            ui->cboWeed->setCurrentIndex(-1);
            ui->cmdSave->setEnabled(true);
            ui->dt1->setDate(Clock::today());
            sheet_->setValue(2, FirstAccessionRow, NextAccessionNumber());
            break;
        case 2:
            setWindowTitle(QStringLiteral("Maintain Catalogue: EDIT SINGLE ITEM"));
            sheet_->useFirstAccessionOnly();
            PopulateData();
            break;
        default:
            break; // no mode: the screen stays as loaded
        }
    }, [&] { data_.CloseCompact(); });
}

void frmItemAddModify::PopulateCombo()
{
    FillSubjectCombo(data_, ui->cboSubjectClass, QString());
    FillSubjectCombo(data_, ui->cboSearch, QString());
    FillKeywordCombo(data_, ui->cboSearchKeywords, QString());
}

void frmItemAddModify::PopulateData()
{
    const clsTSQL sql;
    data_.GetData(sql.spItemsGetRecord(itemID_));
    if (!data_.rst->atEnd()) {
        const Recordset &item = *data_.rst;
        sheet_->show(item, mode_ == 2);
        ownAccession_ = item.field(QStringLiteral("AccessionID")).toString();
        if (item.field(QStringLiteral("PhasedOut")).toString() == QLatin1String("True")) {
            ui->cboWeed->setCurrentIndex(ui->cboWeed->findText(item.field(QStringLiteral("PhasedOutReason")).toString()));
            ui->dt1->setDate(item.field(QStringLiteral("PhasedOutDate")).toDate());
        }
    }
    data_.CloseCompact();
    sheet_->loadSubCategories(data_);
    data_.FillSpreadWithHeader(*ui->gridSearchTerms, sql.spSubjectsgetSubjectLink(itemID_));
    data_.FillSpreadWithHeader(*ui->gridKSearchTerms, sql.spKeywordsGetKeywordLink(itemID_));
}

QString frmItemAddModify::NextAccessionNumber()
{
    data_.GetData(clsTSQL().spItemLastAccession());
    const QString last = data_.rst->atEnd() ? QString() : data_.rst->field(0).toString();
    data_.CloseCompact();
    return NextAccessionAfter(last);
}

void frmItemAddModify::griditems_Change(int col, int row)
{
    if (col == 2 && row == 2)
        refreshSubCategories();
}

void frmItemAddModify::refreshSubCategories()
{
    Trap(Location, QStringLiteral("griditems_Change"), [&] {
        sheet_->loadSubCategories(data_);
    }, [&] { data_.CloseCompact(); });
}

void frmItemAddModify::cmdSave_Click()
{
    Trap(Location, QStringLiteral("cmdSave"), [&] {
        ui->cmdSave->setPalette(QPalette());
        if (mode_ == 2)
            editItem();
        else
            addItems();
    }, [&] { data_.CloseCompact(); });
}

bool frmItemAddModify::AccessionExists(const QString &accession)
{
    return AccessionExistsForOther(accession, QString());
}

// Both look-ups share one statement; without an own number the second condition is left out.
bool frmItemAddModify::AccessionExistsForOther(const QString &accession, const QString &ownAccession)
{
    QString sql = QStringLiteral("Select accessionId from tbllibitems where accessionId = '") + accession + QStringLiteral("'");
    if (!ownAccession.isNull())
        sql += QStringLiteral(" and accessionId <> '") + ownAccession + QStringLiteral("'");
    const bool found = data_.GetData(sql) > 0;
    data_.CloseCompact();
    return found;
}

void frmItemAddModify::addItems()
{
    sheet_->loadSubCategories(data_);
    ItemDetails item;
    if (!sheet_->ValidateData(&item))
        return;
    const std::vector<QPoint> cells = sheet_->filledAccessionCells();
    for (const QPoint &cell : cells) {
        if (AccessionExists(Safesql(sheet_->value(cell.x(), cell.y())))) {
            UserMessage(QStringLiteral("The accession number in Col ") + QString::number(cell.x()) + QStringLiteral(" Row ")
                        + QString::number(cell.y() - 12) + QStringLiteral(" is a duplicate. Please amend and save again"));
            return;
        }
    }
    sheet_->writeProposedNames(data_, &item); // names a found record brought, agreed to when it was taken
    // No transaction: a copy that fails leaves the ones written before it, as the librarian saw them saved.
    const clsTSQL sql;
    savedItems_.clear();
    for (const QPoint &cell : cells) {
        item.accessionID = sheet_->value(cell.x(), cell.y());
        data_.ExecuteNonQuery(sql.spItemsInsert(item));
        data_.GetID(sql.spGetAID(QStringLiteral("ItemID"), QStringLiteral("tblLibItems Where AccessionID = '") + Safesql(item.accessionID)
                                                                 + QStringLiteral("'")));
        int itemID = 0;
        for (Recordset &rs = *data_.rst; !rs.atEnd(); rs.MoveNext())
            itemID = std::max(itemID, rs.field(0).toInt()); // two cells may hold the same number: the newest row is this copy
        data_.CloseCompact();
        savedItems_ << itemID;
    }
    showSaved(true);
    UserMessage(QStringLiteral("Saved Successfully"));
}

void frmItemAddModify::editItem()
{
    if (itemID_ == 0) {
        UserMessage(QStringLiteral("The Item ID is empty, please close and reopen the edit item screen"));
        return;
    }
    QString holderType;
    QVariant holderID;
    GetItemHolder(itemID_, &holderType, &holderID);
    if (!ui->cboWeed->currentText().isEmpty()) {
        phaseOut(holderType, holderID.toInt());
        return;
    }
    if (!holderType.isEmpty()) {
        UserMessage(QStringLiteral("The item is currently out on loan and can not be edited."));
        return;
    }
    sheet_->loadSubCategories(data_);
    ItemDetails item;
    if (!sheet_->ValidateData(&item))
        return;
    item.accessionID = sheet_->value(2, FirstAccessionRow);
    if (AccessionExistsForOther(Safesql(item.accessionID), Safesql(ownAccession_))) {
        UserMessage(QStringLiteral("The accession number is a duplicate. Please amend and save again"));
        return;
    }
    // Saving also clears a phase-out: this is how a removed item is put back into stock.
    sheet_->writeProposedNames(data_, &item);
    data_.ExecuteNonQuery(clsTSQL().spItemsUpdate(itemID_, item));
    ownAccession_ = item.accessionID;
    UserMessage(QStringLiteral("Saved Successfully"));
}

void frmItemAddModify::phaseOut(const QString &holderType, int holderID)
{
    if (!holderType.isEmpty()) {
        if (!GetLoanHolderMessage(holderID, holderType)) {
            ui->cboWeed->setCurrentIndex(-1);
            return;
        }
        // The loan is closed, and any fine charged, exactly as at the issue desk: through the copy's
        // stored number (the cell may have been edited), as typed (the loan routines double quotes).
        // A copy whose loan stays open is not removed.
        Money fineAmount;
        qint16 fineInterval = 1;
        GetFineSettings(ownAccession_, holderType, &fineAmount, &fineInterval);
        if (!ReturnOrRenewLoan(ownAccession_, Clock::today(), 0, QStringLiteral("return"), QDate(), fineAmount, fineInterval))
            return;
    } else if (!UserWarning(QStringLiteral("This book will be removed from the library stock. Are you sure you want to continue?"))) {
        ui->cboWeed->setCurrentIndex(-1);
        return;
    }
    data_.ExecuteNonQuery(clsTSQL().spItemsPhasedOut(itemID_, ui->dt1->date(), ui->cboWeed->currentText()));
    UserMessage(QStringLiteral("Saved Successfully"));
}

// Saved: the sheet is closed for this title; the term frames link to what was written.
void frmItemAddModify::showSaved(bool saved)
{
    ui->griditems->setEnabled(!saved);
    ui->griditems->setToolTip(saved ? QStringLiteral("Item information saved and disabled, add search terms or add the next item.") : QString());
    ui->cmdNext->setPalette(saved ? QPalette(Yellow) : QPalette());
    ui->cmdSave->setEnabled(!saved);
    ui->cboSubjectClass->setEnabled(!saved);
}

void frmItemAddModify::cmdNext_Click()
{
    Trap(Location, QStringLiteral("Next Item Routine"), [&] {
        savedItems_.clear();
        sheet_->clearValues();
        ui->gridSearchTerms->clearRows();
        ui->gridKSearchTerms->clearRows();
        showSaved(false);
        ui->cmdSave->setPalette(QPalette());
        ui->cmdSaveterms->setEnabled(true);
        ui->cmdSaveKterms->setEnabled(true);
        ui->dt1->setDate(Clock::today());
        cmdFillcombo_Click();
        cmdGo_Click();
        sheet_->setValue(2, FirstAccessionRow, NextAccessionNumber());
    }, [&] { data_.CloseCompact(); });
}

void frmItemAddModify::cmdPrint_Click()
{
    Trap(Location, QStringLiteral("Print Routine"), [&] {
        PrintGridWithHeading(PrintPortrait, windowTitle() + QStringLiteral(" - Add Item"), *ui->griditems);
    }, [&] { data_.CloseCompact(); });
}

void frmItemAddModify::cmdFillcombo_Click()
{
    Trap(Location, QStringLiteral("cmdFillcombo"), [&] {
        FillSubjectCombo(data_, ui->cboSubjectClass, ui->txtSubjectTerm->text());
    }, [&] { data_.CloseCompact(); });
}

void frmItemAddModify::cmdGo_Click()
{
    Trap(Location, QStringLiteral("cmdGo"), [&] {
        FillSubjectCombo(data_, ui->cboSearch, ui->txtSubject->text());
    }, [&] { data_.CloseCompact(); });
}

void frmItemAddModify::cmdGoK_Click()
{
    Trap(Location, QStringLiteral("cmdGoK"), [&] {
        FillKeywordCombo(data_, ui->cboSearchKeywords, ui->txtKeyword->text());
    }, [&] { data_.CloseCompact(); });
}

void frmItemAddModify::cboSubjectClass_Click(int index)
{
    if (index < 0)
        return;
    sheet_->setValue(2, 9, ui->cboSubjectClass->itemText(index));
    sheet_->setValue(2, 10, ui->cboSubjectClass->itemData(index, ClassificationRole).toString());
}

void frmItemAddModify::cboSearch_Click(int index)
{
    if (index >= 0)
        AddSearchTerm(*ui->gridSearchTerms, ui->cboSearch->itemData(index).toInt(), {ui->cboSearch->itemText(index)});
}

void frmItemAddModify::cboSearchKeywords_Click(int index)
{
    if (index < 0)
        return;
    if (ui->gridKSearchTerms->maxRows() >= 5) {
        UserMessage(QStringLiteral("The Maximum of five(5) Keywords has been reached."));
        return;
    }
    Trap(Location, QStringLiteral("cboSearchKeywords"), [&] {
        const int keyID = ui->cboSearchKeywords->itemData(index).toInt();
        AddSearchTerm(*ui->gridKSearchTerms, keyID, KeywordTexts(data_, keyID));
    }, [&] { data_.CloseCompact(); });
}

void frmItemAddModify::cmdRemove_Click() { RemoveTermLine(*ui->gridSearchTerms, ui->txtline->text()); }

void frmItemAddModify::cmdKRemove_Click() { RemoveTermLine(*ui->gridKSearchTerms, ui->txtKline->text()); }

void frmItemAddModify::cmdSaveterms_Click() { SaveLinks(true); }

void frmItemAddModify::cmdSaveKterms_Click() { SaveLinks(false); }

// The links are replaced, not merged: for the copied or edited item, or for every copy just saved.
void frmItemAddModify::SaveLinks(bool subjects)
{
    Trap(Location, QLatin1String(subjects ? "Link Subjects" : "Link Keywords"), [&] {
        if (itemID_ == 0 && ui->griditems->isEnabled()) {
            UserMessage(subjects ? QStringLiteral("First save the item details before linking subjects")
                                 : QStringLiteral("First save the item details before linking keywords"));
            return;
        }
        const clsTSQL sql;
        const QVector<int> terms = TermIds(subjects ? *ui->gridSearchTerms : *ui->gridKSearchTerms);
        // Replaced whole: the old links go only together with the new ones coming.
        data_.RunTransaction([&] {
            for (int item : itemID_ != 0 ? QVector<int>{itemID_} : savedItems_) {
                data_.ExecuteNonQuery(subjects ? sql.spSubjectsDeleteItem(item) : sql.spKeywordsRemoveItem(item));
                for (int term : terms)
                    data_.ExecuteNonQuery(subjects ? sql.spSubjectsLinkItem(term, item) : sql.spKeywordsAddItem(term, item));
            }
            return true;
        });
        UserMessage(QStringLiteral("Saved Successfully"));
    }, [&] { data_.CloseCompact(); });
}

void frmItemAddModify::openList(const char *screen, const QString &caption)
{
    screens_.open(QLatin1String(screen), QString(caption).remove(QLatin1Char('&')), this);
    // New terms made there can be chosen at once.
    cmdFillcombo_Click();
    cmdGo_Click();
    cmdGoK_Click();
}

void frmItemAddModify::cmdFindIsbn_Click()
{
    const QString typed = ui->txtFindIsbn->text().trimmed();
    const auto backToTheBox = [this] {
        ui->txtFindIsbn->setFocus();
        ui->txtFindIsbn->selectAll();
    };
    if (Isbn::normalised(typed).isEmpty()) {
        UserMessage(QStringLiteral("\"%1\" is not an ISBN: please scan the barcode on the back of the book, or type its 10 or 13 digits.")
                        .arg(typed.left(40)));
        backToTheBox();
        return;
    }
    Trap(Location, QStringLiteral("Find by ISBN"), [&] {
        const QList<RecordSource> sources = RecordSources::enabled(data_);
        if (sources.isEmpty()) {
            UserMessage(QStringLiteral("No record source is switched on: the catalogues to search are kept in the library's record sources."));
            return;
        }
        const auto outcome = TaskRunner(this, QStringLiteral("Looking up ISBN %1...").arg(typed), TaskRunner::Cancel::Yes)
                                 .compute<Z3950Search::Outcome>([&](TaskProgress &progress) { return Z3950Search::byIsbn(sources, typed, progress); });
        if (!outcome) {
            backToTheBox();
            return;
        }
        QList<frmRecordChoice::Choice> choices;
        for (const Z3950Search::Found &f : outcome->found) {
            QString problem;
            const CatalogueRecord r = MarcMapping::fromMarc(f.record, &problem);
            if (problem.isEmpty())
                choices << frmRecordChoice::Choice{f.source, r};
        }
        if (choices.isEmpty()) {
            UserMessage(QStringLiteral("No record source has a record for ISBN %1.").arg(typed)
                        + (outcome->problems.isEmpty() ? QString() : QStringLiteral("\n") + outcome->problems.join(QLatin1Char('\n'))));
            backToTheBox();
            return;
        }
        frmRecordChoice choice(choices, outcome->problems, this);
        if (choice.exec() != QDialog::Accepted) {
            backToTheBox();
            return;
        }
        const CatalogueRecord &found = choice.chosen();
        const QStringList missing = sheet_->namesMissing(found);
        const bool add = missing.isEmpty()
                         || UserQuestion(QStringLiteral("These names are not in their lists yet:\n") + missing.join(QLatin1Char('\n'))
                                         + QStringLiteral("\n\nAdd them when the item is saved?"));
        sheet_->showFound(found, add);
        // Headings the subject list holds (whole, or their main heading) are proposed as the item's
        // subject search terms, saved with "Save Search Terms" as any other.
        for (const QString &heading : found.subjects)
            for (const QString &candidate : {heading, heading.section(QStringLiteral(" -- "), 0, 0)}) {
                data_.GetData(QStringLiteral("select Id, SubjectDescription from tblLibSubjectCodes where phasedout = false and "
                                             "SubjectDescription = '") + Safesql(candidate.left(255)) + QLatin1Char('\''));
                const bool held = !data_.rst->atEnd();
                if (held)
                    AddSearchTerm(*ui->gridSearchTerms, data_.rst->field(0).toInt(), {data_.rst->field(1).toString()});
                data_.CloseCompact();
                if (held)
                    break;
            }
        ui->griditems->setFocus();
    });
}
