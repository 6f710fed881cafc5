#pragma once

#include <QObject>
#include <QVariant>

class QComboBox;
class Recordset;

/// Opens the combo's list.
void ComboDropDown(QComboBox *combo);
/// Type-ahead from a combo's key press: completes the typed text to the first
/// entry that begins with it and selects the completed part, so the next key
/// replaces it. Sets keyCode to 0 when the key was used.
void ComboAutoComplete(QComboBox *combo, int &keyCode);
/// Selects the first entry whose item data equals a numeric value, or whose text equals any other value.
void ComboSelect(QComboBox *combo, const QVariant &value);

class clsDataObject;

/// Fills a combo from a library statement: text from textField, item data (32-bit) from valueField.
/// An empty result leaves the list as it was. The flag is kept for the callers that pass it; it changes nothing.
void Fillcombo(clsDataObject &data, QComboBox *combo, const QString &sql, int valueField, int textField, bool flag = false);

/// Adds the classes of a recordset (text and id fields) in natural order: 1A, 1B, 2A … 10A.
void AddClassesInNaturalOrder(QComboBox *combo, Recordset &classes, const QString &nameField, const QString &idField);

/// Gives an editable combo type-ahead completion as the user types.
class ComboTypeAhead : public QObject {
public:
    explicit ComboTypeAhead(QComboBox *combo);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QComboBox *combo_;
};
