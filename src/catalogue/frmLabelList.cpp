#include "frmLabelList.h"
#include "ui_frmLabelList.h"

#include "AppError.h"
#include "GridFill.h"
#include "Recordset.h"
#include "ItemCriteria.h"
#include "LabelSheet.h"
#include "TaskRunner.h"
#include "PrintJob.h"
#include "SettingsStore.h"
#include "SpreadGrid.h"
#include "TypedFields.h"
#include "ErrorReport.h"
#include "modExtendedMsgBox.h"

#include <QDir>
#include <QFile>

namespace {

const QString Location = QStringLiteral("frmLabelList");
constexpr int PrintColumn = 7;
const char *const OrderFields[] = {"", "AccessionID", "ShelfNumber", "ClassificationNo", "Author1", "Title", "ISBN"};

const QString SelectList = QStringLiteral(
    " select i.ItemID,i.AccessionID, i.CategoryID, c.Category, i.SubCategoryID, sc.SubCategory, i.Title, (a1.Authorsurname + ', ' + a1.Authorfirstname) as Author1, "
    "(a2.Authorsurname + ', ' + a2.Authorfirstname) as Author2,i.classificationno, i.ReferenceItem, i.Restricted, LoanType");

QString itemsFrom(const char *categoryJoin)
{
    return SelectList + QStringLiteral(", i.ShelfNumber, i.ISBN, i.Cost, i.DatePurchased")
           + QStringLiteral(" FROM ((((((tblLibItems AS i %1 JOIN tblLibCategories AS c ON i.CategoryID = c.CategoryID) LEFT JOIN tblLibSeries AS s ON i.SeriesID = s.SeriesID)")
                 .arg(QLatin1String(categoryJoin))
           + QStringLiteral(" LEFT JOIN tblLibSubCategories AS sc ON i.SubCategoryID = sc.SubCategoryID) LEFT JOIN tblLibItemLanguages AS il ON il.ItemLanguageID = i.ItemLanguageID)")
           + QStringLiteral(" Left join tblLibAuthors as a1 on (a1.AuthorID = i.Author1)) Left join tblLibAuthors as a2 on (a2.AuthorID = i.Author2) )");
}

} // namespace

frmLabelList::frmLabelList(SettingsStore &settings, QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::frmLabelList>()), settings_(settings)
{
    ui->setupUi(this);
    GuardTypedFields(this);
    criteria_ = ItemCriteria{ui->cmbCategory, ui->cmbSubCategory, ui->txtAccessionNo, ui->txtAuthorSurname, ui->txtTitle,
                             ui->txtClassificationNo, ui->txtISBN, ui->txtShelf, ui->chRestricted, ui->chShortLoan};
    criteria_.limitToColumns();
    ui->fpSpreadStock->defineColumns({{"Accession No", 12}, {"Shelf No", 12}, {"Class", 10}, {"Authors", 30}, {"Title", 36}, {"ISBN", 14}, {"Print", 6}});
    ui->fpSpreadStock->setColumnType(PrintColumn, SpreadModel::CellType::CheckBox);
    for (const LabelStock &stock : templates_.stocks())
        ui->cboLabelStock->addItem(stock.name + QStringLiteral(" (") + QString::number(stock.perSheet()) + QStringLiteral(" on ")
                                       + stock.paper + QStringLiteral(")"),
                                   stock.name);
    ui->cboLabelStock->setCurrentIndex(ui->cboLabelStock->findData(settings_.value(QLatin1String(LabelStockKey))));
    connect(ui->cmdAll, &QPushButton::clicked, this, &frmLabelList::cmdAll_Click);
    connect(ui->cmdSearch, &QPushButton::clicked, this, &frmLabelList::cmdSearch_Click);
    for (QLineEdit *box : criteria_.boxes())
        connect(box, &QLineEdit::returnPressed, this, &frmLabelList::cmdSearch_Click);
    connect(ui->cmbCategory, &QComboBox::activated, this, &frmLabelList::cmbCategory_Click);
    connect(ui->chkAll, &QCheckBox::clicked, this, &frmLabelList::chkAll_Click);
    connect(ui->fpSpreadStock, &SpreadGrid::headerClicked, this, &frmLabelList::OrderItems);
    connect(ui->cmdPrint, &QPushButton::clicked, this, &frmLabelList::cmdPrint_Click);
    connect(ui->cmdDone, &QPushButton::clicked, this, &QDialog::accept);
    Trap(Location, QStringLiteral("Form_Load"), [&] { FillItemCategories(data_, ui->cmbCategory); }, [&] { data_.CloseCompact(); });
}

frmLabelList::~frmLabelList() = default;

namespace {

// A copy a row: accession, shelf, class, its authors, title and ISBN, the Print box clear.
void writeLabelRows(const Recordset &rs, const CellSink &put)
{
    const std::pair<int, int> plain[] = {{0, rs.fieldIndex(QStringLiteral("ItemID"))},      {1, rs.fieldIndex(QStringLiteral("AccessionID"))},
                                         {2, rs.fieldIndex(QStringLiteral("ShelfNumber"))}, {3, rs.fieldIndex(QStringLiteral("classificationno"))},
                                         {5, rs.fieldIndex(QStringLiteral("Title"))},       {6, rs.fieldIndex(QStringLiteral("ISBN"))}};
    const int author1 = rs.fieldIndex(QStringLiteral("Author1")), author2 = rs.fieldIndex(QStringLiteral("Author2"));
    std::string text, second;
    for (int r = 0; r < rs.RecordCount(); ++r) {
        for (const auto &[column, field] : plain) {
            text.clear();
            rs.fieldAt(r, field).appendUtf8(&text);
            put(column, r + 1, text);
        }
        text.clear();
        second.clear();
        rs.fieldAt(r, author1).appendUtf8(&text);
        rs.fieldAt(r, author2).appendUtf8(&second);
        if (!text.empty() && !second.empty())
            text += "; ";
        put(4, r + 1, text + second);
        put(PrintColumn, r + 1, "0");
    }
}

} // namespace

