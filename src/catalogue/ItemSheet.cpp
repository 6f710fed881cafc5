#include "ItemSheet.h"

#include "AppError.h"
#include "Clock.h"
#include "DatabaseSchema.h"
#include "SpreadGrid.h"
#include "SqlText.h"
#include "clsDataObject.h"
#include "modExtendedMsgBox.h"

#include <cmath>
#include <functional>

namespace {

using Type = SpreadModel::CellType;
constexpr int CategoryRow = 2, SubCategoryRow = 3, SeriesRow = 11;
constexpr int ReferenceRow = 9, PurchasedRow = 10;

// (column, row, label) of every label of the sheet.
struct Label {
    int col, row;
    const char *text;
};
constexpr Label Labels[] = {
    {1, 1, "Catalogue Details"},  {1, 2, "Category:"},        {4, 2, "ISBN:"},      {1, 3, "Sub-Category:"}, {4, 3, "Publisher:"},
    {1, 4, "Author 1:"},          {4, 4, "Year Publised:"},   {1, 5, "Author 2:"},  {4, 5, "Language:"},     {1, 6, "Author 3:"},
    {4, 6, "Call / Shelf Nr:"},   {1, 7, "Title:"},           {1, 8, "Sub-Title:"}, {4, 8, "Cost:"},         {1, 9, "Subject:"},
    {4, 9, "Reference Item:"},    {1, 10, "Classification No.:"}, {4, 10, "Date Purchased:"}, {1, 11, "Series:"}, {4, 11, "Edition:"},
    {1, 12, "For multiple copies of the same text, enter a separate Accession number for each copy."}};

// The free-text cells and the item columns they show and are saved to.
struct TextCell {
    int col, row;
    const char *column;
};
constexpr TextCell TextCells[] = {{2, 7, "Title"}, {2, 8, "ByLine"}, {2, 9, "MainSubject"}, {2, 10, "ClassificationNo"},
                                  {5, 2, "ISBN"},  {5, 6, "ShelfNumber"}};

// A number typed in a cell, as the old IsNumeric saw it; false for text, blanks and infinities.
bool numeric(const QString &text, double *value)
{
    bool ok = false;
    *value = text.toDouble(&ok);
    return ok && std::isfinite(*value);
}

bool fitsInt16(double value)
{
    const double rounded = std::nearbyint(value);
    return rounded >= -32768 && rounded <= 32767;
}

// The old 16-bit conversion (rounding half to even); Overflow outside its range.
int toInt16(double value)
{
    if (!fitsInt16(value))
        throw AppError(AppError::Overflow, QStringLiteral("Overflow"));
    return int(std::nearbyint(value));
}

// The purchase date typed (today when empty); false when the text is no date.
bool purchaseDate(const QString &text, QDate *date)
{
    if (text.isEmpty()) {
        *date = Clock::today();
        return true;
    }
    for (const char *format : {"yyyy-MM-dd", "yyyy/MM/dd", "d/M/yyyy"}) {
        *date = QDate::fromString(text, QLatin1String(format));
        if (date->isValid())
            return true;
    }
    return false;
}

NameList load(clsDataObject &data, const QString &sql, const char *idField, const char *nameField, const char *secondName = nullptr)
{
    NameList list;
    data.GetData(sql);
    for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext()) {
        QString name = rs.field(QLatin1String(nameField)).toString();
        if (secondName)
            name += QStringLiteral(", ") + rs.field(QLatin1String(secondName)).toString();
        list.names << name;
        list.ids << rs.field(QLatin1String(idField)).toInt();
    }
    data.CloseCompact();
    return list;
}

} // namespace

int NameList::idOf(const QString &name) const
{
    const qsizetype at = names.indexOf(name);
    return at < 0 ? -1 : ids[at];
}

