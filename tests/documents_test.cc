// The guarantees of every document of every maker.
#include "documents.h"

#include <gtest/gtest.h>

#include <future>
#include <random>

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

  template <typename... Base>
  static void DeleteThroughEach() {
    const auto deleteThrough = [](auto base) {
      auto document = MakeFilled();
      base.reset(dynamic_cast<decltype(base.get())>(document.get()));
      if (base != nullptr) static_cast<void>(document.release());
    };
    (deleteThrough(std::unique_ptr<Base>()), ...);
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

TEST_P(EveryDocument, CanBeDeletedThroughEachBase) {
  ExpectToFreeAll(DeleteThroughEach<IPPhoneXML, IPPhoneTextScreenXML, IPPhoneMenuXML,
                                    IPPhoneDirectoryXML, IPPhoneInputXML, IPPhoneExecuteXML,
                                    IPPhoneStatusXML, AastraIPPhone, SnomIPPhone, YealinkIPPhone>);
}

TEST_P(EveryDocument, RendersWithAtMostOneAllocation) {
  const auto document = MakeFilled();
  std::string out = "kept";
  const auto render = [&] { document->Render(out); };
  EXPECT_EQ(FailEachAllocation(render, [&] { EXPECT_EQ(out, "kept"); }), 1U);
  out.clear();
  EXPECT_EQ(FailEachAllocation(render), 0U);
}

TEST_P(EveryDocument, IsUnchangedByAFailedAllocation) {
  EXPECT_GT(FailEachAllocation([] { Make(); }), 0U);
  const auto document = MakeFilled();
  const auto reference = MakeFilled();
  for (const auto& operation : OperationsOn(*document, kLongArguments)) {
    const std::string before = RenderToString(*document);
    FailEachAllocation([&] { operation.apply(*document); },
                       [&] { ASSERT_EQ(RenderToString(*document), before) << operation.name; });
    operation.apply(*reference);
    ASSERT_EQ(RenderToString(*document), RenderToString(*reference)) << operation.name;
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
  std::vector<std::future<std::vector<std::string>>> rendered(8);
  for (auto& texts : rendered) {
    texts = std::async(std::launch::async, [&] {
      for (int round = 1; round < 50; ++round) renderAll();
      return renderAll();
    });
  }
  const auto expected = renderAll();
  for (auto& texts : rendered) EXPECT_EQ(texts.get(), expected);
}

// Renders one item or entry, and a copy of it if it can be copied.
template <typename Element>
std::string Rendered() {
  Element element("p", "u");
  std::string out;
  element.Render(out);
  if constexpr (std::is_copy_constructible_v<Element>) Element(element).Render(out = "");
  return out;
}

TEST(Elements, RenderWithoutTheirDocument) {
  const std::map<std::string, std::string> rendered = {
      {"AastraIPPhoneMenu", Rendered<AastraIPPhoneMenuItem>()},
      {"AastraIPPhoneDirectory", Rendered<AastraIPPhoneDirectoryEntry>()},
      {"CiscoIPPhoneDirectory", Rendered<CiscoIPPhoneDirectoryEntry>()},
      {"SnomIPPhoneMenu", Rendered<SnomIPPhoneMenuItem>()},
      {"SnomIPPhoneDirectory", Rendered<SnomIPPhoneDirectoryEntry>()},
      {"YealinkIPPhoneMenu", Rendered<YealinkIPPhoneMenuItem>()},
      {"YealinkIPPhoneDirectory", Rendered<YealinkIPPhoneDirectoryEntry>()}};
  for (const auto& documentClass : kDocumentClasses) {
    const std::string element = documentClass.elementTemplate;
    if (element.empty()) continue;
    EXPECT_EQ(rendered.at(documentClass.name),
              FillTemplate(element, {{"first", "p"}, {"second", "u"}}));
  }
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
