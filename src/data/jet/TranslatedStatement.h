#pragma once

#include "JetColumnType.h"

#include <memory>
#include <string>
#include <vector>

/// The engine-ready form of one Jet statement.
struct TranslatedStatement {
    enum Kind { Rows, Command, AlterColumnType };
    Kind kind = Command;
    std::string sql;
    // For AlterColumnType (ALTER TABLE t ALTER col type): the engine changes the column's type itself.
    std::string table;
    std::string column;
    JetColumnType newType;
    // The names the statement writes with capitals (aliases, columns), for engines that hand result
    // columns back in lower case; shared with every statement of the same shape.
    std::shared_ptr<const std::vector<std::string>> spelledNames;
    // Native statements the engine runs right after this one, in the same transaction
    // (what an engine needs besides the table itself: name records, counter triggers).
    std::vector<std::string> after;
};
