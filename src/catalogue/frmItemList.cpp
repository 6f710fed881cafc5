#include "frmItemList.h"
#include "ui_frmItemList.h"

#include "AppError.h"
#include "ItemCriteria.h"
#include "frmMarcImport.h"
#include "Money.h"
#include "ScreenRegistry.h"
#include "SpreadGrid.h"
#include "GridFill.h"
#include "TypedFields.h"
#include "ErrorReport.h"
#include "clsTSQL.h"
#include "frmKeywordSearch.h"
#include "frmSubjectSearch.h"
#include "mCommon.h"
#include "modExtendedMsgBox.h"

namespace {

const QString Location = QStringLiteral("frmItemList");
constexpr int RestrictedColumn = 7, LoanTypeColumn = 8, CostColumn = 10;
const char *const OrderFields[] = {"", "AccessionID", "ShelfNumber", "ClassificationNo", "Author1", "Title", "ReferenceItem", "Restricted",
                                   "LoanType", "ISBN", "Cost", "DatePurchased"};

const QString SearchSelect =
    QStringLiteral(" SELECT i.ItemID, i.AccessionID, i.CategoryID, c.Category, i.SubCategoryID, ")
    + QStringLiteral(" sc.SubCategory, i.Title, (a1.Authorsurname+', '+a1.Authorfirstname) AS Author1,(a2.Authorsurname+', '+a2.Authorfirstname) AS Author2, ")
    + QStringLiteral(" i.classificationno, i.ReferenceItem, i.Restricted, LoanType ") + QStringLiteral(", i.ShelfNumber, i.ISBN, i.Cost, i.DatePurchased");

const QString SearchFrom = QStringLiteral(" FROM (((((tblLibItems AS i LEFT JOIN tblLibCategories AS c ON i.CategoryID=c.CategoryID) ")
                           + QStringLiteral(" LEFT JOIN tblLibSeries AS s ON i.SeriesID=s.SeriesID) LEFT JOIN tblLibSubCategories AS sc ")
                           + QStringLiteral(" ON i.SubCategoryID=sc.SubCategoryID) LEFT JOIN tblLibItemLanguages AS il ")
                           + QStringLiteral(" ON il.ItemLanguageID=i.ItemLanguageID) LEFT JOIN tblLibAuthors AS a1 ON ")
                           + QStringLiteral(" a1.AuthorID=i.Author1) LEFT JOIN tblLibAuthors AS a2 ON a2.AuthorID=i.Author2 ");

// The subject search: an item matches a subject through its main classification number
// (tblLibSubjectCodes) or a linked subject (tblLibSubjectCodeItem). The grouping runs in a
// sub-select so that a copy matching several ways is listed once, and the outer condition keeps
// phased-out copies out whatever the OR terms of the condition bind to.
QString subjectStatement(const QString &condition)
{
    return SearchSelect + SearchFrom
           + QStringLiteral(" Where i.PhasedOut = False And i.ItemID In (SELECT i.ItemID FROM ((tblLibItems AS i LEFT JOIN tblLibSubjectCodes ON "
                            "i.ClassificationNo = tblLibSubjectCodes.ClassificationNo) LEFT JOIN tblLibItemSubjects ON i.ItemID = tblLibItemSubjects.itemid) "
                            "LEFT JOIN tblLibSubjectCodes AS tblLibSubjectCodeItem ON tblLibItemSubjects.subjectid = tblLibSubjectCodeItem.ID "
                            "GROUP BY i.ItemID, i.Phasedout, tblLibSubjectCodes.ID, tblLibSubjectCodeItem.ID")
           + condition + QStringLiteral(")");
}

} // namespace

