/// @file
/// Which contacts a page lists: a condition on contacts, a position between them, and what is
/// listed of each.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace phonebook {

/// A page shows no more characters of a name, a telephone or a department, nor of a notice.
constexpr int kMaxShownCharacters = 500;
constexpr int kMaxNoticeCharacters = 4096;

/// What a page lists of a contact. The texts are cut to what a page shows.
struct ListedContact {
  long long id = 0;
  std::string name;
  std::string telephone;
  std::string collationKey{};  ///< As stored; only where a query merges or groups contacts.
};

/// What a search found.
struct SearchResult {
  std::vector<ListedContact> contacts;
  /// The contact up to which the search looked, if it stopped before the end. All that it matches
  /// up to there are found.
  std::optional<ListedContact> end;
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
  /// Of the contact at the position, if that one is gone; its stored one counts as long as it
  /// exists.
  std::string collationKey{};
  std::optional<long long> id{};  ///< None for a position that is no contact's.
};

}  // namespace phonebook
