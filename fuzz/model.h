// A plain second idea of the documents, to compare the library with: what every class writes is one
// text with names in braces, and the names stand for what the document holds.
#pragma once

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct ModelClass {
  std::string_view name;
  std::string_view document;
  std::string_view element;  // an item or an entry, if it has any
  bool enforcesLimit;
  std::string_view keys;  // the maker of its soft keys, if it has any
};

inline constexpr std::string_view kPerson =
    "<DirectoryEntry>\n<Name>{first}</Name>\n<Telephone>{second}</Telephone>\n</DirectoryEntry>\n";
inline constexpr std::string_view kMenuItem =
    "<MenuItem>\n<Prompt>{first}</Prompt>\n<URI>{second}</URI>\n</MenuItem>\n";

inline constexpr std::array<ModelClass, 15> kModelClasses = {{
    {"AastraIPPhoneTextScreen",
     "<AastraIPPhoneTextScreen{destroyOnExit}{beep}>\n<Title>{title}</Title>\n"
     "<Text>{textToNul}</Text>\n{keys}</AastraIPPhoneTextScreen>\n",
     "", false, "Aastra"},
    {"AastraIPPhoneMenu",
     "<AastraIPPhoneTextMenu{destroyOnExit}{beep}>\n<Title>{title}</Title>\n{elements}{keys}"
     "</AastraIPPhoneTextMenu>\n",
     kMenuItem, true, "Aastra"},
    {"AastraIPPhoneDirectory",
     "<AastraIPPhoneDirectory{previous}{next}{destroyOnExit}{beep}>\n<Title>{title}</Title>\n"
     "{elements}{keys}</AastraIPPhoneDirectory>\n",
     kMenuItem, true, "Aastra"},
    {"AastraIPPhoneInput",
     "<AastraIPPhoneInputScreen type = \"{type}\"{password}{destroyOnExit}{beep}>\n"
     "<Title>{title}</Title>\n<Prompt>{prompt}</Prompt>\n<URL>{url}</URL>\n"
     "<Parameter>{parameter}</Parameter>\n<Default>{default}</Default>\n{keys}"
     "</AastraIPPhoneInputScreen>\n",
     "", false, "Aastra"},
    {"AastraIPPhoneExecute",
     "<AastraIPPhoneExecute{destroyOnExit}{beep}>\n<ExecuteItem URI=\"{title}\"/>\n{keys}"
     "</AastraIPPhoneExecute>\n",
     "", false, "Aastra"},
    {"AastraIPPhoneStatus",
     "<AastraIPPhoneStatus{beep}>\n<Session>{session}</Session>\n"
     "<Message index=\"{index}\"{alert}{timeout}>\n{message}</Message>\n{keys}"
     "</AastraIPPhoneStatus>\n",
     "", false, "Aastra"},
    {"CiscoIPPhoneDirectory",
     "<CiscoIPPhoneDirectory{previous}{next}>\n<Title>{title}</Title>\n{elements}"
     "</CiscoIPPhoneDirectory>\n",
     kPerson, true, ""},
    {"PolycomIPPhoneTextScreen",
     "<html>\n<Title>{title}</Title>\n<body>\n<p>{text}</p>\n</body>\n</html>\n", "", false, ""},
    {"SnomIPPhoneTextScreen",
     "<SnomIPPhoneText>\n<Title>{title}</Title>\n<Text>{text}</Text>\n{keys}</SnomIPPhoneText>\n",
     "", false, "Snom"},
    {"SnomIPPhoneMenu",
     "<SnomIPPhoneDirectory>\n<Title>{title}</Title>\n{elements}{keys}</SnomIPPhoneDirectory>\n",
     kPerson, false, "Snom"},
    {"SnomIPPhoneDirectory",
     "<SnomIPPhoneDirectory>\n<Title>{title}</Title>\n{elements}{keys}</SnomIPPhoneDirectory>\n",
     kPerson, false, "Snom"},
    {"SnomIPPhoneInput",
     "<SnomIPPhoneInput>\n<Title>{title}</Title>\n<Prompt>{prompt}</Prompt>\n<URL>{url}</URL>\n"
     "<InputItem>\n<DisplayName>{prompt}</DisplayName>\n"
     "<QueryStringParam>{parameter}</QueryStringParam>\n<DefaultValue>{default}</DefaultValue>\n"
     "<InputFlags>{type}</InputFlags>\n</InputItem>\n{keys}</SnomIPPhoneInput>\n",
     "", false, "Snom"},
    {"YealinkIPPhoneTextScreen",
     "<YealinkIPPhoneText>\n<Title>{title}</Title>\n<Text>{text}</Text>\n</YealinkIPPhoneText>\n",
     "", false, ""},
    {"YealinkIPPhoneMenu",
     "<YealinkIPPhoneDirectory>\n<Title>{title}</Title>\n{elements}{keys}"
     "</YealinkIPPhoneDirectory>\n",
     kPerson, false, "Yealink"},
    {"YealinkIPPhoneDirectory",
     "<YealinkIPPhoneDirectory>\n<Title>{title}</Title>\n{elements}{keys}"
     "</YealinkIPPhoneDirectory>\n",
     kPerson, false, "Yealink"},
}};