void ItemSheet::layOut()
{
    grid_.setMaxCols(5);
    grid_.setMaxRows(LastAccessionRow);
    for (const Label &label : Labels)
        grid_.setCellText(label.col, label.row, QString::fromUtf8(label.text));
    for (int row = FirstAccessionRow; row <= LastAccessionRow; ++row) {
        grid_.setCellText(1, row, QStringLiteral("Accession Number:"));
        grid_.setCellText(4, row, QStringLiteral("Accession Number:"));
    }
    const double widths[] = {0, 18, 34, 2, 16, 26};
    for (int col = 1; col <= 5; ++col)
        grid_.setColWidth(col, widths[col]);
    grid_.setColumnLocked(2, false);
    grid_.setColumnLocked(5, false);
    grid_.setSheetEditing();
    grid_.spanToEnd(1, 12); // the note on multiple copies
    for (auto [col, row] : {std::pair{2, 1}, {5, 1}, {2, 12}, {5, 7}, {5, 12}})
        grid_.setCellLocked(col, row, true);
    for (auto [col, row] : {std::pair{2, CategoryRow}, {2, SubCategoryRow}, {2, 4}, {2, 5}, {2, 6}, {2, SeriesRow}, {5, 3}, {5, 5}})
        grid_.setCellType(col, row, Type::Combo);
    grid_.setCellType(5, ReferenceRow, Type::CheckBox);
    grid_.setCellType(5, PurchasedRow, Type::Date);
    // Each text cell takes no more than the column it is saved to.
    const auto limit = [this](int col, int row, const char *column) {
        grid_.setCellMaxLength(col, row, DatabaseSchema::textColumnSize(QStringLiteral("tblLibItems"), QLatin1String(column)));
    };
    for (const TextCell &cell : TextCells)
        limit(cell.col, cell.row, cell.column);
    for (int row = FirstAccessionRow; row <= LastAccessionRow; ++row) {
        limit(2, row, "AccessionID");
        limit(5, row, "AccessionID");
    }
}

void ItemSheet::LoadCombos(clsDataObject &data)
{
    categories_ = load(data, clsTSQL().spCategoriesList(), "CategoryID", "Category");
    authors_ = load(data, QStringLiteral("select * from tblLibAuthors where phasedout = false order by authorsurname"), "AuthorID", "Authorsurname",
                    "Authorfirstname");
    publishers_ = load(data, QStringLiteral("select * from tblLibPublishers where phasedout = false order by publisher"), "PublisherID", "Publisher");
    series_ = load(data, QStringLiteral("select * from tblLibseries where phasedout = false order by series"), "SeriesID", "Series");
    languages_ = load(data, QStringLiteral("select * from tblLibItemLanguages"), "ItemLanguageID", "ItemLanguage");
    grid_.setCellList(2, CategoryRow, categories_.names);
    for (int row : {4, 5, 6})
        grid_.setCellList(2, row, authors_.names);
    grid_.setCellList(2, SeriesRow, series_.names);
    grid_.setCellList(5, 3, publishers_.names);
    grid_.setCellList(5, 5, languages_.names);
}

void ItemSheet::loadSubCategories(clsDataObject &data)
{
    subCategories_ = load(data, clsTSQL().spSubCategoriesGetRecordByCategory(Safesql(value(2, CategoryRow))), "SubCategoryID", "SubCategory");
    grid_.setCellList(2, SubCategoryRow, subCategories_.names);
}

QString ItemSheet::value(int col, int row) const { return grid_.cellText(col, row).trimmed(); }

void ItemSheet::setValue(int col, int row, const QString &text) { grid_.setCellText(col, row, text); }

void ItemSheet::show(const Recordset &item, bool withAccession)
{
    auto put = [&](int col, int row, const char *field) { setValue(col, row, item.field(QLatin1String(field)).toString()); };
    put(2, CategoryRow, "Category");
    put(2, SubCategoryRow, "SubCategory");
    put(2, 4, "strAuthor1");
    put(2, 5, "strAuthor2");
    put(2, 6, "strAuthor3");
    for (const TextCell &cell : TextCells)
        put(cell.col, cell.row, cell.column);
    put(2, SeriesRow, "Series");
    put(5, 3, "strPublisher");
    put(5, 4, "YearPublished");
    put(5, 5, "ItemLanguage");
    put(5, 8, "Cost");
    grid_.setChecked(5, ReferenceRow, item.field(QStringLiteral("ReferenceItem")).toBool());
    put(5, PurchasedRow, "DatePurchased");
    put(5, 11, "Edition");
    if (withAccession)
        put(2, FirstAccessionRow, "AccessionID");
}

void ItemSheet::clearValues()
{
    for (int row = CategoryRow; row <= SeriesRow; ++row) {
        setValue(2, row, QString());
        setValue(5, row, QString());
    }
    setValue(5, ReferenceRow, QStringLiteral("0"));
    for (int row = FirstAccessionRow; row <= LastAccessionRow; ++row) {
        setValue(2, row, QString());
        setValue(5, row, QString());
    }
}

void ItemSheet::useFirstAccessionOnly()
{
    for (int row = FirstAccessionRow; row <= LastAccessionRow; ++row) {
        if (row > FirstAccessionRow)
            grid_.setCellLocked(2, row, true);
        grid_.setCellLocked(5, row, true);
    }
}

std::vector<QPoint> ItemSheet::filledAccessionCells() const
{
    std::vector<QPoint> cells;
    for (int col : {2, 5})
        for (int row = FirstAccessionRow; row <= LastAccessionRow; ++row)
            if (!value(col, row).isEmpty())
                cells.emplace_back(col, row);
    return cells;
}

