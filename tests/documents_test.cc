// The guarantees of every document of every maker.
#include "documents.h"

#include <gtest/gtest.h>

#include <new>
#include <random>
#include <thread>

#include "allocations.h"

namespace {

const std::string kLong = "a text that is too long for the small string buffer of a std::string";
const ConstructorArguments kLongConstructorArguments = {kLong, 100, kLong, true};
const Arguments kLongArguments = {{kLong, kLong, kLong, kLong}, 7, 6, 2147483647, 1, ~0UL};

class EveryDocument : public testing::TestWithParam<DocumentClass> {
 protected:
  static std::unique_ptr<IPPhoneXML> Make() { return GetParam().make(kLongConstructorArguments); }

  // A directory gets enough entries for every sorting algorithm of the library.
  static std::unique_ptr<IPPhoneXML> MakeFilled() {
    auto document = Make();
    ApplyAll(*document, kLongArguments);
    auto* const directory = dynamic_cast<IPPhoneDirectoryXML*>(document.get());
    for (int i = 0; directory != nullptr && i < 60; ++i) {
      directory->AppendEntry(kLong + std::to_string(i * 37 % 60), kLong);
    }
    return document;
  }
};

TEST_P(EveryDocument, BehavesLikeItsModel) {
  const auto seed = std::random_device{}();
  std::mt19937 generator(seed);
  for (int round = 0; round < 300; ++round) {
    try {
      CompareWithModel(GetParam(), [&](unsigned end) { return unsigned(generator() % end); });
    } catch (const std::logic_error& difference) {
      FAIL() << "seed " << seed << ", round " << round << ": " << difference.what();
    }
  }
}

TEST_P(EveryDocument, IsShownOnItsMakersPage) {
  EXPECT_EQ(kShownClasses.count(GetParam().name), 1U);
}

TEST_P(EveryDocument, CanBeDeletedThroughEachBase) {
  const long before = Allocations::StartCounting().live;
  const auto deleteThrough = [](auto* null) {
    auto document = MakeFilled();
    auto* const base = dynamic_cast<decltype(null)>(document.get());
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
  EXPECT_EQ(Allocations::StartCounting().live, before);
}

TEST_P(EveryDocument, RendersWithAtMostOneAllocation) {
  const auto document = MakeFilled();
  std::string out;
  Allocations& allocations = Allocations::StartCounting();
  document->Render(out);
  EXPECT_EQ(allocations.count, 1U);
  out.clear();
  Allocations::StartCounting();
  document->Render(out);
  EXPECT_EQ(allocations.count, 0U);
}

// Fails each allocation of each operation. A failed operation must change nothing, and a later call
// must succeed.
TEST_P(EveryDocument, IsUnchangedByAFailedAllocation) {
  const auto document = MakeFilled();
  const auto reference = MakeFilled();
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
      const std::string before = RenderToString(*document);
      Allocations::StartCounting(failAt);
      try {
        copy.apply(*document);
        Allocations::StartCounting();
        break;
      } catch (const std::bad_alloc&) {
        Allocations::StartCounting();
        ASSERT_EQ(RenderToString(*document), before) << operation.name;
      }
    }
    operation.apply(*reference);
    ASSERT_EQ(RenderToString(*document), RenderToString(*reference)) << operation.name;
  }
}

TEST_P(EveryDocument, DoesNotLeakWhenConstructionFails) {
  const long before = Allocations::StartCounting().live;
  for (std::size_t failAt = 1;; ++failAt) {
    Allocations::StartCounting(failAt);
    try {
      const auto document = Make();
      Allocations::StartCounting();
      break;
    } catch (const std::bad_alloc&) {
      Allocations::StartCounting();
      EXPECT_EQ(Allocations::StartCounting().live, before) << failAt;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(, EveryDocument, testing::ValuesIn(kDocumentClasses),
                         [](const auto& test) { return std::string(test.param.name); });

// Under the thread sanitizer this also detects data races.
TEST(Threads, FillAndRenderDifferentDocumentsConcurrently) {
  const auto renderAll = [] {
    std::vector<std::string> texts;
    for (const auto& documentClass : kDocumentClasses) {
      const auto document = documentClass.make(kLongConstructorArguments);
      ApplyAll(*document, kLongArguments);
      texts.push_back(RenderToString(*document));
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

// Renders one item or entry, and a copy of it if it can be copied.
template <typename Element>
void ExpectElement(const std::string& document) {
  Element element("p", "u");
  std::string out = "kept ";
  element.Render(out);
  if constexpr (std::is_copy_constructible_v<Element>) Element(element).Render(out = "kept ");
  for (const auto& documentClass : kDocumentClasses) {
    if (documentClass.name != document) continue;
    EXPECT_EQ(out, "kept " + FillTemplate(documentClass.elementTemplate,
                                          {{"first", "p"}, {"second", "u"}}));
  }
}

TEST(Elements, RenderWithoutTheirDocument) {
  ExpectElement<AastraIPPhoneMenuItem>("AastraIPPhoneMenu");
  ExpectElement<AastraIPPhoneDirectoryEntry>("AastraIPPhoneDirectory");
  ExpectElement<CiscoIPPhoneDirectoryEntry>("CiscoIPPhoneDirectory");
  ExpectElement<SnomIPPhoneMenuItem>("SnomIPPhoneMenu");
  ExpectElement<SnomIPPhoneDirectoryEntry>("SnomIPPhoneDirectory");
  ExpectElement<YealinkIPPhoneMenuItem>("YealinkIPPhoneMenu");
  ExpectElement<YealinkIPPhoneDirectoryEntry>("YealinkIPPhoneDirectory");
}

template <typename Holder>
struct Exposed : Holder {
  using Holder::softKeys;
};

// Expects that a soft key renders the same after copy construction, copy assignment and move
// assignment.
template <typename Holder>
void ExpectCopyable(const Exposed<Holder>& holder, const std::string& first,
                    const std::string& second) {
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
void ExpectSoftKeyItems() {
  Exposed<Holder> holder;
  holder.AddSoftKey(Command(1), "one");
  holder.AddSoftKey(Command(2), "two");
  const auto element = [](const std::string& name, const std::string& url) {
    return "<SoftKeyItem>\n<Name>" + name + "</Name>\n<URL>" + url + "</URL>\n</SoftKeyItem>\n";
  };
  ExpectCopyable(holder, element("ENTER", "one"), element("ONHOOK", "two"));
  std::string out;
  Key().Render(out);
  EXPECT_EQ(out, element("", ""));
}

TEST(SoftKeys, AreCopyableAndRenderWithoutTheirDocument) {
  ExpectSoftKeyItems<SnomIPPhone, SnomSoftKey, SnomSoftKeyCommands>();
  ExpectSoftKeyItems<YealinkIPPhone, YealinkSoftKey, YealinkSoftKeyCommands>();
  Exposed<AastraIPPhone> holder;
  holder.AddSoftKey(6, "One", "uri:1");
  holder.AddSoftKey(1, "Two", AASTRA_SK_DOT);
  ExpectCopyable(
      holder, "<SoftKey index = \"6\">\n<Label>One</Label>\n<URI>uri:1</URI>\n</SoftKey>\n",
      "<SoftKey index = \"1\">\n<Label>Two</Label>\n<URI>SoftKey:Dot</URI>\n</SoftKey>\n");
}

}  // namespace
