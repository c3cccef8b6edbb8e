#include "documents.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <type_traits>

namespace {

using Given = ConstructorArguments;

// Passes these arguments to the constructor.
template <typename Document, auto... argument>
std::unique_ptr<IPPhoneXML> Make(const Given& given) {
  static_assert(!(std::is_copy_constructible_v<Document> || std::is_copy_assignable_v<Document> ||
                  std::is_move_constructible_v<Document> || std::is_move_assignable_v<Document>),
                "a document can't be copied or moved");
  return std::make_unique<Document>(std::invoke(argument, given)...);
}
template <typename Document>
constexpr auto MakeList = Make<Document, &Given::CTitle, &Given::maxItems>;

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
constexpr const char* kDirectory = R"(<{maker}IPPhoneDirectory>
<Title>{title}</Title>
{elements}{keys}</{maker}IPPhoneDirectory>
)";

}  // namespace

const std::vector<DocumentClass> kDocumentClasses = {
    {"AastraIPPhoneTextScreen", Make<AastraIPPhoneTextScreen, &Given::title>,
     R"(<AastraIPPhoneTextScreen{destroyOnExit}{beep}>
<Title>{title}</Title>
<Text>{textToNul}</Text>
{keys}</AastraIPPhoneTextScreen>
)"},
    {"AastraIPPhoneMenu", Make<AastraIPPhoneMenu, &Given::title, &Given::maxItems>,
     R"(<AastraIPPhoneTextMenu{destroyOnExit}{beep}>
<Title>{title}</Title>
{elements}{keys}</AastraIPPhoneTextMenu>
)",
     kMenuItem, true},
    {"AastraIPPhoneDirectory", MakeList<AastraIPPhoneDirectory>,
     R"(<AastraIPPhoneDirectory{previous}{next}{destroyOnExit}{beep}>
<Title>{title}</Title>
{elements}{keys}</AastraIPPhoneDirectory>
)",
     kMenuItem, true},
    {"AastraIPPhoneInput",
     Make<AastraIPPhoneInput, &Given::title, &Given::type, &Given::isPassword>,
     R"(<AastraIPPhoneInputScreen type = "{type}"{password}{destroyOnExit}{beep}>
<Title>{title}</Title>
<Prompt>{prompt}</Prompt>
<URL>{url}</URL>
<Parameter>{parameter}</Parameter>
<Default>{default}</Default>
{keys}</AastraIPPhoneInputScreen>
)"},
    {"AastraIPPhoneExecute", Make<AastraIPPhoneExecute, &Given::title>,
     R"(<AastraIPPhoneExecute{destroyOnExit}{beep}>
<ExecuteItem URI="{title}"/>
{keys}</AastraIPPhoneExecute>
)"},
    {"AastraIPPhoneStatus", Make<AastraIPPhoneStatus>, R"(<AastraIPPhoneStatus{beep}>
<Session>{session}</Session>
<Message index="{index}"{alert}{timeout}>
{message}</Message>
{keys}</AastraIPPhoneStatus>
)"},
    {"CiscoIPPhoneDirectory", MakeList<CiscoIPPhoneDirectory>,
     R"(<CiscoIPPhoneDirectory{previous}{next}>
<Title>{title}</Title>
{elements}</CiscoIPPhoneDirectory>
)",
     kDirectoryEntry, true},
    {"PolycomIPPhoneTextScreen", Make<PolycomIPPhoneTextScreen, &Given::title>, R"(<html>
<Title>{title}</Title>
<body>
<p>{text}</p>
</body>
</html>
)"},
    {"SnomIPPhoneTextScreen", Make<SnomIPPhoneTextScreen, &Given::title>, R"(<SnomIPPhoneText>
<Title>{title}</Title>
<Text>{text}</Text>
{keys}</SnomIPPhoneText>
)"},
    {"SnomIPPhoneMenu", MakeList<SnomIPPhoneMenu>, kDirectory, kDirectoryEntry},
    {"SnomIPPhoneDirectory", MakeList<SnomIPPhoneDirectory>, kDirectory, kDirectoryEntry},
    {"SnomIPPhoneInput", Make<SnomIPPhoneInput, &Given::title, &Given::type>, R"(<SnomIPPhoneInput>
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
)"},
    {"YealinkIPPhoneTextScreen", Make<YealinkIPPhoneTextScreen, &Given::title>,
     R"(<YealinkIPPhoneText>
<Title>{title}</Title>
<Text>{text}</Text>
</YealinkIPPhoneText>
)"},
    {"YealinkIPPhoneMenu", MakeList<YealinkIPPhoneMenu>, kDirectory, kDirectoryEntry},
    {"YealinkIPPhoneDirectory", MakeList<YealinkIPPhoneDirectory>, kDirectory, kDirectoryEntry},
};

