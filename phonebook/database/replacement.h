/// @file
/// Replaces all contacts of a phone book by others. Those that stay keep their ids.
#pragma once

#include <cstddef>
#include <vector>

#include "phonebook/contacts.h"
#include "phonebook/database/connection.h"
#include "phonebook/database/import.h"

namespace phonebook {

/// A contact of the database.
struct StoredContact {
  long long id = 0;
  Contact contact;
};

/// How many contacts a replacement adds, changes and removes.
struct Differences {
  std::size_t added = 0, changed = 0, removed = 0;
  bool AreNone() const { return added + changed + removed == 0; }
};

/// Finds the contacts that stay: those of the same key, where contacts have keys, and of the
/// others those of the same name, preferably with the same telephone and department.
/// @param contacts are given the keys of those that they replace, if no contact has a key.
/// @param ids becomes the ids of `contacts`.
Differences Match(const std::vector<StoredContact>& stored, std::vector<Contact>& contacts,
                  std::vector<long long>& ids);

/// Makes the phone book equal to `contacts`, indexed, in one transaction: others read the old or
/// the new contacts.
/// @param isForced whether more than half of the contacts may be removed.
/// @throws std::runtime_error when more would be.
/// @throws soci::soci_error when a statement fails, or `connection` is interrupted.
Differences Replace(DatabaseConnection& connection, std::vector<Contact> contacts, bool isForced,
                    const ImportReporter& report);

}  // namespace phonebook
