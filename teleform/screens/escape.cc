#include <teleform/screens/escape.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>

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

// What XML has to say instead of a character that is not plain; nothing if it may stand there.
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
      return character.code < 0xa0 ? " " : "";  // a control character
  }
}

bool IsPlain(char character) {
  return character >= ' ' && character < '\x7f' && character != '&' && character != '<' &&
         character != '>' && character != '"';
}

// Eight characters at once, as most texts have nothing to escape: 4.4 µs become 1.1 µs for 10,000
// bytes, and 9.8 ns become 4.5 ns for a name of 12. Each term sets the highest bit of a
// byte that is not plain. A carry or borrow comes only out of such a byte, so that it can neither
// hide one nor set a bit where all are plain.
constexpr std::uint64_t InEachByte(std::uint64_t byte) { return 0x0101010101010101U * byte; }

std::uint64_t SpecialBits(const char* eightBytes) {
  std::uint64_t text = 0;
  std::memcpy(&text, eightBytes, sizeof(text));
  const std::uint64_t quoteOrAmpersand = (text | InEachByte('"' ^ '&')) ^ InEachByte('&');
  const std::uint64_t lessOrGreater = (text | InEachByte('<' ^ '>')) ^ InEachByte('>');
  return text | (text + InEachByte(0x80 - 0x7f)) | (text - InEachByte(' ')) |
         (quoteOrAmpersand - InEachByte(1)) | (lessOrGreater - InEachByte(1));
}

template <std::size_t size>
bool IsPlainBlock(const char* block) {
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < size; i += sizeof(bits)) bits |= SpecialBits(block + i);
  return (bits & InEachByte(0x80)) == 0;
}

// The last block overlaps the one before it.
template <std::size_t size>
bool IsPlainInBlocks(std::string_view text) {
  const std::string_view last = text.substr(text.size() - size);
  for (; text.size() > size; text.remove_prefix(size)) {
    if (!IsPlainBlock<size>(&text.front())) return false;
  }
  return IsPlainBlock<size>(&last.front());
}

bool IsPlainText(std::string_view text) {
  if (text.size() >= 64) return IsPlainInBlocks<64>(text);
  if (text.size() >= 16) return IsPlainInBlocks<16>(text);
  if (text.size() >= 8) return IsPlainInBlocks<8>(text);
  return std::all_of(text.begin(), text.end(), IsPlain);
}

}  // namespace

std::string EscapeXML(std::string_view text) {
  if (IsPlainText(text)) return std::string(text);
  std::string escaped;
  std::size_t kept = 0;  // how many bytes at the front of `text` stay as they are
  while (kept < text.size()) {
    if (IsPlain(text[kept])) {
      ++kept;
      continue;
    }
    const Character character = FirstOf(text.substr(kept));
    const std::string_view replacement = ReplacementOf(character);
    if (replacement.empty()) {
      kept += character.size;
      continue;
    }
    escaped.append(text.substr(0, kept)).append(replacement);
    text.remove_prefix(kept + std::max<std::size_t>(character.size, 1));
    kept = 0;
  }
  return escaped.append(text);
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
