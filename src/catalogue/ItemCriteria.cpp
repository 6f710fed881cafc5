#include "mCombo.h"
#include "ItemCriteria.h"

#include "SqlText.h"
#include "TypedFields.h"
#include "clsDataObject.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QStringList>

QString ItemCriteria::condition() const
{
    QStringList terms;
    auto chosen = [&](const QComboBox *combo, const char *column) {
        if (combo && combo->currentIndex() >= 0)
            terms << QStringLiteral(" i.%1 = ").arg(QLatin1String(column)) + QString::number(combo->currentData().toInt());
    };
    auto contains = [&](const QLineEdit *box, const char *column) {
        if (box && !box->text().isEmpty())
            terms << QStringLiteral(" i.%1 like '%").arg(QLatin1String(column)) + Safesql(box->text()) + QStringLiteral("%'");
    };
    chosen(category, "CategoryID");
    chosen(subCategory, "SubCategoryID");
    contains(accession, "AccessionID");
    if (authorSurname && !authorSurname->text().isEmpty()) {
        const QString surname = Safesql(authorSurname->text());
        terms << QStringLiteral(" (a1.AuthorSurname like '") + surname + QStringLiteral("%' or a2.AuthorSurname like '") + surname
                     + QStringLiteral("%' )");
    }
    contains(title, "Title");
    contains(classification, "ClassificationNo");
    contains(isbn, "ISBN");
    contains(shelf, "ShelfNumber");
    if (restricted && restricted->isChecked())
        terms << QStringLiteral(" i.restricted = true");
    if (shortLoan && shortLoan->isChecked())
        terms << QStringLiteral(" i.Loantype = 'S'");
    return terms.join(QStringLiteral(" and "));
}

void ItemCriteria::limitToColumns() const
{
    const std::pair<QLineEdit *, const char *> items[] = {
        {accession, "AccessionID"}, {title, "Title"}, {classification, "ClassificationNo"}, {isbn, "ISBN"}, {shelf, "ShelfNumber"}};
    for (const auto &[box, column] : items)
        if (box)
            LimitToColumn(box, "tblLibItems", column);
    if (authorSurname)
        LimitToColumn(authorSurname, "tblLibAuthors", "AuthorSurname");
}

QString ItemListOrder::clause() const
{
    if (field_.isEmpty())
        return QStringLiteral(" Order By Title, AccessionID");
    return QStringLiteral(" Order By i.") + field_ + (descending_ ? QStringLiteral(" DESC") : QStringLiteral(" ASC"));
}

void FillItemCategories(clsDataObject &data, QComboBox *categories)
{
    Fillcombo(data, categories, QStringLiteral("Select CategoryID,Category from tblLibCategories where PhasedOut = false order by Category"), 0, 1);
    data.CloseCompact();
    categories->setCurrentIndex(-1);
}

void FillItemSubCategories(clsDataObject &data, const QComboBox *categories, QComboBox *subCategories)
{
    subCategories->clear();
    Fillcombo(data, subCategories, QStringLiteral("select subcategoryId, subcategory from tbllibsubcategories where categoryId = ")
                                      + QString::number(categories->currentData().toInt()) + QStringLiteral(" order by subcategory"),
                   0, 1);
    data.CloseCompact();
    subCategories->setCurrentIndex(-1);
}

std::vector<QLineEdit *> ItemCriteria::boxes() const
{
    std::vector<QLineEdit *> typed;
    for (QLineEdit *box : {accession, authorSurname, title, classification, isbn, shelf})
        if (box)
            typed.push_back(box);
    return typed;
}
