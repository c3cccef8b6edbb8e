#include <teleform/teleform.h>

#include <memory>

#include "implementations.h"

namespace {

void Fill(CiscoIPPhoneDirectory& document, const Directory& directory) {
  document.SetPreviousURI(directory.previous);
  document.SetNextURI(directory.next);
  for (const auto& person : directory.people) document.AppendEntry(person.name, person.telephone);
}

void Fill(AastraIPPhoneMenu& document, const Menu& menu) {
  document.SetAttributes(AttrDestroyOnExit | AttrBeep);
  for (const auto& item : menu.items) document.AppendItem(item.name, item.telephone);
  for (const auto& key : menu.keys) {
    document.AddSoftKey(key.index, key.label.c_str(), key.uri.c_str());
  }
}

void Fill(AastraIPPhoneStatus& document, const Status& status) {
  document.SetMessage(status.session, status.message, status.index, IPPhoneStatusXML::MsgTypeAlert,
                      status.timeout);
}

void Fill(SnomIPPhoneTextScreen& document, const Screen& screen) {
  document.SetText(screen.text);
  document.AddSoftKey(SNOM_SK_ENTER, screen.url.c_str());
}

template <typename Document, typename Contents, typename... Argument>
Renderer RenderFilled(const Contents& contents, const Argument&... argument) {
  const auto document = std::make_shared<Document>(argument...);
  Fill(*document, contents);
  return [document](std::string& out) { document->Render(out); };
}

template <typename Document, typename Contents, typename... Argument>
Renderer RenderWhole(const Contents& contents, const Argument&... argument) {
  return [&contents, argument...](std::string& out) {
    Document document(argument...);
    Fill(document, contents);
    document.Render(out);
  };
}

constexpr int kNoLimit = 1 << 30;

}  // namespace

const Implementation kTeleform = {
    "libteleform",
    true,
    [](const Directory& directory) {
      return RenderFilled<CiscoIPPhoneDirectory>(directory, directory.title.c_str(), kNoLimit);
    },
    [](const Menu& menu) { return RenderFilled<AastraIPPhoneMenu>(menu, menu.title, kNoLimit); },
    [](const Status& status) { return RenderFilled<AastraIPPhoneStatus>(status); },
    [](const Screen& screen) { return RenderFilled<SnomIPPhoneTextScreen>(screen, screen.title); }};

const Implementation kTeleformWholeJob = {
    "libteleform, whole job",
    true,
    [](const Directory& directory) {
      return RenderWhole<CiscoIPPhoneDirectory>(directory, directory.title.c_str(), kNoLimit);
    },
    [](const Menu& menu) { return RenderWhole<AastraIPPhoneMenu>(menu, menu.title, kNoLimit); },
    [](const Status& status) { return RenderWhole<AastraIPPhoneStatus>(status); },
    [](const Screen& screen) { return RenderWhole<SnomIPPhoneTextScreen>(screen, screen.title); }};
