#include <teleform/core/elements.h>
#include <teleform/snom/soft_keys.h>

#include <array>
#include <cstddef>

namespace {

constexpr std::array<const char*, 37> kSnomKeyNames = {
    "CANCEL",                   // SNOM_SK_CANCEL
    "ENTER",                    // SNOM_SK_ENTER
    "ONHOOK",                   // SNOM_SK_ONHOOK
    "RIGHT",                    // SNOM_SK_RIGHT
    "LEFT",                     // SNOM_SK_LEFT
    "REDIAL",                   // SNOM_SK_REDIAL
    "SPEAKER",                  // SNOM_SK_SPEAKER
    "TRANSFER",                 // SNOM_SK_TRANSFER
    "CONFERENCE",               // SNOM_SK_CONFERENCE
    "HELP",                     // SNOM_SK_HELP
    "F_MUTE",                   // SNOM_SK_F_MUTE
    "F_UP",                     // SNOM_SK_F_UP
    "F_DOWN",                   // SNOM_SK_F_DOWN
    "REC",                      // SNOM_SK_REC
    "SNOM",                     // SNOM_SK_SNOM
    "DND",                      // SNOM_SK_DND
    "F_MINIBROWSER_SELECT",     // SNOM_SK_F_MINIBROWSER_SELECT
    "F_MINIBROWSER_EXIT",       // SNOM_SK_F_MINIBROWSER_EXIT
    "F_MINIBROWSER_UPDATE",     // SNOM_SK_F_MINIBROWSER_UPDATE
    "F_MINIBROWSER_SEARCH",     // SNOM_SK_F_MINIBROWSER_SEARCH
    "F_MINIBROWSER_CANCEL",     // SNOM_SK_F_MINIBROWSER_CANCEL
    "F_MINIBROWSER_BACK",       // SNOM_SK_F_MINIBROWSER_BACK
    "F_MINIBROWSER_DIAL",       // SNOM_SK_F_MINIBROWSER_DIAL
    "F_MINIBROWSER_EDIT_DIAL",  // SNOM_SK_F_MINIBROWSER_EDIT_DIAL
    "F_MINIBROWSER_EDIT_NEXT",  // SNOM_SK_F_MINIBROWSER_EDIT_NEXT
    "0",                        // SNOM_SK_0
    "9",                        // SNOM_SK_9
    "8",                        // SNOM_SK_8
    "7",                        // SNOM_SK_7
    "6",                        // SNOM_SK_6
    "5",                        // SNOM_SK_5
    "4",                        // SNOM_SK_4
    "3",                        // SNOM_SK_3
    "2",                        // SNOM_SK_2
    "1",                        // SNOM_SK_1
    "#",                        // SNOM_SK_HASH
    "*"                         // SNOM_SK_STAR
};

}  // namespace

SnomSoftKey::SnomSoftKey() = default;

SnomSoftKey::SnomSoftKey(const char* theName, const char* url)
    : name(theName), URL(url != nullptr ? url : "") {}

SnomSoftKey::SnomSoftKey(const SnomSoftKey& other) = default;

SnomSoftKey::SnomSoftKey(SnomSoftKey&& other) noexcept = default;

SnomSoftKey& SnomSoftKey::operator=(const SnomSoftKey& other) = default;

SnomSoftKey& SnomSoftKey::operator=(SnomSoftKey&& other) noexcept = default;

SnomSoftKey::~SnomSoftKey() = default;

void SnomSoftKey::Render(std::string& out) { teleform::Append(out, teleform::SoftKeyItem(*this)); }

SnomIPPhone::SnomIPPhone() = default;

SnomIPPhone::~SnomIPPhone() = default;

bool SnomIPPhone::AddSoftKey(SnomSoftKeyCommands command, const char* text) {
  const auto index = static_cast<std::size_t>(command);
  softKeys.push_back(SnomSoftKey(index < kSnomKeyNames.size() ? kSnomKeyNames[index] : "", text));
  return true;
}
