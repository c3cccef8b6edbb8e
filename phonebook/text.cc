#include "phonebook/text.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>

#include <cstdint>

namespace phonebook {

namespace {

icu::UnicodeString Unicode(std::string_view text) {
  return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
}

bool IsPlain(UChar32 character) {
  return !u_isISOControl(character) && character != 0xFFFE && character != 0xFFFF;
}

}  // namespace

bool IsUTF8(std::string_view text) {
  UErrorCode error = U_ZERO_ERROR;
  u_strFromUTF8(nullptr, 0, nullptr, text.data(), static_cast<std::int32_t>(text.size()), &error);
  return error != U_INVALID_CHAR_FOUND;
}

bool IsPlainText(std::string_view text) {
  const auto characters = Unicode(text);
  for (std::int32_t at = 0; at < characters.length(); at = characters.moveIndex32(at, 1)) {
    if (!IsPlain(characters.char32At(at))) return false;
  }
  return IsUTF8(text);
}

int CountCharacters(std::string_view text) { return Unicode(text).countChar32(); }

std::string TruncateToCharacters(std::string_view text, int count) {
  auto characters = Unicode(text.substr(0, 4 * static_cast<std::size_t>(count)));
  characters.truncate(characters.moveIndex32(0, count));
  std::string truncated;
  return characters.toUTF8String(truncated);
}

}  // namespace phonebook
