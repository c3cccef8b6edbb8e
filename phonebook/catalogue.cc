#include "phonebook/catalogue.h"

#include <boost/locale/gnu_gettext.hpp>

#include "phonebook/assets.h"

namespace phonebook {

std::vector<std::string> Languages() {
  std::vector<std::string> languages = {"en"};
  for (const auto& asset : kCatalogues) languages.emplace_back(asset.language);
  return languages;
}

Catalogue::Catalogue(const std::string& language) {
  for (const auto& asset : kCatalogues) {
    if (asset.language != language) continue;
    boost::locale::gnu_gettext::messages_info info;
    info.language = language;
    info.encoding = "UTF-8";
    info.domains.emplace_back("phonebook");
    info.paths.emplace_back("");
    info.callback = [&](const std::string& /*file*/, const std::string& /*encoding*/) {
      return std::vector<char>(asset.content.begin(), asset.content.end());
    };
    messages = boost::locale::gnu_gettext::create_messages_facet<char>(info);
    owner = std::locale(owner, messages);
  }
}

const char* Catalogue::Translate(const char* text) const {
  constexpr int kDomain = 0;
  const char* const found = messages == nullptr ? nullptr : messages->get(kDomain, nullptr, text);
  return found == nullptr ? text : found;
}

}  // namespace phonebook
