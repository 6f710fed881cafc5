#include "TypedFields.h"

#include "DatabaseSchema.h"

#include <QAbstractSpinBox>
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

void GuardTypedFields(QWidget *screen)
{
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
