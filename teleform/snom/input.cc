#include <teleform/core/elements.h>
#include <teleform/snom/input.h>

#include <utility>

SnomIPPhoneInput::SnomIPPhoneInput(const std::string& theTitle, const std::string& theInputFlags)
    : IPPhoneInputXML(theTitle.c_str()), inputFlags(theInputFlags) {}

SnomIPPhoneInput::~SnomIPPhoneInput() = default;

bool SnomIPPhoneInput::SetParams(const std::string& prompt, const std::string& url,
                                 const std::string& parameter, const std::string& defaultValue) {
  if (prompt.empty() || url.empty() || parameter.empty()) return false;
  // Field by field: GCC 11 leaks the members of an aggregate whose initialization throws.
  Params filled;
  filled.prompt = prompt;
  filled.URL = url;
  filled.queryStringParam = parameter;
  filled.defaultValue = defaultValue;
  params = std::move(filled);
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
