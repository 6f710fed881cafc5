#pragma once

#include <QString>

/// The system's own message-box pictures, in the order the message routines know them.
enum class MessagePicture { picmessage, picSaved, picStop, picQuestion, picError, None };

/// What shows a message box and returns the button pressed. The shell installs the one that draws
/// real boxes at start-up; the layers below only ever call the routines here.
class MessageReporter {
public:
    virtual ~MessageReporter() = default;
    virtual int show(const QString &prompt, int style, const QString &title, MessagePicture picture, const QString &iconFile) = 0;
};

/// Makes reporter the one that shows boxes (null: none); returns the one it replaces.
MessageReporter *InstallMessageReporter(MessageReporter *reporter);

/// Every message the system shows goes through these routines: a standard
/// modal box carrying one of the system's own pictures. Style and result codes
/// are the classic ones (0 OK only, 4 Yes/No, +256 second button default;
/// results 1 OK, 6 Yes, 7 No). A message script in force answers first; with no
/// reporter installed the message goes to stderr and gets its first button.
int ShowHookedBox(const QString &prompt, int style, const QString &title, MessagePicture picture,
                  const QString &iconFile = QString());

/// "User Message", OK only, picture picmessage.
void UserMessage(const QString &prompt);
/// "User Question?", Yes/No with No as default, picture picQuestion. True unless the answer was No.
bool UserQuestion(const QString &prompt);
/// "User Warning", Yes/No with No as default, picture picStop. True unless the answer was No.
bool UserWarning(const QString &prompt);
