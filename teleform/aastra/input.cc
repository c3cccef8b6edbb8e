#include <teleform/aastra/elements.h>
#include <teleform/aastra/input.h>

#include <utility>

AastraIPPhoneInput::AastraIPPhoneInput(const std::string& theTitle, const std::string& theType,
                                       bool thePassword)
    : IPPhoneInputXML(theTitle.c_str()), password(thePassword), type(theType) {}

AastraIPPhoneInput::~AastraIPPhoneInput() = default;

bool AastraIPPhoneInput::SetParams(const std::string& prompt, const std::string& url,
                                   const std::string& parameter, const std::string& defaultValue) {
  if (prompt.empty() || url.empty() || parameter.empty()) return false;
  // Field by field: GCC 11 leaks the members of an aggregate whose initialization throws.
  Params filled;
  filled.prompt = prompt;
  filled.URL = url;
  filled.parameter = parameter;
  filled.defaultValue = defaultValue;
  params = std::move(filled);
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
              ">"),
         Line("<Title>", title, "</Title>"),
         Line("<Prompt>", params.prompt, "</Prompt>"),
         Line("<URL>", params.URL, "</URL>"),
         Line("<Parameter>", params.parameter, "</Parameter>"),
         Line("<Default>", params.defaultValue, "</Default>"),
         ForEach(softKeys, AastraSoftKeyItem),
         Line("</AastraIPPhoneInputScreen>"));
}
