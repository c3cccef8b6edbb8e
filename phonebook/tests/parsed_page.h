/// @file
/// A document as the phone's parser sees it. The Polycom pages are HTML that is XML as well.
#pragma once

#include <libxml/parser.h>

#include <memory>
#include <string>

#include "phonebook/tests/server_process.h"

namespace phonebook::tests {

class ParsedPage {
 public:
  explicit ParsedPage(const std::string& text);

  /// The contents of the nodes that an XPath expression selects.
  Texts Find(const std::string& path) const;
  std::string First(const std::string& path) const;

  /// The name of the root element.
  std::string Root() const;

  /// The names of items or entries that are not links of every page.
  Texts Items() const;
  Texts Addresses() const;

  /// What the page can dial.
  Texts Numbers() const;

 private:
  std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document;
};

}  // namespace phonebook::tests
