#include <teleform/aastra/soft_keys.h>
#include <teleform/screens/escape.h>
#include <teleform/screens/soft_keys.h>
#include <teleform/snom/soft_keys.h>
#include <teleform/yealink/soft_keys.h>

#include <algorithm>
#include <optional>
#include <stdexcept>

namespace teleform::screens {

namespace {

struct RoleFacts {
  const char* label;
  int aastraIndex;
  std::optional<AastraSoftKeyCommands> aastraCommand;  // what the phone does by itself
  SnomSoftKeyCommands snom;
  YealinkSoftKeyCommands yealink;
};

// The table of the roles. -Werror=switch refuses it when it lacks one of them.
RoleFacts FactsFor(SoftKeyRole role) {
  switch (role) {
    case SoftKeyRole::kSelect:
      return {"Select",
              1,
              AASTRA_SK_SELECT,
              SNOM_SK_F_MINIBROWSER_SELECT,
              YEALINK_SK_F_MINIBROWSER_SELECT};
    case SoftKeyRole::kDial:
      return {"Dial", 1, AASTRA_SK_DIAL, SNOM_SK_F_MINIBROWSER_DIAL, YEALINK_SK_F_MINIBROWSER_DIAL};
    case SoftKeyRole::kSubmit:
      return {"Submit", 1, AASTRA_SK_SUBMIT, SNOM_SK_ENTER, YEALINK_SK_ENTER};
    case SoftKeyRole::kPrevious:
      return {"Previous", 2, {}, SNOM_SK_LEFT, YEALINK_SK_LEFT};
    case SoftKeyRole::kNext:
      return {"Next", 3, {}, SNOM_SK_RIGHT, YEALINK_SK_RIGHT};
    case SoftKeyRole::kSearch:
      return {"Search", 4, {}, SNOM_SK_F_MINIBROWSER_SEARCH, YEALINK_SK_F_MINIBROWSER_SEARCH};
    case SoftKeyRole::kHome:
      return {"Home", 5, {}, SNOM_SK_CANCEL, YEALINK_SK_CANCEL};
    case SoftKeyRole::kExit:
      return {"Exit", 6, AASTRA_SK_EXIT, SNOM_SK_F_MINIBROWSER_EXIT, YEALINK_SK_F_MINIBROWSER_EXIT};
  }
  throw std::invalid_argument("no such role of a soft key");
}

// A holder keeps its keys from all but the classes that derive from it.
template <typename Holder>
struct Keys : Holder {
  static auto& Of(Holder& holder) { return holder.*(&Keys::softKeys); }
};

bool Add(AastraIPPhone& holder, const RoleFacts& role, std::string_view uri,
         std::string_view label) {
  if (uri.empty() && !role.aastraCommand) return false;
  constexpr int kPlaces = 6;
  const auto& keys = Keys<AastraIPPhone>::Of(holder);
  const auto isTaken = [&](int index) {
    return std::any_of(
        keys.begin(), keys.end(), [&](const auto& other) { return other.GetIndex() == index; });
  };
  int index = role.aastraIndex;
  if (isTaken(index)) {
    for (index = 1; index <= kPlaces && isTaken(index);) ++index;
  }
  const std::string text = EscapeXML(label.empty() ? role.label : label);
  return uri.empty() ? holder.AddSoftKey(index, text.c_str(), *role.aastraCommand)
                     : holder.AddSoftKey(index, text.c_str(), EscapeXML(uri).c_str());
}

// A key of a maker whose phones name the keys that they have. Only an added key tells its name.
template <typename Holder, typename Command>
bool Add(Holder& holder, Command command, std::string_view uri) {
  if (uri.empty()) return false;
  holder.AddSoftKey(command, EscapeXML(uri).c_str());
  auto& keys = Keys<Holder>::Of(holder);
  const auto same = std::find_if(keys.begin(), keys.end(), [&](const auto& other) {
    return other.GetName() == keys.back().GetName();
  });
  const bool isNew = same + 1 == keys.end();
  if (!isNew) keys.pop_back();
  return isNew;
}

}  // namespace

std::string_view LabelOf(SoftKeyRole role) { return FactsFor(role).label; }

bool HasSoftKeys(const IPPhoneXML& document) noexcept {
  return dynamic_cast<const AastraIPPhone*>(&document) != nullptr ||
         dynamic_cast<const SnomIPPhone*>(&document) != nullptr ||
         dynamic_cast<const YealinkIPPhone*>(&document) != nullptr;
}

bool AddSoftKey(IPPhoneXML& document, SoftKeyRole role, std::string_view uri,
                std::string_view label) {
  const RoleFacts facts = FactsFor(role);
  // The makers' holders are bases beside the kind, which knows of none.
  if (auto* aastra = dynamic_cast<AastraIPPhone*>(&document)) {
    return Add(*aastra, facts, uri, label);
  }
  if (auto* snom = dynamic_cast<SnomIPPhone*>(&document)) return Add(*snom, facts.snom, uri);
  if (auto* yealink = dynamic_cast<YealinkIPPhone*>(&document)) {
    return Add(*yealink, facts.yealink, uri);
  }
  return false;
}

}  // namespace teleform::screens
