/// @file
/// Validation, counting and truncation of text in UTF-8, by ICU.
#pragma once

#include <unicode/unistr.h>

#include <string>
#include <string_view>

namespace phonebook {

/// `text` as ICU takes it. U+FFFD replaces malformed UTF-8.
icu::UnicodeString Unicode(std::string_view text);

/// The first `count` characters of `text` as ICU takes them.
icu::UnicodeString UnicodeBeginning(std::string_view text, int count);

/// Whether `text` is well-formed UTF-8.
bool IsUTF8(std::string_view text);

/// Whether `text` is well-formed UTF-8 without control characters and without characters that XML
/// forbids.
bool IsPlainText(std::string_view text);

/// The number of characters in `text`.
int CountCharacters(std::string_view text);

/// The first `count` characters of `text`. U+FFFD replaces malformed UTF-8.
std::string TruncateToCharacters(std::string_view text, int count);

}  // namespace phonebook
