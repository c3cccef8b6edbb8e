// Any names: sorting gives a permutation in the order that is promised, which compare_case never
// contradicts; and compare_case is irreflexive, asymmetric and transitive.
#include <fuzzer/FuzzedDataProvider.h>
#include <teleform/core/documents.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace {

void Expect(bool holds) {
  if (!holds) std::abort();
}

using Pairs = std::vector<std::pair<std::string, std::string>>;

class OpenDirectory : public IPPhoneDirectoryXML {
 public:
  explicit OpenDirectory(const Pairs& pairs) : IPPhoneDirectoryXML("", 0) {
    for (const auto& [name, telephone] : pairs) {
      entries.push_back(std::make_unique<IPPhoneDirectoryEntry>(name, telephone));
    }
  }
  void Render(std::string& /*out*/) override {}
  Pairs Content() const {
    Pairs pairs;
    for (const auto& entry : entries) pairs.emplace_back(entry->GetName(), entry->GetTelephone());
    return pairs;
  }
  void CheckOrder() const {
    const auto before = [&](std::size_t a, std::size_t b) {
      return compare_case(entries[a].get(), entries[b].get());
    };
    const std::size_t some = std::min<std::size_t>(entries.size(), 12);
    for (std::size_t a = 0; a < some; ++a) {
      Expect(!before(a, a));
      for (std::size_t b = 0; b < some; ++b) {
        Expect(!before(a, b) || (!before(b, a) && a < b));
        Expect((*entries[a] < *entries[b]) == (*entries[b] > *entries[a]));
        Expect((*entries[a] <= *entries[b]) == !(*entries[b] < *entries[a]));
        Expect(!before(a, b) || *entries[a] < *entries[b]);
        for (std::size_t c = 0; c < some; ++c) {
          Expect(!(before(a, b) && before(b, c)) || before(a, c));
        }
      }
    }
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  Pairs pairs;
  while (input.remaining_bytes() > 0 && pairs.size() < 2000) {
    // Names that begin like an earlier one make the sort look at all of them.
    std::string name = input.ConsumeRandomLengthString(40);
    if (!pairs.empty() && input.ConsumeBool()) {
      const auto& other = pairs[input.ConsumeIntegralInRange<std::size_t>(0, pairs.size() - 1)];
      name.insert(0, other.first, 0, input.ConsumeIntegralInRange<std::size_t>(0, 60));
    }
    const std::size_t copies =
        input.ConsumeBool() ? std::size_t{1} : input.ConsumeIntegralInRange<std::size_t>(1, 40);
    for (std::size_t i = 0; i < copies; ++i) pairs.emplace_back(name, std::to_string(pairs.size()));
  }
  OpenDirectory directory(pairs);
  directory.SortDirectoryItems();
  std::stable_sort(pairs.begin(), pairs.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  Expect(directory.Content() == pairs);
  directory.CheckOrder();
  return 0;
}
