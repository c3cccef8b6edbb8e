// The Snom and the Yealink documents write the same elements under different roots; what differs
// is the names, and one key.
#include <gtest/gtest.h>

#include "documents.h"

namespace {

#define MAKER(Maker, ownKey)                             \
  struct Maker {                                         \
    using TextScreen = Maker##IPPhoneTextScreen;         \
    using Menu = Maker##IPPhoneMenu;                     \
    using MenuItem = Maker##IPPhoneMenuItem;             \
    using Directory = Maker##IPPhoneDirectory;           \
    using DirectoryEntry = Maker##IPPhoneDirectoryEntry; \
    using SoftKey = Maker##SoftKey;                      \
    using SoftKeyCommands = Maker##SoftKeyCommands;      \
    struct Holder : Maker##IPPhone {                     \
      using Maker##IPPhone::softKeys;                    \
    };                                                   \
    static constexpr const char* kMaker = #Maker;        \
    static constexpr const char* kOwnKey = ownKey;       \
  }
MAKER(Snom, "SNOM");
MAKER(Yealink, "Yealink");
#undef MAKER

template <typename Maker>
class SnomAndYealink : public testing::Test {
 protected:
  // A golden text in which M stands for the maker.
  static std::string Golden(std::string text) {
    for (auto at = text.find("MIPPhone"); at != text.npos; at = text.find("MIPPhone", at + 1)) {
      text.replace(at, 1, Maker::kMaker);
    }
    return text;
  }
  static constexpr auto kCommand = [](int value) {
    return static_cast<typename Maker::SoftKeyCommands>(value);
  };
  const std::string nul{"a\0b", 3};
};

using Makers = testing::Types<Snom, Yealink>;
class MakerNames {
 public:
  template <typename Maker>
  static std::string GetName(int /*index*/) {
    return Maker::kMaker;
  }
};
TYPED_TEST_SUITE(SnomAndYealink, Makers, MakerNames);

