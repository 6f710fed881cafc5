#pragma once

#include "JetLexer.h"

#include <vector>

/// Turns a SELECT's LEFT JOINs into inner joins where its WHERE clause keeps no row that the
/// outer join added: a table whose columns the WHERE clause compares (so a missing row fails the
/// test), and, through equality ON conditions, every table such a row must have matched. The rows
/// are the same; the engine may then start from the selective table instead of scanning the first
/// one (a quick find by keyword reads the matching keywords, not every item). Statements with
/// sub-selects or unions in their FROM clause, and anything not clearly null-rejecting, are left
/// as written.
void reduceOuterJoins(std::vector<JetToken> &tokens);
