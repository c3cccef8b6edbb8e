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
         "<SnomIPPhoneInput>\n",
         Line("<Title>", title, "</Title>\n"),
         Line("<Prompt>", params.prompt, "</Prompt>\n"),
         Line("<URL>", params.URL, "</URL>\n"),
         "<InputItem>\n",
         Line("<DisplayName>", params.prompt, "</DisplayName>\n"),
         Line("<QueryStringParam>", params.queryStringParam, "</QueryStringParam>\n"),
         Line("<DefaultValue>", params.defaultValue, "</DefaultValue>\n"),
         Line("<InputFlags>", inputFlags, "</InputFlags>\n"),
         "</InputItem>\n",
         Each(softKeys, SoftKeyItem),
         "</SnomIPPhoneInput>\n");
}
