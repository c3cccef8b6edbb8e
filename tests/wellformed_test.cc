// With text that is fit for XML, what the library writes is XML, and the Polycom page HTML.
#include <gtest/gtest.h>
#include <libxml/HTMLparser.h>
#include <libxml/parser.h>

#include <memory>

#include "documents.h"

namespace {

// Whether the text parses without an error.
template <typename Context, typename Read>
bool Parses(Context* context, void (*free)(Context*), Read read, const std::string& text) {
  const std::unique_ptr<Context, void (*)(Context*)> parser(context, free);
  constexpr int kQuietly = XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NONET;
  xmlFreeDoc(
      read(parser.get(), text.data(), static_cast<int>(text.size()), nullptr, "UTF-8", kQuietly));
  return xmlCtxtGetLastError(parser.get()) == nullptr;
}
bool IsXML(const std::string& text) {
  return Parses(xmlNewParserCtxt(), xmlFreeParserCtxt, xmlCtxtReadMemory, text);
}
bool IsHTML(const std::string& text) {
  return Parses(htmlNewParserCtxt(), htmlFreeParserCtxt, htmlCtxtReadMemory, text);
}

TEST(Documents, AreWellFormed) {
  const std::string fit = "Zo\xC3\xAB &amp; &lt;Ann&gt; &quot;\n\t]]&gt;";
  const Arguments arguments = {{fit, fit, fit, fit}, 1, 1, 30, 1, ~0UL};
  for (const auto& row : kDocumentClasses) {
    const auto document = row.make({fit, 10, fit, true});
    FillWith(*document, arguments);
    const bool isHTML = document->GetContentType() == "text/html";
    EXPECT_TRUE((isHTML ? IsHTML : IsXML)(Rendered(*document))) << Rendered(*document);
  }
  EXPECT_FALSE(IsXML("<a>&</a>"));
  EXPECT_FALSE(IsHTML("<p>&nonsense;</p></b>"));
}

}  // namespace
