/// @file
/// Conversion of numbers to text.
#pragma once

#include <teleform/core/export.h>

#include <array>
#include <charconv>
#include <limits>
#include <locale>
#include <sstream>
#include <string>
#include <type_traits>

namespace teleform {

/// Whether an output stream writes a `T` as decimal digits. True for all integer types except
/// `bool` and the character types.
template <typename T>
inline constexpr bool kIsWrittenAsDigits =
    std::disjunction_v<std::is_same<T, short>, std::is_same<T, unsigned short>,
                       std::is_same<T, int>, std::is_same<T, unsigned int>, std::is_same<T, long>,
                       std::is_same<T, unsigned long>, std::is_same<T, long long>,
                       std::is_same<T, unsigned long long>>;

}  // namespace teleform

/// Formats `value` as a `std::ostringstream` does under the process's current global locale. Under
/// the classic locale an integer is plain decimal digits, with a minus sign if negative.
/// @param value a number, or anything else that a stream writes.
/// @throws std::bad_alloc when memory runs out. Under the classic locale an integer of up to 15
/// characters needs no allocation.
template <typename T>
std::string NumberToString(const T& value) {
  if constexpr (teleform::kIsWrittenAsDigits<T>) {
    if (std::locale() == std::locale::classic()) {
      std::array<char, std::numeric_limits<T>::digits10 + 2> digits;  // the last digit, the sign
      const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
      return std::string(digits.data(), end);
    }
  }
  std::ostringstream stream;
  stream << value;
  return stream.str();
}