bool ItemSheet::ValidateData(ItemDetails *item) const
{
    QString missing;
    auto add = [&missing](const char *text) { missing += QStringLiteral("\r\n") + QLatin1String(text); };
    // A name typed into a required combo cell that its list does not hold counts as missing.
    item->categoryID = categories_.idOf(value(2, CategoryRow));
    if (item->categoryID < 0)
        add(" Category is missing;");
    item->subCategoryID = subCategories_.idOf(value(2, SubCategoryRow));
    if (item->subCategoryID < 0)
        add(" Sub-Category is missing;");
    if (value(2, FirstAccessionRow).isEmpty())
        add(" The accession number is missing;");
    item->author1 = authors_.idOf(value(2, 4));
    if (item->author1 < 0)
        add(" Author is missing");
    item->mainSubject = value(2, 9);
    if (item->mainSubject.isEmpty() && value(2, SubCategoryRow) != QLatin1String("Fiction"))
        add(" Select a subject to populate Classification No;");
    item->classificationNo = item->mainSubject.isEmpty() ? QString() : value(2, 10);
    item->title = value(2, 7);
    if (item->title.isEmpty())
        add(" Title is missing");
    item->shelfNumber = value(5, 6);
    if (item->shelfNumber.isEmpty())
        add(" Shelf number is missing");
    if (value(5, 5).isEmpty())
        add(" Language is missing");
    double edition = 0;
    const bool editionNumeric = numeric(value(5, 11), &edition);
    if (editionNumeric && edition > 32766)
        add(" Edition is greater than 32766");
    if (!missing.isEmpty()) {
        UserMessage(QStringLiteral("The following field(s) are missing and must be completed:") + missing);
        return false;
    }

    // Optional names: empty, or not in their list, give 0.
    item->author2 = std::max(0, authors_.idOf(value(2, 5)));
    item->author3 = std::max(0, authors_.idOf(value(2, 6)));
    item->publisher = std::max(0, publishers_.idOf(value(5, 3)));
    item->seriesID = std::max(0, series_.idOf(value(2, SeriesRow)));
    item->itemLanguageID = std::max(0, languages_.idOf(value(5, 5)));
    item->byLine = value(2, 8);
    item->isbn = value(5, 2);
    // Numbers and dates the columns cannot hold are named plainly (letters in Year and Cost are
    // converted as described: this year and 0).
    double number = 0;
    const bool yearNumeric = numeric(value(5, 4), &number);
    if (yearNumeric && !fitsInt16(number)) {
        UserMessage(QStringLiteral("Year published must be a whole number up to 32767."));
        return false;
    }
    item->yearPublished = yearNumeric ? toInt16(number) : Clock::today().year();
    item->cost = numeric(value(5, 8), &number) ? number : 0;
    item->referenceItem = grid_.isChecked(5, ReferenceRow);
    if (!purchaseDate(value(5, PurchasedRow), &item->datePurchased)) {
        UserMessage(QStringLiteral("Date Purchased must be a date, for example ") + Clock::today().toString(Qt::ISODate) + QLatin1Char('.'));
        return false;
    }
    if (!value(5, 11).isEmpty() && (!editionNumeric || !fitsInt16(edition))) {
        UserMessage(QStringLiteral("Edition must be a whole number."));
        return false;
    }
    item->edition = value(5, 11).isEmpty() ? 0 : toInt16(edition);
    return true;
}

QString NextAccessionAfter(const QString &last, AccessionRange range)
{
    qsizetype start = last.size();
    while (start > 0 && last[start - 1] >= QLatin1Char('0') && last[start - 1] <= QLatin1Char('9'))
        --start;
    const QString digits = last.mid(start);
    if (digits.isEmpty())
        return last + QLatin1Char('1');
    qsizetype firstSignificant = 0;
    while (firstSignificant < digits.size() - 1 && digits[firstSignificant] == QLatin1Char('0'))
        ++firstSignificant;
    const QString significant = digits.mid(firstSignificant);
    // The editor's run is a 16-bit number: 32767 and more cannot be incremented.
    const qint64 limit = range == AccessionRange::SixteenBit ? 32767 : 999999999999999LL;
    if (significant.size() > (range == AccessionRange::SixteenBit ? 5 : 15) || significant.toLongLong() >= limit)
        throw AppError(AppError::Overflow, QStringLiteral("Overflow"));
    // The leading zeros are kept even when the increment adds a digit (A0099 gives A00100).
    return last.left(start) + QString(firstSignificant, QLatin1Char('0')) + QString::number(significant.toLongLong() + 1);
}

