/// @file
/// Escapes text and URIs from outside for documents, which escape nothing by themselves.
///
/// The functions take any bytes, NULs included, and return a string that the caller owns. Only
/// empty text gives empty text. When memory runs out they throw `std::bad_alloc`, and
/// `std::length_error` when the result is too long for a string.
#pragma once

#include <teleform/core/export.h>

#include <string>
#include <string_view>

namespace teleform::screens {

/// Escapes `text` for XML and HTML in UTF-8, also as the value of an attribute in double quotes.
/// `&`, `<`, `>` and `"` become entities. A control character other than tab and line feed becomes
/// a blank, a NUL included. A byte that belongs to no valid UTF-8 sequence, or to a character that
/// XML forbids, becomes U+FFFD.
/// @param text any bytes.
TELEFORM_EXPORT std::string EscapeXML(std::string_view text);

/// Percent-encodes every byte except ASCII letters and digits, `-`, `.`, `_`, `~` and the bytes in
/// `kept`. Bytes that are not UTF-8 are encoded like all others.
/// @param text any bytes.
/// @param kept bytes that are not encoded.
TELEFORM_EXPORT std::string PercentEncode(std::string_view text, std::string_view kept = {});

/// Decodes percent-encoded text. A `%` that is not followed by two hexadecimal digits stays as it
/// is. The result may hold any bytes: it may be no UTF-8, and may hold NULs.
/// @param text what is encoded, whole or in part.
/// @param isQuery whether a `+` is a blank, as in the query of a URI.
TELEFORM_EXPORT std::string PercentDecode(std::string_view text, bool isQuery);

}  // namespace teleform::screens
