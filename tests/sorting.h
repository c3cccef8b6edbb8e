// Sorting, held to its promises on any names.
#pragma once

#include <teleform/core/documents.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "documents.h"

// A directory whose entries can be seen, with the kind's own operations.
class OpenDirectory : public IPPhoneDirectoryXML {
 public:
  OpenDirectory() : IPPhoneDirectoryXML(nullptr, 7) {}
  using IPPhoneDirectoryXML::entries;
  void Render(std::string& /*out*/) override {}
  std::vector<std::pair<std::string, std::string>> Content() const {
    std::vector<std::pair<std::string, std::string>> pairs;
    for (const auto& entry : entries) pairs.emplace_back(entry->GetName(), entry->GetTelephone());
    return pairs;
  }
};

// Sorts these names and compares with what a plain stable sort makes of them; telephones tell equal
// names apart. Sorted again, they stay as they are, and compare_case contradicts nowhere.
// @throws std::logic_error when it is otherwise.
inline void CheckSorting(const std::vector<std::string>& names) {
  OpenDirectory directory;
  for (const auto& name : names) {
    directory.entries.push_back(
        std::make_unique<IPPhoneDirectoryEntry>(name, std::to_string(directory.entries.size())));
  }
  auto expected = directory.Content();
  std::stable_sort(expected.begin(), expected.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  for (const char* time : {"first", "second"}) {
    directory.SortDirectoryItems();
    if (directory.Content() != expected) {
      throw std::logic_error(std::string("the order is another at the ") + time + " time");
    }
  }
  const std::size_t some = std::min<std::size_t>(names.size(), 12);
  for (std::size_t a = 0; a < some; ++a) {
    for (std::size_t b = 0; b <= a; ++b) {
      if (compare_case(directory.entries[a].get(), directory.entries[b].get())) {
        throw std::logic_error("compare_case contradicts the order");
      }
    }
  }
}

// Few letters make many names alike, and beginnings in common make the sort look further in.
inline std::vector<std::string> ChooseNames(const Choose& choose) {
  const std::string letters("\0a\x7F\x80\xFF", 5);
  const unsigned alphabet = 1 + choose(5);
  const unsigned longest = 1 + choose(20);
  const std::string beginning(choose(3) * 7 + choose(3), 'b');
  std::vector<std::string> names(choose(200));
  for (auto& name : names) {
    name = beginning.substr(0, choose(4) == 0 ? choose(20) : beginning.npos);
    for (unsigned i = choose(longest); i-- > 0;) name += letters[choose(alphabet)];
  }
  return names;
}
