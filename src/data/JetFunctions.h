#pragma once

struct sqlite3;

/// Gives an SQLite connection the Jet functions the statements use (Date(),
/// Now(), Year(), DateAdd(), IsNull(), Nz(), Left(), CStr() ...) under the
/// jet_ names the SQLite dialect writes.
void registerJetFunctions(sqlite3 *db);
