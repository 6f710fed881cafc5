#pragma once

struct sqlite3;

/// Gives an SQLite connection the Jet functions the statements use (Date(),
/// Now(), Year(), DateAdd(), IsNull(), Nz(), Left(), CStr() ...) under the
/// jet_ names the SQLite dialect writes.
void registerJetFunctions(sqlite3 *db);

/// The error a Jet function raises for a value beyond its conversion's range (Jet's "Overflow").
inline constexpr const char *SqliteFunctionOverflow = "Overflow";