TYPED_TEST(SnomAndYealink, TextScreen) {
  typename TypeParam::TextScreen screen("Lunch");
  EXPECT_EQ(Rendered(screen), this->Golden(R"(<MIPPhoneText>
<Title>Lunch</Title>
<Text></Text>
</MIPPhoneText>
)"));

  screen.SetText("forgotten");
  screen.SetText("Soup & <bread>\n" + this->nul);
  EXPECT_EQ(Rendered(screen), this->Golden(R"(<MIPPhoneText>
<Title>Lunch</Title>
<Text>Soup & <bread>
)" + this->nul + R"(</Text>
</MIPPhoneText>
)"));
}

TYPED_TEST(SnomAndYealink, MenuIsWrittenAsADirectory) {
  typename TypeParam::Menu menu("Main", 0);
  typename TypeParam::Directory directory("Main", 0);
  menu.AddSoftKey(this->kCommand(0), "http://server/");
  directory.AddSoftKey(this->kCommand(0), "http://server/");
  EXPECT_EQ(Rendered(menu), this->Golden(R"(<MIPPhoneDirectory>
<Title>Main</Title>
<SoftKeyItem>
<Name>CANCEL</Name>
<URL>http://server/</URL>
</SoftKeyItem>
</MIPPhoneDirectory>
)"));

  const std::pair<std::string, std::string> pairs[] = {
      {"News", "http://server/?a=1&b=2"}, {"B", "1"}, {"A", this->nul}, {"B", "1"}};
  for (const auto& [first, second] : pairs) {
    EXPECT_TRUE(menu.AppendItem(first, second));
    EXPECT_TRUE(directory.AppendEntry(first, second));
  }
  EXPECT_EQ(Rendered(menu), this->Golden(R"(<MIPPhoneDirectory>
<Title>Main</Title>
<DirectoryEntry>
<Name>News</Name>
<Telephone>http://server/?a=1&b=2</Telephone>
</DirectoryEntry>
<DirectoryEntry>
<Name>B</Name>
<Telephone>1</Telephone>
</DirectoryEntry>
<DirectoryEntry>
<Name>A</Name>
<Telephone>)" + this->nul + R"(</Telephone>
</DirectoryEntry>
<DirectoryEntry>
<Name>B</Name>
<Telephone>1</Telephone>
</DirectoryEntry>
<SoftKeyItem>
<Name>CANCEL</Name>
<URL>http://server/</URL>
</SoftKeyItem>
</MIPPhoneDirectory>
)"));
  EXPECT_EQ(Rendered(menu), Rendered(directory));
  directory.SortDirectoryItems();
  EXPECT_LT(Rendered(directory).find("<Name>A<"), Rendered(directory).find("<Name>B<"));
}

TYPED_TEST(SnomAndYealink, ItemsEntriesAndKeysRenderByThemselves) {
  std::string out = "kept ";
  typename TypeParam::MenuItem item("p", "u");
  item.Render(out);
  typename TypeParam::DirectoryEntry entry("n", "t");
  entry.Render(out);
  typename TypeParam::Holder holder;
  holder.AddSoftKey(this->kCommand(1), "one");
  holder.AddSoftKey(this->kCommand(2), "two");
  typename TypeParam::SoftKey key;
  key.Render(out);
  key = holder.softKeys[0];
  key.Render(out);
  EXPECT_EQ(out, R"(kept <DirectoryEntry>
<Name>p</Name>
<Telephone>u</Telephone>
</DirectoryEntry>
<DirectoryEntry>
<Name>n</Name>
<Telephone>t</Telephone>
</DirectoryEntry>
<SoftKeyItem>
<Name></Name>
<URL></URL>
</SoftKeyItem>
<SoftKeyItem>
<Name>ENTER</Name>
<URL>one</URL>
</SoftKeyItem>
)");
  key = typename TypeParam::SoftKey(holder.softKeys[1]);
  EXPECT_EQ(key.GetURL(), "two");
}

TYPED_TEST(SnomAndYealink, SoftKeys) {
  // -1 stands first, 37 and beyond last; neither has a name.
  const std::vector<std::string> names = {"",
                                          "CANCEL",
                                          "ENTER",
                                          "ONHOOK",
                                          "RIGHT",
                                          "LEFT",
                                          "REDIAL",
                                          "SPEAKER",
                                          "TRANSFER",
                                          "CONFERENCE",
                                          "HELP",
                                          "F_MUTE",
                                          "F_UP",
                                          "F_DOWN",
                                          "REC",
                                          TypeParam::kOwnKey,
                                          "DND",
                                          "F_MINIBROWSER_SELECT",
                                          "F_MINIBROWSER_EXIT",
                                          "F_MINIBROWSER_UPDATE",
                                          "F_MINIBROWSER_SEARCH",
                                          "F_MINIBROWSER_CANCEL",
                                          "F_MINIBROWSER_BACK",
                                          "F_MINIBROWSER_DIAL",
                                          "F_MINIBROWSER_EDIT_DIAL",
                                          "F_MINIBROWSER_EDIT_NEXT",
                                          "0",
                                          "9",
                                          "8",
                                          "7",
                                          "6",
                                          "5",
                                          "4",
                                          "3",
                                          "2",
                                          "1",
                                          "#",
                                          "*",
                                          "",
                                          ""};
  typename TypeParam::Menu menu(nullptr, 0);
  std::string expected = this->Golden("<MIPPhoneDirectory>\n<Title></Title>\n");
  int command = -1;
  for (const auto& name : names) {
    std::string url = "<&\">" + std::to_string(command);
    EXPECT_TRUE(menu.AddSoftKey(this->kCommand(command++), url.c_str()));
    expected +=
        "<SoftKeyItem>\n<Name>" + name + "</Name>\n<URL>" + url + "</URL>\n</SoftKeyItem>\n";
    url.assign(url.size(), '!');
  }
  EXPECT_TRUE(menu.AddSoftKey(this->kCommand(0), nullptr));
  expected += "<SoftKeyItem>\n<Name>CANCEL</Name>\n<URL></URL>\n</SoftKeyItem>\n";
  EXPECT_EQ(Rendered(menu), expected + this->Golden("</MIPPhoneDirectory>\n"));
}

TEST(Snom, TextScreenWithSoftKeys) {
  SnomIPPhoneTextScreen screen("Lunch");
  screen.AddSoftKey(SNOM_SK_SNOM, "http://server/");
  screen.SetText("Soup");
  EXPECT_EQ(Rendered(screen), R"(<SnomIPPhoneText>
<Title>Lunch</Title>
<Text>Soup</Text>
<SoftKeyItem>
<Name>SNOM</Name>
<URL>http://server/</URL>
</SoftKeyItem>
</SnomIPPhoneText>
)");
}

TEST(Snom, Input) {
  SnomIPPhoneInput form("Search", "a");
  const std::string empty = R"(<SnomIPPhoneInput>
<Title>Search</Title>
<Prompt></Prompt>
<URL></URL>
<InputItem>
<DisplayName></DisplayName>
<QueryStringParam></QueryStringParam>
<DefaultValue></DefaultValue>
<InputFlags>a</InputFlags>
</InputItem>
</SnomIPPhoneInput>
)";
  EXPECT_FALSE(form.SetParams("", "u", "n", "d"));
  EXPECT_FALSE(form.SetParams("p", "", "n", "d"));
  EXPECT_FALSE(form.SetParams("p", "u", "", "d"));
  EXPECT_EQ(Rendered(form), empty);

  EXPECT_TRUE(form.SetParams("1", "2", "3", "4"));
  EXPECT_TRUE(form.SetParams("Name & more", "http://server/find?a=1&b=2", "name", ""));
  EXPECT_FALSE(form.SetParams("", "u", "n", "d"));
  form.AddSoftKey(SNOM_SK_STAR, "http://server/");
  EXPECT_EQ(Rendered(form), R"(<SnomIPPhoneInput>
<Title>Search</Title>
<Prompt>Name & more</Prompt>
<URL>http://server/find?a=1&b=2</URL>
<InputItem>
<DisplayName>Name & more</DisplayName>
<QueryStringParam>name</QueryStringParam>
<DefaultValue></DefaultValue>
<InputFlags>a</InputFlags>
</InputItem>
<SoftKeyItem>
<Name>*</Name>
<URL>http://server/</URL>
</SoftKeyItem>
</SnomIPPhoneInput>
)");

  const std::string nul("x\0y", 3);
  SnomIPPhoneInput whole("", nul);
  EXPECT_TRUE(whole.SetParams(nul, nul, nul, nul));
  const std::string out = Rendered(whole);
  for (const std::string element :
       {"Prompt", "URL", "DisplayName", "QueryStringParam", "DefaultValue", "InputFlags"}) {
    std::string expected = element;
    expected.append(">").append(nul).append("</").append(element).append(">\n");
    EXPECT_NE(out.find(expected), out.npos) << element;
  }
}

}  // namespace
