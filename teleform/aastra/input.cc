#include <teleform/aastra/elements.h>
#include <teleform/aastra/input.h>

AastraIPPhoneInput::AastraIPPhoneInput(const std::string& theTitle, const std::string& theType,
                                       bool thePassword)
    : IPPhoneInputXML(theTitle.c_str()), password(thePassword), type(theType) {}

AastraIPPhoneInput::~AastraIPPhoneInput() = default;

bool AastraIPPhoneInput::SetParams(const std::string& prompt, const std::string& url,
                                   const std::string& parameter, const std::string& defaultValue) {
  if (prompt.empty() || url.empty() || parameter.empty()) return false;
  params = Params{prompt, url, parameter, defaultValue};
  return true;
}

void AastraIPPhoneInput::Render(std::string& out) {
  using namespace teleform;
  Append(out,
         Line("<AastraIPPhoneInputScreen type = \"",
              type,
              "\"",
              When(password, " password = \"yes\""),
              AastraFlags(destroyOnExit, beep),
              ">\n"),
         Line("<Title>", title, "</Title>\n"),
         Line("<Prompt>", params.prompt, "</Prompt>\n"),
         Line("<URL>", params.URL, "</URL>\n"),
         Line("<Parameter>", params.parameter, "</Parameter>\n"),
         Line("<Default>", params.defaultValue, "</Default>\n"),
         Each(softKeys, AastraSoftKeyItem),
         "</AastraIPPhoneInputScreen>\n");
}
