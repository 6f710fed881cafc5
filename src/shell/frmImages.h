#pragma once

#include <QPixmap>

#include "Messages.h"

class frmImages {
public:
    /// The picture at the given size (a GUI application must exist).
    static QPixmap picture(MessagePicture which, int size = 32);
};
