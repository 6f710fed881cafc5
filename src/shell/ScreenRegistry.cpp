#include "ScreenRegistry.h"

#include "modExtendedMsgBox.h"

#include <QDialog>
#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QScrollArea>

#include <memory>

void ScreenRegistry::open(const QString &name, const QString &caption, QWidget *parent, const ScreenOptions &options) const
{
    std::unique_ptr<QDialog> screen(make(name, parent, options));
    if (!screen) {
        UserMessage(QStringLiteral("\"%1\" is not part of this version of Shelvora yet.").arg(caption));
        return;
    }
    screen->setModal(true);
    FitOnScreen(screen.get());
    screen->exec();
}

namespace {

// The size a screen asks for: what it was given, at least what its controls need, and for a
// screen whose contents scroll, its whole contents while there is room for them.
QSize wantedSize(QDialog *screen)
{
    QSize wanted = screen->size().expandedTo(screen->minimumSizeHint());
    if (const auto *scroll = screen->findChild<QScrollArea *>(QStringLiteral("scrollScreen"), Qt::FindDirectChildrenOnly); scroll && scroll->widget()) {
        // The contents keep the width they are meant to have (no caption squeezed or cut) and give up
        // height only where their lists scroll by themselves; the window shows them whole where
        // there is room, and scrolls where there is not.
        QWidget *contents = scroll->widget();
        contents->setMinimumSize(0, 0);
        contents->setMinimumSize(contents->sizeHint().width(), contents->minimumSizeHint().height());
        wanted = wanted.expandedTo(contents->minimumSize() + QSize(2, 2));
    }
    return wanted;
}

// Sizes are only sure once every control has its style and the layouts have run: the screen is
// fitted again when it is first shown.
class FitWhenShown : public QObject {
public:
    FitWhenShown(QDialog *screen, QSize room) : QObject(screen), screen_(screen), room_(room) {}

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == screen_ && event->type() == QEvent::Show) {
            screen_->resize(wantedSize(screen_).boundedTo(room_));
            deleteLater();
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QDialog *screen_;
    QSize room_;
};

} // namespace

void FitOnScreen(QDialog *screen, QSize room)
{
    if (room.isEmpty()) {
        const QScreen *desktop = screen->screen() ? screen->screen() : QGuiApplication::primaryScreen();
        if (!desktop)
            return;
        room = desktop->availableGeometry().size();
    }
    screen->resize(wantedSize(screen).boundedTo(room));
    screen->installEventFilter(new FitWhenShown(screen, room));
}
