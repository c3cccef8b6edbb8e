#include <teleform/aastra/elements.h>
#include <teleform/aastra/text_screen.h>

AastraIPPhoneTextScreen::AastraIPPhoneTextScreen(const std::string& theTitle)
    : IPPhoneTextScreenXML(theTitle.c_str()) {}

AastraIPPhoneTextScreen::~AastraIPPhoneTextScreen() = default;

void AastraIPPhoneTextScreen::SetText(const std::string& theText) { text = theText; }

void AastraIPPhoneTextScreen::Render(std::string& out) {
  using namespace teleform;
  Append(out,
         Line("<AastraIPPhoneTextScreen", AastraFlags(destroyOnExit, beep), ">"),
         Line("<Title>", title, "</Title>"),
         Line("<Text>", UpToNul(text), "</Text>"),
         ForEach(softKeys, AastraSoftKeyItem),
         Line("</AastraIPPhoneTextScreen>"));
}
