#include "phonebook/screens.h"

#include <stdexcept>
#include <utility>

#include "text.h"

namespace phonebook {

namespace {

constexpr int kAlertIndex = 1;
constexpr int kAlertTimeout = 10;
constexpr const char* kLineBreak = "<br/>\n";
constexpr const char* kKeptInNumbers = "+*:@";  // the latter two for SIP addresses

// Documents refuse empty texts and addresses.
std::string Filled(const std::string& text) { return text.empty() ? "-" : Fit(text); }

void Check(bool isAccepted) {
  if (!isAccepted) throw std::logic_error("a document refused what the page has for it");
}

void AddKeys(IPPhoneXML& document, const std::vector<SoftKey>& keys) {
  for (const auto& [key, uri] : keys) AddSoftKey(document, key, Fit(uri));
}

// The keys of a list whose document does not tell the pages before and after by itself.
std::vector<SoftKey> KeysAndPages(const List& list) {
  std::vector<SoftKey> keys = list.keys;
  if (!list.previous.empty()) keys.push_back({Key::kPrevious, list.previous});
  if (!list.next.empty()) keys.push_back({Key::kNext, list.next});
  return keys;
}

// Text screens in HTML hold as links what others have as items and soft keys.

bool HasHTML(const IPPhoneXML& document) { return document.GetContentType() == "text/html"; }

std::string HTMLLink(const std::string& uri, const std::string& text) {
  return "<a href=\"" + Fit(uri) + "\">" + Filled(text) + "</a>";
}

std::string HTMLOf(const std::vector<Item>& items) {
  std::string html;
  for (const auto& item : items) {
    html += item.telephone.empty()
                ? HTMLLink(item.uri, item.text)
                : HTMLLink("tel:" + PercentEncoded(item.telephone, kKeptInNumbers), item.text) +
                      " " + Fit(item.written);
    html += kLineBreak;
  }
  return html;
}

std::string HTMLOf(const std::vector<SoftKey>& keys) {
  std::string html;
  for (const auto& [key, uri] : keys) {
    if (!uri.empty()) html += HTMLLink(uri, LabelOf(key)) + kLineBreak;
  }
  return html;
}

// A form can't stand in the paragraph that a text screen makes of its text.
std::string HTMLOf(const Form& form) {
  return Fit(form.hint) + "</p>\n<form action=\"" + Fit(form.uri) + "\" method=\"get\"><p><label>" +
         Fit(form.prompt) + " <input type=\"text\" name=\"" + Fit(form.parameter) +
         "\"/></label> <input type=\"submit\" value=\"" + LabelOf(Key::kSubmit) +
         "\"/></p></form>\n<p>";
}

}  // namespace

Document ComposeMenu(Maker maker, const List& list) {
  auto menu = MakeMenu(maker, Fit(list.title), static_cast<int>(list.items.size()));
  if (menu == nullptr) return ComposeDirectory(maker, list);
  for (const auto& item : list.items) {
    Check(menu->AppendItem(Filled(item.text), Filled(item.uri)));
  }
  AddKeys(*menu, KeysAndPages(list));
  return menu;
}

Document ComposeDirectory(Maker maker, const List& list) {
  const auto most = static_cast<int>(list.items.size() + list.keys.size());
  auto directory = MakeDirectory(maker, Fit(list.title), most);
  if (directory == nullptr) {
    auto screen = MakeTextScreen(maker, Fit(list.title));
    screen->SetText(HTMLOf(list.items) + HTMLOf(KeysAndPages(list)));
    return screen;
  }
  for (const auto& item : list.items) {
    Check(directory->AppendEntry(Filled(item.text),
                                 Filled(item.telephone.empty() ? item.uri : item.telephone)));
  }
  for (const auto& [key, uri] : list.keys) {
    if (uri.empty() || HasSoftKeys(*directory)) continue;
    Check(directory->AppendEntry(LabelOf(key), Fit(uri)));
  }
  directory->SetPreviousURI(Fit(list.previous));
  directory->SetNextURI(Fit(list.next));
  AddKeys(*directory, FactsOf(maker).hasPageAttributes ? list.keys : KeysAndPages(list));
  return directory;
}

Document ComposeText(Maker maker, const Text& text) {
  auto screen = MakeTextScreen(maker, Fit(text.title));
  if (screen == nullptr) {
    List list{text.title, {}, text.keys};
    for (const auto& line : text.lines) list.items.push_back({line, text.target});
    return ComposeDirectory(maker, list);
  }
  std::string body;
  for (const auto& line : text.lines) {
    if (!body.empty()) body += HasHTML(*screen) ? kLineBreak : "\n";
    body += Fit(line);
  }
  if (HasHTML(*screen)) body += kLineBreak + HTMLOf(text.keys);
  screen->SetText(body);
  AddKeys(*screen, text.keys);
  return screen;
}

Document ComposeForm(Maker maker, const Form& form) {
  if (auto input = MakeInput(maker, Fit(form.title))) {
    Check(input->SetParams(Fit(form.prompt), Fit(form.uri), Fit(form.parameter), ""));
    AddKeys(*input, form.keys);
    return input;
  }
  auto screen = MakeTextScreen(maker, Fit(form.title));
  if (screen == nullptr || !HasHTML(*screen)) return nullptr;
  screen->SetText(HTMLOf(form) + HTMLOf(form.keys));
  return screen;
}

Document ComposeCall(Maker maker, const Item& item, const std::vector<SoftKey>& keys) {
  Document call = MakeExecute(maker, "Dial:" + Fit(PercentEncoded(item.telephone, kKeptInNumbers)));
  if (call == nullptr) return ComposeDirectory(maker, {item.text, {item}, keys});
  AddKeys(*call, keys);
  return call;
}

Document ComposeAlert(Maker maker, const Text& text, bool isAlarming) {
  auto status = MakeStatus(maker);
  if (status == nullptr) return ComposeText(maker, text);
  std::string message;
  for (const auto& line : text.lines) message += (message.empty() ? "" : " ") + Fit(line);
  status->SetMessage("phonebook", message, kAlertIndex,
                     isAlarming ? IPPhoneStatusXML::MsgTypeAlert : IPPhoneStatusXML::MsgTypeNormal,
                     kAlertTimeout);
  if (isAlarming) status->SetAttributes(AttrBeep);
  AddKeys(*status, text.keys);
  return status;
}

}  // namespace phonebook
