// Runs the randomized tests of documents and sorting on fuzzer input.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>

#include "documents.h"
#include "sorting.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const auto randomBelow = [&](unsigned end) { return input.ConsumeIntegralInRange(0U, end - 1); };
  const auto documents = static_cast<unsigned>(kDocumentClasses.size());
  const unsigned target = randomBelow(documents + 1);
  if (target < documents) {
    CompareWithModel(kDocumentClasses[target], randomBelow);
  } else {
    VerifySorting(RandomNames(randomBelow));
  }
  return 0;
}
