/// @file
/// The language of pages: catalogues of gettext, which are compiled into the program.
#pragma once

#include <boost/locale/message.hpp>
#include <locale>
#include <string>
#include <vector>

namespace phonebook {

/// Marks an English text that is translated where it is shown, for xgettext.
constexpr const char* Marked(const char* text) { return text; }

/// The languages that pages are shown in, such as "de". The first one is English.
std::vector<std::string> Languages();

/// Translates texts. The default one leaves them in English.
class Catalogue {
 public:
  Catalogue() = default;

  /// @param language one of `Languages()`.
  explicit Catalogue(const std::string& language);

  /// Returns `text` in the language, or itself if it is not in the catalogue.
  const char* Translate(const char* text) const;

 private:
  std::locale owner = std::locale::classic();  // of the messages
  const boost::locale::message_format<char>* messages = nullptr;
};

}  // namespace phonebook
