/// @file
/// Numbers as text.
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

/// Whether a stream writes a `T` as plain digits: the integers that are neither characters nor
/// bool.
template <typename T>
inline constexpr bool kIsWrittenAsDigits =
    std::disjunction_v<std::is_same<T, short>, std::is_same<T, unsigned short>,
                       std::is_same<T, int>, std::is_same<T, unsigned int>, std::is_same<T, long>,
                       std::is_same<T, unsigned long>, std::is_same<T, long long>,
                       std::is_same<T, unsigned long long>>;

}  // namespace teleform

/// `value` as a standard output string stream writes it under the process's global locale at the
/// time of the call: under the classic locale plain digits, with a minus sign below zero.
/// @throws std::bad_alloc when memory runs out; under the classic locale no integer of up to 15
/// characters needs any.
template <typename T>
std::string NumberToString(const T& value) {
  if constexpr (teleform::kIsWrittenAsDigits<T>) {
    if (std::locale() == std::locale::classic()) {
      std::array<char, std::numeric_limits<T>::digits10 + 2> digits;  // one more, and the sign
      const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
      return std::string(digits.data(), end);
    }
  }
  std::ostringstream stream;
  stream << value;
  return stream.str();
}
