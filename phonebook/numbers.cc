#include "phonebook/numbers.h"

#include <phonenumbers/phonenumber.pb.h>
#include <phonenumbers/phonenumberutil.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <set>
#include <unordered_map>

namespace phonebook {

namespace {

using i18n::phonenumbers::PhoneNumber;
using i18n::phonenumbers::PhoneNumberUtil;

constexpr std::string_view kListSeparators = "/|,;";

const PhoneNumberUtil& Library() {
  static const PhoneNumberUtil& library = *PhoneNumberUtil::GetInstance();
  return library;
}

// Ends a text before a word: an extension or a comment.
std::string_view WithoutWords(std::string_view text) {
  for (std::size_t i = 1; i < text.size(); ++i) {
    const bool beginsWord = std::string_view(" ;,(").find(text[i - 1]) != text.npos;
    if (beginsWord && u_isalpha(text[i]) != 0) return text.substr(0, i - 1);
  }
  return text;
}

// Ends a text before a second number, which begins with "+", or with 0 unless an area code is
// before it.
std::string_view WithoutSecondNumber(std::string_view text) {
  for (auto at = text.find_first_of(kListSeparators, 1); at != text.npos;
       at = text.find_first_of(kListSeparators, at + 1)) {
    const auto next = text.find_first_not_of(" (", at + 1);
    if (next == text.npos) break;
    const auto before = text.substr(0, at);
    const auto digits = std::count_if(before.begin(), before.end(), [](char character) {
      return character >= '0' && character <= '9';
    });
    const bool isAreaCode = digits <= 6 && before.find('0') == before.find_first_not_of(" (");
    if (text[next] == '+' || (text[next] == '0' && !isAreaCode)) return before;
  }
  return text;
}

// The number in E.164, if it names its country or is valid in the region.
std::optional<std::string> International(std::string_view text, const std::string& region) {
  constexpr std::uint64_t kSevenDigits = 1000000;
  PhoneNumber number;
  const bool isNumber = Library().Parse(std::string(text), region.empty() ? "ZZ" : region,
                                        &number) == PhoneNumberUtil::NO_PARSING_ERROR;
  const bool hasCountry = text.find('+') != text.npos;
  if (!isNumber || (!hasCountry && (number.national_number() < kSevenDigits ||
                                    !Library().IsValidNumber(number)))) {
    return std::nullopt;
  }
  std::string formatted;
  Library().Format(number, PhoneNumberUtil::E164, &formatted);
  return formatted;
}

// A number without its separators.
std::optional<std::string> Compact(std::string_view text) {
  constexpr std::string_view kSeparators = " -./()";
  std::string number;
  std::copy_if(text.begin(), text.end(), std::back_inserter(number),
               [&](char character) { return kSeparators.find(character) == kSeparators.npos; });
  const bool isNumber = !number.empty() && number.find_first_not_of("0123456789+*#") == number.npos;
  return isNumber ? std::optional(number) : std::nullopt;
}

std::string ComposeDialString(const std::string& telephone, const std::string& region) {
  constexpr std::string_view kScheme = "tel:";
  std::string_view text = telephone;
  if (text.rfind(kScheme, 0) == 0) text.remove_prefix(kScheme.size());
  if (text.empty() || u_isalpha(text.front()) != 0 || text.find_first_of("@*#") != text.npos) {
    return Compact(text).value_or(telephone);
  }
  text = WithoutSecondNumber(WithoutWords(text));
  auto number = International(text, region);
  const auto first = text.substr(0, text.find_first_of(kListSeparators, 1));
  if (!number) number = International(first, region);
  if (!number) number = Compact(text);
  if (!number) number = Compact(first);
  return number.value_or(telephone);
}

}  // namespace

bool IsRegion(const std::string& region) {
  std::set<std::string> regions;
  Library().GetSupportedRegions(&regions);
  return regions.count(region) > 0;
}

// Parsing takes as long as the rest of a page, so a thread remembers what it has parsed.
std::string DialString(const std::string& telephone, const std::string& region) {
  constexpr std::size_t kMaxSize = 64;  // of a text
  constexpr std::size_t kMaxCount = 8192;
  thread_local std::unordered_map<std::string, std::string> numbers;  // by region and telephone
  if (telephone.size() > kMaxSize) return ComposeDialString(telephone, region);
  if (numbers.size() == kMaxCount) numbers.clear();
  std::string& number = numbers[region + " " + telephone];
  if (number.empty()) number = ComposeDialString(telephone, region);
  return number;
}

}  // namespace phonebook
