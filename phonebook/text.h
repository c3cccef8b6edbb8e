/// @file
/// Questions about text in UTF-8, answered by ICU.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace phonebook {

/// Whether `text` is well-formed UTF-8.
bool IsUTF8(std::string_view text);

/// Whether `text` is well-formed UTF-8, of characters that XML allows but control characters.
bool IsPlainText(std::string_view text);

/// The number of characters in `text`, which must be well-formed UTF-8.
std::size_t CountCharacters(std::string_view text);

/// The first `count` characters of `text`, of which each is taken to have 4 bytes at most.
std::string TruncateToCharacters(std::string_view text, int count);

}  // namespace phonebook
