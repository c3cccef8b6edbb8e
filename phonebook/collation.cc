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
#include <utility>
#include <vector>

#include "phonebook/text.h"

namespace phonebook {

namespace {

void ThrowOnFailure(UErrorCode error) {
  if (U_FAILURE(error) != 0) throw std::runtime_error(std::string("ICU: ") + u_errorName(error));
}

const icu::Collator& CollatorOf(icu::Collator::ECollationStrength strength) {
  const auto create = [](icu::Collator::ECollationStrength theStrength) {
    UErrorCode error = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(
        icu::Collator::createInstance(icu::Locale::getRoot(), error));
    ThrowOnFailure(error);
    collator->setStrength(theStrength);
    return collator;
  };
  static const auto primary = create(icu::Collator::PRIMARY);
  static const auto tertiary = create(icu::Collator::TERTIARY);
  return strength == icu::Collator::PRIMARY ? *primary : *tertiary;
}

// The characters of a text that count.
icu::UnicodeString Beginning(std::string_view text) {
  return UnicodeBeginning(text, kMaxKeyCharacters);
}

// A key of bytes as text: each byte becomes the character of that number, which keeps the order of
// keys and their common prefixes.
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

icu::UnicodeString Normalized(const icu::UnicodeString& text,
                              const icu::Normalizer2* (*instance)(UErrorCode&)) {
  UErrorCode error = U_ZERO_ERROR;
  const icu::Normalizer2* const normalizer = instance(error);
  ThrowOnFailure(error);
  auto normalized = normalizer->normalize(text, error);
  ThrowOnFailure(error);
  return normalized;
}

// The compatible characters of letters, digits and what else has some: Ⅷ is VIII.
icu::UnicodeString Compatible(const icu::UnicodeString& text) {
  return Normalized(text, icu::Normalizer2::getNFKCInstance);
}

// Whether the character is a Thai or Lao vowel that is written before its consonant. Collation
// orders it behind, so that its key is no prefix of theirs.
bool IsWrittenFirst(UChar32 character) {
  return u_hasBinaryProperty(character, UCHAR_LOGICAL_ORDER_EXCEPTION) != 0;
}

// Keeps collation from reordering, by grapheme joiners, which it ignores otherwise.
icu::UnicodeString InWrittenOrder(const icu::UnicodeString& word) {
  constexpr UChar32 kGraphemeJoiner = 0x034F;
  icu::UnicodeString written;
  for (int32_t at = 0; at < word.length(); at = word.moveIndex32(at, 1)) {
    written.append(word.char32At(at));
    if (IsWrittenFirst(word.char32At(at))) written.append(kGraphemeJoiner);
  }
  return written;
}

std::vector<icu::UnicodeString> WordsOf(std::string_view text) {
  const icu::UnicodeString all = Compatible(Beginning(text));
  std::vector<icu::UnicodeString> words;
  for (int32_t begin = 0, end = 0; begin < all.length(); begin = all.moveIndex32(end, 1)) {
    for (end = begin; end < all.length() && IsInWord(all.char32At(end));) {
      end = all.moveIndex32(end, 1);
    }
    if (begin != end) words.emplace_back(all, begin, end - begin);
  }
  return words;
}

// Without the characters at the beginning that collation ignores.
icu::UnicodeString WithoutIgnored(icu::UnicodeString text) {
  while (text.length() > 0) {
    const int32_t first = text.moveIndex32(0, 1);
    if (!KeyOf(text.tempSubString(0, first), icu::Collator::PRIMARY).empty()) break;
    text.remove(0, first);
  }
  return text;
}

// The letter of names that begin with a character; empty if this one is none.
std::string LabelOf(UChar32 character, const std::string& collationKey) {
  const icu::UnicodeString letter(character);
  const icu::UnicodeString capital = icu::UnicodeString(letter).toUpper(icu::Locale::getRoot());
  // An accent makes some characters letters of their own, such as Й; so does a missing dot, as in
  // ı.
  for (const auto& candidate :
       {Normalized(capital, icu::Normalizer2::getNFKDInstance), capital, letter}) {
    std::string label;
    icu::UnicodeString(candidate.char32At(0)).toUTF8String(label);
    const std::string key = PrefixKey(label);
    if (!IsPlainText(label) || key.empty() || collationKey.compare(0, key.size(), key) != 0)
      continue;
    for (char latin = 'A'; latin <= 'Z'; ++latin) {  // Ø and Ł are these with a stroke
      if (PrefixKey(std::string_view(&latin, 1)) == key) label = {latin};
    }
    return label;
  }
  return "";
}

}  // namespace

std::string CollationKey(std::string_view name) {
  return KeyOf(Beginning(name), icu::Collator::TERTIARY);
}

std::string PrefixKey(std::string_view text) {
  return KeyOf(Unicode(text), icu::Collator::PRIMARY);
}

std::string EndOfPrefix(const std::string& key) { return key + "\U0010FFFF"; }

std::set<std::string> WordKeys(std::string_view text) {
  std::set<std::string> keys;
  for (const auto& word : WordsOf(text)) {
    keys.insert(KeyOf(word, icu::Collator::PRIMARY));
    const icu::UnicodeString written = InWrittenOrder(word);
    if (written != word) keys.insert(KeyOf(written, icu::Collator::PRIMARY));
  }
  keys.erase("");
  return keys;
}

std::set<std::string> TypedWordKeys(std::string_view text) {
  std::set<std::string> keys;
  for (const auto& word : WordsOf(text)) {
    const bool isConsonantMissing =
        IsWrittenFirst(word.char32At(word.moveIndex32(word.length(), -1)));
    std::string key =
        KeyOf(isConsonantMissing ? InWrittenOrder(word) : word, icu::Collator::PRIMARY);
    if (!key.empty()) keys.insert(std::move(key));
  }
  return keys;
}

Letter LetterOf(std::string_view name, const std::string& collationKey) {
  // The first character need not be the letter: collation reorders some behind the next one.
  constexpr int32_t kExamined = 5;
  icu::UnicodeString start = WithoutIgnored(Beginning(name));
  start.truncate(start.moveIndex32(0, kExamined));
  // Some characters are letters, but their compatible ones are not, such as ῭.
  for (icu::UnicodeString text : {Compatible(start), start}) {
    for (; text.length() > 0; text.remove(0, text.moveIndex32(0, 1))) {
      const std::string label = LabelOf(text.char32At(0), collationKey);
      if (!label.empty()) return {label, PrefixKey(label)};
    }
  }
  constexpr char kEndOfLetters = '\x01';  // in a key; accents and case follow
  return {"", collationKey.substr(0, std::max<std::size_t>(collationKey.find(kEndOfLetters), 1))};
}

}  // namespace phonebook
