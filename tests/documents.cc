#include "documents.h"

#include <algorithm>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <type_traits>

namespace {

template <typename Document, typename... Parameter>
std::unique_ptr<IPPhoneXML> Make(const Parameter&... parameter) {
  static_assert(!(std::is_copy_constructible_v<Document> || std::is_copy_assignable_v<Document> ||
                  std::is_move_constructible_v<Document> || std::is_move_assignable_v<Document>),
                "a document can't be copied or moved");
  return std::make_unique<Document>(parameter...);
}

template <typename Document>
std::unique_ptr<IPPhoneXML> MakeScreen(const Construction& with) {
  return Make<Document>(with.title);
}

// Of a list whose title is a C string, for which null is the empty one.
template <typename Document>
std::unique_ptr<IPPhoneXML> MakeList(const Construction& with) {
  return Make<Document>(with.title.empty() ? nullptr : with.title.c_str(), with.maxItems);
}

constexpr const char* kMenuItem = R"(<MenuItem>
<Prompt>{first}</Prompt>
<URI>{second}</URI>
</MenuItem>
)";
constexpr const char* kDirectoryEntry = R"(<DirectoryEntry>
<Name>{first}</Name>
<Telephone>{second}</Telephone>
</DirectoryEntry>
)";
constexpr const char* kSnomDirectory = R"(<SnomIPPhoneDirectory>
<Title>{title}</Title>
{elements}{keys}</SnomIPPhoneDirectory>
)";
constexpr const char* kYealinkDirectory = R"(<YealinkIPPhoneDirectory>
<Title>{title}</Title>
{elements}{keys}</YealinkIPPhoneDirectory>
)";

}  // namespace

const std::vector<DocumentClass> kDocumentClasses = {
    {"AastraIPPhoneTextScreen",
     R"(<AastraIPPhoneTextScreen{destroyOnExit}{beep}>
<Title>{title}</Title>
<Text>{textToNul}</Text>
{keys}</AastraIPPhoneTextScreen>
)",
     "", false, MakeScreen<AastraIPPhoneTextScreen>},
    {"AastraIPPhoneMenu",
     R"(<AastraIPPhoneTextMenu{destroyOnExit}{beep}>
<Title>{title}</Title>
{elements}{keys}</AastraIPPhoneTextMenu>
)",
     kMenuItem, true,
     [](const Construction& with) { return Make<AastraIPPhoneMenu>(with.title, with.maxItems); }},
    {"AastraIPPhoneDirectory",
     R"(<AastraIPPhoneDirectory{previous}{next}{destroyOnExit}{beep}>
<Title>{title}</Title>
{elements}{keys}</AastraIPPhoneDirectory>
)",
     kMenuItem, true, MakeList<AastraIPPhoneDirectory>},
    {"AastraIPPhoneInput",
     R"(<AastraIPPhoneInputScreen type = "{type}"{password}{destroyOnExit}{beep}>
<Title>{title}</Title>
<Prompt>{prompt}</Prompt>
<URL>{url}</URL>
<Parameter>{parameter}</Parameter>
<Default>{default}</Default>
{keys}</AastraIPPhoneInputScreen>
)",
     "", false,
     [](const Construction& with) {
       return Make<AastraIPPhoneInput>(with.title, with.type, with.isPassword);
     }},
    {"AastraIPPhoneExecute",
     R"(<AastraIPPhoneExecute{destroyOnExit}{beep}>
<ExecuteItem URI="{title}"/>
{keys}</AastraIPPhoneExecute>
)",
     "", false, MakeScreen<AastraIPPhoneExecute>},
    {"AastraIPPhoneStatus",
     R"(<AastraIPPhoneStatus{beep}>
<Session>{session}</Session>
<Message index="{index}"{alert}{timeout}>
{message}</Message>
{keys}</AastraIPPhoneStatus>
)",
     "", false, [](const Construction&) { return Make<AastraIPPhoneStatus>(); }},
    {"CiscoIPPhoneDirectory",
     R"(<CiscoIPPhoneDirectory{previous}{next}>
<Title>{title}</Title>
{elements}</CiscoIPPhoneDirectory>
)",
     kDirectoryEntry, true, MakeList<CiscoIPPhoneDirectory>},
    {"PolycomIPPhoneTextScreen",
     R"(<html>
<Title>{title}</Title>
<body>
<p>{text}</p>
</body>
</html>
)",
     "", false, MakeScreen<PolycomIPPhoneTextScreen>},
    {"SnomIPPhoneTextScreen",
     R"(<SnomIPPhoneText>
<Title>{title}</Title>
<Text>{text}</Text>
{keys}</SnomIPPhoneText>
)",
     "", false, MakeScreen<SnomIPPhoneTextScreen>},
    {"SnomIPPhoneMenu", kSnomDirectory, kDirectoryEntry, false, MakeList<SnomIPPhoneMenu>},
    {"SnomIPPhoneDirectory", kSnomDirectory, kDirectoryEntry, false,
     MakeList<SnomIPPhoneDirectory>},
    {"SnomIPPhoneInput",
     R"(<SnomIPPhoneInput>
<Title>{title}</Title>
<Prompt>{prompt}</Prompt>
<URL>{url}</URL>
<InputItem>
<DisplayName>{prompt}</DisplayName>
<QueryStringParam>{parameter}</QueryStringParam>
<DefaultValue>{default}</DefaultValue>
<InputFlags>{type}</InputFlags>
</InputItem>
{keys}</SnomIPPhoneInput>
)",
     "", false,
     [](const Construction& with) { return Make<SnomIPPhoneInput>(with.title, with.type); }},
    {"YealinkIPPhoneTextScreen",
     R"(<YealinkIPPhoneText>
<Title>{title}</Title>
<Text>{text}</Text>
</YealinkIPPhoneText>
)",
     "", false, MakeScreen<YealinkIPPhoneTextScreen>},
    {"YealinkIPPhoneMenu", kYealinkDirectory, kDirectoryEntry, false, MakeList<YealinkIPPhoneMenu>},
    {"YealinkIPPhoneDirectory", kYealinkDirectory, kDirectoryEntry, false,
     MakeList<YealinkIPPhoneDirectory>},
};

