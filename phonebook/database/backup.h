/// @file
/// The backup of an SQLite database.
#pragma once

#include <string>

namespace phonebook {

/// Copies the database as it is at one moment, also while servers and other programs use it. The
/// copy appears under its name when it is whole.
/// @throws std::runtime_error when `file` exists, or the database is one of PostgreSQL.
/// @throws DatabaseUnavailable when a file can't be read or written.
void BackUp(const std::string& database, const std::string& file);

}  // namespace phonebook
