#pragma once

#include <QString>

class QComboBox;
class QLineEdit;
class QAbstractButton;

/// The search criteria of the item lists (the stock list and the label list), joined into the
/// condition of their statement in a fixed order with " and ". Texts go in as typed.
struct ItemCriteria {
    const QComboBox *category = nullptr;
    const QComboBox *subCategory = nullptr;
    const QLineEdit *accession = nullptr;
    const QLineEdit *authorSurname = nullptr;
    const QLineEdit *title = nullptr;
    const QLineEdit *classification = nullptr;
    const QLineEdit *isbn = nullptr;
    const QLineEdit *shelf = nullptr; // the label list only
    const QAbstractButton *restricted = nullptr;
    const QAbstractButton *shortLoan = nullptr;

    /// The condition; empty when no criterion is given.
    QString condition() const;
};
