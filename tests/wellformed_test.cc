// Documents with escaped text, and those composed of any screen, are well-formed XML, or HTML for
// the Polycom page.
#include <gtest/gtest.h>
#include <libxml/HTMLparser.h>
#include <libxml/parser.h>

#include <memory>

#include "documents.h"
#include "screens.h"

namespace {

template <typename Context, typename Read>
bool Parses(Context* context, void (*free)(Context*), Read read, const std::string& text) {
  const std::unique_ptr<Context, void (*)(Context*)> parser(context, free);
  constexpr int kOptions = XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NONET;
  xmlFreeDoc(
      read(parser.get(), text.data(), static_cast<int>(text.size()), nullptr, "UTF-8", kOptions));
  return xmlCtxtGetLastError(parser.get()) == nullptr;
}
bool IsXML(const std::string& text) {
  return Parses(xmlNewParserCtxt(), xmlFreeParserCtxt, xmlCtxtReadMemory, text);
}
bool IsHTML(const std::string& text) {
  return Parses(htmlNewParserCtxt(), htmlFreeParserCtxt, htmlCtxtReadMemory, text);
}

void ExpectWellFormed(IPPhoneXML& document) {
  const bool isHTML = document.GetContentType() == "text/html";
  EXPECT_TRUE((isHTML ? IsHTML : IsXML)(RenderToString(document))) << RenderToString(document);
}

TEST(Documents, AreWellFormed) {
  const std::string escaped = "Zo\xC3\xAB &amp; &lt;Ann&gt; &quot;\n\t]]&gt;";
  const Arguments arguments = {{escaped, escaped, escaped, escaped}, 1, 1, 30, 1, ~0UL};
  for (const auto& documentClass : kDocumentClasses) {
    const auto document = documentClass.make({escaped, 10, escaped, true});
    ApplyAll(*document, arguments);
    ExpectWellFormed(*document);
  }
  EXPECT_FALSE(IsXML("<a>&</a>"));
  EXPECT_FALSE(IsHTML("<p>&nonsense;</p></b>"));
}

TEST(Screens, BecomeWellFormedDocumentsWhateverTheyHold) {
  using namespace teleform::screens;
  for (const auto& sample : kSampleTexts) {
    for (const auto& screen : kSampleScreens) {
      for (const auto& facts : AllMakers()) {
        const auto document = screen.compose(facts.maker, sample.text, SampleKeys(sample.text));
        if (document != nullptr) ExpectWellFormed(*document);
      }
    }
  }
}

}  // namespace
