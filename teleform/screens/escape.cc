#include <teleform/screens/escape.h>

#include <algorithm>
#include <charconv>

namespace teleform::screens {

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

// What XML has to say instead of a character; nothing if it may stand there.
std::string_view ReplacementOf(const Character& character) {
  if (character.size == 0) return "\uFFFD";
  switch (character.code) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\t':
    case '\n':
      return "";
    default:
      return IsControl(character.code) ? " " : "";
  }
}

bool IsPlain(char character) {
  return character >= ' ' && character < '\x7f' && character != '&' && character != '<' &&
         character != '>' && character != '"';
}

}  // namespace

std::string EscapeXML(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  while (!text.empty()) {
    const Character character = FirstOf(text);
    const std::string_view replacement = ReplacementOf(character);
    escaped += replacement.empty() ? text.substr(0, character.size) : replacement;
    text.remove_prefix(std::max<std::size_t>(character.size, 1));
    // Most of it is plain, and goes in one piece.
    const auto* const plain = std::find_if_not(text.begin(), text.end(), IsPlain);
    const auto size = static_cast<std::size_t>(plain - text.begin());
    escaped += text.substr(0, size);
    text.remove_prefix(size);
  }
  return escaped;
}

std::string PercentEncode(std::string_view text, std::string_view kept) {
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

std::string PercentDecode(std::string_view text, bool isQuery) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned byte = 0;
    const char* const digits = text.data() + i + 1;
    const bool isEncoded = text[i] == '%' && text.size() - i > 2 &&
                           std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2;
    decoded += isEncoded ? static_cast<char>(byte) : isQuery && text[i] == '+' ? ' ' : text[i];
    if (isEncoded) i += 2;
  }
  return decoded;
}

}  // namespace teleform::screens
