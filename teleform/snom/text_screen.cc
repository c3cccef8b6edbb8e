#include <teleform/core/elements.h>
#include <teleform/snom/text_screen.h>

SnomIPPhoneTextScreen::SnomIPPhoneTextScreen(const std::string& theTitle)
    : IPPhoneTextScreenXML(theTitle.c_str()) {}

SnomIPPhoneTextScreen::~SnomIPPhoneTextScreen() = default;

void SnomIPPhoneTextScreen::SetText(const std::string& theText) { text = theText; }

void SnomIPPhoneTextScreen::Render(std::string& out) {
  using namespace teleform;
  Append(out,
         Line("<SnomIPPhoneText>"),
         Line("<Title>", title, "</Title>"),
         Line("<Text>", text, "</Text>"),
         ForEach(softKeys, SoftKeyItem),
         Line("</SnomIPPhoneText>"));
}
