#pragma once

#include "frmImages.h"

#include <QString>

class QWidget;

/// Every message the system shows goes through these routines: a standard
/// modal box carrying one of the system's own pictures. Style and result codes
/// are the classic ones (0 OK only, 4 Yes/No, +256 second button default;
/// results 1 OK, 6 Yes, 7 No).
int ShowHookedBox(const QString &prompt, int style, const QString &title, MessagePicture picture,
                  const QString &iconFile = QString());

/// "User Message", OK only, picture picmessage.
void UserMessage(const QString &prompt);
/// "User Question?", Yes/No with No as default, picture picQuestion. True unless the answer was No.
bool UserQuestion(const QString &prompt);
/// "User Warning", Yes/No with No as default, picture picStop. True unless the answer was No.
bool UserWarning(const QString &prompt);

/// The file dialog of the system: the chosen file, or empty when cancelled.
QString ShowOpenFileDialog(QWidget *parent, const QString &caption, const QString &filter);
/// The save-file dialog; under a message script the next scripted file name (empty for Cancel).
QString ShowSaveFileDialog(QWidget *parent, const QString &caption, const QString &filter);