frmItemList::frmItemList(const ScreenRegistry &screens, QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::frmItemList>()), screens_(screens)
{
    ui->setupUi(this);
    GuardTypedFields(this);
    criteria_ = ItemCriteria{ui->cmbCategory, ui->cmbSubCategory, ui->txtAccessionNo, ui->txtAuthorSurname, ui->txtTitle,
                             ui->txtClassificationNo, ui->txtISBN, nullptr, ui->chRestricted, ui->chShortLoan};
    criteria_.limitToColumns();
    defineGrid(false);
    connect(ui->cmdSearch, &QPushButton::clicked, this, &frmItemList::cmdSearch_Click);
    for (QLineEdit *box : criteria_.boxes())
        connect(box, &QLineEdit::returnPressed, this, &frmItemList::cmdSearch_Click);
    connect(ui->cmdAll, &QPushButton::clicked, this, &frmItemList::cmdAll_Click);
    connect(ui->cmbCategory, &QComboBox::activated, this, &frmItemList::cmbCategory_Click);
    for (QCheckBox *box : {ui->chRestricted, ui->chShortLoan, ui->chRemoved})
        connect(box, &QCheckBox::clicked, this, [this, box] { flagTicked(box); });
    connect(ui->fpSpreadStock, &SpreadGrid::headerClicked, this, &frmItemList::OrderItems);
    connect(ui->fpSpreadStock, &SpreadGrid::cellClicked, this, [this](int, int row) {
        if (row >= 1 && row <= ui->fpSpreadStock->maxRows())
            currentItemID_ = ui->fpSpreadStock->cellText(0, row).toInt();
    });
    connect(ui->chRestrictAll, &QCheckBox::clicked, this, &frmItemList::chRestrictAll_Click);
    connect(ui->cmdprocess, &QPushButton::clicked, this, &frmItemList::cmdprocess_Click);
    connect(ui->cmdNew, &QPushButton::clicked, this, &frmItemList::cmdNew_Click);
    connect(ui->cmdAddExisting, &QPushButton::clicked, this, &frmItemList::cmdAddExisting_Click);
    connect(ui->cmdEdit, &QPushButton::clicked, this, &frmItemList::cmdEdit_Click);
    connect(ui->cmdSubjectSearch, &QPushButton::clicked, this, &frmItemList::cmdSubjectSearch_Click);
    connect(ui->cmdKeywordSearch, &QPushButton::clicked, this, &frmItemList::cmdKeywordSearch_Click);
    connect(ui->cmdPrint, &QPushButton::clicked, this, &frmItemList::cmdPrint_Click);
    connect(ui->cmdExportMarc, &QPushButton::clicked, this, &frmItemList::cmdExportMarc_Click);
    connect(ui->cmdDone, &QPushButton::clicked, this, &QDialog::accept);
    Trap(Location, QStringLiteral("Form_Load"), [&] { FillItemCategories(data_, ui->cmbCategory); }, [&] { data_.CloseCompact(); });
}

frmItemList::~frmItemList() = default;

// The list's columns; the removed-items list also says why and when each copy was removed.
void frmItemList::defineGrid(bool removed)
{
    SpreadGrid &grid = *ui->fpSpreadStock;
    std::vector<std::pair<const char *, double>> columns{{"Accession No", 12}, {"Shelf No", 10}, {"Class", 9}, {"Authors", 28}, {"Title", 34}, {"", 3},
                                                         {"Restricted", 9}, {"Loan Type", 8}, {"ISBN", 14}, {"Price", 8}, {"Purchased", 11}};
    if (removed)
        columns.insert(columns.end(), {{"Removed Because", 14}, {"Removed On", 11}});
    grid.defineColumns(columns);
    grid.setColumnType(RestrictedColumn, SpreadModel::CellType::CheckBox);
    grid.setColumnLocked(LoanTypeColumn, false);
    grid.setColumnCodes(LoanTypeColumn, {QStringLiteral("S"), QStringLiteral("N"), QStringLiteral("L")});
    grid.setColumnMoney(CostColumn);
}

