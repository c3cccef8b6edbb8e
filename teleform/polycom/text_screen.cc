#include <teleform/core/pieces.h>
#include <teleform/polycom/text_screen.h>

PolycomIPPhoneTextScreen::PolycomIPPhoneTextScreen(const std::string& theTitle)
    : IPPhoneTextScreenXML(theTitle.c_str()) {
  contentType = "text/html";
}

PolycomIPPhoneTextScreen::~PolycomIPPhoneTextScreen() = default;

void PolycomIPPhoneTextScreen::SetText(const std::string& theText) { text = theText; }

void PolycomIPPhoneTextScreen::Render(std::string& out) {
  using namespace teleform;
  Append(out,
         Line("<html>"),
         Line("<Title>", title, "</Title>"),
         Line("<body>"),
         Line("<p>", text, "</p>"),
         Line("</body>"),
         Line("</html>"));
}
