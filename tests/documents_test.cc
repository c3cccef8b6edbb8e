// What holds for every document of every maker.
#include "documents.h"

#include <gtest/gtest.h>

#include <new>
#include <type_traits>

#include "allocations.h"

namespace {

constexpr int kLimit = 100;
const std::string kLong = "a text that is too long to fit into a string without an allocation";

class EveryDocument : public testing::TestWithParam<DocumentClass> {
 protected:
  static std::unique_ptr<IPPhoneXML> Make(const char* title = "Title", int maxItems = kLimit) {
    return GetParam().make(title, maxItems);
  }

  static std::unique_ptr<IPPhoneXML> MakeFilled(const std::string& value) {
    auto document = Make(value.c_str());
    for (const auto& fill : FillingOperations(*document, value)) fill(*document);
    return document;
  }

  // A directory long enough to be sorted in every way that the sort knows.
  static void AppendMany(IPPhoneXML& document) {
    auto* const directory = dynamic_cast<IPPhoneDirectoryXML*>(&document);
    if (directory == nullptr) return;
    for (int i = 0; i < 60; ++i) directory->AppendEntry(kLong + std::to_string(i * 37 % 60), kLong);
  }
};

std::size_t Count(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (auto at = text.find(part); at != text.npos; at = text.find(part, at + 1)) ++count;
  return count;
}

TEST_P(EveryDocument, AppendsACompleteCopyAtEveryRendering) {
  const auto document = MakeFilled("value");
  const std::string once = Rendered(*document);
  const std::string root = GetParam().root;
  EXPECT_EQ(once.find("<" + root), 0U);
  EXPECT_EQ(once.find("</" + root + ">\n"), once.size() - root.size() - 4);
  std::string out = "kept";
  document->Render(out);
  document->Render(out);
  EXPECT_EQ(out, "kept" + once + once);
}

TEST_P(EveryDocument, TellsItsTitleAndContentType) {
  const auto document = Make("A <b> & \"c\"");
  EXPECT_EQ(document->GetContentType(), GetParam().contentType);
  EXPECT_EQ(document->GetTitle(), GetParam().writesTitle ? "A <b> & \"c\"" : "");
  EXPECT_EQ(Count(Rendered(*document), "A <b> & \"c\""), GetParam().writesTitle ? 1U : 0U);
}

TEST_P(EveryDocument, WritesTheFlagsThatItsPhonesKnow) {
  const auto document = Make();
  const std::string plain = Rendered(*document);
  const std::string both =
      std::string(GetParam().writesDestroyOnExit ? " destroyOnExit = \"yes\"" : "") +
      (GetParam().writesBeep ? " Beep = \"yes\"" : "");
  std::string flagged = plain;
  flagged.insert(plain.find('>'), both);
  document->SetAttributes(AttrDestroyOnExit | AttrBeep);
  EXPECT_EQ(Rendered(*document), flagged);

  for (const unsigned long cleared : {0x00UL, 0x02UL, 0x20UL, ~0x11UL}) {
    document->SetAttributes(AttrDestroyOnExit | AttrBeep);
    document->SetAttributes(cleared);
    EXPECT_EQ(Rendered(*document), plain) << cleared;
  }

  document->SetAttributes(AttrDestroyOnExit);
  EXPECT_EQ(Count(Rendered(*document), "destroyOnExit"), GetParam().writesDestroyOnExit ? 1U : 0U);
  document->SetAttributes(AttrBeep);
  EXPECT_EQ(Count(Rendered(*document), "Beep"), GetParam().writesBeep ? 1U : 0U);
  EXPECT_EQ(Count(Rendered(*document), "destroyOnExit"), 0U);
}

TEST_P(EveryDocument, EnforcesItsLimitAndRefusesEmptyStrings) {
  for (const int limit : {-1, 0, 1, 3}) {
    const auto document = Make("Title", limit);
    auto* const menu = dynamic_cast<IPPhoneMenuXML*>(document.get());
    auto* const directory = dynamic_cast<IPPhoneDirectoryXML*>(document.get());
    if (menu == nullptr && directory == nullptr) return;
    const auto append = [&](const std::string& first, const std::string& second) {
      return menu != nullptr ? menu->AppendItem(first, second)
                             : directory->AppendEntry(first, second);
    };
    for (int held = 0; held < 6; ++held) {
      const std::string before = Rendered(*document);
      EXPECT_FALSE(append("", "second"));
      EXPECT_FALSE(append("first", ""));
      EXPECT_EQ(append("first", "second"), !GetParam().enforcesLimit || held < limit);
      EXPECT_FALSE(append("", ""));
      const bool grew = Rendered(*document) != before;
      EXPECT_EQ(grew, !GetParam().enforcesLimit || held < limit) << "limit " << limit;
    }
  }
}

TEST_P(EveryDocument, LinksThePagesBeforeAndAfterWhereItsPhonesKnowLinks) {
  const auto document = Make();
  const std::string plain = Rendered(*document);
  const auto expect = [&](const std::string& links) {
    std::string linked = plain;
    if (GetParam().writesLinks) linked.insert(plain.find('>'), links);
    EXPECT_EQ(Rendered(*document), linked);
  };
  const auto link = [&](auto* list) {
    if (list == nullptr) return;
    list->SetNextURI("http://a?x=1&y=2");
    expect(" next=\"http://a?x=1&y=2\"");
    list->SetPreviousURI("p");
    expect(" previous=\"p\" next=\"http://a?x=1&y=2\"");
    list->SetNextURI("");
    expect(" previous=\"p\"");
    list->SetPreviousURI("");
    expect("");
  };
  link(dynamic_cast<IPPhoneMenuXML*>(document.get()));
  link(dynamic_cast<IPPhoneDirectoryXML*>(document.get()));
}

TEST_P(EveryDocument, CanBeDeletedThroughEachBase) {
  const long before = Allocations::Watch().alive;
  const auto deleteThrough = [](auto* none) {
    auto document = MakeFilled(kLong);
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
  const auto document = MakeFilled(kLong);
  AppendMany(*document);
  std::string out;
  Allocations& allocations = Allocations::Watch();
  document->Render(out);
  EXPECT_EQ(allocations.made, 1U);

  const std::size_t roomy = out.capacity();
  out.clear();
  Allocations::Watch();
  document->Render(out);
  EXPECT_EQ(allocations.made, 0U);
  EXPECT_EQ(out.capacity(), roomy);

  document->Render(out);
  EXPECT_GE(out.capacity(), 2 * roomy) << "appending many documents must stay linear";
}

// Each operation, with memory running out at each of its allocations: what the operation could not
// finish has not happened, and afterwards it can still be done.
TEST_P(EveryDocument, SurvivesRunningOutOfMemoryAnywhere) {
  auto document = MakeFilled("short");
  AppendMany(*document);
  auto witness = MakeFilled("short");
  AppendMany(*witness);
  auto operations = FillingOperations(*document, kLong);
  operations.emplace_back([out = std::string()](IPPhoneXML& rendered) mutable {
    out = "kept";
    const std::string before = out;
    try {
      rendered.Render(out);
    } catch (const std::bad_alloc&) {
      EXPECT_EQ(out, before);
      throw;
    }
  });
  for (const auto& operation : operations) {
    for (std::size_t failAt = 1;; ++failAt) {
      ASSERT_LT(failAt, 1000U);
      const Operation copy = operation;
      const std::string before = Rendered(*document);
      Allocations::Watch(failAt);
      try {
        copy(*document);
        Allocations::Watch();
        break;
      } catch (const std::bad_alloc&) {
        Allocations::Watch();
        ASSERT_EQ(Rendered(*document), before);
      }
    }
    operation(*witness);
    ASSERT_EQ(Rendered(*document), Rendered(*witness));
  }
}

TEST_P(EveryDocument, LeavesNothingBehindWhenItCannotBeConstructed) {
  const long before = Allocations::Watch().alive;
  for (std::size_t failAt = 1;; ++failAt) {
    Allocations::Watch(failAt);
    try {
      const auto document = Make(kLong.c_str());
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

// What a template can say of the classes, the compiler tests.
template <typename... Document>
constexpr bool CanNotBeCopiedOrMoved() {
  return (!(std::is_copy_constructible_v<Document> || std::is_copy_assignable_v<Document> ||
            std::is_move_constructible_v<Document> || std::is_move_assignable_v<Document>)&&...);
}
static_assert(CanNotBeCopiedOrMoved<
              AastraIPPhoneTextScreen, AastraIPPhoneMenu, AastraIPPhoneDirectory,
              AastraIPPhoneInput, AastraIPPhoneExecute, AastraIPPhoneStatus, CiscoIPPhoneDirectory,
              PolycomIPPhoneTextScreen, SnomIPPhoneTextScreen, SnomIPPhoneMenu,
              SnomIPPhoneDirectory, SnomIPPhoneInput, YealinkIPPhoneTextScreen, YealinkIPPhoneMenu,
              YealinkIPPhoneDirectory, AastraIPPhone, SnomIPPhone, YealinkIPPhone>());

// Titles given as C strings may be null; those given as strings end at their first NUL.
TEST(Titles, EndAtTheFirstNul) {
  const std::string cut("Up\0here", 7);
  EXPECT_EQ(AastraIPPhoneTextScreen(cut).GetTitle(), "Up");
  EXPECT_EQ(AastraIPPhoneMenu(cut, 1).GetTitle(), "Up");
  EXPECT_EQ(AastraIPPhoneInput(cut, "IP", false).GetTitle(), "Up");
  EXPECT_EQ(AastraIPPhoneExecute(cut).GetTitle(), "Up");
  EXPECT_EQ(PolycomIPPhoneTextScreen(cut).GetTitle(), "Up");
  EXPECT_EQ(SnomIPPhoneTextScreen(cut).GetTitle(), "Up");
  EXPECT_EQ(SnomIPPhoneInput(cut, "a").GetTitle(), "Up");
  EXPECT_EQ(YealinkIPPhoneTextScreen(cut).GetTitle(), "Up");

  EXPECT_EQ(AastraIPPhoneDirectory(nullptr, 1).GetTitle(), "");
  EXPECT_EQ(CiscoIPPhoneDirectory(nullptr, 1).GetTitle(), "");
  EXPECT_EQ(SnomIPPhoneMenu(nullptr, 1).GetTitle(), "");
  EXPECT_EQ(SnomIPPhoneDirectory(nullptr, 1).GetTitle(), "");
  EXPECT_EQ(YealinkIPPhoneMenu(nullptr, 1).GetTitle(), "");
  EXPECT_EQ(YealinkIPPhoneDirectory(nullptr, 1).GetTitle(), "");
}

}  // namespace
