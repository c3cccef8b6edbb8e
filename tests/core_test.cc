// Directory entries, sorting, the document kinds and number formatting.
#include <gtest/gtest.h>
#include <teleform/teleform.h>

#include <locale>
#include <random>
#include <sstream>

#include "allocations.h"
#include "sorting.h"

namespace {

TEST(DirectoryEntry, ComparesNamesInTwoOrders) {
  using std::string_literals::operator""s;
  const std::vector<std::string> ascending = {"",     "Ann",   "Ann\0\xFF"s, "Anna", "Bob", "a",
                                              "a\0"s, "a\0b"s, "a\0c"s,      "\x7F", "\x80"};
  for (std::size_t j = 0; j < ascending.size(); ++j) {
    for (std::size_t i = 0; i <= j; ++i) {
      SCOPED_TRACE(ascending[i] + " and " + ascending[j]);
      IPPhoneDirectoryEntry a(ascending[i], "2"), b(ascending[j], "1");
      const bool isPrefix = ascending[j].compare(0, ascending[i].size(), ascending[i]) == 0;
      EXPECT_EQ(a < b, i < j);
      EXPECT_EQ(b > a, i < j);
      EXPECT_EQ(a >= b, i == j);
      EXPECT_EQ(b <= a, i == j);
      EXPECT_TRUE(a <= b && b >= a && !(b < a) && !(a > b));
      EXPECT_EQ(compare_case(&a, &b), !isPrefix);
      EXPECT_FALSE(compare_case(&b, &a));
    }
  }
}

TEST(DirectoryEntry, IsCopiedAndPrinted) {
  static_assert(!std::is_copy_assignable_v<IPPhoneDirectoryEntry>);
  const std::string name("A\0n", 3);
  IPPhoneDirectoryEntry entry(name, "123");
  IPPhoneDirectoryEntry copy(entry);
  EXPECT_EQ(copy.GetName(), name);
  EXPECT_EQ(copy.GetTelephone(), "123");
  std::ostringstream stream;
  stream << copy << "|" << IPPhoneDirectoryEntry("", "1");
  EXPECT_EQ(stream.str(), name + "|");
  std::string out = "kept";
  entry.Render(out);
  EXPECT_EQ(out, "kept");
}

TEST(Kinds, IgnorePageLinksAndEntriesByDefault) {
  struct PlainMenu : IPPhoneMenuXML {
    PlainMenu() : IPPhoneMenuXML(nullptr, 7) {}
    void Render(std::string& /*out*/) override {}
    bool AppendItem(const std::string& /*prompt*/, const std::string& /*uri*/) override {
      return true;
    }
  };
  PlainMenu menu;
  menu.SetPreviousURI("p");
  menu.SetNextURI("n");
  EXPECT_TRUE(menu.GetTitle().empty());
  ExposedDirectory directory;
  directory.SetPreviousURI("p");
  directory.SetNextURI("n");
  EXPECT_FALSE(directory.AppendEntry("name", "1"));
  EXPECT_TRUE(directory.entries.empty());
}

// An entry with a custom format.
struct CustomEntry : IPPhoneDirectoryEntry {
  CustomEntry(const std::string& text, std::string& theDeletedNames)
      : IPPhoneDirectoryEntry(text, ""), deletedNames(theDeletedNames) {}
  ~CustomEntry() override { deletedNames += name; }
  void Render(std::string& out) override { (out += name) += name; }
  std::string& deletedNames;
};

TEST(Directory, DeletesEntriesFromFirstToLast) {
  std::string deletedNames;
  {
    ExposedDirectory directory;
    for (const char* name : {"1", "2", "3"}) {
      directory.entries.push_back(std::make_unique<CustomEntry>(name, deletedNames));
    }
  }
  EXPECT_EQ(deletedNames, "123");
}

// The entries write more than the directory has reserved for them.
TEST(Directory, RendersLongerEntriesOfAnotherClassOrNothing) {
  std::string deletedNames;
  const std::string longText = "<!--" + std::string(10000, '-') + "-->";
  OpenDirectory directory;
  directory.entries.push_back(std::make_unique<CustomEntry>(longText, deletedNames));
  directory.entries.push_back(std::make_unique<IPPhoneDirectoryEntry>("writes nothing", "1"));
  const std::string kept = "kept content that is too long for the small string buffer";
  std::string out = kept;
  const auto render = [&] {
    out = std::string(kept);  // without the room that earlier attempts have made
    directory.Render(out);
  };
  EXPECT_GT(FailEachAllocation(render, [&] { EXPECT_EQ(out, kept); }), 2U);
  EXPECT_EQ(out, kept + "<CiscoIPPhoneDirectory>\n<Title>Own</Title>\n" + longText + longText +
                     "</CiscoIPPhoneDirectory>\n");
}

TEST(SortDirectoryItems, RecursesNeitherByCharacterNorByName) {
  std::vector<std::string> prefixes;  // every name is a prefix of all longer ones
  for (std::size_t size = 900; size-- > 0;) prefixes.emplace_back(size % 600, 'a');
  const std::string longName(16 << 20, 'a');  // recursion by character would exhaust the stack
  std::vector<std::string> many(200000);      // and so would recursion by name
  for (std::size_t i = 0; i < many.size(); ++i) many[i] = std::to_string(i * 7919 % many.size());
  for (const auto& names : std::vector<std::vector<std::string>>{
           {},
           prefixes,
           many,
           {longName + "b", longName, longName + "a"},
           std::vector<std::string>(100, std::string(10000, 'x'))}) {
    EXPECT_NO_THROW(VerifySorting(names));
  }
}

TEST(SortDirectoryItems, SortsAnyNames) {
  const auto seed = std::random_device{}();
  std::mt19937 generator(seed);
  for (int round = 0; round < 300; ++round) {
    const auto names = RandomNames([&](unsigned end) { return unsigned(generator() % end); });
    ASSERT_NO_THROW(VerifySorting(names)) << "seed " << seed << ", round " << round;
  }
}

TEST(NumberToString, FormatsLikeAStream) {
  EXPECT_EQ(NumberToString(0), "0");
  EXPECT_EQ(NumberToString(~0ULL), "18446744073709551615");
  EXPECT_EQ(NumberToString(-9223372036854775807LL - 1), "-9223372036854775808");
  EXPECT_EQ(NumberToString<short>(-32768), "-32768");
  EXPECT_EQ(NumberToString(true), "1");
  EXPECT_EQ(NumberToString(1234567.0), "1.23457e+06");
}

TEST(NumberToString, FollowsTheGlobalLocale) {
  struct Grouping : std::numpunct<char> {
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const std::locale before = std::locale::global(std::locale(std::locale(), new Grouping));
  AastraIPPhoneStatus status;
  status.SetMessage("s", "m", -1234567, IPPhoneStatusXML::MsgTypeAlert, 1000);
  const std::string out = RenderToString(status);
  std::locale::global(before);
  EXPECT_NE(out.find(R"(<Message index="-1.234.567" type="alert" Timeout="1.000">)"), out.npos);
  EXPECT_NE(RenderToString(status).find(R"(index="-1234567" type="alert" Timeout="1000")"),
            out.npos);
}

}  // namespace
