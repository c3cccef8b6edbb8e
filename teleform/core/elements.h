// Elements that several makers write alike. The names are those of the elements, not of the
// classes that use them: some makers write their menus as directories. Literals that meet are one
// piece here: items and keys are most of a document, and a Line each would cost a tenth more.
#pragma once

#include <teleform/core/pieces.h>

namespace teleform {

inline constexpr auto DirectoryEntry = [](std::string_view name, std::string_view telephone) {
  return Pieces("<DirectoryEntry>\n<Name>",
                name,
                "</Name>\n<Telephone>",
                telephone,
                "</Telephone>\n</DirectoryEntry>\n");
};

inline constexpr auto SoftKeyItem = [](const auto& key) {
  return Pieces("<SoftKeyItem>\n<Name>",
                key.GetName(),
                "</Name>\n<URL>",
                key.GetURL(),
                "</URL>\n</SoftKeyItem>\n");
};

// The items of a menu, each written as `element` writes a prompt and a URI.
template <typename Items, typename Element>
auto MenuItems(const Items& items, Element element) {
  return Each(items,
              [element](const auto& item) { return element(item->GetPrompt(), item->GetURI()); });
}

// The attributes with which a directory names the pages before and after it.
inline auto PageLinks(std::string_view previous, std::string_view next) {
  return Pieces(When(!previous.empty(), " previous=\"", previous, "\""),
                When(!next.empty(), " next=\"", next, "\""));
}

}  // namespace teleform
