/// @file
/// The import of contacts into an empty database.
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

/// Creates the tables, fills them with `contacts`, indexed, and with sample notices, in a
/// transaction of the caller.
void Import(soci::session& session, const Dialect& dialect, const std::vector<Contact>& contacts,
            const ImportReporter& report);

}  // namespace phonebook
