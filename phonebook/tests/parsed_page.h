/// @file
/// A document as the phone's parser sees it. The Polycom pages are HTML that is XML as well.
#pragma once

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/xpath.h>

#include <memory>
#include <string>

#include "phonebook/tests/server_process.h"

namespace phonebook::tests {

class ParsedPage {
 public:
  explicit ParsedPage(const std::string& text)
      : document(xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, "UTF-8",
                               XML_PARSE_NONET | XML_PARSE_HUGE),
                 xmlFreeDoc) {
    EXPECT_NE(document, nullptr) << text;
  }

  /// The contents of the nodes that an XPath expression selects.
  Texts Find(const std::string& path) const {
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
  std::string First(const std::string& path) const {
    const auto found = Find(path);
    return found.empty() ? "" : found.front();
  }

  /// The name of the root element.
  std::string Root() const {
    const xmlNode* root = xmlDocGetRootElement(document.get());
    return root == nullptr ? "" : reinterpret_cast<const char*>(root->name);
  }

  /// The names of items or entries that are not links of every page.
  Texts Items() const {
    const std::string others = "[not(. = 'Home' or . = 'Search' or . = 'Previous' or . = 'Next')]";
    return Find("//MenuItem/Prompt | //DirectoryEntry/Name" + others + " | //p/a" + others);
  }
  Texts Addresses() const {
    return Find("//@*[starts-with(., 'http:')] | //text()[starts-with(., 'http:')]");
  }

  /// What the page can dial.
  Texts Numbers() const {
    return Find(
        "//Telephone[not(starts-with(., 'http:'))] | //@href[starts-with(., 'tel:')] |"
        " //ExecuteItem/@URI");
  }

 private:
  std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document;
};

}  // namespace phonebook::tests
