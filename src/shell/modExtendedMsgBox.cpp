#include "modExtendedMsgBox.h"

#include "MessageScript.h"

#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPushButton>

#include <cstdio>
#include <cstdlib>

namespace {

struct ButtonSpec { QMessageBox::StandardButton button; int code; };

std::vector<ButtonSpec> buttonsFor(int style)
{
    switch (style & 7) {
    case 1: return {{QMessageBox::Ok, 1}, {QMessageBox::Cancel, 2}};
    case 2: return {{QMessageBox::Abort, 3}, {QMessageBox::Retry, 4}, {QMessageBox::Ignore, 5}};
    case 3: return {{QMessageBox::Yes, 6}, {QMessageBox::No, 7}, {QMessageBox::Cancel, 2}};
    case 4: return {{QMessageBox::Yes, 6}, {QMessageBox::No, 7}};
    case 5: return {{QMessageBox::Retry, 4}, {QMessageBox::Cancel, 2}};
    default: return {{QMessageBox::Ok, 1}};
    }
}

} // namespace

int MessageBoxes::show(const QString &prompt, int style, const QString &title, MessagePicture picture, const QString &iconFile)
{
    if (QGuiApplication::platformName() == QLatin1String("offscreen") || QGuiApplication::platformName() == QLatin1String("minimal")) {
        // Nobody can see or answer a box without a screen: say it where a log catches it and stop
        // rather than wait for ever (committed work is already in the database).
        std::fprintf(stderr, "%s: %s\n", qPrintable(title), qPrintable(prompt));
        std::fflush(stderr);
        std::exit(3);
    }

    QMessageBox box(QApplication::activeWindow());
    box.setWindowTitle(title);
    box.setText(prompt);
    QPixmap pixmap;
    if (!iconFile.isEmpty())
        pixmap.load(iconFile);
    if (pixmap.isNull())
        pixmap = frmImages::picture(picture);
    box.setIconPixmap(pixmap);
    const std::vector<ButtonSpec> buttons = buttonsFor(style);
    for (const ButtonSpec &b : buttons)
        box.addButton(b.button);
    const size_t defaultIndex = size_t((style >> 8) & 3);
    if (defaultIndex < buttons.size())
        box.setDefaultButton(buttons[defaultIndex].button);
    const int clicked = box.exec();
    for (const ButtonSpec &b : buttons)
        if (b.button == clicked)
            return b.code;
    return 2; // closed without a button: Cancel
}

QString ShowOpenFileDialog(QWidget *parent, const QString &caption, const QString &filter)
{
    if (MessageScript *script = MessageScript::active())
        return script->takeFileName();
    return QFileDialog::getOpenFileName(parent, caption, QString(), filter);
}

QString ShowFolderDialog(QWidget *parent, const QString &caption)
{
    if (MessageScript *script = MessageScript::active())
        return script->takeFileName();
    return QFileDialog::getExistingDirectory(parent, caption);
}

QString ShowTextInputDialog(QWidget *parent, const QString &caption, const QString &label, const QString &text)
{
    if (MessageScript *script = MessageScript::active())
        return script->takeFileName();
    return QInputDialog::getText(parent, caption, label, QLineEdit::Normal, text).trimmed();
}

QString ShowSaveFileDialog(QWidget *parent, const QString &caption, const QString &filter)
{
    if (MessageScript *script = MessageScript::active())
        return script->takeFileName();
    return QFileDialog::getSaveFileName(parent, caption, QString(), filter);
}
