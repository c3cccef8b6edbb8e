#include <teleform/aastra/elements.h>
#include <teleform/aastra/status.h>
#include <teleform/core/number_to_string.h>

#include <charconv>
#include <cstddef>
#include <cstring>
#include <locale>

namespace teleform {

namespace {

// A number as NumberToString writes it under the classic locale. It is a piece, so that its digits
// go straight to where they belong.
struct Decimal {
  explicit Decimal(int theValue) : value(theValue), size(value < 0 ? 2 : 1) {
    for (int rest = value / 10; rest != 0; rest /= 10) ++size;
  }
  int value;
  std::size_t size;
};

TotalSize Size(const Decimal& number) { return number.size; }

char* Copy(char* to, const Decimal& number) {
  return std::to_chars(to, to + number.size, number.value).ptr;
}

// Whether plain digits are right. Comparing locales takes a third of a rendering; a locale is a
// pointer, and two of the same bytes are the same locale. Where that should miss the classic one,
// NumberToString still writes the right digits.
bool IsLocaleClassic() {
  static const std::locale& classic = std::locale::classic();
  const std::locale global;
  // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison)
  return std::memcmp(&global, &classic, sizeof global) == 0;
}

}  // namespace

}  // namespace teleform

AastraIPPhoneStatus::AastraIPPhoneStatus() = default;

AastraIPPhoneStatus::~AastraIPPhoneStatus() = default;

void AastraIPPhoneStatus::SetMessage(const std::string& session, const std::string& theMessage,
                                     int index, MsgType type, int timeout) {
  message = Message{type, session, theMessage, index, timeout};
}

void AastraIPPhoneStatus::Render(std::string& out) {
  using namespace teleform;
  const bool isAlert = message.type == MsgTypeAlert;
  const auto append = [&](const auto& index, const auto& timeout) {
    Append(out,
           Line("<AastraIPPhoneStatus", AastraBeep(beep), ">"),
           Line("<Session>", message.session, "</Session>"),
           Line("<Message index=\"",
                index,
                "\"",
                When(isAlert, " type=\"alert\""),
                When(isAlert && message.timeout > 0, " Timeout=\"", timeout, "\""),
                ">"),
           Line(message.text, "</Message>"),
           // The condition spares a document this short two calls for a list that is rarely there.
           When(!softKeys.empty(), Each(softKeys, AastraSoftKeyItem)),
           Line("</AastraIPPhoneStatus>"));
  };
  if (IsLocaleClassic()) {
    append(Decimal(message.index), Decimal(message.timeout));
  } else {
    append(NumberToString(message.index), NumberToString(message.timeout));
  }
}
