#include <teleform/screens/escape.h>
#include <teleform/teleform.h>

#include <memory>

#include "implementations.h"

namespace {

using teleform::screens::EscapeXML;

constexpr int kNoLimit = 1 << 30;

template <auto Escape>
void Fill(CiscoIPPhoneDirectory& document, const Directory& directory) {
  document.SetPreviousURI(Escape(directory.previous));
  document.SetNextURI(Escape(directory.next));
  for (const auto& person : directory.people) {
    document.AppendEntry(Escape(person.name), Escape(person.telephone));
  }
}

template <auto Escape>
void Fill(AastraIPPhoneMenu& document, const Menu& menu) {
  document.SetAttributes(AttrDestroyOnExit | AttrBeep);
  for (const auto& item : menu.items) {
    document.AppendItem(Escape(item.name), Escape(item.telephone));
  }
  for (const auto& key : menu.keys) {
    document.AddSoftKey(key.index, Escape(key.label).c_str(), Escape(key.uri).c_str());
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

template <auto Escape>
void WriteDirectory(const Directory& directory, std::string& out) {
  CiscoIPPhoneDirectory document(Escape(directory.title).c_str(), kNoLimit);
  Fill<Escape>(document, directory);
  document.Render(out);
}

template <auto Escape>
void WriteMenu(const Menu& menu, std::string& out) {
  AastraIPPhoneMenu document(Escape(menu.title), kNoLimit);
  Fill<Escape>(document, menu);
  document.Render(out);
}

void WriteStatus(const Status& status, std::string& out) {
  AastraIPPhoneStatus document;
  Fill(document, status);
  document.Render(out);
}

void WriteScreen(const Screen& screen, std::string& out) {
  SnomIPPhoneTextScreen document(screen.title);
  Fill(document, screen);
  document.Render(out);
}

template <typename Document>
Renderer RenderFilled(const std::shared_ptr<Document>& document) {
  return [document](std::string& out) { document->Render(out); };
}

}  // namespace

const Implementation kTeleform = {
    "libteleform",
    true,
    [](const Directory& directory) {
      const auto document =
          std::make_shared<CiscoIPPhoneDirectory>(directory.title.c_str(), kNoLimit);
      Fill<AsIs>(*document, directory);
      return RenderFilled(document);
    },
    [](const Menu& menu) {
      const auto document = std::make_shared<AastraIPPhoneMenu>(menu.title, kNoLimit);
      Fill<AsIs>(*document, menu);
      return RenderFilled(document);
    },
    [](const Status& status) {
      const auto document = std::make_shared<AastraIPPhoneStatus>();
      Fill(*document, status);
      return RenderFilled(document);
    },
    [](const Screen& screen) {
      const auto document = std::make_shared<SnomIPPhoneTextScreen>(screen.title);
      Fill(*document, screen);
      return RenderFilled(document);
    }};

const Implementation kTeleformWholeJob = {
    "libteleform, whole job",         true,
    RenderWith<WriteDirectory<AsIs>>, RenderWith<WriteMenu<AsIs>>,
    RenderWith<WriteStatus>,          RenderWith<WriteScreen>};

const Implementation kTeleformEscaped = {
    "libteleform, whole job",         true,    RenderWith<WriteDirectory<EscapeXML>>,
    RenderWith<WriteMenu<EscapeXML>>, nullptr, nullptr};
