/// @file
/// Validation, counting and truncation of text in UTF-8, by ICU.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace phonebook {

/// Whether `text` is well-formed UTF-8.
bool IsUTF8(std::string_view text);

/// Whether `text` is well-formed UTF-8 without control characters and without characters that XML
/// forbids.
bool IsPlainText(std::string_view text);

/// The number of characters in `text`, which must be well-formed UTF-8.
std::size_t CountCharacters(std::string_view text);

/// The first `count` characters of `text`, and no more than four bytes for each, as malformed UTF-8
/// may have.
std::string TruncateToCharacters(std::string_view text, int count);

}  // namespace phonebook
