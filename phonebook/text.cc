#include "phonebook/text.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstdint>

namespace phonebook {

namespace {

bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; }

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
  if (!IsUTF8(text)) return false;
  const auto characters =
      icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
  for (std::int32_t at = 0; at < characters.length(); at = characters.moveIndex32(at, 1)) {
    if (!IsPlain(characters.char32At(at))) return false;
  }
  return true;
}

std::size_t CountCharacters(std::string_view text) {
  return text.size() -
         static_cast<std::size_t>(std::count_if(text.begin(), text.end(), IsContinuation));
}

std::string TruncateToCharacters(std::string_view text, int count) {
  text = text.substr(0, 4 * static_cast<std::size_t>(count));  // bounds malformed UTF-8
  std::size_t end = 0;
  for (; end < text.size(); ++end) {
    if (!IsContinuation(text[end]) && count-- == 0) break;
  }
  return std::string(text.substr(0, end));
}

}  // namespace phonebook
