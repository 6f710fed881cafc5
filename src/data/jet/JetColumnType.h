#pragma once

#include <string>
#include <string_view>

/// A column type as Jet DDL names it ("TEXT (50)", "INT", "BIT", "CURRENCY" ...),
/// reduced to what the engines need to know to store and check it.
struct JetColumnType {
    enum Base { Counter, Byte, Int16, Int32, Double, Currency, Bool, Date, Text, Memo, Unknown };
    Base base = Unknown;
    int size = 0; // characters, for Text

    /// Parses a Jet or canonical type name (case-insensitive); size is given separately.
    static JetColumnType fromName(std::string_view name, int size = 0);
    bool isInteger() const { return base == Counter || base == Byte || base == Int16 || base == Int32; }
    bool isNumeric() const { return isInteger() || base == Double || base == Currency; }
};
