#include <teleform/core/elements.h>
#include <teleform/snom/input.h>

SnomIPPhoneInput::SnomIPPhoneInput(const std::string& theTitle, const std::string& theInputFlags)
    : IPPhoneInputXML(theTitle.c_str()), inputFlags(theInputFlags) {}

SnomIPPhoneInput::~SnomIPPhoneInput() = default;

bool SnomIPPhoneInput::SetParams(const std::string& prompt, const std::string& url,
                                 const std::string& parameter, const std::string& defaultValue) {
  if (prompt.empty() || url.empty() || parameter.empty()) return false;
  params = Params{prompt, url, parameter, defaultValue};
  return true;
}

void SnomIPPhoneInput::Render(std::string& out) {
  using namespace teleform;
  Append(out,
         Line("<SnomIPPhoneInput>"),
         Line("<Title>", title, "</Title>"),
         Line("<Prompt>", params.prompt, "</Prompt>"),
         Line("<URL>", params.URL, "</URL>"),
         Line("<InputItem>"),
         Line("<DisplayName>", params.prompt, "</DisplayName>"),
         Line("<QueryStringParam>", params.queryStringParam, "</QueryStringParam>"),
         Line("<DefaultValue>", params.defaultValue, "</DefaultValue>"),
         Line("<InputFlags>", inputFlags, "</InputFlags>"),
         Line("</InputItem>"),
         ForEach(softKeys, SoftKeyItem),
         Line("</SnomIPPhoneInput>"));
}
