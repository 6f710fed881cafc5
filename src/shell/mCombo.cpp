#include "mCombo.h"

#include "NaturalOrder.h"
#include "Recordset.h"
#include "clsDataObject.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QAbstractItemView>
#include <QLineEdit>

#include <algorithm>
#include <utility>
#include <vector>

void ComboDropDown(QComboBox *combo) { combo->showPopup(); }

void ComboAutoComplete(QComboBox *combo, int &keyCode)
{
    if (keyCode < 32 || keyCode > 127)
        return;
    QLineEdit *edit = combo->lineEdit();
    if (!edit)
        return;
    const QString typed = (edit->hasSelectedText() ? edit->text().left(edit->selectionStart()) : edit->text()) + QChar(keyCode);
    if (!combo->view()->isVisible())
        ComboDropDown(combo);
    const int found = combo->findText(typed, Qt::MatchStartsWith);
    if (found < 0)
        return;
    combo->setCurrentIndex(found);
    combo->view()->setCurrentIndex(combo->model()->index(found, combo->modelColumn()));
    const QString match = combo->itemText(found);
    edit->setText(match);
    edit->setSelection(int(typed.size()), int(match.size() - typed.size()));
    keyCode = 0;
}

void ComboSelect(QComboBox *combo, const QVariant &value)
{
    bool numeric = false;
    const double number = value.toString().trimmed().toDouble(&numeric);
    for (int i = 0; i < combo->count(); ++i) {
        const bool match = numeric ? combo->itemData(i).isValid() && combo->itemData(i).toDouble() == number
                                   : combo->itemText(i) == value.toString();
        if (match) {
            combo->setCurrentIndex(i);
            return;
        }
    }
}

ComboTypeAhead::ComboTypeAhead(QComboBox *combo) : QObject(combo), combo_(combo)
{
    if (combo->lineEdit())
        combo->lineEdit()->installEventFilter(this);
    // While the list is open it has the keyboard: typing there goes on completing the text.
    combo->view()->installEventFilter(this);
}

bool ComboTypeAhead::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        const QString text = static_cast<QKeyEvent *>(event)->text();
        if (text.size() == 1) {
            int key = text[0].unicode();
            ComboAutoComplete(combo_, key);
            if (key == 0)
                return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

void AddClassesInNaturalOrder(QComboBox *combo, Recordset &classes, const QString &nameField, const QString &idField)
{
    std::vector<std::pair<QString, int>> entries;
    for (; !classes.atEnd(); classes.MoveNext())
        entries.emplace_back(classes.field(nameField).toString(), classes.field(idField).toInt());
    std::stable_sort(entries.begin(), entries.end(), [](const auto &a, const auto &b) { return NaturalLess(a.first, b.first); });
    for (const auto &[name, id] : entries)
        combo->addItem(name, id);
}

void Fillcombo(clsDataObject &data, QComboBox *combo, const QString &sql, int valueField, int textField, bool)
{
    struct Closer {
        clsDataObject &data;
        ~Closer() { data.CloseCompact(); }
    } closer{data};
    if (data.GetData(sql) < 1)
        return;
    combo->clear();
    for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext())
        combo->addItem(rs.field(textField).toString(), rs.field(valueField).toInt());
}
