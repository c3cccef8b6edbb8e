#include "documents.h"

namespace {

template <typename Kind, typename Call>
void AddIf(std::vector<Operation>& operations, IPPhoneXML& document, Call call) {
  if (dynamic_cast<Kind*>(&document) == nullptr) return;
  operations.emplace_back([call](IPPhoneXML& filled) { call(dynamic_cast<Kind&>(filled)); });
}

}  // namespace

std::vector<Operation> FillingOperations(IPPhoneXML& document, const std::string& value) {
  std::vector<Operation> all;
  AddIf<IPPhoneTextScreenXML>(all, document, [=](auto& screen) { screen.SetText(value); });
  AddIf<IPPhoneMenuXML>(all, document, [=](auto& menu) { menu.AppendItem(value, value); });
  AddIf<IPPhoneMenuXML>(all, document, [=](auto& menu) { menu.SetPreviousURI(value); });
  AddIf<IPPhoneMenuXML>(all, document, [=](auto& menu) { menu.SetNextURI(value); });
  AddIf<IPPhoneDirectoryXML>(all, document, [=](auto& list) { list.AppendEntry(value, value); });
  AddIf<IPPhoneDirectoryXML>(all, document, [=](auto& list) { list.SetPreviousURI(value); });
  AddIf<IPPhoneDirectoryXML>(all, document, [=](auto& list) { list.SetNextURI(value); });
  AddIf<IPPhoneDirectoryXML>(all, document, [=](auto& list) { list.SortDirectoryItems(); });
  AddIf<IPPhoneInputXML>(all, document,
                         [=](auto& form) { form.SetParams(value, value, value, value); });
  AddIf<IPPhoneStatusXML>(all, document, [=](auto& status) {
    status.SetMessage(value, value, -2147483647, IPPhoneStatusXML::MsgTypeAlert, 2147483647);
  });
  AddIf<AastraIPPhone>(
      all, document, [=](auto& keys) { keys.AddSoftKey(6, value.c_str(), AASTRA_SK_CHANGEMODE); });
  AddIf<AastraIPPhone>(all, document,
                       [=](auto& keys) { keys.AddSoftKey(1, value.c_str(), value.c_str()); });
  AddIf<SnomIPPhone>(all, document, [=](auto& keys) {
    keys.AddSoftKey(SNOM_SK_F_MINIBROWSER_EDIT_NEXT, value.c_str());
  });
  AddIf<YealinkIPPhone>(all, document, [=](auto& keys) {
    keys.AddSoftKey(YEALINK_SK_F_MINIBROWSER_EDIT_NEXT, value.c_str());
  });
  return all;
}

std::string Rendered(IPPhoneXML& document) {
  std::string out;
  document.Render(out);
  return out;
}
