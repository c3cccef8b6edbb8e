#include "phonebook/tests/parsed_page.h"

#include <gtest/gtest.h>
#include <libxml/xpath.h>

namespace phonebook::tests {

ParsedPage::ParsedPage(const std::string& text)
    : document(xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, "UTF-8",
                             XML_PARSE_NONET | XML_PARSE_HUGE),
               xmlFreeDoc) {
  EXPECT_NE(document, nullptr) << text;
}

Texts ParsedPage::Find(const std::string& path) const {
  Texts texts;
  const std::unique_ptr<xmlXPathContext, decltype(&xmlXPathFreeContext)> context(
      xmlXPathNewContext(document.get()), xmlXPathFreeContext);
  const std::unique_ptr<xmlXPathObject, decltype(&xmlXPathFreeObject)> found(
      xmlXPathEvalExpression(reinterpret_cast<const xmlChar*>(path.c_str()), context.get()),
      xmlXPathFreeObject);
  const xmlNodeSet* nodes = found == nullptr ? nullptr : found->nodesetval;
  for (int i = 0; nodes != nullptr && i < nodes->nodeNr; ++i) {
    xmlChar* content = xmlNodeGetContent(nodes->nodeTab[i]);
    texts.emplace_back(reinterpret_cast<const char*>(content));
    xmlFree(content);
  }
  return texts;
}

std::string ParsedPage::First(const std::string& path) const {
  const auto found = Find(path);
  return found.empty() ? "" : found.front();
}

std::string ParsedPage::Root() const {
  const xmlNode* root = xmlDocGetRootElement(document.get());
  return root == nullptr ? "" : reinterpret_cast<const char*>(root->name);
}

Texts ParsedPage::Items() const {
  const std::string others = "[not(. = 'Home' or . = 'Search' or . = 'Previous' or . = 'Next')]";
  return Find("//MenuItem/Prompt | //DirectoryEntry/Name" + others + " | //p/a" + others);
}

Texts ParsedPage::Addresses() const {
  return Find("//@*[starts-with(., 'http:')] | //text()[starts-with(., 'http:')]");
}

Texts ParsedPage::Numbers() const {
  return Find(
      "//Telephone[not(starts-with(., 'http:'))] | //@href[starts-with(., 'tel:')] |"
      " //ExecuteItem/@URI");
}

}  // namespace phonebook::tests
