/// @file
/// The import of contacts into empty tables.
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

/// Creates the tables, fills them with `contacts`, indexed, and with sample notices
/// unless there are none, in a
/// transaction of the caller.
void Import(soci::session& session, const Dialect& dialect, const std::vector<Contact>& contacts,
            const ImportReporter& report);

/// Fills `contacts` and `search_keys`, which are empty, in a transaction of the caller. Triggers
/// must not be active.
/// @param ids those of `contacts`.
void InsertIndexed(soci::session& session, const Dialect& dialect,
                   const std::vector<Contact>& contacts, const std::vector<long long>& ids,
                   const ImportReporter& report);

}  // namespace phonebook
