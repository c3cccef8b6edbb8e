#include <teleform/core/elements.h>
#include <teleform/yealink/soft_keys.h>

#include <array>
#include <cstddef>

namespace {

constexpr std::array<const char*, 37> kYealinkKeyNames = {
    "CANCEL",                   // YEALINK_SK_CANCEL
    "ENTER",                    // YEALINK_SK_ENTER
    "ONHOOK",                   // YEALINK_SK_ONHOOK
    "RIGHT",                    // YEALINK_SK_RIGHT
    "LEFT",                     // YEALINK_SK_LEFT
    "REDIAL",                   // YEALINK_SK_REDIAL
    "SPEAKER",                  // YEALINK_SK_SPEAKER
    "TRANSFER",                 // YEALINK_SK_TRANSFER
    "CONFERENCE",               // YEALINK_SK_CONFERENCE
    "HELP",                     // YEALINK_SK_HELP
    "F_MUTE",                   // YEALINK_SK_F_MUTE
    "F_UP",                     // YEALINK_SK_F_UP
    "F_DOWN",                   // YEALINK_SK_F_DOWN
    "REC",                      // YEALINK_SK_REC
    "Yealink",                  // YEALINK_SK_YEALINK
    "DND",                      // YEALINK_SK_DND
    "F_MINIBROWSER_SELECT",     // YEALINK_SK_F_MINIBROWSER_SELECT
    "F_MINIBROWSER_EXIT",       // YEALINK_SK_F_MINIBROWSER_EXIT
    "F_MINIBROWSER_UPDATE",     // YEALINK_SK_F_MINIBROWSER_UPDATE
    "F_MINIBROWSER_SEARCH",     // YEALINK_SK_F_MINIBROWSER_SEARCH
    "F_MINIBROWSER_CANCEL",     // YEALINK_SK_F_MINIBROWSER_CANCEL
    "F_MINIBROWSER_BACK",       // YEALINK_SK_F_MINIBROWSER_BACK
    "F_MINIBROWSER_DIAL",       // YEALINK_SK_F_MINIBROWSER_DIAL
    "F_MINIBROWSER_EDIT_DIAL",  // YEALINK_SK_F_MINIBROWSER_EDIT_DIAL
    "F_MINIBROWSER_EDIT_NEXT",  // YEALINK_SK_F_MINIBROWSER_EDIT_NEXT
    "0",                        // YEALINK_SK_0
    "9",                        // YEALINK_SK_9
    "8",                        // YEALINK_SK_8
    "7",                        // YEALINK_SK_7
    "6",                        // YEALINK_SK_6
    "5",                        // YEALINK_SK_5
    "4",                        // YEALINK_SK_4
    "3",                        // YEALINK_SK_3
    "2",                        // YEALINK_SK_2
    "1",                        // YEALINK_SK_1
    "#",                        // YEALINK_SK_HASH
    "*"                         // YEALINK_SK_STAR
};

}  // namespace

YealinkSoftKey::YealinkSoftKey() = default;

YealinkSoftKey::YealinkSoftKey(const char* theName, const char* url)
    : name(theName), URL(url != nullptr ? url : "") {}

YealinkSoftKey::YealinkSoftKey(const YealinkSoftKey& other) = default;

YealinkSoftKey::YealinkSoftKey(YealinkSoftKey&& other) noexcept = default;

YealinkSoftKey& YealinkSoftKey::operator=(const YealinkSoftKey& other) = default;

YealinkSoftKey& YealinkSoftKey::operator=(YealinkSoftKey&& other) noexcept = default;

YealinkSoftKey::~YealinkSoftKey() = default;

void YealinkSoftKey::Render(std::string& out) {
  teleform::Append(out, teleform::SoftKeyItem(*this));
}

YealinkIPPhone::YealinkIPPhone() = default;

YealinkIPPhone::~YealinkIPPhone() = default;

bool YealinkIPPhone::AddSoftKey(YealinkSoftKeyCommands command, const char* text) {
  const auto index = static_cast<std::size_t>(command);
  softKeys.push_back(
      YealinkSoftKey(index < kYealinkKeyNames.size() ? kYealinkKeyNames[index] : "", text));
  return true;
}
