// With text that is fit for XML, what the library writes is XML: it parses, and has the elements
// and attributes that the makers' pages show. The Polycom page is HTML, and the parser finds in it
// only what its fixed markup is known for.
#include <gtest/gtest.h>
#include <libxml/HTMLparser.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <memory>
#include <set>
#include <string>

#include "documents.h"

namespace {

using Parsed = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;

Parsed Parse(const std::string& text) {
  return {xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, "UTF-8",
                        XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NONET),
          xmlFreeDoc};
}

std::string NameOf(const void* name) { return static_cast<const char*>(name); }

// The elements below `node`, each with its attributes, as paths; repeated ones count once. The
// flags and the soft keys are left out: not every example shows them.
void Collect(const xmlNode* node, const std::string& path, std::set<std::string>& paths) {
  for (; node != nullptr; node = node->next) {
    const std::string name = node->type == XML_ELEMENT_NODE ? NameOf(node->name) : "";
    if (name.empty() || name.rfind("SoftKey", 0) == 0) continue;
    const std::string here = path + "/" + name;
    paths.insert(here);
    for (const auto* attribute = node->properties; attribute != nullptr;
         attribute = attribute->next) {
      const std::string flag = NameOf(attribute->name);
      if (flag != "destroyOnExit" && flag != "Beep") paths.insert(here + "@" + flag);
    }
    Collect(node->children, here, paths);
  }
}

std::set<std::string> StructureOf(const Parsed& parsed) {
  std::set<std::string> paths;
  if (parsed != nullptr) Collect(xmlDocGetRootElement(parsed.get()), "", paths);
  return paths;
}

TEST(WellFormed, XmlDocumentsParseAndHaveTheElementsThatTheirPagesShow) {
  const std::string fit = "Zo\xC3\xAB &amp; &lt;Ann&gt; &quot;\n\t]]&gt;";
  for (const auto& documentClass : kDocumentClasses) {
    if (documentClass.contentType != std::string("text/xml")) continue;
    const auto document = documentClass.make(fit.c_str(), 10);
    for (const auto& fill : FillingOperations(*document, fit)) fill(*document);
    document->SetAttributes(AttrDestroyOnExit | AttrBeep);
    const auto structure = StructureOf(Parse(Rendered(*document)));
    EXPECT_FALSE(structure.empty()) << documentClass.name;
    EXPECT_EQ(structure, StructureOf(Parse(kShownDocuments.at(documentClass.name))));
  }
  EXPECT_EQ(Parse("<a>&</a>"), nullptr) << "the parser accepts anything";
}

// The page has no document type and no head; libxml2's parser supplies both without a word. That
// the title stands outside a head is the one thing that a validator would add.
TEST(WellFormed, PolycomPageIsAcceptedAsHtml) {
  PolycomIPPhoneTextScreen screen("Zo\xC3\xAB &amp; co");
  screen.SetText("Soup <b>and</b> bread");
  const std::string page = Rendered(screen);
  const std::unique_ptr<xmlParserCtxt, decltype(&htmlFreeParserCtxt)> parser(htmlNewParserCtxt(),
                                                                             htmlFreeParserCtxt);
  const Parsed parsed(htmlCtxtReadMemory(parser.get(), page.data(), static_cast<int>(page.size()),
                                         nullptr, "UTF-8", HTML_PARSE_NOERROR | HTML_PARSE_NONET),
                      xmlFreeDoc);
  ASSERT_NE(parsed, nullptr);
  const xmlError* const error = xmlCtxtGetLastError(parser.get());
  EXPECT_EQ(error, nullptr) << error->message;
  EXPECT_EQ(StructureOf(parsed),
            (std::set<std::string>{"/html", "/html/head", "/html/head/title", "/html/body",
                                   "/html/body/p", "/html/body/p/b"}));
}

}  // namespace
