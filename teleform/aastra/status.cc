#include <teleform/aastra/elements.h>
#include <teleform/aastra/status.h>
#include <teleform/core/number_to_string.h>

#include <charconv>
#include <cstddef>
#include <cstring>
#include <locale>
#include <utility>

namespace teleform {

namespace {

// A piece that writes an integer directly into the output, as NumberToString formats it under the
// classic locale.
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

// Whether the global locale is the classic one. Comparing two locales takes a third of the
// rendering time. A locale object is a single pointer, so equal bytes mean equal locales. A false
// negative is harmless: NumberToString writes the same digits.
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
  // Field by field: GCC 11 leaks the members of an aggregate whose initialization throws.
  Message filled;
  filled.type = type;
  filled.session = session;
  filled.text = theMessage;
  filled.index = index;
  filled.timeout = timeout;
  message = std::move(filled);
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
           // The condition saves two function calls, which are noticeable in a short document.
           When(!softKeys.empty(), ForEach(softKeys, AastraSoftKeyItem)),
           Line("</AastraIPPhoneStatus>"));
  };
  if (IsLocaleClassic()) {
    append(Decimal(message.index), Decimal(message.timeout));
  } else {
    append(NumberToString(message.index), NumberToString(message.timeout));
  }
}
