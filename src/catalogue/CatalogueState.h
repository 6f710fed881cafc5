#pragma once

/// The item editor's mode, set by the screen that opens it: 0 a new item, 1 a copy of
/// CurrentItemID, 2 editing CurrentItemID.
extern int ItemEditMode;
/// The item last selected in the stock list (0: none).
extern int CurrentItemID;
