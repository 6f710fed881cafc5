#include "ScreenRegistry.h"

#include "modExtendedMsgBox.h"

#include <QDialog>

#include <memory>

void ScreenRegistry::open(const QString &name, const QString &caption, QWidget *parent) const
{
    const auto it = factories_.constFind(name);
    if (it == factories_.constEnd()) {
        UserMessage(QStringLiteral("\"%1\" is not part of this version of Shelvora yet.").arg(caption));
        return;
    }
    std::unique_ptr<QDialog> screen((*it)(parent));
    screen->setModal(true);
    screen->exec();
}
