// A check of SortDirectoryItems on arbitrary names.
#pragma once

#include <teleform/core/documents.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "documents.h"

// A directory with public entries and the kind's default operations.
class ExposedDirectory : public IPPhoneDirectoryXML {
 public:
  ExposedDirectory() : IPPhoneDirectoryXML(nullptr, 7) {}
  using IPPhoneDirectoryXML::entries;
  void Render(std::string& /*out*/) override {}
  std::vector<std::pair<std::string, std::string>> Content() const {
    std::vector<std::pair<std::string, std::string>> pairs;
    pairs.reserve(entries.size());
    for (const auto& entry : entries) pairs.emplace_back(entry->GetName(), entry->GetTelephone());
    return pairs;
  }
};

// Sorts the names twice and compares both results with std::stable_sort; the telephones distinguish
// equal names. Then verifies that compare_case never contradicts the order.
// @throws std::logic_error that describes the first violation.
inline void VerifySorting(const std::vector<std::string>& names) {
  ExposedDirectory directory;
  for (const auto& name : names) {
    directory.entries.push_back(
        std::make_unique<IPPhoneDirectoryEntry>(name, std::to_string(directory.entries.size())));
  }
  auto expected = directory.Content();
  std::stable_sort(expected.begin(), expected.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  for (const char* pass : {"first", "second"}) {
    directory.SortDirectoryItems();
    if (directory.Content() != expected) {
      throw std::logic_error(std::string("the ") + pass + " sort gives a wrong order");
    }
  }
  const std::size_t compared = std::min<std::size_t>(names.size(), 12);
  for (std::size_t a = 0; a < compared; ++a) {
    for (std::size_t b = 0; b <= a; ++b) {
      if (compare_case(directory.entries[a].get(), directory.entries[b].get())) {
        throw std::logic_error("compare_case contradicts the order");
      }
    }
  }
}

// Names from a small alphabet, most with a common prefix, so that many are equal or differ late.
inline std::vector<std::string> RandomNames(const RandomBelow& randomBelow) {
  const std::string letters("\0a\x7F\x80\xFF", 5);
  const unsigned alphabet = 1 + randomBelow(5);
  const unsigned maxSize = 1 + randomBelow(20);
  const std::string prefix(randomBelow(3) * 7 + randomBelow(3), 'b');
  std::vector<std::string> names(randomBelow(200));
  for (auto& name : names) {
    name = prefix.substr(0, randomBelow(4) == 0 ? randomBelow(20) : prefix.npos);
    for (unsigned i = randomBelow(maxSize); i-- > 0;) name += letters[randomBelow(alphabet)];
  }
  return names;
}
