#include "phonebook/collation.h"

#include <unicode/coll.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <stdexcept>

#include "phonebook/text.h"

namespace phonebook {

namespace {

void Check(UErrorCode error) {
  if (U_FAILURE(error) != 0) throw std::runtime_error(std::string("ICU: ") + u_errorName(error));
}

const icu::Collator& CollatorOf(icu::Collator::ECollationStrength strength) {
  const auto make = [](icu::Collator::ECollationStrength made) {
    UErrorCode error = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(
        icu::Collator::createInstance(icu::Locale::getRoot(), error));
    Check(error);
    collator->setStrength(made);
    return collator;
  };
  static const auto primary = make(icu::Collator::PRIMARY);
  static const auto tertiary = make(icu::Collator::TERTIARY);
  return strength == icu::Collator::PRIMARY ? *primary : *tertiary;
}

icu::UnicodeString Unicode(std::string_view text) {
  return icu::UnicodeString::fromUTF8({text.data(), static_cast<int32_t>(text.size())});
}

std::string UTF8(const icu::UnicodeString& text) {
  std::string utf8;
  return text.toUTF8String(utf8);
}

// A key of bytes as text: each byte becomes the character of that number, which keeps the order and
// which beginnings are alike.
std::string KeyOf(const icu::UnicodeString& text, icu::Collator::ECollationStrength strength) {
  std::array<std::uint8_t, 4096> bytes;
  const int32_t needed = CollatorOf(strength).getSortKey(text, bytes.data(), bytes.size());
  const int32_t size = std::min<int32_t>(needed, bytes.size());
  std::string key;
  for (int32_t i = 0; i < size - 1; ++i) {  // all but the NUL
    const std::uint8_t byte = bytes[static_cast<std::size_t>(i)];
    if (byte < 0x80) {
      key += static_cast<char>(byte);
    } else {
      key += static_cast<char>(0xC0U | byte >> 6U);
      key += static_cast<char>(0x80U | (byte & 0x3FU));
    }
  }
  return key;
}

bool IsInWord(UChar32 character) {
  return u_isalnum(character) || (U_GET_GC_MASK(character) & U_GC_M_MASK) != 0;
}

}  // namespace

std::string CollationKey(std::string_view name) {
  return KeyOf(Unicode(TruncateToCharacters(name, kMaxKeyCharacters)), icu::Collator::TERTIARY);
}

std::string PrefixKey(std::string_view text) {
  return KeyOf(Unicode(text), icu::Collator::PRIMARY);
}

std::string EndOfPrefix(const std::string& key) { return key + "\U0010FFFF"; }

std::set<std::string> WordKeys(std::string_view text) {
  const icu::UnicodeString all = Unicode(TruncateToCharacters(text, kMaxKeyCharacters));
  std::set<std::string> keys;
  for (int32_t begin = 0, end = 0; begin < all.length(); begin = all.moveIndex32(end, 1)) {
    for (end = begin; end < all.length() && IsInWord(all.char32At(end));) {
      end = all.moveIndex32(end, 1);
    }
    if (begin == end) continue;
    std::string key = KeyOf(all.tempSubStringBetween(begin, end), icu::Collator::PRIMARY);
    if (!key.empty()) keys.insert(std::move(key));
  }
  return keys;
}

Letter LetterOf(std::string_view name) {
  const std::string sortKey = CollationKey(name);
  UErrorCode error = U_ZERO_ERROR;
  const icu::Normalizer2* const whole = icu::Normalizer2::getNFKCInstance(error);
  const icu::Normalizer2* const plain = icu::Normalizer2::getNFKDInstance(error);
  Check(error);
  // Not always the first one: some characters take no part in the order, and some stand before the
  // one behind which they are sorted.
  constexpr int kFirstOnes = 5;
  icu::UnicodeString some =
      whole->normalize(Unicode(TruncateToCharacters(name, kFirstOnes)), error);
  Check(error);
  for (; some.length() > 0; some.remove(0, some.moveIndex32(0, 1))) {
    const icu::UnicodeString letter(some.char32At(0));
    const icu::UnicodeString capital = icu::UnicodeString(letter).toUpper(icu::Locale::getRoot());
    // Some are letters of their own by an accent, as Й is, or by having no dot, as ı is.
    for (const auto& candidate : {plain->normalize(capital, error), capital, letter}) {
      Check(error);
      std::string label = TruncateToCharacters(UTF8(candidate), 1);
      const std::string key = PrefixKey(label);
      if (!IsPlainText(label) || key.empty() || sortKey.compare(0, key.size(), key) != 0) continue;
      for (char latin = 'A'; latin <= 'Z'; ++latin) {  // which Ø and Ł are, too, but for a stroke
        if (PrefixKey(std::string_view(&latin, 1)) == key) label = {latin};
      }
      return {label, key};
    }
  }
  constexpr char kEndOfLetters = '\x01';  // in a key; accents and case follow
  return {"", sortKey.substr(0, std::max<std::size_t>(sortKey.find(kEndOfLetters), 1))};
}

}  // namespace phonebook
