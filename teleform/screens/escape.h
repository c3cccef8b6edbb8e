/// @file
/// Makes text and URIs from outside fit for documents, which escape nothing by themselves.
///
/// The functions take any bytes, NULs included, and return a string of the caller's. When memory
/// runs out they throw `std::bad_alloc`.
#pragma once

#include <teleform/core/export.h>

#include <string>
#include <string_view>

namespace teleform::screens {

/// Makes well-formed text of XML and HTML of `text`, also for a value of an attribute in double
/// quotes, in UTF-8. `&`, `<`, `>` and `"` become entities; control characters other than tab and
/// line feed become blanks, one each; a byte that is no part of a character of UTF-8 that XML
/// allows becomes U+FFFD. Only empty text gives empty text.
TELEFORM_EXPORT std::string EscapeXML(std::string_view text);

/// Percent-encodes all bytes but letters and digits of ASCII, `-`, `.`, `_`, `~`, and those in
/// `kept`.
TELEFORM_EXPORT std::string PercentEncode(std::string_view text, std::string_view kept = {});

/// Decodes what `PercentEncode` has encoded. A `%` without two hexadecimal digits behind it stays
/// as it is. The result may hold any bytes.
/// @param isQuery whether a `+` is a blank, as in the query of a URI.
TELEFORM_EXPORT std::string PercentDecode(std::string_view text, bool isQuery);

}  // namespace teleform::screens
