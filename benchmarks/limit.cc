// The limit: the size is known beforehand, one allocation is made, and everything is copied
// straight.
#include <cstring>
#include <string_view>

#include "implementations.h"

namespace {

template <typename... Text>
char* CopyAll(char* to, const Text&... text) {
  const auto copy = [&to](std::string_view one) {
    std::memcpy(to, one.data(), one.size());
    to += one.size();
  };
  (copy(text), ...);
  return to;
}

char* Copy(const Directory& directory, char* to) {
  to = CopyAll(to, "<CiscoIPPhoneDirectory previous=\"", directory.previous, "\" next=\"",
               directory.next, "\">\n<Title>", directory.title, "</Title>\n");
  for (const auto& person : directory.people) {
    to = CopyAll(to, "<DirectoryEntry>\n<Name>", person.name, "</Name>\n<Telephone>",
                 person.telephone, "</Telephone>\n</DirectoryEntry>\n");
  }
  return CopyAll(to, "</CiscoIPPhoneDirectory>\n");
}

char* Copy(const Menu& menu, char* to) {
  to = CopyAll(to, "<AastraIPPhoneTextMenu destroyOnExit = \"yes\" Beep = \"yes\">\n<Title>",
               menu.title, "</Title>\n");
  for (const auto& item : menu.items) {
    to = CopyAll(to, "<MenuItem>\n<Prompt>", item.name, "</Prompt>\n<URI>", item.telephone,
                 "</URI>\n</MenuItem>\n");
  }
  for (const auto& key : menu.keys) {
    const char index = static_cast<char>('0' + key.index);
    to = CopyAll(to, "<SoftKey index = \"", std::string_view(&index, 1), "\">\n<Label>", key.label,
                 "</Label>\n<URI>", key.uri, "</URI>\n</SoftKey>\n");
  }
  return CopyAll(to, "</AastraIPPhoneTextMenu>\n");
}

// Its numbers are written beforehand: they are part of what is copied.
char* Copy(const Status& status, char* to) {
  return CopyAll(to, "<AastraIPPhoneStatus>\n<Session>", status.session,
                 "</Session>\n<Message index=\"1\" type=\"alert\" Timeout=\"30\">\n",
                 status.message, "</Message>\n</AastraIPPhoneStatus>\n");
}

char* Copy(const Screen& screen, char* to) {
  return CopyAll(to, "<SnomIPPhoneText>\n<Title>", screen.title, "</Title>\n<Text>", screen.text,
                 "</Text>\n<SoftKeyItem>\n<Name>", screen.key, "</Name>\n<URL>", screen.url,
                 "</URL>\n</SoftKeyItem>\n</SnomIPPhoneText>\n");
}

template <typename Contents>
Renderer RenderKnown(const Contents& contents) {
  std::string measure(16 << 20, '\0');
  const auto size = static_cast<std::size_t>(Copy(contents, measure.data()) - measure.data());
  return [&contents, size](std::string& out) {
    const std::size_t before = out.size();
#ifdef __cpp_lib_string_resize_and_overwrite
    out.resize_and_overwrite(before + size, [&](char* text, std::size_t end) {
      Copy(contents, text + before);
      return end;
    });
#else
    out.resize(before + size);
    Copy(contents, out.data() + before);
#endif
  };
}

}  // namespace

const Implementation kLimit = {"limit",
                               true,
                               RenderKnown<Directory>,
                               RenderKnown<Menu>,
                               RenderKnown<Status>,
                               RenderKnown<Screen>};
