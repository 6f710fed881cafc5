#include "TypedFields.h"

#include "DatabaseSchema.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QKeyEvent>
#include <QLineEdit>
#include <QRegularExpression>
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

namespace {

// A date typed whole ("2026-03-01", also with / or .) is taken as typed. The editor alone moves on
// by itself once a section is full, so the separator typed next would skip the following section.
class WholeDateTyping : public QObject {
public:
    explicit WholeDateTyping(QDateEdit *box) : QObject(box), box_(box) {}

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::FocusIn)
            typed_.clear();
        if (event->type() != QEvent::KeyPress)
            return QObject::eventFilter(watched, event);
        const QString text = static_cast<QKeyEvent *>(event)->text();
        static const QRegularExpression piece(QStringLiteral("^[0-9/.-]$"));
        if (!piece.match(text).hasMatch()) {
            typed_.clear();
            return QObject::eventFilter(watched, event);
        }
        typed_ += text;
        static const QRegularExpression whole(QStringLiteral("^(\\d{4})[/.-](\\d{1,2})[/.-](\\d{2})$"));
        const QRegularExpressionMatch m = whole.match(typed_);
        if (!m.hasMatch())
            return QObject::eventFilter(watched, event);
        const QDate date(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt());
        typed_.clear();
        if (!date.isValid())
            return QObject::eventFilter(watched, event);
        box_->setDate(date);
        return true;
    }

private:
    QDateEdit *box_;
    QString typed_;
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
    for (QDateEdit *date : screen->findChildren<QDateEdit *>())
        if (!date->property("takesWholeDates").toBool()) {
            date->setProperty("takesWholeDates", true);
            date->installEventFilter(new WholeDateTyping(date));
        }
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