namespace {
// A list's name as compared with a found one: "Surname, " (no first names) is "Surname".
QString comparable(QString name)
{
    name = name.simplified();
    while (name.endsWith(u',') || name.endsWith(u' '))
        name.chop(1);
    return name.toCaseFolded();
}
} // namespace

int ItemSheet::shownIndex(const NameList &list, const QString &name) const
{
    const QString wanted = comparable(name);
    for (qsizetype i = 0; i < list.names.size(); ++i)
        if (comparable(list.names[i]) == wanted)
            return int(i);
    return -1;
}

QStringList ItemSheet::namesMissing(const CatalogueRecord &found) const
{
    QStringList missing;
    for (const QString &a : found.authors.mid(0, 3))
        if (shownIndex(authors_, a) < 0)
            missing << a;
    if (!found.publisher.isEmpty() && shownIndex(publishers_, found.publisher) < 0)
        missing << found.publisher;
    if (!found.series.isEmpty() && shownIndex(series_, found.series) < 0)
        missing << found.series;
    return missing;
}

void ItemSheet::showFound(const CatalogueRecord &found, bool addMissing)
{
    // A name on its list is shown as the list has it; a missing one is proposed, or left out.
    const auto place = [&](NameList &list, QStringList &proposed, int col, int row, const QString &name, int cellList) {
        if (name.isEmpty()) {
            setValue(col, row, QString());
            return;
        }
        int at = shownIndex(list, name);
        if (at < 0 && addMissing) {
            list.names << name;
            list.ids << 0;
            proposed << name;
            at = int(list.names.size()) - 1;
            for (int r : cellList == 0 ? QList<int>{4, 5, 6} : QList<int>{row})
                grid_.setCellList(col, r, list.names);
        }
        setValue(col, row, at < 0 ? QString() : list.names[at]);
    };
    setValue(2, 7, found.title.left(255));
    setValue(2, 8, found.subtitle.left(255));
    for (int i = 0; i < 3; ++i)
        place(authors_, proposedAuthors_, 2, 4 + i, found.authors.value(i), 0);
    place(publishers_, proposedPublishers_, 5, 3, found.publisher, 1);
    place(series_, proposedSeries_, 2, SeriesRow, found.series, 1);
    setValue(5, 4, found.year);
    if (const int language = shownIndex(languages_, found.language); language >= 0)
        setValue(5, 5, languages_.names[language]);
    setValue(5, 11, found.edition);
    setValue(5, 2, found.isbns.value(0));
    // The classification number is kept with a subject: the first heading stands as the subject.
    setValue(2, 9, found.subjects.value(0).left(255));
    setValue(2, 10, found.classification.left(50));
}

void ItemSheet::writeProposedNames(clsDataObject &data, ItemDetails *item)
{
    const auto quoted = [](const QString &t) { return QLatin1Char('\'') + Safesql(t) + QLatin1Char('\''); };
    const auto write = [&](NameList &list, QStringList &proposed, const QString &name, const std::function<QString()> &insert, const QString &key) {
        const qsizetype at = list.names.indexOf(name);
        if (!proposed.contains(name) || at < 0)
            return list.idOf(name);
        int id = 0;
        data.RunTransaction([&] {
            id = int(data.InsertReturningKey(insert(), key));
            return true;
        });
        list.ids[at] = id;
        proposed.removeAll(name);
        return id;
    };
    const auto author = [&](int row, int *id) {
        const QString name = value(2, row);
        const QString surname = name.section(u',', 0, 0).trimmed(), first = name.section(u',', 1).trimmed();
        const int written = write(authors_, proposedAuthors_, name, [&] {
            return QStringLiteral("insert into tblLibAuthors(AuthorSurname, AuthorFirstName) values(") + quoted(surname.left(100)) + QLatin1Char(',')
                   + quoted(first.left(100)) + QLatin1Char(')');
        }, QStringLiteral("AuthorID"));
        if (written > 0)
            *id = written;
    };
    author(4, &item->author1);
    author(5, &item->author2);
    author(6, &item->author3);
    const QString publisher = value(5, 3), series = value(2, SeriesRow);
    if (const int id = write(publishers_, proposedPublishers_, publisher, [&] {
            return QStringLiteral("insert into tblLibPublishers(Publisher) values(") + quoted(publisher.left(100)) + QLatin1Char(')');
        }, QStringLiteral("PublisherID")); id > 0)
        item->publisher = id;
    if (const int id = write(series_, proposedSeries_, series, [&] {
            return QStringLiteral("insert into tblLibSeries(Series) values(") + quoted(series.left(100)) + QLatin1Char(')');
        }, QStringLiteral("SeriesID")); id > 0)
        item->seriesID = id;
}
