#include "phonebook/text.h"

#include <unicode/uchar.h>

#include <cstdint>

namespace phonebook {

icu::UnicodeString Unicode(std::string_view text) {
  return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
}

icu::UnicodeString UnicodeBeginning(std::string_view text, int count) {
  auto beginning = Unicode(text.substr(0, 4 * static_cast<std::size_t>(count)));
  beginning.truncate(beginning.moveIndex32(0, count));
  return beginning;
}

bool IsUTF8(std::string_view text) {
  std::string wellFormed;
  return Unicode(text).toUTF8String(wellFormed) == text;
}

bool IsPlainText(std::string_view text) {
  const auto characters = Unicode(text);
  for (std::int32_t at = 0; at < characters.length(); at = characters.moveIndex32(at, 1)) {
    const UChar32 character = characters.char32At(at);
    if (u_isISOControl(character) || character == 0xFFFE || character == 0xFFFF) return false;
  }
  return IsUTF8(text);
}

int CountCharacters(std::string_view text) { return Unicode(text).countChar32(); }

std::string TruncateToCharacters(std::string_view text, int count) {
  std::string truncated;
  return UnicodeBeginning(text, count).toUTF8String(truncated);
}

}  // namespace phonebook
