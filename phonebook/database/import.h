/// @file
/// The import of contacts, which replaces all others. Those that stay keep their ids.
#pragma once

#include <soci/soci.h>

#include <cstddef>
#include <functional>
#include <vector>

#include "phonebook/contacts.h"
#include "phonebook/database/schema.h"

namespace phonebook {

/// Told how many of `total` steps are done. What it throws ends the import.
using ImportReporter = std::function<void(std::size_t done, std::size_t total)>;

enum class ImportMode {
  kUnlessItExists,  ///< Fills a new database.
  kReplace,         ///< Also makes an existing one equal, unless that removes more than half of it.
  kForce,           ///< Also makes an existing one equal.
};

/// How many contacts an import adds, changes and removes.
struct Differences {
  std::size_t added = 0, changed = 0, removed = 0;
};

/// Makes the phone book equal to `contacts`, indexed, in a transaction of the caller. Contacts of
/// the same key stay, where contacts have keys, and of the others those of the same name,
/// preferably with the same telephone and department. If none of `contacts` has a key, those that
/// stay keep theirs. Only contacts that differ are written.
/// @throws std::runtime_error when more than half of the contacts would be removed, unless `mode`
/// is `kForce`.
Differences Import(soci::session& session, const Dialect& dialect, std::vector<Contact> contacts,
                   ImportMode mode, const ImportReporter& report);

}  // namespace phonebook
