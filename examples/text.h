/// @file
/// What libteleform leaves to its caller: making text from outside fit for XML and for URIs.
#pragma once

#include <string>
#include <string_view>

/// Makes any bytes fit to be XML text or the value of an attribute in double quotes, in UTF-8:
/// markup characters become entities, control characters other than tab and line feed become
/// blanks, and what is not UTF-8, or no character of XML, becomes U+FFFD. Only empty text gives
/// empty text.
std::string Fit(std::string_view text);

/// Percent-encodes all bytes but the unreserved ones of a URI and those in `kept`.
std::string PercentEncoded(std::string_view text, std::string_view kept = "");

/// What `PercentEncoded` has encoded; a % that encodes nothing stays as it is. In a query a + is a
/// blank.
std::string PercentDecoded(std::string_view text, bool isQuery);

/// Whether `text` is UTF-8, of characters that XML allows but for control characters.
bool IsUTF8(std::string_view text);

/// The same without control characters, not even tabs and line feeds.
bool IsPlainText(std::string_view text);

/// How many characters there are in `text`, which must be UTF-8.
std::size_t CountCharacters(std::string_view text);
