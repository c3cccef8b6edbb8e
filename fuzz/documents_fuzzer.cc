// Turns bytes into a document and a sequence of operations on it, and compares every rendering and
// every returned bool with the model.
#include <fuzzer/FuzzedDataProvider.h>
#include <teleform/teleform.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "model.h"

namespace {

class Session {
 public:
  Session(const std::uint8_t* data, std::size_t size)
      : input(data, size), model(MakeModel()), document(MakeDocument()) {}

  void Run() {
    Compare();
    for (int i = 0; i < 200 && input.remaining_bytes() > 0; ++i) {
      FillByKind();
      if (input.ConsumeBool()) Compare();
    }
    Compare();
    std::string out = "kept";
    document->Render(out);
    document->Render(out);
    Expect(out == "kept" + model.Text() + model.Text(), "appending");
    Expect(document->GetTitle() == (isStatus ? "" : UpToNul(title)), "title");
    Expect(document->GetContentType() ==
               (model.kind.name == "PolycomIPPhoneTextScreen" ? "text/html" : "text/xml"),
           "content type");
  }

 private:
  void Expect(bool holds, const char* what) {
    if (holds) return;
    std::string out;
    document->Render(out);
    std::fprintf(stderr, "%s of %s differs\n--- library\n%s\n--- model\n%s\n", what,
                 std::string(model.kind.name).c_str(), out.c_str(), model.Text().c_str());
    std::abort();
  }

  void Compare() {
    std::string out;
    document->Render(out);
    Expect(out == model.Text(), "rendering");
  }

  std::string Text() { return input.ConsumeRandomLengthString(80); }

  Model MakeModel() {
    const auto& kind = kModelClasses[input.ConsumeIntegralInRange<std::size_t>(0, 14)];
    title = Text();
    type = Text();
    password = input.ConsumeBool();
    maxItems = input.ConsumeIntegralInRange(-2, 6);
    isStatus = kind.name == "AastraIPPhoneStatus";
    Model made(kind, title, maxItems);
    made.Set("type", type);
    if (password) made.Set("password", " password = \"yes\"");
    return made;
  }

  std::unique_ptr<IPPhoneXML> MakeDocument() const {
    const char* const text = title.c_str();
    switch (&model.kind - kModelClasses.data()) {
      case 0:
        return std::make_unique<AastraIPPhoneTextScreen>(title);
      case 1:
        return std::make_unique<AastraIPPhoneMenu>(title, maxItems);
      case 2:
        return std::make_unique<AastraIPPhoneDirectory>(text, maxItems);
      case 3:
        return std::make_unique<AastraIPPhoneInput>(title, type, password);
      case 4:
        return std::make_unique<AastraIPPhoneExecute>(title);
      case 5:
        return std::make_unique<AastraIPPhoneStatus>();
      case 6:
        return std::make_unique<CiscoIPPhoneDirectory>(text, maxItems);
      case 7:
        return std::make_unique<PolycomIPPhoneTextScreen>(title);
      case 8:
        return std::make_unique<SnomIPPhoneTextScreen>(title);
      case 9:
        return std::make_unique<SnomIPPhoneMenu>(text, maxItems);
      case 10:
        return std::make_unique<SnomIPPhoneDirectory>(text, maxItems);
      case 11:
        return std::make_unique<SnomIPPhoneInput>(title, type);
      case 12:
        return std::make_unique<YealinkIPPhoneTextScreen>(title);
      case 13:
        return std::make_unique<YealinkIPPhoneMenu>(text, maxItems);
      default:
        return std::make_unique<YealinkIPPhoneDirectory>(text, maxItems);
    }
  }

  // One operation: of the root, of the soft-key holder, or of the kind.
  void FillByKind() {
    switch (input.ConsumeIntegralInRange(0, 5)) {
      case 0:
        SetAttributes();
        return;
      case 1:
        AddSoftKey();
        return;
      default:
        break;
    }
    if (auto* screen = dynamic_cast<IPPhoneTextScreenXML*>(document.get())) {
      const std::string text = Text();
      screen->SetText(text);
      model.Set("text", text);
      model.Set("textToNul", UpToNul(text));
    } else if (auto* menu = dynamic_cast<IPPhoneMenuXML*>(document.get())) {
      FillList(*menu, [&](const auto& a, const auto& b) { return menu->AppendItem(a, b); });
    } else if (auto* directory = dynamic_cast<IPPhoneDirectoryXML*>(document.get())) {
      if (input.ConsumeIntegralInRange(0, 7) == 0) {
        directory->SortDirectoryItems();
        model.Sort();
      } else {
        FillList(*directory,
                 [&](const auto& a, const auto& b) { return directory->AppendEntry(a, b); });
      }
    } else if (auto* form = dynamic_cast<IPPhoneInputXML*>(document.get())) {
      SetParams(*form);
    } else if (auto* status = dynamic_cast<IPPhoneStatusXML*>(document.get())) {
      SetMessage(*status);
    }
  }

