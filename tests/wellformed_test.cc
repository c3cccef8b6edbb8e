// With text that is fit for XML, what the library writes is XML: it parses, and has the elements
// and attributes that the makers' pages show. The Polycom page is HTML, and the parser finds in it
// only what its fixed markup is known for.
#include <gtest/gtest.h>
#include <libxml/HTMLparser.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "documents.h"

namespace {

using Parsed = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;

Parsed Parse(const std::string& text) {
  return {xmlReadMemory(text.data(),
                        static_cast<int>(text.size()),
                        nullptr,
                        "UTF-8",
                        XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NONET),
          xmlFreeDoc};
}

std::string NameOf(const void* name) { return static_cast<const char*>(name); }

// The elements below `node`, each with its attributes, as paths; repeated ones count once.
void Collect(const xmlNode* node, const std::string& path, std::set<std::string>& paths) {
  for (; node != nullptr; node = node->next) {
    if (node->type != XML_ELEMENT_NODE) continue;
    const std::string here = path + "/" + NameOf(node->name);
    paths.insert(here);
    for (const xmlAttr* attribute = node->properties; attribute != nullptr;
         attribute = attribute->next) {
      paths.insert(here + "@" + NameOf(attribute->name));
    }
    Collect(node->children, here, paths);
  }
}

// The elements of each document, without those of soft keys and its attributes.
const std::map<std::string, std::vector<std::string>> kElements = {
    {"AastraIPPhoneTextScreen", {"/Title", "/Text"}},
    {"AastraIPPhoneMenu", {"/Title", "/MenuItem", "/MenuItem/Prompt", "/MenuItem/URI"}},
    {"AastraIPPhoneDirectory", {"/Title", "/MenuItem", "/MenuItem/Prompt", "/MenuItem/URI"}},
    {"AastraIPPhoneInput",
     {"@type", "@password", "/Title", "/Prompt", "/URL", "/Parameter", "/Default"}},
    {"AastraIPPhoneExecute", {"/ExecuteItem", "/ExecuteItem@URI"}},
    {"AastraIPPhoneStatus",
     {"/Session", "/Message", "/Message@index", "/Message@type", "/Message@Timeout"}},
    {"CiscoIPPhoneDirectory",
     {"/Title", "/DirectoryEntry", "/DirectoryEntry/Name", "/DirectoryEntry/Telephone"}},
    {"SnomIPPhoneTextScreen", {"/Title", "/Text"}},
    {"SnomIPPhoneMenu",
     {"/Title", "/DirectoryEntry", "/DirectoryEntry/Name", "/DirectoryEntry/Telephone"}},
    {"SnomIPPhoneDirectory",
     {"/Title", "/DirectoryEntry", "/DirectoryEntry/Name", "/DirectoryEntry/Telephone"}},
    {"SnomIPPhoneInput",
     {"/Title",
      "/Prompt",
      "/URL",
      "/InputItem",
      "/InputItem/DisplayName",
      "/InputItem/QueryStringParam",
      "/InputItem/DefaultValue",
      "/InputItem/InputFlags"}},
    {"YealinkIPPhoneTextScreen", {"/Title", "/Text"}},
    {"YealinkIPPhoneMenu",
     {"/Title", "/DirectoryEntry", "/DirectoryEntry/Name", "/DirectoryEntry/Telephone"}},
    {"YealinkIPPhoneDirectory",
     {"/Title", "/DirectoryEntry", "/DirectoryEntry/Name", "/DirectoryEntry/Telephone"}},
};

TEST(WellFormed, XmlDocumentsParseAndHaveTheirElements) {
  for (const auto& documentClass : kDocumentClasses) {
    if (documentClass.contentType != std::string("text/xml")) continue;
    SCOPED_TRACE(documentClass.name);
    const std::string fit = "Zo\xC3\xAB &amp; &lt;Ann&gt; &quot;\n\t]]&gt;";
    const auto document = documentClass.make(fit.c_str(), 10);
    for (const auto& fill : FillingOperations(*document, fit)) fill(*document);
    document->SetAttributes(AttrDestroyOnExit | AttrBeep);
    const Parsed parsed = Parse(Rendered(*document));
    ASSERT_NE(parsed, nullptr);

    const std::string root = std::string("/") + documentClass.root;
    std::set<std::string> expected = {root};
    for (const auto& path : kElements.at(documentClass.name)) expected.insert(root + path);
    const auto add = [&](bool isThere, std::vector<std::string> paths) {
      for (const auto& path : paths) {
        if (isThere) expected.insert(root + path);
      }
    };
    add(documentClass.writesDestroyOnExit, {"@destroyOnExit"});
    add(documentClass.writesBeep, {"@Beep"});
    add(documentClass.writesLinks, {"@previous", "@next"});
    add(dynamic_cast<AastraIPPhone*>(document.get()) != nullptr,
        {"/SoftKey", "/SoftKey@index", "/SoftKey/Label", "/SoftKey/URI"});
    add(dynamic_cast<SnomIPPhone*>(document.get()) != nullptr ||
            dynamic_cast<YealinkIPPhone*>(document.get()) != nullptr,
        {"/SoftKeyItem", "/SoftKeyItem/Name", "/SoftKeyItem/URL"});
    std::set<std::string> found;
    Collect(xmlDocGetRootElement(parsed.get()), "", found);
    EXPECT_EQ(found, expected);
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
  const Parsed parsed(htmlCtxtReadMemory(parser.get(),
                                         page.data(),
                                         static_cast<int>(page.size()),
                                         nullptr,
                                         "UTF-8",
                                         HTML_PARSE_NOERROR | HTML_PARSE_NONET),
                      xmlFreeDoc);
  ASSERT_NE(parsed, nullptr);
  const xmlError* const error = xmlCtxtGetLastError(parser.get());
  EXPECT_EQ(error, nullptr) << error->message;
  std::set<std::string> found;
  Collect(xmlDocGetRootElement(parsed.get()), "", found);
  EXPECT_EQ(found,
            (std::set<std::string>{"/html",
                                   "/html/head",
                                   "/html/head/title",
                                   "/html/body",
                                   "/html/body/p",
                                   "/html/body/p/b"}));
}

}  // namespace
