#include "TypedFields.h"

#include "DatabaseSchema.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QValidator>

namespace {

constexpr int WidestColumn = 255;

// Refuses text with a NUL; everything else is the screen's business.
class NoNulValidator : public QValidator {
public:
    using QValidator::QValidator;
    State validate(QString &input, int &) const override { return input.contains(QChar(0)) ? Invalid : Acceptable; }
};

} // namespace

namespace {

class EscapeKeeper : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != QEvent::KeyPress || static_cast<QKeyEvent *>(event)->key() != Qt::Key_Escape)
            return QObject::eventFilter(watched, event);
        // The key reaches the screen only when the widget with the focus did not use it.
        auto *box = qobject_cast<QLineEdit *>(QApplication::focusWidget());
        if (box && !box->isReadOnly() && !qobject_cast<QComboBox *>(box->parentWidget()) && !qobject_cast<QAbstractSpinBox *>(box->parentWidget())
            && box->window() == watched)
            box->clear();
        return true;
    }
};

} // namespace

void KeepWorkOnEscape(QWidget *screen)
{
    if (screen->property("keepsWorkOnEscape").toBool())
        return;
    screen->setProperty("keepsWorkOnEscape", true);
    screen->installEventFilter(new EscapeKeeper(screen));
}

void GuardTypedFields(QWidget *screen)
{
    KeepWorkOnEscape(screen);
    for (QLineEdit *box : screen->findChildren<QLineEdit *>()) {
        if (qobject_cast<QAbstractSpinBox *>(box->parentWidget()))
            continue; // date and number editors allow only their own characters
        if (!box->validator())
            box->setValidator(new NoNulValidator(box));
        if (box->maxLength() > WidestColumn)
            box->setMaxLength(WidestColumn);
    }
}

void LimitToColumn(QLineEdit *box, const char *table, const char *column)
{
    const int size = DatabaseSchema::textColumnSize(QLatin1String(table), QLatin1String(column));
    if (size > 0)
        box->setMaxLength(size);
}