namespace {

// The fields behind the grid's columns, looked up once per result.
struct ListFields {
    explicit ListFields(const Recordset &rs)
    {
        for (const auto &[column, name] : {std::pair{0, "ItemID"}, {1, "AccessionID"}, {2, "ShelfNumber"}, {3, "classificationno"}, {5, "Title"},
                                           {LoanTypeColumn, "LoanType"}, {9, "ISBN"}, {CostColumn, "Cost"}, {11, "DatePurchased"},
                                           {12, "PhasedOutReason"}, {13, "PhasedOutDate"}})
            if (const int field = rs.fieldIndex(QLatin1String(name)); field >= 0 || column < 12) // the last two: removed copies only
                plain.emplace_back(column, field);
        author1 = rs.fieldIndex(QStringLiteral("Author1"));
        author2 = rs.fieldIndex(QStringLiteral("Author2"));
        reference = rs.fieldIndex(QStringLiteral("ReferenceItem"));
        restricted = rs.fieldIndex(QStringLiteral("Restricted"));
        cost = rs.fieldIndex(QStringLiteral("Cost"));
    }
    std::vector<std::pair<int, int>> plain; // grid column, field
    int author1, author2, reference, restricted, cost;
};

// Writes every row of the result (result row r as grid row r + 1) through put(column, row, text).
template <typename Put>
void writeRows(const Recordset &rs, const ListFields &f, Put &&put)
{
    std::string text;
    for (int r = 0; r < rs.RecordCount(); ++r) {
        const int row = r + 1;
        for (const auto &[column, field] : f.plain) {
            text.clear();
            rs.fieldAt(r, field).appendUtf8(&text);
            put(column, row, text);
        }
        text.clear();
        rs.fieldAt(r, f.author1).appendUtf8(&text);
        if (!rs.fieldAt(r, f.author2).isNull()) {
            text += "; ";
            rs.fieldAt(r, f.author2).appendUtf8(&text);
        }
        put(4, row, text);
        put(6, row, rs.fieldAt(r, f.reference).toBool() ? "R" : "");
        put(RestrictedColumn, row, rs.fieldAt(r, f.restricted).toBool() ? "1" : "0");
    }
}

} // namespace

void frmItemList::fill(const QString &sql)
{
    listStatement_ = sql;
    Money total;
    std::vector<Marks> marks;
    const bool filled = FillGridInBackground(
        this, *ui->fpSpreadStock, sql + order_.clause(), QStringLiteral("Reading the catalogue..."),
        [](const Recordset &rs, const CellSink &put) { writeRows(rs, ListFields(rs), put); },
        [&total, &marks](const Recordset &rs) {
            const ListFields fields(rs);
            const int itemID = rs.fieldIndex(QStringLiteral("ItemID")), loanType = rs.fieldIndex(QStringLiteral("LoanType"));
            marks.reserve(size_t(rs.RecordCount()));
            for (int r = 0; r < rs.RecordCount(); ++r) {
                if (!rs.fieldAt(r, fields.cost).isNull())
                    total += rs.fieldAt(r, fields.cost).toMoney();
                marks.push_back({rs.fieldAt(r, itemID).toInt(), rs.fieldAt(r, fields.restricted).toBool(), rs.fieldAt(r, loanType).toString()});
            }
        });
    if (!filled)
        return;
    shown_ = std::move(marks);
    ui->txtTotalItems->setText(QString::number(ui->fpSpreadStock->maxRows()));
    ui->txtTotalCost->setText(total.toDisplayText());
}

