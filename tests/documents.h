// All documents, so that what holds for every one is tested on every one.
#pragma once

#include <teleform/teleform.h>

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct DocumentClass {
  const char* name;
  const char* root;  // the element that it writes
  const char* contentType;
  bool writesTitle;
  bool writesDestroyOnExit;
  bool writesBeep;
  bool enforcesLimit;
  bool writesLinks;
  std::unique_ptr<IPPhoneXML> (*make)(const char* title, int maxItems);
};

template <typename Document>
std::unique_ptr<IPPhoneXML> MakeScreen(const char* title, int /*maxItems*/) {
  return std::make_unique<Document>(title);
}

template <typename Document>
std::unique_ptr<IPPhoneXML> MakeList(const char* title, int maxItems) {
  return std::make_unique<Document>(title, maxItems);
}

inline const std::array<DocumentClass, 15> kDocumentClasses = {{
    // name, root, content type, title, destroyOnExit, Beep, limit, links
    {"AastraIPPhoneTextScreen", "AastraIPPhoneTextScreen", "text/xml", true, true, true, false,
     false, MakeScreen<AastraIPPhoneTextScreen>},
    {"AastraIPPhoneMenu", "AastraIPPhoneTextMenu", "text/xml", true, true, true, true, false,
     MakeList<AastraIPPhoneMenu>},
    {"AastraIPPhoneDirectory", "AastraIPPhoneDirectory", "text/xml", true, true, true, true, true,
     MakeList<AastraIPPhoneDirectory>},
    {"AastraIPPhoneInput", "AastraIPPhoneInputScreen", "text/xml", true, true, true, false, false,
     [](const char* title, int) -> std::unique_ptr<IPPhoneXML> {
       return std::make_unique<AastraIPPhoneInput>(title, "string", true);
     }},
    {"AastraIPPhoneExecute", "AastraIPPhoneExecute", "text/xml", true, true, true, false, false,
     MakeScreen<AastraIPPhoneExecute>},
    {"AastraIPPhoneStatus", "AastraIPPhoneStatus", "text/xml", false, false, true, false, false,
     [](const char*, int) -> std::unique_ptr<IPPhoneXML> {
       return std::make_unique<AastraIPPhoneStatus>();
     }},
    {"CiscoIPPhoneDirectory", "CiscoIPPhoneDirectory", "text/xml", true, false, false, true, true,
     MakeList<CiscoIPPhoneDirectory>},
    {"PolycomIPPhoneTextScreen", "html", "text/html", true, false, false, false, false,
     MakeScreen<PolycomIPPhoneTextScreen>},
    {"SnomIPPhoneTextScreen", "SnomIPPhoneText", "text/xml", true, false, false, false, false,
     MakeScreen<SnomIPPhoneTextScreen>},
    {"SnomIPPhoneMenu", "SnomIPPhoneDirectory", "text/xml", true, false, false, false, false,
     MakeList<SnomIPPhoneMenu>},
    {"SnomIPPhoneDirectory", "SnomIPPhoneDirectory", "text/xml", true, false, false, false, false,
     MakeList<SnomIPPhoneDirectory>},
    {"SnomIPPhoneInput", "SnomIPPhoneInput", "text/xml", true, false, false, false, false,
     [](const char* title, int) -> std::unique_ptr<IPPhoneXML> {
       return std::make_unique<SnomIPPhoneInput>(title, "a");
     }},
    {"YealinkIPPhoneTextScreen", "YealinkIPPhoneText", "text/xml", true, false, false, false, false,
     MakeScreen<YealinkIPPhoneTextScreen>},
    {"YealinkIPPhoneMenu", "YealinkIPPhoneDirectory", "text/xml", true, false, false, false, false,
     MakeList<YealinkIPPhoneMenu>},
    {"YealinkIPPhoneDirectory", "YealinkIPPhoneDirectory", "text/xml", true, false, false, false,
     false, MakeList<YealinkIPPhoneDirectory>},
}};

// Everything that a caller can do to fill this document, each with `value` wherever it is free.
using Operation = std::function<void(IPPhoneXML&)>;
std::vector<Operation> FillingOperations(IPPhoneXML& document, const std::string& value);

// What the makers' pages show, by class.
extern const std::map<std::string, std::string> kShownDocuments;

std::string Rendered(IPPhoneXML& document);
