// What holds for every document of every maker.
#include "documents.h"

#include <gtest/gtest.h>

#include <new>
#include <random>
#include <thread>

#include "allocations.h"

namespace {

const std::string kLong = "a text that is too long to fit into a string without an allocation";
const Construction kLongConstruction = {kLong, 100, kLong, true};
const Arguments kLongArguments = {{kLong, kLong, kLong, kLong}, 7, 6, 2147483647, 1, ~0UL};

class EveryDocument : public testing::TestWithParam<DocumentClass> {
 protected:
  static std::unique_ptr<IPPhoneXML> Make() { return GetParam().make(kLongConstruction); }

  // With as many entries, if it has any, as it takes to be sorted in every way that the sort knows.
  static std::unique_ptr<IPPhoneXML> MakeFilled() {
    auto document = Make();
    FillWith(*document, kLongArguments);
    auto* const directory = dynamic_cast<IPPhoneDirectoryXML*>(document.get());
    for (int i = 0; directory != nullptr && i < 60; ++i) {
      directory->AppendEntry(kLong + std::to_string(i * 37 % 60), kLong);
    }
    return document;
  }
};

TEST_P(EveryDocument, DoesWhatItsModelDoes) {
  const auto seed = std::random_device{}();
  std::mt19937 random(seed);
  for (int round = 0; round < 300; ++round) {
    try {
      CompareWithModel(GetParam(), [&](unsigned end) { return unsigned(random() % end); });
    } catch (const std::logic_error& difference) {
      FAIL() << "seed " << seed << ", round " << round << ": " << difference.what();
    }
  }
}

TEST_P(EveryDocument, IsShownOnItsMakersPage) {
  EXPECT_EQ(kShownClasses.count(GetParam().name), 1U);
}

TEST_P(EveryDocument, CanBeDeletedThroughEachBase) {
  const long before = Allocations::Watch().alive;
  const auto deleteThrough = [](auto* none) {
    auto document = MakeFilled();
    auto* const base = dynamic_cast<decltype(none)>(document.get());
    if (base == nullptr) return;
    static_cast<void>(document.release());
    delete base;
  };
  deleteThrough(static_cast<IPPhoneXML*>(nullptr));
  deleteThrough(static_cast<IPPhoneTextScreenXML*>(nullptr));
  deleteThrough(static_cast<IPPhoneMenuXML*>(nullptr));
  deleteThrough(static_cast<IPPhoneDirectoryXML*>(nullptr));
  deleteThrough(static_cast<IPPhoneInputXML*>(nullptr));
  deleteThrough(static_cast<IPPhoneExecuteXML*>(nullptr));
  deleteThrough(static_cast<IPPhoneStatusXML*>(nullptr));
  deleteThrough(static_cast<AastraIPPhone*>(nullptr));
  deleteThrough(static_cast<SnomIPPhone*>(nullptr));
  deleteThrough(static_cast<YealinkIPPhone*>(nullptr));
  EXPECT_EQ(Allocations::Watch().alive, before);
}

TEST_P(EveryDocument, RendersWithOneAllocationAtMost) {
  const auto document = MakeFilled();
  std::string out;
  Allocations& allocations = Allocations::Watch();
  document->Render(out);
  EXPECT_EQ(allocations.made, 1U);
  out.clear();
  Allocations::Watch();
  document->Render(out);
  EXPECT_EQ(allocations.made, 0U);
}

// Each operation, with memory running out at each of its allocations: what the operation could not
// finish has not happened, and afterwards it can still be done.
TEST_P(EveryDocument, SurvivesRunningOutOfMemoryAnywhere) {
  const auto document = MakeFilled();
  const auto witness = MakeFilled();
  auto operations = OperationsOn(*document, kLongArguments);
  operations.push_back({"Render",
                        [out = std::string()](IPPhoneXML& rendered) mutable {
                          out = "kept";
                          const std::string before = out;
                          try {
                            rendered.Render(out);
                          } catch (const std::bad_alloc&) {
                            EXPECT_EQ(out, before);
                            throw;
                          }
                          return true;
                        },
                        nullptr});
  for (const auto& operation : operations) {
    for (std::size_t failAt = 1;; ++failAt) {
      ASSERT_LT(failAt, 1000U);
      const Operation copy = operation;
      const std::string before = Rendered(*document);
      Allocations::Watch(failAt);
      try {
        copy.apply(*document);
        Allocations::Watch();
        break;
      } catch (const std::bad_alloc&) {
        Allocations::Watch();
        ASSERT_EQ(Rendered(*document), before) << operation.name;
      }
    }
    operation.apply(*witness);
    ASSERT_EQ(Rendered(*document), Rendered(*witness)) << operation.name;
  }
}

TEST_P(EveryDocument, LeavesNothingBehindWhenItCannotBeConstructed) {
  const long before = Allocations::Watch().alive;
  for (std::size_t failAt = 1;; ++failAt) {
    Allocations::Watch(failAt);
    try {
      const auto document = Make();
      Allocations::Watch();
      break;
    } catch (const std::bad_alloc&) {
      Allocations::Watch();
      EXPECT_EQ(Allocations::Watch().alive, before) << failAt;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(, EveryDocument, testing::ValuesIn(kDocumentClasses),
                         [](const auto& test) { return std::string(test.param.name); });

// Distinct documents need no lock; the thread sanitizer sees whether that holds.
TEST(Threads, BuildAndRenderDistinctDocuments) {
  const auto renderAll = [] {
    std::vector<std::string> texts;
    for (const auto& row : kDocumentClasses) {
      const auto document = row.make(kLongConstruction);
      FillWith(*document, kLongArguments);
      texts.push_back(Rendered(*document));
    }
    return texts;
  };
  std::vector<std::vector<std::string>> rendered(8);
  std::vector<std::thread> threads;
  threads.reserve(rendered.size());
  for (auto& texts : rendered) {
    threads.emplace_back([&texts, &renderAll] {
      for (int round = 0; round < 50; ++round) texts = renderAll();
    });
  }
  for (auto& thread : threads) thread.join();
  const auto expected = renderAll();
  for (const auto& texts : rendered) EXPECT_EQ(texts, expected);
}

// Items, entries and soft keys render by themselves, too, and those that are values are copied.

template <typename Element>
void ExpectElement(const std::string& document) {
  Element element("p", "u");
  std::string out = "kept ";
  element.Render(out);
  if constexpr (std::is_copy_constructible_v<Element>) Element(element).Render(out = "kept ");
  for (const auto& row : kDocumentClasses) {
    if (row.name != document) continue;
    EXPECT_EQ(out, "kept " + Filled(row.element, {{"first", "p"}, {"second", "u"}}));
  }
}

TEST(Elements, RenderByThemselves) {
  ExpectElement<AastraIPPhoneMenuItem>("AastraIPPhoneMenu");
  ExpectElement<AastraIPPhoneDirectoryEntry>("AastraIPPhoneDirectory");
  ExpectElement<CiscoIPPhoneDirectoryEntry>("CiscoIPPhoneDirectory");
  ExpectElement<SnomIPPhoneMenuItem>("SnomIPPhoneMenu");
  ExpectElement<SnomIPPhoneDirectoryEntry>("SnomIPPhoneDirectory");
  ExpectElement<YealinkIPPhoneMenuItem>("YealinkIPPhoneMenu");
  ExpectElement<YealinkIPPhoneDirectoryEntry>("YealinkIPPhoneDirectory");
}

template <typename Holder>
struct Open : Holder {
  using Holder::softKeys;
};

// Whether a copy of the second key, then assigned the first one and moved the second one, renders
// as they do.
template <typename Holder>
void ExpectValues(const Open<Holder>& holder, const std::string& first, const std::string& second) {
  auto key = holder.softKeys[1];
  std::string out;
  key.Render(out);
  key = holder.softKeys[0];
  key.Render(out);
  key = decltype(key)(holder.softKeys[1]);
  key.Render(out);
  EXPECT_EQ(out, second + first + second);
}

template <typename Holder, typename Key, typename Command>
void ExpectKeyItems() {
  Open<Holder> holder;
  holder.AddSoftKey(Command(1), "one");
  holder.AddSoftKey(Command(2), "two");
  const auto element = [](const std::string& name, const std::string& url) {
    return "<SoftKeyItem>\n<Name>" + name + "</Name>\n<URL>" + url + "</URL>\n</SoftKeyItem>\n";
  };
  ExpectValues(holder, element("ENTER", "one"), element("ONHOOK", "two"));
  std::string out;
  Key().Render(out);
  EXPECT_EQ(out, element("", ""));
}

TEST(SoftKeys, AreValuesThatRenderByThemselves) {
  ExpectKeyItems<SnomIPPhone, SnomSoftKey, SnomSoftKeyCommands>();
  ExpectKeyItems<YealinkIPPhone, YealinkSoftKey, YealinkSoftKeyCommands>();
  Open<AastraIPPhone> holder;
  holder.AddSoftKey(6, "One", "uri:1");
  holder.AddSoftKey(1, "Two", AASTRA_SK_DOT);
  ExpectValues(holder,
               "<SoftKey index = \"6\">\n<Label>One</Label>\n<URI>uri:1</URI>\n</SoftKey>\n",
               "<SoftKey index = \"1\">\n<Label>Two</Label>\n<URI>SoftKey:Dot</URI>\n</SoftKey>\n");
}

}  // namespace
