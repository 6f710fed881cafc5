#pragma once

#include "DialectTraits.h"
#include "JetLexer.h"
#include "TranslatedStatement.h"

#include <string_view>
#include <vector>

// Jet data definition, written for one engine: CREATE TABLE (counters, sizes, keys,
// defaults) and ALTER TABLE ADD / ALTER / DROP a column. Both throw JetError on bad DDL.
TranslatedStatement translateCreateTable(const DialectTraits &traits, const std::vector<JetToken> &tokens, std::string_view sql);
TranslatedStatement translateAlterTable(const DialectTraits &traits, const std::vector<JetToken> &tokens, std::string_view sql);

/// Whether a table, column or constraint name is one Jet accepts (no control characters,
/// no . ! ` [ ], no leading blank); the dialect quotes every accepted name.
bool validObjectName(std::string_view name);