namespace {

// What the commands of a maker's soft keys stand for, in the order of their values.
constexpr const char* kAastraActions =
    "SoftKey:Select SoftKey:Exit SoftKey:Dial SoftKey:Submit SoftKey:BackSpace SoftKey:NextSpace "
    "SoftKey:Dot SoftKey:ChangeMode";
constexpr const char* kKeyNames =
    "CANCEL ENTER ONHOOK RIGHT LEFT REDIAL SPEAKER TRANSFER CONFERENCE HELP F_MUTE F_UP F_DOWN REC "
    "{own} DND F_MINIBROWSER_SELECT F_MINIBROWSER_EXIT F_MINIBROWSER_UPDATE F_MINIBROWSER_SEARCH "
    "F_MINIBROWSER_CANCEL F_MINIBROWSER_BACK F_MINIBROWSER_DIAL F_MINIBROWSER_EDIT_DIAL "
    "F_MINIBROWSER_EDIT_NEXT 0 9 8 7 6 5 4 3 2 1 # *";

// The word at this place, or else `otherwise`.
std::string WordAt(int place, const std::string& words, const std::string& otherwise) {
  std::istringstream stream(words);
  std::string word;
  for (int i = 0; stream >> word; ++i) {
    if (i == place) return word;
  }
  return otherwise;
}

std::string UpToNul(const std::string& text) { return text.substr(0, text.find('\0')); }

std::string Attribute(const std::string& name, const std::string& value) {
  return value.empty() ? "" : " " + name + "=\"" + value + "\"";
}

}  // namespace

std::string Filled(const std::string& text, const std::map<std::string, std::string>& fields) {
  std::string filled;
  std::size_t begin = 0;
  for (std::size_t open; (open = text.find('{', begin)) != text.npos;) {
    const std::size_t close = text.find('}', open);
    const auto field = fields.find(text.substr(open + 1, close - open - 1));
    filled += text.substr(begin, open - begin) + (field == fields.end() ? "" : field->second);
    begin = close + 1;
  }
  return filled + text.substr(begin);
}

Model::Model(const DocumentClass& theRow, const Construction& with)
    : row(&theRow),
      maxItems(with.maxItems),
      fields({{"title", UpToNul(with.title)},
              {"type", with.type},
              {"password", with.isPassword ? " password = \"yes\"" : ""},
              {"index", "0"}}) {}

std::string Model::Text() const {
  auto all = fields;
  for (const auto& [first, second] : elements) {
    all["elements"] += Filled(row->element, {{"first", first}, {"second", second}});
  }
  return Filled(row->text, all);
}

bool Model::Append(const std::string& first, const std::string& second) {
  if (first.empty() || second.empty()) return false;
  if (row->enforcesLimit && static_cast<int>(elements.size()) >= maxItems) return false;
  elements.emplace_back(first, second);
  return true;
}

