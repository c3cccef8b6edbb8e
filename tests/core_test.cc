// Entries and their orders, the directory base, and numbers.
#include <gtest/gtest.h>
#include <teleform/teleform.h>

#include <algorithm>
#include <locale>
#include <random>
#include <sstream>

#include "documents.h"

namespace {

TEST(DirectoryEntry, ComparesNamesInTwoOrders) {
  enum Order { kBefore, kPrefix, kEqual };
  struct {
    std::string first, second;
    Order order;
  } const kPairs[] = {
      {"Bob", "alice", kBefore},
      {"Z", "a", kBefore},
      {"9", "A", kBefore},
      {"z", "\xC3\xA9", kBefore},
      {"\x7F", "\x80", kBefore},
      {std::string("a\0b", 3), std::string("a\0c", 3), kBefore},
      {"Ann", "Anna", kPrefix},
      {"", "A", kPrefix},
      {"a", std::string("a\0", 2), kPrefix},
      {"Ann", std::string("Ann\0\xFF", 5), kPrefix},
      {"", "", kEqual},
      {"Ann", "Ann", kEqual},
  };
  for (const auto& pair : kPairs) {
    IPPhoneDirectoryEntry a(pair.first, "2");
    IPPhoneDirectoryEntry b(pair.second, "1");
    const bool less = pair.order != kEqual;
    EXPECT_EQ(a < b, less) << pair.first;
    EXPECT_EQ(b > a, less) << pair.first;
    EXPECT_EQ(a >= b, !less) << pair.first;
    EXPECT_EQ(b <= a, !less) << pair.first;
    EXPECT_TRUE(a <= b && b >= a && !(b < a) && !(a > b)) << pair.first;
    EXPECT_EQ(compare_case(&a, &b), pair.order == kBefore) << pair.first;
    EXPECT_FALSE(compare_case(&b, &a)) << pair.first;
    EXPECT_FALSE(compare_case(&a, &a)) << pair.first;
  }
}

TEST(DirectoryEntry, IsCopiedAndPrinted) {
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
  static_assert(!std::is_copy_assignable_v<IPPhoneDirectoryEntry>);
}

// A directory whose entries can be seen, with the base's own operations.
class PlainDirectory : public IPPhoneDirectoryXML {
 public:
  PlainDirectory() : IPPhoneDirectoryXML(nullptr, 7) {}
  void Render(std::string& /*out*/) override {}
  void Append(const std::string& name, const std::string& telephone) {
    Append(std::make_unique<IPPhoneDirectoryEntry>(name, telephone));
  }
  void Append(std::unique_ptr<IPPhoneDirectoryEntry> entry) { entries.push_back(std::move(entry)); }
  using Pairs = std::vector<std::pair<std::string, std::string>>;
  Pairs Content() const {
    Pairs pairs;
    for (const auto& entry : entries) pairs.emplace_back(entry->GetName(), entry->GetTelephone());
    return pairs;
  }
};

class PlainMenu : public IPPhoneMenuXML {
 public:
  PlainMenu() : IPPhoneMenuXML("", 7) {}
  void Render(std::string& /*out*/) override {}
  bool AppendItem(const std::string& /*prompt*/, const std::string& /*uri*/) override {
    return true;
  }
};

TEST(Kinds, DoNothingUnlessAMakerSaysSo) {
  PlainDirectory directory;
  EXPECT_FALSE(directory.AppendEntry("name", "1"));
  directory.SetPreviousURI("p");
  directory.SetNextURI("n");
  directory.SortDirectoryItems();
  EXPECT_TRUE(directory.Content().empty());
  PlainMenu menu;
  menu.SetPreviousURI("p");
  menu.SetNextURI("n");
  EXPECT_TRUE(menu.GetTitle().empty());
}

TEST(Directory, DeletesItsEntriesFromTheFirstToTheLast) {
  struct Noted : IPPhoneDirectoryEntry {
    Noted(const std::string& theName, std::string& theDeleted)
        : IPPhoneDirectoryEntry(theName, ""), deleted(theDeleted) {}
    ~Noted() override { deleted += name; }
    std::string& deleted;
  };
  std::string deleted;
  {
    PlainDirectory directory;
    for (const char* name : {"1", "2", "3"}) {
      directory.Append(std::make_unique<Noted>(name, deleted));
    }
  }
  EXPECT_EQ(deleted, "123");
}

// Sorts `names` and compares with what a plain stable sort makes of them; telephones tell equal
// names apart.
void ExpectSorted(const std::vector<std::string>& names) {
  PlainDirectory directory;
  for (std::size_t i = 0; i < names.size(); ++i) directory.Append(names[i], std::to_string(i));
  auto expected = directory.Content();
  std::stable_sort(expected.begin(), expected.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  directory.SortDirectoryItems();
  ASSERT_EQ(directory.Content(), expected);
  directory.SortDirectoryItems();
  ASSERT_EQ(directory.Content(), expected);
}

TEST(SortDirectoryItems, PutsPrefixesFirstAndKeepsEqualNamesInOrder) {
  ExpectSorted({});
  ExpectSorted({"A", "Anz", "An", "Ann"});
  ExpectSorted({"same name", "same name", "same", "same name", ""});
  const std::string nul(1, '\0');
  ExpectSorted({"seven77" + nul, "seven77", "seven7", "seven77" + nul + nul, "seven7" + nul, nul});

  std::vector<std::string> chain;  // every name begins with all that are shorter
  for (std::size_t size = 900; size-- > 0;) chain.emplace_back(size % 600, 'a');
  ExpectSorted(chain);
  ExpectSorted(std::vector<std::string>(100, std::string(10000, 'x')));
}

TEST(SortDirectoryItems, SortsAnyNames) {
  const auto seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto below = [&random](std::size_t end) { return random() % end; };
  for (int round = 0; round < 300; ++round) {
    // Few letters make many names alike; beginnings in common make the sort look further in.
    const std::string letters("\0a\x7F\x80\xFF", 5);
    const std::string beginning(below(3) * 7 + below(3), 'b');
    const std::size_t longest = 1 + below(20);
    const std::size_t alphabet = 1 + below(letters.size());
    std::vector<std::string> names(below(200));
    for (auto& name : names) {
      name = beginning.substr(0, below(4) == 0 ? below(beginning.size() + 1) : beginning.npos);
      for (std::size_t i = below(longest); i-- > 0;) name += letters[below(alphabet)];
    }
    ExpectSorted(names);
  }
}

TEST(SortDirectoryItems, LeavesLaterEntriesBehind) {
  SnomIPPhoneDirectory directory("", 0);
  for (const char* name : {"B", "A"}) directory.AppendEntry(name, "1");
  directory.SortDirectoryItems();
  directory.AppendEntry("0", "1");
  const std::string out = Rendered(directory);
  EXPECT_LT(out.find("<Name>A"), out.find("<Name>B"));
  EXPECT_LT(out.find("<Name>B"), out.find("<Name>0"));
}

TEST(NumberToString, WritesWhatAStreamWrites) {
  EXPECT_EQ(NumberToString(0), "0");
  EXPECT_EQ(NumberToString(-2147483647 - 1), "-2147483648");
  EXPECT_EQ(NumberToString(2147483647), "2147483647");
  EXPECT_EQ(NumberToString(~0ULL), "18446744073709551615");
  EXPECT_EQ(NumberToString(-9223372036854775807LL - 1), "-9223372036854775808");
  EXPECT_EQ(NumberToString<short>(-32768), "-32768");
  EXPECT_EQ(NumberToString('7'), "7");
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
  const std::string out = Rendered(status);
  std::locale::global(before);
  EXPECT_NE(out.find(R"(<Message index="-1.234.567" type="alert" Timeout="1.000">)"), out.npos);
  EXPECT_NE(Rendered(status).find(R"(index="-1234567" type="alert" Timeout="1000")"), out.npos);
}

}  // namespace