namespace {

// The texts that soft key commands write, in the order of the enumerators.
constexpr const char* kAastraURIs =
    "SoftKey:Select SoftKey:Exit SoftKey:Dial SoftKey:Submit SoftKey:BackSpace SoftKey:NextSpace "
    "SoftKey:Dot SoftKey:ChangeMode";
constexpr const char* kKeyNames =
    "CANCEL ENTER ONHOOK RIGHT LEFT REDIAL SPEAKER TRANSFER CONFERENCE HELP F_MUTE F_UP F_DOWN REC "
    "{maker} DND F_MINIBROWSER_SELECT F_MINIBROWSER_EXIT F_MINIBROWSER_UPDATE F_MINIBROWSER_SEARCH "
    "F_MINIBROWSER_CANCEL F_MINIBROWSER_BACK F_MINIBROWSER_DIAL F_MINIBROWSER_EDIT_DIAL "
    "F_MINIBROWSER_EDIT_NEXT 0 9 8 7 6 5 4 3 2 1 # *";

// The word at this index, or `fallback` if there is none.
std::string WordAt(int index, const std::string& words, const std::string& fallback) {
  std::istringstream stream(words);
  std::string word;
  for (int i = 0; stream >> word; ++i) {
    if (i == index) return word;
  }
  return fallback;
}

std::string UpToNul(const std::string& text) { return text.substr(0, text.find('\0')); }

std::string Attribute(const std::string& name, const std::string& value) {
  return value.empty() ? "" : " " + name + "=\"" + value + "\"";
}

}  // namespace

std::string FillTemplate(const std::string& text,
                         const std::map<std::string, std::string>& fields) {
  std::string result;
  std::size_t begin = 0;
  for (std::size_t open; (open = text.find('{', begin)) != text.npos;) {
    const std::size_t close = text.find('}', open);
    const auto field = fields.find(text.substr(open + 1, close - open - 1));
    result += text.substr(begin, open - begin) + (field == fields.end() ? "" : field->second);
    begin = close + 1;
  }
  return result + text.substr(begin);
}

// The reference model of a document: it has the operations of all documents and the expected
// fields.
class Model {
 public:
  Model(const DocumentClass& theClass, const ConstructorArguments& arguments)
      : documentClass(theClass),
        maxItems(arguments.maxItems),
        fields({{"maker", std::string(theClass.name, std::strstr(theClass.name, "IPPhone"))},
                {"title", UpToNul(arguments.title)},
                {"type", arguments.type},
                {"password", arguments.isPassword ? " password = \"yes\"" : ""},
                {"index", "0"}}) {}

