// Feeds bytes to what the tests feed chance to: a document with its operations, or names to sort.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>

#include "documents.h"
#include "sorting.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const auto choose = [&](unsigned end) { return input.ConsumeIntegralInRange(0U, end - 1); };
  const auto documents = static_cast<unsigned>(kDocumentClasses.size());
  const unsigned chosen = choose(documents + 1);
  if (chosen < documents) {
    CompareWithModel(kDocumentClasses[chosen], choose);
  } else {
    CheckSorting(ChooseNames(choose));
  }
  return 0;
}