void frmLabelList::fill(const QString &sql)
{
    listStatement_ = sql;
    if (FillGridInBackground(this, *ui->fpSpreadStock, sql + order_.clause(), QStringLiteral("Reading the catalogue..."), writeLabelRows))
        ui->chkAll->setChecked(false);
}

void frmLabelList::cmdAll_Click()
{
    Trap(Location, QStringLiteral("cmdAll_Click"), [&] {
        order_.reset();
        fill(itemsFrom("INNER") + QStringLiteral(" where i.PhasedOut=False  "));
    }, [&] { data_.CloseCompact(); });
}

void frmLabelList::cmdSearch_Click()
{
    Trap(Location, QStringLiteral("cmdSearch_Click"), [&] {
        const QString terms = criteria_.condition();
        if (terms.isEmpty()) {
            UserMessage(QStringLiteral("Please enter or select at least one search criteria"));
            return;
        }
        order_.reset();
        fill(itemsFrom("LEFT") + QStringLiteral(" Where i.PhasedOut = False And ") + terms);
    }, [&] { data_.CloseCompact(); });
}

void frmLabelList::cmbCategory_Click()
{
    Trap(Location, QStringLiteral("cmbCategory_Click"), [&] {
        FillItemSubCategories(data_, ui->cmbCategory, ui->cmbSubCategory);
    }, [&] { data_.CloseCompact(); });
}

void frmLabelList::chkAll_Click()
{
    SpreadGrid &grid = *ui->fpSpreadStock;
    for (int row = 1; row <= grid.maxRows(); ++row)
        grid.setChecked(PrintColumn, row, ui->chkAll->isChecked());
}

void frmLabelList::OrderItems(int column)
{
    if (listStatement_.isEmpty() || column < 1 || column > 6)
        return;
    Trap(Location, QStringLiteral("Order Items Routine"), [&] {
        order_.choose(QLatin1String(OrderFields[column]));
        fill(listStatement_);
    }, [&] { data_.CloseCompact(); });
}

QStringList frmLabelList::tickedTexts(bool barcodes) const
{
    const SpreadGrid &grid = *ui->fpSpreadStock;
    QStringList texts;
    for (int row = 1; row <= grid.maxRows(); ++row)
        if (grid.isChecked(PrintColumn, row))
            texts << grid.cellText(barcodes ? 1 : 2, row);
    return texts;
}

QString frmLabelList::CreateList()
{
    const bool barcodes = ui->optBarcode->isChecked();
    const QString path = QDir(ApplicationFolder()).filePath(QStringLiteral("libdata1.txt"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        throw AppError(75, QStringLiteral("Path/File access error: %1").arg(path));
    QByteArray data = (barcodes ? QByteArrayLiteral("AccessionID") : QByteArrayLiteral("ShelfNumber")) + "\t\r\n";
    for (const QString &text : tickedTexts(barcodes))
        data += (barcodes ? QByteArrayLiteral("*") + text.toUtf8() + QByteArrayLiteral("*") : text.toUtf8()) + "\t\r\n";
    if (file.write(data) != data.size() || !file.flush())
        throw AppError(61, QStringLiteral("Disk full: %1").arg(path));
    return path;
}

void frmLabelList::cmdPrint_Click()
{
    QString list;
    try {
        if (ui->fpSpreadStock->maxRows() == 0) {
            UserMessage(QStringLiteral("There are NO items in the list for printing."));
            return;
        }
        const bool barcodes = ui->optBarcode->isChecked();
        const QStringList texts = tickedTexts(barcodes);
        if (texts.isEmpty()) {
            UserMessage(QStringLiteral("There are NO items selected for label printing"));
            return;
        }
        const QString stockName = ui->cboLabelStock->currentIndex() >= 0 ? ui->cboLabelStock->currentData().toString()
                                                                          : settings_.value(QLatin1String(LabelStockKey));
        const LabelStock *stock = templates_.find(stockName);
        if (!stock) {
            UserMessage(stockName.isEmpty() ? QStringLiteral("Please choose the label stock to print on.")
                                            : QStringLiteral("The label stock \"") + stockName
                                                  + QStringLiteral("\" is not among the label templates installed on this computer. Please choose another label stock."));
            return;
        }
        settings_.setValue(QLatin1String(LabelStockKey), stock->name);
        list = CreateList();
        PrintJob job;
        if (job.choose(this)) {
            const LabelSheet sheet(*stock, barcodes ? LabelSheet::Barcode : LabelSheet::Spine);
            const int start = ui->spnStartPosition->value();
            TaskRunner(this, QStringLiteral("Drawing the labels..."), TaskRunner::Cancel::Yes).run([&](TaskProgress &progress) {
                sheet.print(job.printer(), texts, start, progress);
            });
        }
    } catch (const AppError &e) {
        ReportError(Location, list.isEmpty() ? QStringLiteral("Create List") : QStringLiteral("Create Labels"), e);
    }
    if (!list.isEmpty())
        QFile::remove(list);
}
