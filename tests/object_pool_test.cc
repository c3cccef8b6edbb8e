// Objects of documents that have ended, and who may have them.
#include <gtest/gtest.h>

#include "allocations.h"
#include "documents.h"

namespace {

const std::string kLong(40, 'x');

template <typename Directory>
std::size_t AllocationsOf(std::size_t count) {
  auto& allocations = Allocations::StartCounting();
  Directory directory("", 1 << 30);
  for (std::size_t i = 0; i < count; ++i) directory.AppendEntry(kLong, kLong);
  return allocations.count;
}

#ifdef POOLS_OBJECTS
TEST(ObjectPool, KeepsABoundedShareOfEachClass) {
  ExpectToFreeAll([] {
    const long before = Allocations::LiveBytes();
    for (int round = 0; round < 3; ++round) {
      AllocationsOf<CiscoIPPhoneDirectory>(10000);
      AllocationsOf<SnomIPPhoneDirectory>(32);
      EXPECT_EQ(AllocationsOf<SnomIPPhoneDirectory>(32), 1U);  // the vector
      EXPECT_EQ(AllocationsOf<CiscoIPPhoneDirectory>(32), round == 0 ? 97U : 1U);
      EXPECT_LT(Allocations::LiveBytes() - before, 144 << 10);
    }
    {  // ends when others have filled the pool
      SnomIPPhoneDirectory large("", 1 << 30);
      for (int i = 0; i < 2000; ++i) large.AppendEntry(kLong, kLong);
      AllocationsOf<SnomIPPhoneDirectory>(1);
      AllocationsOf<CiscoIPPhoneDirectory>(10000);
    }
    EXPECT_LT(Allocations::LiveBytes() - before, 144 << 10);
  });
}
#endif

TEST(ObjectPool, LeavesEntriesToTheirOwners) {
  ExpectToFreeAll([] {
    std::vector<std::unique_ptr<IPPhoneDirectoryEntry>> kept;
    for (const auto& name : {kLong, kLong + "2", std::string("3")}) {
      OpenDirectory directory;
      directory.AppendEntry(name, "1");
      directory.AppendEntry("dropped", "1");
      directory.entries.emplace_back(new CiscoIPPhoneDirectoryEntry("also dropped", "1"));
      kept.push_back(std::move(directory.entries.front()));
      EXPECT_EQ(kept.back()->GetName(), name);
    }
    EXPECT_EQ(kept.front()->GetName(), kLong);
    std::thread([taken = std::move(kept)]() mutable { taken.clear(); }).join();
  });
}

TEST(ObjectPool, DestroysEntriesOfSubclasses) {
  static int destroyed = 0;
  struct Entry : CiscoIPPhoneDirectoryEntry {
    Entry() : CiscoIPPhoneDirectoryEntry("name", "1") {}
    ~Entry() override {  // fills and ends another document meanwhile
      ++destroyed;
      AllocationsOf<CiscoIPPhoneDirectory>(3);
    }
    std::string more = kLong;
  };
  ExpectToFreeAll([] {
    OpenDirectory directory;
    directory.AppendEntry("own", "1");
    for (int i = 0; i < 3; ++i) directory.entries.emplace_back(new Entry);
  });
  EXPECT_EQ(destroyed, 3);
}

// Its destructor runs after what the thread pools is freed.
TEST(ObjectPool, ServesDocumentsThatOutliveIt) {
  ExpectToFreeAll([] {
    static thread_local OpenDirectory last;
    last.AppendEntry(kLong, kLong);
  });
}

}  // namespace