void frmItemList::cmdSearch_Click()
{
    Trap(Location, QStringLiteral("cmdSearch_Click"), [&] {
        ui->cmdSearch->setPalette(QPalette());
        if (ui->fpSpreadStock->maxRows() > 0)
            ui->fpSpreadStock->clearRows();
        shown_.clear();
        const QString criteria = criteria_.condition();
        QString where;
        const bool removed = ui->chRemoved->isChecked();
        defineGrid(removed);
        if (removed) {
            // The copies removed from the catalogue, narrowed by whatever else was entered.
            where = QStringLiteral(" Where i.PhasedOut = True ") + (criteria.isEmpty() ? QString() : QStringLiteral("And ") + criteria);
        } else if (!criteria.isEmpty()) {
            where = QStringLiteral(" Where i.PhasedOut = False And ") + criteria;
        } else {
            UserMessage(QStringLiteral("Please enter or select at least one search criteria"));
            return;
        }
        mode_ = QStringLiteral("Search");
        order_.reset();
        fill(SearchSelect + (removed ? QStringLiteral(", i.PhasedOutReason, i.PhasedOutDate") : QString()) + SearchFrom + where);
    }, [&] { data_.CloseCompact(); });
}

bool frmItemList::SearchItems(const QString &condition, const QString &mode)
{
    if (condition.isEmpty()) {
        UserMessage(QStringLiteral("Please enter or select at least one search criteria"));
        return false;
    }
    const bool filled = Trap(
        Location, mode + QStringLiteral(" Search"),
        [&] {
            defineGrid(false);
            mode_ = mode;
            order_.reset();
            fill(mode == QLatin1String("Subject") ? subjectStatement(condition) : clsTSQL().spKeywordsSearchItems(condition));
        },
        [&] { data_.CloseCompact(); });
    if (!filled)
        return false;
    if (ui->fpSpreadStock->maxRows() == 0) {
        UserMessage(QStringLiteral("There were no items that matched the search"));
        return false;
    }
    return true;
}

void frmItemList::cmdSubjectSearch_Click()
{
    frmSubjectSearch search([this](const QString &condition, const QString &mode) { return SearchItems(condition, mode); }, this);
    search.exec();
}

void frmItemList::cmdKeywordSearch_Click()
{
    frmKeywordSearch search([this](const QString &condition, const QString &mode) { return SearchItems(condition, mode); }, this);
    search.exec();
}

void frmItemList::cmdAll_Click()
{
    Trap(Location, QStringLiteral("cmdAll_Click"), [&] {
        defineGrid(false);
        mode_ = QStringLiteral("All");
        order_.reset();
        fill(SearchSelect
             + QStringLiteral(" FROM ((((((tblLibItems AS i INNER JOIN tblLibCategories AS c ON i.CategoryID = c.CategoryID) LEFT JOIN tblLibSeries AS s ON i.SeriesID = s.SeriesID)")
             + QStringLiteral(" LEFT JOIN tblLibSubCategories AS sc ON i.SubCategoryID=sc.SubCategoryID) LEFT JOIN tblLibItemLanguages AS il ON il.ItemLanguageID=i.ItemLanguageID)")
             + QStringLiteral(" Left join tblLibAuthors as a1 on (a1.AuthorID = i.Author1)) Left join tblLibAuthors as a2 on (a2.AuthorID = i.Author2) )")
             + QStringLiteral(" where i.PhasedOut=False  "));
    }, [&] { data_.CloseCompact(); });
}

void frmItemList::cmbCategory_Click()
{
    Trap(Location, QStringLiteral("cmbCategory_Click"), [&] {
        FillItemSubCategories(data_, ui->cmbCategory, ui->cmbSubCategory);
    }, [&] { data_.CloseCompact(); });
}

// The removed-items list and the two flag filters exclude each other; any of them asks for a new search.
void frmItemList::flagTicked(QObject *box)
{
    if (box == ui->chRemoved && ui->chRemoved->isChecked()) {
        ui->chRestricted->setChecked(false);
        ui->chShortLoan->setChecked(false);
    } else if (box != ui->chRemoved && qobject_cast<QCheckBox *>(box)->isChecked()) {
        ui->chRemoved->setChecked(false);
    }
    ui->cmdSearch->setPalette(QPalette(QColor(255, 255, 0)));
}