  std::string Render() const {
    auto values = fields;
    for (const auto& [first, second] : elements) {
      values["elements"] +=
          FillTemplate(documentClass.elementTemplate, {{"first", first}, {"second", second}});
    }
    return FillTemplate(documentClass.documentTemplate, values);
  }
  void SetAttributes(unsigned long flags) {
    fields["destroyOnExit"] = flags % 2 == 1 ? " destroyOnExit = \"yes\"" : "";
    fields["beep"] = flags / 16 % 2 == 1 ? " Beep = \"yes\"" : "";
  }
  void SetText(const std::string& text) {
    fields["text"] = text;
    fields["textToNul"] = UpToNul(text);
  }
  bool AppendItem(const std::string& first, const std::string& second) {
    if (first.empty() || second.empty()) return false;
    if (documentClass.enforcesLimit && static_cast<int>(elements.size()) >= maxItems) return false;
    elements.emplace_back(first, second);
    return true;
  }
  bool AppendEntry(const std::string& name, const std::string& telephone) {
    return AppendItem(name, telephone);
  }
  void SetPreviousURI(const std::string& uri) { fields["previous"] = Attribute("previous", uri); }
  void SetNextURI(const std::string& uri) { fields["next"] = Attribute("next", uri); }
  void SortDirectoryItems() {
    std::stable_sort(elements.begin(), elements.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
  }
  bool SetParams(const std::string& prompt, const std::string& url, const std::string& parameter,
                 const std::string& defaultValue) {
    if (prompt.empty() || url.empty() || parameter.empty()) return false;
    fields["prompt"] = prompt;
    fields["url"] = url;
    fields["parameter"] = parameter;
    fields["default"] = defaultValue;
    return true;
  }
  void SetMessage(const std::string& session, const std::string& message, int index, int type,
                  int timeout) {
    fields["session"] = session;
    fields["message"] = message;
    fields["index"] = std::to_string(index);
    fields["alert"] = type == 1 ? Attribute("type", "alert") : "";
    fields["timeout"] =
        type == 1 && timeout > 0 ? Attribute("Timeout", std::to_string(timeout)) : "";
  }
  bool AddSoftKey(int index, const char* label, const char* uri) {
    if (index < 1 || index > 6) return false;
    fields["keys"] += "<SoftKey index = \"" + std::to_string(index) + "\">\n<Label>" +
                      OrEmpty(label) + "</Label>\n<URI>" + OrEmpty(uri) + "</URI>\n</SoftKey>\n";
    return true;
  }
  bool AddSoftKey(int index, const char* label, AastraSoftKeyCommands command) {
    return AddSoftKey(index, label, WordAt(command, kAastraURIs, "SoftKey:Select").c_str());
  }
  bool AddSoftKey(SnomSoftKeyCommands command, const char* url) {
    return AddKeyItem(command, "SNOM", url);
  }
  bool AddSoftKey(YealinkSoftKeyCommands command, const char* url) {
    return AddKeyItem(command, "Yealink", url);
  }

 private:
  static std::string OrEmpty(const char* text) { return text == nullptr ? "" : text; }

  bool AddKeyItem(int command, const std::string& maker, const char* url) {
    fields["keys"] += "<SoftKeyItem>\n<Name>" +
                      FillTemplate(WordAt(command, kKeyNames, ""), {{"maker", maker}}) +
                      "</Name>\n<URL>" + OrEmpty(url) + "</URL>\n</SoftKeyItem>\n";
    return true;
  }

  const DocumentClass& documentClass;
  int maxItems;
  std::map<std::string, std::string> fields;
  std::vector<std::pair<std::string, std::string>> elements;
};

Arguments RandomArguments(const RandomBelow& randomBelow) {
  const auto number = [&] {
    constexpr std::array kEdges = {std::numeric_limits<int>::min(), -1, 0, 1, 9, 10, 12345,
                                   std::numeric_limits<int>::max()};
    return kEdges[randomBelow(kEdges.size())];
  };
  Arguments arguments;
  for (auto& text : arguments.texts) {
    constexpr unsigned kMaxSize = 40;  // the library copies texts above 32 bytes by memcpy
    const std::string letters("a\0<&\"\xFF ", 7);
    for (unsigned i = randomBelow(5) == 0 ? 0 : randomBelow(kMaxSize); i-- > 0;) {
      text += letters[randomBelow(static_cast<unsigned>(letters.size()))];
    }
  }
  arguments.command = static_cast<int>(randomBelow(41)) - 2;
  arguments.index = randomBelow(4) == 0 ? number() : static_cast<int>(randomBelow(9)) - 1;
  arguments.timeout = number();
  arguments.type = static_cast<int>(randomBelow(4)) - 1;
  arguments.flags = randomBelow(2) == 0 ? randomBelow(0x40) : ~0UL << randomBelow(6);
  arguments.isNull = randomBelow(2) == 0;
  return arguments;
}

namespace {

class OperationList {
 public:
  explicit OperationList(const IPPhoneXML& theDocument) : document(theDocument) {}

  // Adds an operation if the document is a `Kind`. `apply` takes a `Kind` or the model.
  template <typename Kind, typename Apply>
  void Add(const char* name, const Apply& apply) {
    if (dynamic_cast<const Kind*>(&document) == nullptr) return;
    operations.push_back(
        {name, [apply](IPPhoneXML& target) { return Result(apply, dynamic_cast<Kind&>(target)); },
         [apply](Model& model) { return Result(apply, model); }});
  }

  std::vector<Operation> operations;

 private:
  template <typename Call, typename Target>
  static bool Result(const Call& call, Target& target) {
    if constexpr (std::is_void_v<decltype(call(target))>) {
      call(target);
      return true;
    } else {
      return call(target);
    }
  }

