// Three XML libraries behind one small interface, so that each document is described once.
#include <libxml/xmlwriter.h>
#include <tinyxml2.h>

#include <pugixml.hpp>
#include <string>

#include "implementations.h"

namespace {

class Pugixml {
 public:
  void Open(const char* name) { at = at.append_child(name); }
  void Attribute(const char* name, const char* value) { at.append_attribute(name) = value; }
  void Text(const std::string& text) { at.append_child(pugi::node_pcdata).set_value(text.c_str()); }
  void Close() { at = at.parent(); }
  void AppendTo(std::string& out) {
    struct Writer : pugi::xml_writer {
      explicit Writer(std::string& to) : out(to) {}
      void write(const void* data, std::size_t size) override {
        out.append(static_cast<const char*>(data), size);
      }
      std::string& out;
    } writer(out);
    document.save(writer, "", pugi::format_raw | pugi::format_no_declaration);
  }

 private:
  pugi::xml_document document;
  pugi::xml_node at = document;
};

class Tinyxml2 {
 public:
  void Open(const char* name) { printer.OpenElement(name, true); }
  void Attribute(const char* name, const char* value) { printer.PushAttribute(name, value); }
  void Text(const std::string& text) { printer.PushText(text.c_str()); }
  void Close() { printer.CloseElement(true); }
  void AppendTo(std::string& out) {
    out.append(printer.CStr(), static_cast<std::size_t>(printer.CStrSize() - 1));
  }

 private:
  tinyxml2::XMLPrinter printer{nullptr, true};
};

class Libxml2 {
 public:
  Libxml2() = default;
  Libxml2(const Libxml2&) = delete;
  Libxml2& operator=(const Libxml2&) = delete;
  ~Libxml2() {
    xmlFreeTextWriter(writer);
    xmlBufferFree(buffer);
  }
  void Open(const char* name) { xmlTextWriterStartElement(writer, BAD_CAST name); }
  void Attribute(const char* name, const char* value) {
    xmlTextWriterWriteAttribute(writer, BAD_CAST name, BAD_CAST value);
  }
  void Text(const std::string& text) { xmlTextWriterWriteString(writer, BAD_CAST text.c_str()); }
  void Close() { xmlTextWriterEndElement(writer); }
  void AppendTo(std::string& out) {
    xmlTextWriterFlush(writer);
    out.append(reinterpret_cast<const char*>(xmlBufferContent(buffer)),
               static_cast<std::size_t>(xmlBufferLength(buffer)));
  }

 private:
  xmlBufferPtr buffer = xmlBufferCreate();
  xmlTextWriterPtr writer = xmlNewTextWriterMemory(buffer, 0);
};

const std::string kLineFeed = "\n";

template <typename Writer>
void CloseElement(Writer& writer) {
  writer.Close();
  writer.Text(kLineFeed);
}

template <typename Writer>
void WriteElement(Writer& writer, const char* name, const std::string& text) {
  writer.Open(name);
  writer.Text(text);
  CloseElement(writer);
}

template <typename Writer>
void Describe(Writer& writer, const Directory& directory) {
  writer.Open("CiscoIPPhoneDirectory");
  writer.Attribute("previous", directory.previous.c_str());
  writer.Attribute("next", directory.next.c_str());
  writer.Text(kLineFeed);
  WriteElement(writer, "Title", directory.title);
  for (const auto& person : directory.people) {
    writer.Open("DirectoryEntry");
    writer.Text(kLineFeed);
    WriteElement(writer, "Name", person.name);
    WriteElement(writer, "Telephone", person.telephone);
    CloseElement(writer);
  }
  CloseElement(writer);
}

template <typename Writer>
void Describe(Writer& writer, const Menu& menu) {
  writer.Open("AastraIPPhoneTextMenu");
  writer.Attribute("destroyOnExit", "yes");
  writer.Attribute("Beep", "yes");
  writer.Text(kLineFeed);
  WriteElement(writer, "Title", menu.title);
  for (const auto& item : menu.items) {
    writer.Open("MenuItem");
    writer.Text(kLineFeed);
    WriteElement(writer, "Prompt", item.name);
    WriteElement(writer, "URI", item.telephone);
    CloseElement(writer);
  }
  for (const auto& key : menu.keys) {
    writer.Open("SoftKey");
    writer.Attribute("index", std::to_string(key.index).c_str());
    writer.Text(kLineFeed);
    WriteElement(writer, "Label", key.label);
    WriteElement(writer, "URI", key.uri);
    CloseElement(writer);
  }
  CloseElement(writer);
}

template <typename Writer>
void Describe(Writer& writer, const Status& status) {
  writer.Open("AastraIPPhoneStatus");
  writer.Text(kLineFeed);
  WriteElement(writer, "Session", status.session);
  writer.Open("Message");
  writer.Attribute("index", std::to_string(status.index).c_str());
  writer.Attribute("type", "alert");
  writer.Attribute("Timeout", std::to_string(status.timeout).c_str());
  writer.Text(kLineFeed + status.message);
  CloseElement(writer);
  CloseElement(writer);
}

template <typename Writer>
void Describe(Writer& writer, const Screen& screen) {
  writer.Open("SnomIPPhoneText");
  writer.Text(kLineFeed);
  WriteElement(writer, "Title", screen.title);
  WriteElement(writer, "Text", screen.text);
  writer.Open("SoftKeyItem");
  writer.Text(kLineFeed);
  WriteElement(writer, "Name", screen.key);
  WriteElement(writer, "URL", screen.url);
  CloseElement(writer);
  CloseElement(writer);
}

template <typename Writer, typename Contents>
Renderer RenderBy(const Contents& contents) {
  return [&contents](std::string& out) {
    Writer writer;
    Describe(writer, contents);
    writer.AppendTo(out);
  };
}

template <typename Writer>
constexpr Implementation Library(const char* name) {
  return {name,
          false,
          RenderBy<Writer, Directory>,
          RenderBy<Writer, Menu>,
          RenderBy<Writer, Status>,
          RenderBy<Writer, Screen>};
}

}  // namespace

const std::vector<Implementation> kXmlLibraries = {
    Library<Pugixml>("pugixml"), Library<Tinyxml2>("tinyxml2"), Library<Libxml2>("libxml2")};
