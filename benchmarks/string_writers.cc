// What one writes by hand: appending to a string, a string stream, and a formatting library.
#include <fmt/format.h>
#include <teleform/screens/escape.h>

#include <iterator>
#include <sstream>

#include "implementations.h"

namespace {

template <auto Escape>
void AppendDirectory(const Directory& directory, std::string& out) {
  out += "<CiscoIPPhoneDirectory";
  out += " previous=\"";
  out += Escape(directory.previous);
  out += "\" next=\"";
  out += Escape(directory.next);
  out += "\">\n<Title>";
  out += Escape(directory.title);
  out += "</Title>\n";
  for (const auto& person : directory.people) {
    out += "<DirectoryEntry>\n<Name>";
    out += Escape(person.name);
    out += "</Name>\n<Telephone>";
    out += Escape(person.telephone);
    out += "</Telephone>\n</DirectoryEntry>\n";
  }
  out += "</CiscoIPPhoneDirectory>\n";
}

template <auto Escape>
void AppendMenu(const Menu& menu, std::string& out) {
  out += "<AastraIPPhoneTextMenu";
  out += " destroyOnExit = \"yes\"";
  out += " Beep = \"yes\"";
  out += ">\n<Title>";
  out += Escape(menu.title);
  out += "</Title>\n";
  for (const auto& item : menu.items) {
    out += "<MenuItem>\n<Prompt>";
    out += Escape(item.name);
    out += "</Prompt>\n<URI>";
    out += Escape(item.telephone);
    out += "</URI>\n</MenuItem>\n";
  }
  for (const auto& key : menu.keys) {
    out += "<SoftKey index = \"";
    out += std::to_string(key.index);
    out += "\">\n<Label>";
    out += Escape(key.label);
    out += "</Label>\n<URI>";
    out += Escape(key.uri);
    out += "</URI>\n</SoftKey>\n";
  }
  out += "</AastraIPPhoneTextMenu>\n";
}

void AppendStatus(const Status& status, std::string& out) {
  out += "<AastraIPPhoneStatus";
  out += ">\n<Session>";
  out += status.session;
  out += "</Session>\n<Message index=\"";
  out += std::to_string(status.index);
  out += "\"";
  out += " type=\"alert\"";
  out += " Timeout=\"";
  out += std::to_string(status.timeout);
  out += "\"";
  out += ">\n";
  out += status.message;
  out += "</Message>\n";
  out += "</AastraIPPhoneStatus>\n";
}

void AppendScreen(const Screen& screen, std::string& out) {
  out += "<SnomIPPhoneText>\n<Title>";
  out += screen.title;
  out += "</Title>\n<Text>";
  out += screen.text;
  out += "</Text>\n";
  out += "<SoftKeyItem>\n<Name>";
  out += screen.key;
  out += "</Name>\n<URL>";
  out += screen.url;
  out += "</URL>\n</SoftKeyItem>\n";
  out += "</SnomIPPhoneText>\n";
}

void StreamDirectory(const Directory& directory, std::string& out) {
  std::ostringstream stream;
  stream << "<CiscoIPPhoneDirectory previous=\"" << directory.previous << "\" next=\""
         << directory.next << "\">\n<Title>" << directory.title << "</Title>\n";
  for (const auto& person : directory.people) {
    stream << "<DirectoryEntry>\n<Name>" << person.name << "</Name>\n<Telephone>"
           << person.telephone << "</Telephone>\n</DirectoryEntry>\n";
  }
  stream << "</CiscoIPPhoneDirectory>\n";
  out += stream.str();
}

void StreamMenu(const Menu& menu, std::string& out) {
  std::ostringstream stream;
  stream << "<AastraIPPhoneTextMenu destroyOnExit = \"yes\" Beep = \"yes\">\n<Title>" << menu.title
         << "</Title>\n";
  for (const auto& item : menu.items) {
    stream << "<MenuItem>\n<Prompt>" << item.name << "</Prompt>\n<URI>" << item.telephone
           << "</URI>\n</MenuItem>\n";
  }
  for (const auto& key : menu.keys) {
    stream << "<SoftKey index = \"" << key.index << "\">\n<Label>" << key.label << "</Label>\n<URI>"
           << key.uri << "</URI>\n</SoftKey>\n";
  }
  stream << "</AastraIPPhoneTextMenu>\n";
  out += stream.str();
}

void StreamStatus(const Status& status, std::string& out) {
  std::ostringstream stream;
  stream << "<AastraIPPhoneStatus>\n<Session>" << status.session << "</Session>\n<Message index=\""
         << status.index << "\" type=\"alert\" Timeout=\"" << status.timeout << "\">\n"
         << status.message << "</Message>\n</AastraIPPhoneStatus>\n";
  out += stream.str();
}

void StreamScreen(const Screen& screen, std::string& out) {
  std::ostringstream stream;
  stream << "<SnomIPPhoneText>\n<Title>" << screen.title << "</Title>\n<Text>" << screen.text
         << "</Text>\n<SoftKeyItem>\n<Name>" << screen.key << "</Name>\n<URL>" << screen.url
         << "</URL>\n</SoftKeyItem>\n</SnomIPPhoneText>\n";
  out += stream.str();
}

void FormatDirectory(const Directory& directory, std::string& out) {
  const auto to = std::back_inserter(out);
  fmt::format_to(to, "<CiscoIPPhoneDirectory previous=\"{}\" next=\"{}\">\n<Title>{}</Title>\n",
                 directory.previous, directory.next, directory.title);
  for (const auto& person : directory.people) {
    fmt::format_to(to,
                   "<DirectoryEntry>\n<Name>{}</Name>\n<Telephone>{}</Telephone>\n"
                   "</DirectoryEntry>\n",
                   person.name, person.telephone);
  }
  fmt::format_to(to, "</CiscoIPPhoneDirectory>\n");
}

void FormatMenu(const Menu& menu, std::string& out) {
  const auto to = std::back_inserter(out);
  fmt::format_to(to,
                 "<AastraIPPhoneTextMenu destroyOnExit = \"yes\" Beep = \"yes\">\n"
                 "<Title>{}</Title>\n",
                 menu.title);
  for (const auto& item : menu.items) {
    fmt::format_to(to, "<MenuItem>\n<Prompt>{}</Prompt>\n<URI>{}</URI>\n</MenuItem>\n", item.name,
                   item.telephone);
  }
  for (const auto& key : menu.keys) {
    fmt::format_to(to, "<SoftKey index = \"{}\">\n<Label>{}</Label>\n<URI>{}</URI>\n</SoftKey>\n",
                   key.index, key.label, key.uri);
  }
  fmt::format_to(to, "</AastraIPPhoneTextMenu>\n");
}

void FormatStatus(const Status& status, std::string& out) {
  fmt::format_to(std::back_inserter(out),
                 "<AastraIPPhoneStatus>\n<Session>{}</Session>\n"
                 "<Message index=\"{}\" type=\"alert\" Timeout=\"{}\">\n{}</Message>\n"
                 "</AastraIPPhoneStatus>\n",
                 status.session, status.index, status.timeout, status.message);
}

void FormatScreen(const Screen& screen, std::string& out) {
  fmt::format_to(std::back_inserter(out),
                 "<SnomIPPhoneText>\n<Title>{}</Title>\n<Text>{}</Text>\n<SoftKeyItem>\n"
                 "<Name>{}</Name>\n<URL>{}</URL>\n</SoftKeyItem>\n</SnomIPPhoneText>\n",
                 screen.title, screen.text, screen.key, screen.url);
}

}  // namespace

const std::vector<Implementation> kStringWriters = {
    {"chain of +=", true, RenderWith<AppendDirectory<AsIs>>, RenderWith<AppendMenu<AsIs>>,
     RenderWith<AppendStatus>, RenderWith<AppendScreen>},
    {"ostringstream", true, RenderWith<StreamDirectory>, RenderWith<StreamMenu>,
     RenderWith<StreamStatus>, RenderWith<StreamScreen>},
    {"{fmt}", true, RenderWith<FormatDirectory>, RenderWith<FormatMenu>, RenderWith<FormatStatus>,
     RenderWith<FormatScreen>}};

const Implementation kChainEscaped = {"chain of +=",
                                      true,
                                      RenderWith<AppendDirectory<teleform::screens::EscapeXML>>,
                                      RenderWith<AppendMenu<teleform::screens::EscapeXML>>,
                                      nullptr,
                                      nullptr};
