/// @file
/// What phones dial, by libphonenumber.
#pragma once

#include <string>
#include <string_view>

namespace phonebook {

/// Whether `region` is a country that libphonenumber knows, such as "DE".
bool IsRegion(const std::string& region);

/// What a phone dials for a telephone as people write it:
/// - a number with its country as "+" and digits, without a national prefix such as "(0)";
/// - with a region, a valid number of seven digits or more that lacks its country in the same way;
/// - any other number, such as an internal extension, without its separators;
/// - anything else, such as a SIP address, unchanged.
///
/// The first of several numbers counts. An extension behind a number is left out. May be called
/// from any thread; each remembers its last numbers.
/// @param region the country of numbers without one; empty for none.
std::string DialString(const std::string& telephone, const std::string& region);

}  // namespace phonebook
