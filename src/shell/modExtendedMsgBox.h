#pragma once

#include "Messages.h"
#include "frmImages.h"

#include <QString>

class QWidget;

/// The boxes of a desktop session: a standard modal box with the system's own picture, the
/// default button as the style says. main() installs it; without a screen (offscreen) a box
/// cannot be answered, so its text goes to stderr and the program ends with exit code 3.
class MessageBoxes : public MessageReporter {
public:
    int show(const QString &prompt, int style, const QString &title, MessagePicture picture, const QString &iconFile) override;
};

/// The file dialog of the system: the chosen file, or empty when cancelled.
QString ShowOpenFileDialog(QWidget *parent, const QString &caption, const QString &filter);
/// The folder dialog of the system: the chosen folder, or empty when cancelled (scripted in tests).
QString ShowFolderDialog(QWidget *parent, const QString &caption);
/// One line of text from the librarian (empty when cancelled); scripted in tests like the file dialogs.
QString ShowTextInputDialog(QWidget *parent, const QString &caption, const QString &label, const QString &text);
/// The save-file dialog; under a message script the next scripted file name (empty for Cancel).
QString ShowSaveFileDialog(QWidget *parent, const QString &caption, const QString &filter);
