/// @file
/// How names are ordered and found: by ICU's root collation, the same whatever the database.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace phonebook {

/// As many characters of a text count; databases have no room for keys of any length.
constexpr int kMaxKeyCharacters = 100;

/// @name Keys
/// Keys are text that any database compares byte by byte, and those of texts that differ in case,
/// accents or width alone begin alike: the key of "Ang" begins those of "Ångström" and "ANGELA".
/// @{

/// By which names are sorted: as readers expect it of names that differ in nothing but such.
std::string CollationKey(std::string_view name);

/// What the sort keys of all names begin with that begin with `text`.
std::string PrefixKey(std::string_view text);

/// The first text after all that begin with `key`.
std::string EndOfPrefix(const std::string& key);
/// @}

/// What the keys of the words of `text` begin with, which are its letters and digits in a row. No
/// key holds a `kWordMark`.
std::set<std::string> WordKeys(std::string_view text);
constexpr char kWordMark = '\x01';

struct Letter {
  std::string label;  ///< A capital without accents; empty for names that begin with none.
  std::string key;    ///< With which the sort keys of all its names begin: that of its label.
};

/// The letter under which a reader looks for a name.
Letter LetterOf(std::string_view name);

}  // namespace phonebook