void Model::Sort() {
  std::stable_sort(elements.begin(), elements.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
}

bool Model::AddAastraKey(int index, const std::string& label, const std::string& uri) {
  if (index < 1 || index > 6) return false;
  fields["keys"] += "<SoftKey index = \"" + std::to_string(index) + "\">\n<Label>" +
                    UpToNul(label) + "</Label>\n<URI>" + UpToNul(uri) + "</URI>\n</SoftKey>\n";
  return true;
}

bool Model::AddKeyItem(const std::string& name, const std::string& url) {
  fields["keys"] +=
      "<SoftKeyItem>\n<Name>" + name + "</Name>\n<URL>" + UpToNul(url) + "</URL>\n</SoftKeyItem>\n";
  return true;
}

Arguments ChooseArguments(const Choose& choose) {
  const auto number = [&] {
    constexpr std::array kEdges = {std::numeric_limits<int>::min(), -1, 0, 1, 9, 10, 12345,
                                   std::numeric_limits<int>::max()};
    return kEdges[choose(kEdges.size())];
  };
  Arguments chosen;
  for (auto& text : chosen.texts) {
    constexpr unsigned kLongest = 40;  // from 33 bytes on texts are copied otherwise
    const std::string letters("a\0<&\"\xFF ", 7);
    for (unsigned i = choose(5) == 0 ? 0 : choose(kLongest); i-- > 0;) {
      text += letters[choose(static_cast<unsigned>(letters.size()))];
    }
  }
  chosen.command = static_cast<int>(choose(41)) - 2;
  chosen.index = choose(4) == 0 ? number() : static_cast<int>(choose(9)) - 1;
  chosen.timeout = number();
  chosen.type = static_cast<int>(choose(4)) - 1;
  chosen.flags = choose(2) == 0 ? choose(0x40) : ~0UL << choose(6);
  chosen.isNull = choose(2) == 0;
  return chosen;
}

namespace {

class OperationList {
 public:
  explicit OperationList(const IPPhoneXML& theDocument) : document(theDocument) {}

  // Adds an operation if the document is of this kind.
  template <typename Kind, typename Apply, typename Expect>
  void Add(const char* name, Apply apply, Expect expect) {
    if (dynamic_cast<const Kind*>(&document) == nullptr) return;
    all.push_back({name, [apply](IPPhoneXML& on) { return Result(apply, dynamic_cast<Kind&>(on)); },
                   [expect](Model& on) { return Result(expect, on); }});
  }

  // What menus and directories have in common.
  template <typename List, typename Append>
  void AddList(const std::string& first, const std::string& second, Append append) {
    Add<List>(
        "append", [=](auto& on) { return append(on, first, second); },
        [=](Model& on) { return on.Append(first, second); });
    Add<List>(
        "SetPreviousURI", [=](auto& on) { on.SetPreviousURI(first); },
        [=](Model& on) { on.Set("previous", Attribute("previous", first)); });
    Add<List>(
        "SetNextURI", [=](auto& on) { on.SetNextURI(first); },
        [=](Model& on) { on.Set("next", Attribute("next", first)); });
  }

  std::vector<Operation> all;

 private:
  template <typename Call, typename On>
  static bool Result(const Call& call, On& on) {
    if constexpr (std::is_void_v<decltype(call(on))>) {
      call(on);
      return true;
    } else {
      return call(on);
    }
  }

  const IPPhoneXML& document;
};

}  // namespace

std::vector<Operation> OperationsOn(IPPhoneXML& document, const Arguments& a) {
  const std::string first = a.texts[0], second = a.texts[1], third = a.texts[2],
                    fourth = a.texts[3];
  const auto asC = [isNull = a.isNull](const std::string& text) {
    return isNull && text.empty() ? nullptr : text.c_str();
  };
  OperationList list(document);
  list.Add<IPPhoneXML>(
      "SetAttributes", [=](auto& on) { on.SetAttributes(a.flags); },
      [=](Model& on) {
        on.Set("destroyOnExit", a.flags % 2 == 1 ? " destroyOnExit = \"yes\"" : "");
        on.Set("beep", a.flags / 16 % 2 == 1 ? " Beep = \"yes\"" : "");
      });
  list.Add<IPPhoneTextScreenXML>(
      "SetText", [=](auto& on) { on.SetText(first); },
      [=](Model& on) {
        on.Set("text", first);
        on.Set("textToNul", UpToNul(first));
      });
  list.AddList<IPPhoneMenuXML>(
      first, second, [](auto& on, const auto&... text) { return on.AppendItem(text...); });
  list.AddList<IPPhoneDirectoryXML>(
      first, second, [](auto& on, const auto&... text) { return on.AppendEntry(text...); });
  list.Add<IPPhoneDirectoryXML>(
      "SortDirectoryItems", [](auto& on) { on.SortDirectoryItems(); },
      [](Model& on) { on.Sort(); });
  list.Add<IPPhoneInputXML>(
      "SetParams", [=](auto& on) { return on.SetParams(first, second, third, fourth); },
      [=](Model& on) {
        if (first.empty() || second.empty() || third.empty()) return false;
        on.Set("prompt", first);
        on.Set("url", second);
        on.Set("parameter", third);
        on.Set("default", fourth);
        return true;
      });
  list.Add<IPPhoneStatusXML>(
      "SetMessage",
      [=](auto& on) {
        const auto type = static_cast<IPPhoneStatusXML::MsgType>(a.type);
        on.SetMessage(first, second, a.index, type, a.timeout);
      },
      [=](Model& on) {
        const bool isAlert = a.type == 1;
        on.Set("session", first);
        on.Set("message", second);
        on.Set("index", std::to_string(a.index));
        on.Set("alert", isAlert ? Attribute("type", "alert") : "");
        on.Set("timeout",
               isAlert && a.timeout > 0 ? Attribute("Timeout", std::to_string(a.timeout)) : "");
      });
  list.Add<AastraIPPhone>(
      "AddSoftKey of a command",
      [=](auto& on) {
        return on.AddSoftKey(a.index, asC(first), static_cast<AastraSoftKeyCommands>(a.command));
      },
      [=](Model& on) {
        return on.AddAastraKey(a.index, first, WordAt(a.command, kAastraActions, "SoftKey:Select"));
      });
  list.Add<AastraIPPhone>(
      "AddSoftKey of a URI",
      [=](auto& on) { return on.AddSoftKey(a.index, asC(first), asC(second)); },
      [=](Model& on) { return on.AddAastraKey(a.index, first, second); });
  list.Add<SnomIPPhone>(
      "AddSoftKey",
      [=](auto& on) {
        return on.AddSoftKey(static_cast<SnomSoftKeyCommands>(a.command), asC(first));
      },
      [=](Model& on) {
        return on.AddKeyItem(Filled(WordAt(a.command, kKeyNames, ""), {{"own", "SNOM"}}), first);
      });
  list.Add<YealinkIPPhone>(
      "AddSoftKey",
      [=](auto& on) {
        return on.AddSoftKey(static_cast<YealinkSoftKeyCommands>(a.command), asC(first));
      },
      [=](Model& on) {
        return on.AddKeyItem(Filled(WordAt(a.command, kKeyNames, ""), {{"own", "Yealink"}}), first);
      });
  return list.all;
}

void FillWith(IPPhoneXML& document, const Arguments& arguments) {
  for (const auto& operation : OperationsOn(document, arguments)) operation.apply(document);
}

void CompareWithModel(const DocumentClass& row, const Choose& choose) {
  const auto arguments = ChooseArguments(choose);
  const Construction with{arguments.texts[0], static_cast<int>(choose(8)) - 1, arguments.texts[1],
                          arguments.isNull};
  const auto document = row.make(with);
  Model model(row, with);
  const auto expect = [&](bool holds, const std::string& what, const std::string& found,
                          const std::string& expected) {
    if (holds) return;
    throw std::logic_error(std::string(row.name) + ": " + what + " gives\n" + found +
                           "\ninstead of\n" + expected);
  };
  const auto compare = [&](const std::string& what) {
    const std::string out = Rendered(*document);
    expect(out == model.Text(), what, out, model.Text());
  };

  const std::string text = row.text;
  const bool hasTitle = text.find("{title}") != text.npos;
  expect(document->GetTitle() == (hasTitle ? UpToNul(with.title) : ""), "GetTitle",
         document->GetTitle(), with.title);
  const std::string type = text.rfind("<html>", 0) == 0 ? "text/html" : "text/xml";
  expect(document->GetContentType() == type, "GetContentType", document->GetContentType(), type);
  compare("the constructor");
  for (unsigned i = choose(30); i-- > 0;) {
    const auto operations = OperationsOn(*document, ChooseArguments(choose));
    const auto& operation = operations[choose(static_cast<unsigned>(operations.size()))];
    const bool isDone = operation.apply(*document);
    expect(isDone == operation.expect(model), operation.name, isDone ? "true" : "false", "another");
    compare(operation.name);
  }
  std::string out = "kept";
  document->Render(out);
  document->Render(out);
  expect(out == "kept" + model.Text() + model.Text(), "rendering twice", out, model.Text());
}

std::string Rendered(IPPhoneXML& document) {
  std::string out;
  document.Render(out);
  return out;
}
