#include "phonebook/makers.h"

#include <algorithm>
#include <cctype>

namespace phonebook {

namespace {

struct KeyFacts {
  Key key;
  int aastraIndex;
  const char* label;
  std::optional<AastraSoftKeyCommands> aastraCommand;  // what the phone does by itself
  SnomSoftKeyCommands snom;
  YealinkSoftKeyCommands yealink;
};

constexpr std::array<KeyFacts, 8> kKeys = {{
    {Key::kSelect, 1, "Select", AASTRA_SK_SELECT, SNOM_SK_F_MINIBROWSER_SELECT,
     YEALINK_SK_F_MINIBROWSER_SELECT},
    {Key::kDial, 1, "Dial", AASTRA_SK_DIAL, SNOM_SK_F_MINIBROWSER_DIAL,
     YEALINK_SK_F_MINIBROWSER_DIAL},
    {Key::kSubmit, 1, "Search", AASTRA_SK_SUBMIT, SNOM_SK_ENTER, YEALINK_SK_ENTER},
    {Key::kPrevious, 2, "Previous", {}, SNOM_SK_LEFT, YEALINK_SK_LEFT},
    {Key::kNext, 3, "Next", {}, SNOM_SK_RIGHT, YEALINK_SK_RIGHT},
    {Key::kSearch, 4, "Search", {}, SNOM_SK_F_MINIBROWSER_SEARCH, YEALINK_SK_F_MINIBROWSER_SEARCH},
    {Key::kHome, 5, "Home", {}, SNOM_SK_CANCEL, YEALINK_SK_CANCEL},
    {Key::kExit, 6, "Exit", AASTRA_SK_EXIT, SNOM_SK_F_MINIBROWSER_EXIT,
     YEALINK_SK_F_MINIBROWSER_EXIT},
}};

const KeyFacts& KeyFactsOf(Key key) {
  return *std::find_if(kKeys.begin(), kKeys.end(),
                       [&](const KeyFacts& facts) { return facts.key == key; });
}

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char character) {
    return static_cast<char>(std::tolower(character));
  });
  return lower;
}

}  // namespace

const std::array<MakerFacts, 5>& AllMakers() {
  static constexpr std::array<MakerFacts, 5> kMakers = {{
      {Maker::kAastra, "Aastra", "aastra", 15, true},
      {Maker::kCisco, "Cisco", "cisco", 30, true},
      {Maker::kPolycom, "Polycom", "polycom", 8, false},
      {Maker::kSnom, "Snom", "snom", 20, false},
      {Maker::kYealink, "Yealink", "yealink", 20, false},
  }};
  return kMakers;
}

const MakerFacts& FactsOf(Maker maker) { return AllMakers()[static_cast<std::size_t>(maker)]; }

std::optional<Maker> MakerByPath(std::string_view path) {
  for (const auto& facts : AllMakers()) {
    if (facts.path == path) return facts.maker;
  }
  return std::nullopt;
}

std::optional<Maker> MakerByUserAgent(std::string_view userAgent) {
  const std::string lower = LowerCase(userAgent);
  for (const auto& facts : AllMakers()) {
    if (lower.find(facts.path) != lower.npos) return facts.maker;
  }
  return std::nullopt;
}

std::unique_ptr<IPPhoneTextScreenXML> MakeTextScreen(Maker maker, const std::string& title) {
  switch (maker) {
    case Maker::kAastra:
      return std::make_unique<AastraIPPhoneTextScreen>(title);
    case Maker::kPolycom:
      return std::make_unique<PolycomIPPhoneTextScreen>(title);
    case Maker::kSnom:
      return std::make_unique<SnomIPPhoneTextScreen>(title);
    case Maker::kCisco:
    case Maker::kYealink:  // has one, but without keys: nobody would find back from it
      break;
  }
  return nullptr;
}

std::unique_ptr<IPPhoneMenuXML> MakeMenu(Maker maker, const std::string& title, int maxItems) {
  switch (maker) {
    case Maker::kAastra:
      return std::make_unique<AastraIPPhoneMenu>(title, maxItems);
    case Maker::kSnom:
      return std::make_unique<SnomIPPhoneMenu>(title.c_str(), maxItems);
    case Maker::kYealink:
      return std::make_unique<YealinkIPPhoneMenu>(title.c_str(), maxItems);
    case Maker::kCisco:
    case Maker::kPolycom:
      break;
  }
  return nullptr;
}

std::unique_ptr<IPPhoneDirectoryXML> MakeDirectory(Maker maker, const std::string& title,
                                                   int maxItems) {
  switch (maker) {
    case Maker::kAastra:
      return std::make_unique<AastraIPPhoneDirectory>(title.c_str(), maxItems);
    case Maker::kCisco:
      return std::make_unique<CiscoIPPhoneDirectory>(title.c_str(), maxItems);
    case Maker::kSnom:
      return std::make_unique<SnomIPPhoneDirectory>(title.c_str(), maxItems);
    case Maker::kYealink:
      return std::make_unique<YealinkIPPhoneDirectory>(title.c_str(), maxItems);
    case Maker::kPolycom:
      break;
  }
  return nullptr;
}

std::unique_ptr<IPPhoneInputXML> MakeInput(Maker maker, const std::string& title) {
  if (maker == Maker::kAastra) return std::make_unique<AastraIPPhoneInput>(title, "string", false);
  if (maker == Maker::kSnom) return std::make_unique<SnomIPPhoneInput>(title, "a");
  return nullptr;
}

std::unique_ptr<IPPhoneExecuteXML> MakeExecute(Maker maker, const std::string& uri) {
  if (maker == Maker::kAastra) return std::make_unique<AastraIPPhoneExecute>(uri);
  return nullptr;
}

std::unique_ptr<IPPhoneStatusXML> MakeStatus(Maker maker) {
  if (maker == Maker::kAastra) return std::make_unique<AastraIPPhoneStatus>();
  return nullptr;
}

std::string LabelOf(Key key) { return KeyFactsOf(key).label; }

bool HasSoftKeys(IPPhoneXML& document) {
  return dynamic_cast<AastraIPPhone*>(&document) != nullptr ||
         dynamic_cast<SnomIPPhone*>(&document) != nullptr ||
         dynamic_cast<YealinkIPPhone*>(&document) != nullptr;
}

bool AddSoftKey(IPPhoneXML& document, Key key, const std::string& uri) {
  const KeyFacts& facts = KeyFactsOf(key);
  // The makers' keys are bases beside the kind, which knows of none.
  if (auto* aastra = dynamic_cast<AastraIPPhone*>(&document)) {
    if (!uri.empty()) return aastra->AddSoftKey(facts.aastraIndex, facts.label, uri.c_str());
    return facts.aastraCommand &&
           aastra->AddSoftKey(facts.aastraIndex, facts.label, *facts.aastraCommand);
  }
  if (uri.empty()) return false;
  if (auto* snom = dynamic_cast<SnomIPPhone*>(&document)) {
    return snom->AddSoftKey(facts.snom, uri.c_str());
  }
  if (auto* yealink = dynamic_cast<YealinkIPPhone*>(&document)) {
    return yealink->AddSoftKey(facts.yealink, uri.c_str());
  }
  return false;
}

}  // namespace phonebook
