// A mustache template engine: the template is parsed and the data are filled in beforehand.
#include <kainjow/mustache.hpp>
#include <memory>

#include "implementations.h"

namespace {

using kainjow::mustache::data;
using kainjow::mustache::mustache;

Renderer RenderTemplate(const char* text, const data& contents) {
  const auto parsed = std::make_shared<mustache>(text);
  return [parsed, contents](std::string& out) { out += parsed->render(contents); };
}

Renderer RenderDirectory(const Directory& directory) {
  data people = data::type::list;
  for (const auto& person : directory.people) {
    data entry;
    entry.set("name", person.name);
    entry.set("telephone", person.telephone);
    people << entry;
  }
  data contents;
  contents.set("title", directory.title);
  contents.set("previous", directory.previous);
  contents.set("next", directory.next);
  contents.set("people", people);
  return RenderTemplate(
      "<CiscoIPPhoneDirectory previous=\"{{{previous}}}\" next=\"{{{next}}}\">\n"
      "<Title>{{{title}}}</Title>\n"
      "{{#people}}<DirectoryEntry>\n<Name>{{{name}}}</Name>\n"
      "<Telephone>{{{telephone}}}</Telephone>\n</DirectoryEntry>\n{{/people}}"
      "</CiscoIPPhoneDirectory>\n",
      contents);
}

Renderer RenderMenu(const Menu& menu) {
  data items = data::type::list;
  for (const auto& item : menu.items) {
    data entry;
    entry.set("prompt", item.name);
    entry.set("uri", item.telephone);
    items << entry;
  }
  data keys = data::type::list;
  for (const auto& key : menu.keys) {
    data entry;
    entry.set("index", std::to_string(key.index));
    entry.set("label", key.label);
    entry.set("uri", key.uri);
    keys << entry;
  }
  data contents;
  contents.set("title", menu.title);
  contents.set("items", items);
  contents.set("keys", keys);
  return RenderTemplate(
      "<AastraIPPhoneTextMenu destroyOnExit = \"yes\" Beep = \"yes\">\n<Title>{{{title}}}</Title>\n"
      "{{#items}}<MenuItem>\n<Prompt>{{{prompt}}}</Prompt>\n<URI>{{{uri}}}</URI>\n</MenuItem>\n"
      "{{/items}}{{#keys}}<SoftKey index = \"{{{index}}}\">\n<Label>{{{label}}}</Label>\n"
      "<URI>{{{uri}}}</URI>\n</SoftKey>\n{{/keys}}</AastraIPPhoneTextMenu>\n",
      contents);
}

Renderer RenderStatus(const Status& status) {
  data contents;
  contents.set("session", status.session);
  contents.set("message", status.message);
  contents.set("index", std::to_string(status.index));
  contents.set("timeout", std::to_string(status.timeout));
  return RenderTemplate(
      "<AastraIPPhoneStatus>\n<Session>{{{session}}}</Session>\n"
      "<Message index=\"{{{index}}}\" type=\"alert\" Timeout=\"{{{timeout}}}\">\n"
      "{{{message}}}</Message>\n</AastraIPPhoneStatus>\n",
      contents);
}

Renderer RenderScreen(const Screen& screen) {
  data contents;
  contents.set("title", screen.title);
  contents.set("text", screen.text);
  contents.set("key", screen.key);
  contents.set("url", screen.url);
  return RenderTemplate(
      "<SnomIPPhoneText>\n<Title>{{{title}}}</Title>\n<Text>{{{text}}}</Text>\n<SoftKeyItem>\n"
      "<Name>{{{key}}}</Name>\n<URL>{{{url}}}</URL>\n</SoftKeyItem>\n</SnomIPPhoneText>\n",
      contents);
}

}  // namespace

const Implementation kTemplateEngine = {"mustache", true,         RenderDirectory,
                                        RenderMenu, RenderStatus, RenderScreen};
