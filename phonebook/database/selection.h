/// @file
/// Which contacts a page lists: a condition on contacts, a position between them, and what is
/// listed of each.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace phonebook {

/// What a page lists of a contact.
struct ListedContact {
  long long id = 0;
  std::string name;
  std::string telephone;
};

/// A condition on contacts; empty fields match everybody.
struct Selection {
  std::string prefix;              ///< A prefix of their collation keys.
  std::vector<std::string> words;  ///< Word keys, each a prefix of one of theirs.
  static constexpr std::size_t kMaxWords = 6;
};

/// A position between contacts, and the direction in which a page lies from there. It stays valid
/// while contacts come and go.
struct Cursor {
  bool isForward = true;
  std::string collationKey{};
  long long id = 0;
};

}  // namespace phonebook