  template <typename List, typename Append>
  void FillList(List& list, Append append) {
    const std::string first = Text();
    const int choice = input.ConsumeIntegralInRange(0, 5);
    if (choice == 0) {
      list.SetPreviousURI(first);
      model.Set("previous", first.empty() ? "" : " previous=\"" + first + "\"");
    } else if (choice == 1) {
      list.SetNextURI(first);
      model.Set("next", first.empty() ? "" : " next=\"" + first + "\"");
    } else {
      const std::string second = Text();
      Expect(append(first, second) == model.Append(first, second), "appending to the list");
    }
  }

  void SetAttributes() {
    const auto flags = input.ConsumeIntegral<unsigned long>();
    document->SetAttributes(flags);
    model.Set("destroyOnExit", flags % 2 == 1 ? " destroyOnExit = \"yes\"" : "");
    model.Set("beep", flags / 16 % 2 == 1 ? " Beep = \"yes\"" : "");
  }

  void SetParams(IPPhoneInputXML& form) {
    const std::string prompt = Text();
    const std::string url = Text();
    const std::string parameter = Text();
    const std::string value = Text();
    const bool isAccepted = !prompt.empty() && !url.empty() && !parameter.empty();
    Expect(form.SetParams(prompt, url, parameter, value) == isAccepted, "SetParams");
    if (!isAccepted) return;
    model.Set("prompt", prompt);
    model.Set("url", url);
    model.Set("parameter", parameter);
    model.Set("default", value);
  }

  void SetMessage(IPPhoneStatusXML& status) {
    const std::string session = Text();
    const std::string message = Text();
    const int index = input.ConsumeIntegral<int>();
    const int alert = input.ConsumeIntegralInRange(-1, 2);
    const int timeout =
        input.ConsumeBool() ? input.ConsumeIntegral<int>() : input.ConsumeIntegralInRange(-2, 2);
    status.SetMessage(session, message, index, static_cast<IPPhoneStatusXML::MsgType>(alert),
                      timeout);
    model.Set("session", session);
    model.Set("message", message);
    model.Set("index", std::to_string(index));
    model.Set("alert", alert == 1 ? " type=\"alert\"" : "");
    model.Set("timeout",
              alert == 1 && timeout > 0 ? " Timeout=\"" + std::to_string(timeout) + "\"" : "");
  }

  void AddSoftKey() {
    const std::string text = UpToNul(Text());
    const char* const given = text.empty() && input.ConsumeBool() ? nullptr : text.c_str();
    const int command = input.ConsumeIntegralInRange(-2, 40);
    if (auto* aastra = dynamic_cast<AastraIPPhone*>(document.get())) {
      const int index = input.ConsumeIntegralInRange(-1, 8);
      const std::string uri = UpToNul(Text());
      const bool isOwn = input.ConsumeBool();
      const bool added =
          isOwn ? aastra->AddSoftKey(index, given, uri.c_str())
                : aastra->AddSoftKey(index, given, static_cast<AastraSoftKeyCommands>(command));
      const bool expected =
          model.AddAastraKey(index, text, isOwn ? uri : KeyName("Aastra", command));
      Expect(added == expected, "AddSoftKey");
    } else if (auto* snom = dynamic_cast<SnomIPPhone*>(document.get())) {
      Expect(snom->AddSoftKey(static_cast<SnomSoftKeyCommands>(command), given), "AddSoftKey");
      model.AddKeyItem(KeyName("Snom", command), text);
    } else if (auto* yealink = dynamic_cast<YealinkIPPhone*>(document.get())) {
      Expect(yealink->AddSoftKey(static_cast<YealinkSoftKeyCommands>(command), given),
             "AddSoftKey");
      model.AddKeyItem(KeyName("Yealink", command), text);
    }
  }

  FuzzedDataProvider input;
  std::string title;
  std::string type;
  bool password = false;
  int maxItems = 0;
  bool isStatus = false;
  Model model;
  std::unique_ptr<IPPhoneXML> document;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Session(data, size).Run();
  return 0;
}
