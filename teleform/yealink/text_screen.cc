#include <teleform/core/pieces.h>
#include <teleform/yealink/text_screen.h>

YealinkIPPhoneTextScreen::YealinkIPPhoneTextScreen(const std::string& theTitle)
    : IPPhoneTextScreenXML(theTitle.c_str()) {}

YealinkIPPhoneTextScreen::~YealinkIPPhoneTextScreen() = default;

void YealinkIPPhoneTextScreen::SetText(const std::string& theText) { text = theText; }

void YealinkIPPhoneTextScreen::Render(std::string& out) {
  using namespace teleform;
  Append(out,
         Line("<YealinkIPPhoneText>"),
         Line("<Title>", title, "</Title>"),
         Line("<Text>", text, "</Text>"),
         Line("</YealinkIPPhoneText>"));
}
