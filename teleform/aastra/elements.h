// XML elements and attributes that several Aastra documents share.
#pragma once

#include <teleform/aastra/soft_keys.h>
#include <teleform/core/elements.h>

namespace teleform {

inline auto AastraBeep(bool beep) { return When(beep, " Beep = \"yes\""); }

inline auto AastraFlags(bool destroyOnExit, bool beep) {
  return Pieces(When(destroyOnExit, " destroyOnExit = \"yes\""), AastraBeep(beep));
}

inline constexpr auto AastraMenuItem = [](std::string_view prompt, std::string_view uri) {
  return Pieces("<MenuItem>\n<Prompt>", prompt, "</Prompt>\n<URI>", uri, "</URI>\n</MenuItem>\n");
};

inline constexpr auto AastraSoftKeyItem = [](const AastraSoftKey& key) {
  constexpr std::string_view kIndexes = "123456";
  return Pieces("<SoftKey index = \"",
                kIndexes.substr(static_cast<std::size_t>(key.GetIndex() - 1), 1),
                "\">\n<Label>",
                key.GetLabel(),
                "</Label>\n<URI>",
                key.GetURI(),
                "</URI>\n</SoftKey>\n");
};

}  // namespace teleform
