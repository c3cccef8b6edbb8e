/// @file
/// Keys by which names are ordered and found, and the letters under which they are listed. They
/// follow ICU's root collation, so that the order doesn't depend on the database.
///
/// A key is text that any database compares byte by byte. Case, accents and width come last in it:
/// the keys of "Ångström" and "ANGELA" begin with the prefix key of "Ang".
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace phonebook {

/// Only this many characters of a text count; databases have no room for keys of any length.
constexpr int kMaxKeyCharacters = 100;

/// The collation key of a name. Case, accents and width decide only between otherwise equal names.
std::string CollationKey(std::string_view name);

/// The prefix of the collation keys of all names that begin with `text`.
std::string PrefixKey(std::string_view text);

/// The upper bound of all keys that begin with `key`.
std::string EndOfPrefix(const std::string& key);

/// The prefix keys of the words of `text`. A word is a run of letters and digits, also of
/// characters that are compatible with such, as Ⅷ is with VIII. No word key holds `kWordMark`.
std::set<std::string> WordKeys(std::string_view text);
constexpr char kWordMark = '\x01';

/// The keys of the words that a reader typed, which are prefixes of the keys of words that begin
/// so.
std::set<std::string> TypedWordKeys(std::string_view text);

/// A letter with which names begin.
struct Letter {
  std::string label;  ///< A capital without accents; empty for names that begin with no letter.
  std::string key;  ///< The prefix of the collation keys of its names: the prefix key of the label.
};

/// The letter under which a reader looks for a name.
/// @param collationKey that under which the name is listed. If it is another name's, there is no
/// label, and the key is a prefix of it.
Letter LetterOf(std::string_view name, const std::string& collationKey);

}  // namespace phonebook
