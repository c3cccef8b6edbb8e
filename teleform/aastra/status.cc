#include <teleform/aastra/elements.h>
#include <teleform/aastra/status.h>
#include <teleform/core/number_to_string.h>

AastraIPPhoneStatus::AastraIPPhoneStatus() = default;

AastraIPPhoneStatus::~AastraIPPhoneStatus() = default;

void AastraIPPhoneStatus::SetMessage(const std::string& session, const std::string& theMessage,
                                     int index, MsgType type, int timeout) {
  message = Message{type, session, theMessage, index, timeout};
}

void AastraIPPhoneStatus::Render(std::string& out) {
  using namespace teleform;
  const bool isAlert = message.type == MsgTypeAlert;
  const std::string index = NumberToString(message.index);
  const std::string timeout = NumberToString(message.timeout);
  Append(out,
         Line("<AastraIPPhoneStatus", When(beep, " Beep = \"yes\""), ">\n"),
         Line("<Session>", message.session, "</Session>\n"),
         Line("<Message index=\"",
              index,
              "\"",
              When(isAlert, " type=\"alert\""),
              When(isAlert && message.timeout > 0, " Timeout=\"", timeout, "\""),
              ">\n"),
         Line(message.text, "</Message>\n"),
         Each(softKeys, AastraSoftKeyItem),
         "</AastraIPPhoneStatus>\n");
}
