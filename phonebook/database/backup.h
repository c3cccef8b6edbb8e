/// @file
/// The backup of an SQLite database.
#pragma once

#include <functional>
#include <string>

namespace phonebook {

/// Copies the database as it is at one moment, also while servers and other programs use it. The
/// copy appears under its name when it is whole.
/// @throws std::runtime_error when `file` exists, or the database is one of PostgreSQL or none
/// of a phone book.
/// @throws DatabaseUnavailable when a file can't be read or written.
/// @param report is called now and then. What it throws ends the backup.
void BackUp(const std::string& database, const std::string& file,
            const std::function<void()>& report);

}  // namespace phonebook