  const IPPhoneXML& document;
};

}  // namespace

std::vector<Operation> OperationsOn(IPPhoneXML& document, const Arguments& arguments) {
  const std::string first = arguments.texts[0], second = arguments.texts[1],
                    third = arguments.texts[2], fourth = arguments.texts[3];
  const auto toCString = [isNull = arguments.isNull](const std::string& text) {
    return isNull && text.empty() ? nullptr : text.c_str();
  };
  const auto setPrevious = [=](auto& target) { target.SetPreviousURI(first); };
  const auto setNext = [=](auto& target) { target.SetNextURI(first); };
  OperationList list(document);
  list.Add<IPPhoneXML>("SetAttributes",
                       [=](auto& target) { target.SetAttributes(arguments.flags); });
  list.Add<IPPhoneTextScreenXML>("SetText", [=](auto& target) { target.SetText(first); });
  list.Add<IPPhoneMenuXML>("AppendItem",
                           [=](auto& target) { return target.AppendItem(first, second); });
  list.Add<IPPhoneMenuXML>("SetPreviousURI", setPrevious);
  list.Add<IPPhoneMenuXML>("SetNextURI", setNext);
  list.Add<IPPhoneDirectoryXML>("AppendEntry",
                                [=](auto& target) { return target.AppendEntry(first, second); });
  list.Add<IPPhoneDirectoryXML>("SetPreviousURI", setPrevious);
  list.Add<IPPhoneDirectoryXML>("SetNextURI", setNext);
  list.Add<IPPhoneDirectoryXML>("SortDirectoryItems",
                                [](auto& target) { target.SortDirectoryItems(); });
  list.Add<IPPhoneInputXML>(
      "SetParams", [=](auto& target) { return target.SetParams(first, second, third, fourth); });
  list.Add<IPPhoneStatusXML>("SetMessage", [=](auto& target) {
    const auto type = static_cast<IPPhoneStatusXML::MsgType>(arguments.type);
    target.SetMessage(first, second, arguments.index, type, arguments.timeout);
  });
  list.Add<AastraIPPhone>("AddSoftKey with a command", [=](auto& target) {
    return target.AddSoftKey(arguments.index, toCString(first),
                             static_cast<AastraSoftKeyCommands>(arguments.command));
  });
  list.Add<AastraIPPhone>("AddSoftKey with a URI", [=](auto& target) {
    return target.AddSoftKey(arguments.index, toCString(first), toCString(second));
  });
  list.Add<SnomIPPhone>("AddSoftKey", [=](auto& target) {
    return target.AddSoftKey(static_cast<SnomSoftKeyCommands>(arguments.command), toCString(first));
  });
  list.Add<YealinkIPPhone>("AddSoftKey", [=](auto& target) {
    return target.AddSoftKey(static_cast<YealinkSoftKeyCommands>(arguments.command),
                             toCString(first));
  });
  return list.operations;
}

void ApplyAll(IPPhoneXML& document, const Arguments& arguments) {
  for (const auto& operation : OperationsOn(document, arguments)) operation.apply(document);
}

void CompareWithModel(const DocumentClass& documentClass, const RandomBelow& randomBelow) {
  const auto random = RandomArguments(randomBelow);
  const ConstructorArguments arguments{random.texts[0], static_cast<int>(randomBelow(8)) - 1,
                                       random.texts[1], random.isNull};
  const auto document = documentClass.make(arguments);
  Model model(documentClass, arguments);
  const auto expect = [&](bool condition, const std::string& action, const std::string& actual,
                          const std::string& expected) {
    if (condition) return;
    throw std::logic_error(std::string(documentClass.name) + ": " + action +
                           " returned or wrote\n" + actual + "\nexpected:\n" + expected);
  };
  const auto compare = [&](const std::string& action) {
    const std::string out = RenderToString(*document);
    expect(out == model.Render(), action, out, model.Render());
  };

  const std::string text = documentClass.documentTemplate;
  const bool hasTitle = text.find("{title}") != text.npos;
  expect(document->GetTitle() == (hasTitle ? UpToNul(arguments.title) : ""), "GetTitle",
         document->GetTitle(), arguments.title);
  const std::string type = text.rfind("<html>", 0) == 0 ? "text/html" : "text/xml";
  expect(document->GetContentType() == type, "GetContentType", document->GetContentType(), type);
  compare("construction");
  for (unsigned i = randomBelow(30); i-- > 0;) {
    const auto operations = OperationsOn(*document, RandomArguments(randomBelow));
    const auto& operation = operations[randomBelow(static_cast<unsigned>(operations.size()))];
    const bool result = operation.apply(*document);
    expect(result == operation.expect(model), operation.name, result ? "true" : "false",
           result ? "false" : "true");
    compare(operation.name);
  }
  std::string out = "kept";
  document->Render(out);
  document->Render(out);
  expect(out == "kept" + model.Render() + model.Render(), "rendering twice", out, model.Render());
}

std::string RenderToString(IPPhoneXML& document) {
  std::string out;
  document.Render(out);
  return out;
}