void frmItemList::OrderItems(int column)
{
    if (listStatement_.isEmpty() || column < 1 || column > 11)
        return;
    Trap(Location, QStringLiteral("Order Items Routine"), [&] {
        order_.choose(QLatin1String(OrderFields[column]));
        fill(listStatement_);
    }, [&] { data_.CloseCompact(); });
}

void frmItemList::chRestrictAll_Click()
{
    SpreadGrid &grid = *ui->fpSpreadStock;
    for (int row = 1; row <= grid.maxRows(); ++row)
        grid.setChecked(RestrictedColumn, row, ui->chRestrictAll->isChecked());
}

void frmItemList::cmdprocess_Click()
{
    Trap(Location, QStringLiteral("Process Data Routine"), [&] {
        const SpreadGrid &grid = *ui->fpSpreadStock;
        if (grid.maxRows() == 0)
            return;
        // Only the rows the librarian changed are written, together: what other desks changed
        // in the other rows meanwhile stays theirs.
        const clsTSQL sql;
        std::vector<std::pair<size_t, QString>> changed;
        for (int row = 1; row <= grid.maxRows(); ++row) {
            const int itemID = grid.cellText(0, row).toInt();
            const bool restricted = grid.isChecked(RestrictedColumn, row);
            const QString loanType = grid.cellText(LoanTypeColumn, row);
            const size_t index = size_t(row - 1);
            if (index < shown_.size() && shown_[index].itemID == itemID && shown_[index].restricted == restricted
                && shown_[index].loanType == loanType)
                continue;
            changed.emplace_back(index, sql.spItemsUpdateRole(itemID, restricted, loanType));
        }
        data_.RunTransaction([&] {
            for (const auto &[index, update] : changed)
                data_.ExecuteNonQuery(update);
            return true;
        });
        for (const auto &[index, update] : changed)
            if (index < shown_.size()) {
                shown_[index].restricted = grid.isChecked(RestrictedColumn, int(index) + 1);
                shown_[index].loanType = grid.cellText(LoanTypeColumn, int(index) + 1);
            }
        UserMessage(QStringLiteral("Your data has been saved."));
    });
}

void frmItemList::openEditor(int mode)
{
    ScreenOptions options;
    options.itemEditMode = mode;
    options.itemID = currentItemID_;
    screens_.open(QStringLiteral("frmItemAddModify"), QStringLiteral("Item editor"), this, options);
    if (listStatement_.isEmpty())
        return;
    Trap(Location, QStringLiteral("Refresh"), [&] {
        fill(listStatement_); // what was added or changed shows at once
    }, [&] { data_.CloseCompact(); });
}

void frmItemList::cmdNew_Click() { openEditor(0); }

void frmItemList::cmdAddExisting_Click()
{
    if (currentItemID_ == 0) {
        UserMessage(QStringLiteral("First select an item to add."));
        return;
    }
    openEditor(1);
}

void frmItemList::cmdEdit_Click()
{
    if (currentItemID_ == 0) {
        UserMessage(QStringLiteral("Select an item before clicking Edit."));
        return;
    }
    openEditor(2);
}

void frmItemList::cmdPrint_Click()
{
    Trap(Location, QStringLiteral("Print Routine"), [&] {
        const bool removed = ui->fpSpreadStock->cellText(12, 0) == QLatin1String("Removed Because");
        PrintGridWithHeading(PrintLandscape, removed ? QStringLiteral("Items Removed from the Catalogue") : QStringLiteral("Stock Item List"),
                             *ui->fpSpreadStock);
    });
}

void frmItemList::cmdExportMarc_Click()
{
    const SpreadGrid &grid = *ui->fpSpreadStock;
    QStringList accessions;
    for (int row = 1; row <= grid.maxRows(); ++row)
        if (const QString a = grid.cellText(1, row); !a.isEmpty())
            accessions << a;
    if (accessions.isEmpty()) {
        UserMessage(QStringLiteral("The list is empty: search or Show All first."));
        return;
    }
    ExportMarcRecords(this, accessions);
}
