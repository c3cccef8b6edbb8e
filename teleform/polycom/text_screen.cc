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
         "<html>\n",
         Line("<Title>", title, "</Title>\n"),
         "<body>\n",
         Line("<p>", text, "</p>\n"),
         "</body>\n",
         "</html>\n");
}
