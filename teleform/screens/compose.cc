#include <teleform/screens/compose.h>
#include <teleform/screens/escape.h>
#include <teleform/teleform.h>

#include <algorithm>
#include <limits>
#include <string_view>

namespace teleform::screens {

namespace {

constexpr std::string_view kLineBreak = "<br/>\n";
constexpr std::string_view kKeptInNumbers = "+*:@";  // the latter two for SIP addresses
constexpr int kAlertIndex = 1;
constexpr int kNoLimit = std::numeric_limits<int>::max();

// An item of a menu or a person of a list.
struct Line {
  std::string_view text;
  std::string_view uri;
  std::string_view telephone{};  // instead of a URI
  std::string_view note{};
};

// A menu or a list, for makers that have one document for both.
struct Lines {
  std::string_view title;
  std::vector<Line> lines;
  const std::vector<SoftKey>& keys;
  std::string_view previous{};
  std::string_view next{};
};

// Each maker's document of a kind, or null if it has none.

std::unique_ptr<IPPhoneTextScreenXML> MakeTextScreen(Maker maker, const std::string& title) {
  switch (maker) {
    case Maker::kAastra:
      return std::make_unique<AastraIPPhoneTextScreen>(title);
    case Maker::kPolycom:
      return std::make_unique<PolycomIPPhoneTextScreen>(title);
    case Maker::kSnom:
      return std::make_unique<SnomIPPhoneTextScreen>(title);
    case Maker::kYealink:
      return std::make_unique<YealinkIPPhoneTextScreen>(title);
    case Maker::kCisco:
      break;
  }
  return nullptr;
}

std::unique_ptr<IPPhoneMenuXML> MakeMenu(Maker maker, const std::string& title) {
  switch (maker) {
    case Maker::kAastra:
      return std::make_unique<AastraIPPhoneMenu>(title, kNoLimit);
    case Maker::kSnom:
      return std::make_unique<SnomIPPhoneMenu>(title.c_str(), kNoLimit);
    case Maker::kYealink:
      return std::make_unique<YealinkIPPhoneMenu>(title.c_str(), kNoLimit);
    case Maker::kCisco:
    case Maker::kPolycom:
      break;
  }
  return nullptr;
}

std::unique_ptr<IPPhoneDirectoryXML> MakeDirectory(Maker maker, const std::string& title) {
  switch (maker) {
    case Maker::kAastra:
      return std::make_unique<AastraIPPhoneDirectory>(title.c_str(), kNoLimit);
    case Maker::kCisco:
      return std::make_unique<CiscoIPPhoneDirectory>(title.c_str(), kNoLimit);
    case Maker::kSnom:
      return std::make_unique<SnomIPPhoneDirectory>(title.c_str(), kNoLimit);
    case Maker::kYealink:
      return std::make_unique<YealinkIPPhoneDirectory>(title.c_str(), kNoLimit);
    case Maker::kPolycom:
      break;
  }
  return nullptr;
}

std::unique_ptr<IPPhoneInputXML> MakeInput(Maker maker, const std::string& title) {
  switch (maker) {
    case Maker::kAastra:
      return std::make_unique<AastraIPPhoneInput>(title, "string", false);
    case Maker::kSnom:
      return std::make_unique<SnomIPPhoneInput>(title, "a");
    case Maker::kCisco:
    case Maker::kPolycom:
    case Maker::kYealink:
      break;
  }
  return nullptr;
}

// For items, entries and the parameters of a form: documents refuse empty ones.
std::string EscapeRequired(std::string_view text) { return text.empty() ? "-" : EscapeXML(text); }

std::string EscapedLabelOf(const SoftKey& key) {
  const std::string_view label = LabelOf(key.role);  // throws for what is no role
  return EscapeXML(key.label.empty() ? label : key.label);
}

std::string JoinEscaped(const std::vector<std::string>& lines, std::string_view separator) {
  std::string joined;
  std::string_view before;
  for (const auto& line : lines) {
    joined += before;
    joined += EscapeXML(line);
    before = separator;
  }
  return joined;
}

void AddKeys(IPPhoneXML& document, const std::vector<SoftKey>& keys) {
  for (const auto& key : keys) AddSoftKey(document, key.role, key.uri, key.label);
}

// The pages before and after, for documents that don't link them by themselves.
std::vector<SoftKey> PageKeys(const Lines& lines) {
  std::vector<SoftKey> keys;
  if (!lines.previous.empty()) {
    keys.push_back({SoftKeyRole::kPrevious, std::string(lines.previous)});
  }
  if (!lines.next.empty()) keys.push_back({SoftKeyRole::kNext, std::string(lines.next)});
  return keys;
}

// A text screen in HTML holds as links what others have as items and soft keys.

bool IsHTML(const IPPhoneXML& document) { return document.GetContentType() == "text/html"; }

std::string MakeLink(std::string_view uri, const std::string& escapedText) {
  return "<a href=\"" + EscapeRequired(uri) + "\">" + escapedText + "</a>";
}

std::string MakeCallURI(std::string_view scheme, std::string_view telephone) {
  return std::string(scheme) + PercentEncode(telephone, kKeptInNumbers);
}

std::string MakeLinks(const std::vector<Line>& lines) {
  std::string html;
  for (const auto& line : lines) {
    const std::string text = EscapeRequired(line.text);
    html += line.telephone.empty() ? MakeLink(line.uri, text)
                                   : MakeLink(MakeCallURI("tel:", line.telephone), text);
    if (!line.note.empty()) html.append(" ").append(EscapeXML(line.note));
    html += kLineBreak;
  }
  return html;
}

std::string MakeLinks(const std::vector<SoftKey>& keys) {
  std::string html;
  for (const auto& key : keys) {
    const std::string label = EscapedLabelOf(key);
    if (key.uri.empty()) continue;
    html += MakeLink(key.uri, label);
    html += kLineBreak;
  }
  return html;
}

// A form can't stand in the paragraph that a text screen makes of its text.
std::string MakeHTMLForm(const Form& form) {
  SoftKey submit{SoftKeyRole::kSubmit};
  for (const auto& key : form.keys) {
    if (key.role == submit.role) submit = key;
  }
  return EscapeXML(form.hint) + "</p>\n<form action=\"" + EscapeRequired(form.uri) +
         "\" method=\"get\"><p><label>" + EscapeRequired(form.prompt) +
         " <input type=\"text\" name=\"" + EscapeRequired(form.parameter) +
         "\"/></label> <input type=\"submit\" value=\"" + EscapedLabelOf(submit) +
         "\"/></p></form>\n<p>";
}

Document ComposeDirectory(Maker maker, const Lines& lines) {
  const std::string title = EscapeXML(lines.title);
  auto directory = MakeDirectory(maker, title);
  if (directory == nullptr) {
    auto screen = MakeTextScreen(FactsOf(maker).maker, title);
    screen->SetText(MakeLinks(lines.lines) + MakeLinks(lines.keys) + MakeLinks(PageKeys(lines)));
    return screen;
  }
  for (const auto& line : lines.lines) {
    directory->AppendEntry(EscapeRequired(line.text),
                           EscapeRequired(line.telephone.empty() ? line.uri : line.telephone));
  }
  if (HasSoftKeys(*directory)) {
    AddKeys(*directory, lines.keys);
  } else {
    for (const auto& key : lines.keys) {
      const std::string label = EscapedLabelOf(key);
      if (!key.uri.empty()) directory->AppendEntry(label, EscapeXML(key.uri));
    }
  }
  if (FactsOf(maker).writesPages) {
    directory->SetPreviousURI(EscapeXML(lines.previous));
    directory->SetNextURI(EscapeXML(lines.next));
  } else {
    AddKeys(*directory, PageKeys(lines));
  }
  return directory;
}

bool LoadsAnything(const std::vector<SoftKey>& keys) {
  return std::any_of(keys.begin(), keys.end(), [](const SoftKey& key) { return !key.uri.empty(); });
}

}  // namespace

Document ComposeMenu(Maker maker, const Menu& menu) {
  Lines lines{menu.title, {}, menu.keys, menu.previous, menu.next};
  auto document = MakeMenu(maker, EscapeXML(menu.title));
  if (document == nullptr) {
    for (const auto& item : menu.items) lines.lines.push_back({item.text, item.uri});
    return ComposeDirectory(maker, lines);
  }
  for (const auto& item : menu.items) {
    document->AppendItem(EscapeRequired(item.text), EscapeRequired(item.uri));
  }
  AddKeys(*document, menu.keys);
  AddKeys(*document, PageKeys(lines));
  return document;
}

Document ComposeList(Maker maker, const List& list) {
  Lines lines{list.title, {}, list.keys, list.previous, list.next};
  lines.lines.reserve(list.people.size());
  for (const auto& person : list.people) {
    lines.lines.push_back({person.name, {}, person.telephone, person.note});
  }
  return ComposeDirectory(maker, lines);
}

Document ComposeText(Maker maker, const Text& text) {
  auto screen = MakeTextScreen(maker, EscapeXML(text.title));
  const bool losesKeys = screen != nullptr && !HasSoftKeys(*screen) && !IsHTML(*screen);
  if (screen == nullptr || (losesKeys && LoadsAnything(text.keys))) {
    Lines lines{text.title, {}, text.keys};
    for (const auto& line : text.lines) lines.lines.push_back({line, text.target});
    return ComposeDirectory(maker, lines);
  }
  if (IsHTML(*screen)) {
    screen->SetText(JoinEscaped(text.lines, kLineBreak) + std::string(kLineBreak) +
                    MakeLinks(text.keys));
  } else {
    screen->SetText(JoinEscaped(text.lines, "\n"));
  }
  AddKeys(*screen, text.keys);
  return screen;
}

Document ComposeForm(Maker maker, const Form& form) {
  if (auto input = MakeInput(maker, EscapeXML(form.title))) {
    input->SetParams(
        EscapeRequired(form.prompt), EscapeRequired(form.uri), EscapeRequired(form.parameter), "");
    AddKeys(*input, form.keys);
    return input;
  }
  auto screen = MakeTextScreen(FactsOf(maker).maker, EscapeXML(form.title));
  if (screen == nullptr || !IsHTML(*screen)) return nullptr;
  screen->SetText(MakeHTMLForm(form) + MakeLinks(form.keys));
  return screen;
}

Document ComposeCall(Maker maker, const Call& call) {
  const Person& person = call.person;
  if (maker != Maker::kAastra) {
    List list;  // filled in steps: GCC 11 and libc++ 14 leak an aggregate that is half initialized
    list.title = person.name;
    list.people.push_back(person);
    list.keys = call.keys;
    return ComposeList(maker, list);
  }
  // Percent-encoding leaves nothing to escape.
  auto execute = std::make_unique<AastraIPPhoneExecute>(MakeCallURI("Dial:", person.telephone));
  AddKeys(*execute, call.keys);
  return execute;
}

Document ComposeAlert(Maker maker, const Alert& alert) {
  if (maker != Maker::kAastra) return ComposeText(maker, alert.text);
  auto status = std::make_unique<AastraIPPhoneStatus>();
  const auto type =
      alert.isUrgent ? IPPhoneStatusXML::MsgTypeAlert : IPPhoneStatusXML::MsgTypeNormal;
  status->SetMessage(EscapeXML(alert.session),
                     JoinEscaped(alert.text.lines, " "),
                     kAlertIndex,
                     type,
                     alert.timeout);
  if (alert.isUrgent) status->SetAttributes(AttrBeep);
  AddKeys(*status, alert.text.keys);
  return status;
}

}  // namespace teleform::screens
