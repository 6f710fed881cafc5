#pragma once

#include <string>
#include <vector>

/// What a PostgreSQL database needs before Jet statements run on it: the citext extension,
/// the jet_bit and jet_currency domains and Jet's functions under jet_ names. Each statement
/// can run again (a later version replaces the functions).
namespace PostgresSupport {
/// Raised whenever the statements change; a database holding an older version is brought up to date.
constexpr int Version = 3;
const std::vector<std::string> &statements();
} // namespace PostgresSupport
