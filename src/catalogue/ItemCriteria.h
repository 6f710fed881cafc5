#pragma once

#include <QString>

#include <vector>

class QComboBox;
class QLineEdit;
class QAbstractButton;

/// The search criteria of the item lists (the stock list and the label list), joined into the
/// condition of their statement in a fixed order with " and ". Typed texts go in with their quotes doubled.
struct ItemCriteria {
    const QComboBox *category = nullptr;
    const QComboBox *subCategory = nullptr;
    QLineEdit *accession = nullptr;
    QLineEdit *authorSurname = nullptr;
    QLineEdit *title = nullptr;
    QLineEdit *classification = nullptr;
    QLineEdit *isbn = nullptr;
    QLineEdit *shelf = nullptr; // the label list only
    const QAbstractButton *restricted = nullptr;
    const QAbstractButton *shortLoan = nullptr;

    /// The condition; empty when no criterion is given.
    QString condition() const;
    /// Each box takes no more than the column it searches.
    void limitToColumns() const;
    /// The typed criteria, for Enter to run the search.
    std::vector<QLineEdit *> boxes() const;
};

/// The order of an item list: by title and accession number until a column caption is clicked,
/// then by that column's field ascending, and descending when the same caption is clicked again.
class ItemListOrder {
public:
    void reset()
    {
        field_.clear();
        descending_ = false;
    }
    void choose(const QString &field)
    {
        descending_ = field == field_ && !descending_;
        field_ = field;
    }
    /// " Order By ..." to append to the list's statement.
    QString clause() const;

private:
    QString field_;
    bool descending_ = false;
};

class clsDataObject;

/// Fills an item list's category combo with the live categories, nothing chosen. Errors reach the caller.
void FillItemCategories(clsDataObject &data, QComboBox *categories);
/// Fills the sub-category combo with the chosen category's sub-categories, nothing chosen.
void FillItemSubCategories(clsDataObject &data, const QComboBox *categories, QComboBox *subCategories);
