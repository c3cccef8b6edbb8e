#include <teleform/aastra/elements.h>
#include <teleform/aastra/soft_keys.h>

#include <array>
#include <cstddef>

namespace {

constexpr std::array<const char*, 8> kCommandURIs = {
    "SoftKey:Select",     // AASTRA_SK_SELECT
    "SoftKey:Exit",       // AASTRA_SK_EXIT
    "SoftKey:Dial",       // AASTRA_SK_DIAL
    "SoftKey:Submit",     // AASTRA_SK_SUBMIT
    "SoftKey:BackSpace",  // AASTRA_SK_BACKSPACE
    "SoftKey:NextSpace",  // AASTRA_SK_NEXTSPACE
    "SoftKey:Dot",        // AASTRA_SK_DOT
    "SoftKey:ChangeMode"  // AASTRA_SK_CHANGEMODE
};

}  // namespace

AastraSoftKey::AastraSoftKey(int theIndex, const char* theLabel, const char* uri)
    : index(theIndex), label(theLabel != nullptr ? theLabel : ""), URI(uri != nullptr ? uri : "") {}

AastraSoftKey::AastraSoftKey(const AastraSoftKey& other) = default;

AastraSoftKey::AastraSoftKey(AastraSoftKey&& other) noexcept = default;

AastraSoftKey& AastraSoftKey::operator=(const AastraSoftKey& other) = default;

AastraSoftKey& AastraSoftKey::operator=(AastraSoftKey&& other) noexcept = default;

AastraSoftKey::~AastraSoftKey() = default;

void AastraSoftKey::Render(std::string& out) {
  teleform::Append(out, teleform::AastraSoftKeyItem(*this));
}

AastraIPPhone::AastraIPPhone() = default;

AastraIPPhone::~AastraIPPhone() = default;

bool AastraIPPhone::AddSoftKey(int index, const char* label, AastraSoftKeyCommands command) {
  const auto row = static_cast<std::size_t>(command);
  if (row >= kCommandURIs.size()) return AddSoftKey(index, label, AASTRA_SK_SELECT);
  return AddSoftKey(index, label, kCommandURIs[row]);
}

bool AastraIPPhone::AddSoftKey(int index, const char* label, const char* uri) {
  if (index < 1 || index > 6) return false;
  if (softKeys.capacity() == 0) softKeys.reserve(6);
  softKeys.push_back(AastraSoftKey(index, label, uri));
  return true;
}
