#include "text.h"

#include <algorithm>

namespace {

struct Character {
  std::size_t size;  // in bytes; 0 when what stands there is no character that XML allows
  char32_t code;
};

// The character at the front of `text`, which is not empty.
Character FirstOf(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  if (lead < 0x80) return {1, lead};
  const std::size_t size = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
  if (lead < 0xc2 || lead > 0xf4 || text.size() < size) return {0, 0};
  char32_t code = lead & (0xffU >> (size + 1));
  for (const char next : text.substr(1, size - 1)) {
    const auto byte = static_cast<unsigned char>(next);
    if ((byte & 0xc0U) != 0x80) return {0, 0};
    code = code << 6U | (byte & 0x3fU);
  }
  const bool isOverlong = (size == 3 && code < 0x800) || (size == 4 && code < 0x10000);
  const bool isSurrogate = code >= 0xd800 && code <= 0xdfff;
  if (isOverlong || isSurrogate || code == 0xfffe || code == 0xffff || code > 0x10ffff) {
    return {0, 0};
  }
  return {size, code};
}

bool IsControl(char32_t code) { return code < 0x20 || (code >= 0x7f && code < 0xa0); }

}  // namespace

std::string Fit(std::string_view text) {
  std::string fit;
  fit.reserve(text.size());
  while (!text.empty()) {
    const Character character = FirstOf(text);
    if (character.size == 0) {
      fit += "\uFFFD";
    } else if (IsControl(character.code) && character.code != '\t' && character.code != '\n') {
      fit += ' ';
    } else if (character.code == '&') {
      fit += "&amp;";
    } else if (character.code == '<') {
      fit += "&lt;";
    } else if (character.code == '>') {
      fit += "&gt;";
    } else if (character.code == '"') {
      fit += "&quot;";
    } else {
      fit += text.substr(0, character.size);
    }
    text.remove_prefix(std::max<std::size_t>(character.size, 1));
  }
  return fit;
}

std::string PercentEncoded(std::string_view text, std::string_view kept) {
  constexpr std::string_view kUnreserved =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string encoded;
  for (const char character : text) {
    if (kUnreserved.find(character) != kUnreserved.npos || kept.find(character) != kept.npos) {
      encoded += character;
    } else {
      const auto byte = static_cast<unsigned char>(character);
      encoded += {'%', kDigits[byte >> 4U], kDigits[byte & 0xfU]};
    }
  }
  return encoded;
}

bool IsPlainText(std::string_view text) {
  while (!text.empty()) {
    const Character character = FirstOf(text);
    if (character.size == 0 || IsControl(character.code)) return false;
    text.remove_prefix(character.size);
  }
  return true;
}

std::size_t CountCharacters(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char character) {
    return (static_cast<unsigned char>(character) & 0xc0U) != 0x80;
  }));
}
