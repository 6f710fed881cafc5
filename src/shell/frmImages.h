#pragma once

#include <QPixmap>

/// The system's own message-box pictures, drawn rather than loaded, in the
/// order the message routines know them.
enum class MessagePicture { picmessage, picSaved, picStop, picQuestion, picError, None };

class frmImages {
public:
    /// The picture at the given size (a GUI application must exist).
    static QPixmap picture(MessagePicture which, int size = 32);
};