inline std::string UpToNul(const std::string& text) { return text.substr(0, text.find('\0')); }

using Values = std::map<std::string, std::string, std::less<>>;

inline std::string Expanded(std::string_view text, const Values& values) {
  std::string out;
  while (!text.empty()) {
    const auto open = std::min(text.find('{'), text.size());
    out += text.substr(0, open);
    text.remove_prefix(open);
    if (text.empty()) break;
    const auto close = text.find('}');
    const auto value = values.find(text.substr(1, close - 1));
    if (value != values.end()) out += value->second;
    text.remove_prefix(close + 1);
  }
  return out;
}

class Model {
 public:
  Model(const ModelClass& documentClass, const std::string& title, int maxItems)
      : kind(documentClass), limit(maxItems) {
    Set("title", UpToNul(title));
    Set("index", "0");
  }

  void Set(const std::string& name, const std::string& value) { values[name] = value; }

  bool Append(const std::string& first, const std::string& second) {
    const bool isFull = kind.enforcesLimit && static_cast<long>(pairs.size()) >= limit;
    if (isFull || first.empty() || second.empty()) return false;
    pairs.emplace_back(first, second);
    return true;
  }

  void Sort() {
    std::stable_sort(pairs.begin(), pairs.end(), [](const auto& a, const auto& b) {
      return std::basic_string<unsigned char>(a.first.begin(), a.first.end()) <
             std::basic_string<unsigned char>(b.first.begin(), b.first.end());
    });
  }

  bool AddAastraKey(int index, const std::string& label, const std::string& uri) {
    if (index < 1 || index > 6) return false;
    keys += Expanded(
        "<SoftKey index = \"{index}\">\n<Label>{label}</Label>\n<URI>{uri}</URI>\n</SoftKey>\n",
        {{"index", std::to_string(index)}, {"label", label}, {"uri", uri}});
    return true;
  }

  void AddKeyItem(const std::string& name, const std::string& url) {
    keys += Expanded("<SoftKeyItem>\n<Name>{name}</Name>\n<URL>{url}</URL>\n</SoftKeyItem>\n",
                     {{"name", name}, {"url", url}});
  }

  std::string Text() const {
    Values all = values;
    for (const auto& [first, second] : pairs) {
      all["elements"] += Expanded(kind.element, {{"first", first}, {"second", second}});
    }
    all["keys"] = keys;
    return Expanded(kind.document, all);
  }

  const ModelClass& kind;

 private:
  int limit;
  Values values;
  std::vector<std::pair<std::string, std::string>> pairs;
  std::string keys;
};

// The names of the soft-key commands, by their values; anything else is what `fallback` says.
inline std::string KeyName(std::string_view maker, int command) {
  static const std::vector<std::string> kAastra = {"Select",    "Exit",      "Dial", "Submit",
                                                   "BackSpace", "NextSpace", "Dot",  "ChangeMode"};
  static const std::vector<std::string> kPlain = {
      "CANCEL",   "ENTER",      "ONHOOK", "RIGHT",  "LEFT", "REDIAL", "SPEAKER",
      "TRANSFER", "CONFERENCE", "HELP",   "F_MUTE", "F_UP", "F_DOWN", "REC"};
  static const std::vector<std::string> kBrowser = {
      "SELECT", "EXIT", "UPDATE", "SEARCH", "CANCEL", "BACK", "DIAL", "EDIT_DIAL", "EDIT_NEXT"};
  if (maker == "Aastra") {
    return "SoftKey:" +
           kAastra[static_cast<std::size_t>(command >= 1 && command <= 7 ? command : 0)];
  }
  if (command < 0 || command > 36) return "";
  if (command <= 13) return kPlain[static_cast<std::size_t>(command)];
  if (command == 14) return maker == "Snom" ? "SNOM" : "Yealink";
  if (command == 15) return "DND";
  if (command <= 24) return "F_MINIBROWSER_" + kBrowser[static_cast<std::size_t>(command - 16)];
  if (command == 25) return "0";
  if (command <= 34) return std::to_string(35 - command);
  return command == 35 ? "#" : "*";
}
