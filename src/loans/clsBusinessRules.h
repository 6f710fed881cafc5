#pragma once

#include <QString>

/// Two lending predicates on an item key. Each answers through its out flag and
/// gives the text a screen shows when the item may not be issued; a database
/// failure is reported from "Business Rules" and leaves the flag false.
class clsBusinessRules {
public:
    static const QString IssuedText;   // "Item is already issued"
    static const QString ReservedText; // "Reserved Items can't be issued"

    /// issued becomes true when the item has an open loan.
    void ItemIssued(int itemID, bool &issued, QString &failureText) const;
    /// reserved becomes true when the item has an open reservation.
    void ItemReserved(int itemID, bool &reserved, QString &failureText) const;
};
