#include "ScreenRegistry.h"

#include "modExtendedMsgBox.h"

#include <QDialog>

#include <memory>

void ScreenRegistry::open(const QString &name, const QString &caption, QWidget *parent, const ScreenOptions &options) const
{
    std::unique_ptr<QDialog> screen(make(name, parent, options));
    if (!screen) {
        UserMessage(QStringLiteral("\"%1\" is not part of this version of Shelvora yet.").arg(caption));
        return;
    }
    screen->setModal(true);
    screen->exec();
}
