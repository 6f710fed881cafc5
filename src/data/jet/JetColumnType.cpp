#include "JetColumnType.h"

#include "JetLexer.h"

#include <initializer_list>

JetColumnType JetColumnType::fromName(std::string_view name, int size)
{
    auto any = [&](std::initializer_list<std::string_view> names) {
        for (auto n : names)
            if (equalsNoCase(name, n))
                return true;
        return false;
    };
    JetColumnType t;
    t.size = size;
    if (any({"text", "varchar", "char", "character", "string", "nvarchar", "nchar", "alphanumeric"})) {
        t.base = Text;
        if (t.size <= 0)
            t.size = 255;
    } else if (any({"memo", "longtext", "longchar", "note", "ntext"}))
        t.base = Memo;
    else if (any({"int", "integer", "long", "integer4", "int4"}))
        t.base = Int32;
    else if (any({"smallint", "short", "integer2", "int2"}))
        t.base = Int16;
    else if (any({"byte", "tinyint", "integer1"}))
        t.base = Byte;
    else if (any({"bit", "yesno", "logical", "logical1", "boolean"}))
        t.base = Bool;
    else if (any({"double", "float", "float8", "number", "numeric", "decimal", "real", "single", "float4", "ieeedouble", "ieeesingle"}))
        t.base = Double;
    else if (any({"currency", "money"}))
        t.base = Currency;
    else if (any({"datetime", "date", "time", "timestamp"}))
        t.base = Date;
    else if (any({"counter", "autoincrement", "identity"}))
        t.base = Counter;
    return t;
}
