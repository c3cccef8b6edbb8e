// Collation keys, word keys and letters.
#include "phonebook/collation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace phonebook::tests {

namespace {

bool StartsWith(const std::string& text, const std::string& prefix) {
  return text.compare(0, prefix.size(), prefix) == 0;
}

TEST(Collation, OrdersNamesAsReadersExpect) {
  const std::vector<std::string> names = {
      "",         "_under",     "\"Quoted\"",     "100 Percent", "100% Cotton",
      "Anders",   "ångström",   "Ångström",       "ÅNGSTRÖM",    "Ångström, Linnéa",
      "becker",   "BECKER AG",  "ｂｅｃｋｅｒｓ", "D'Angelo",    "Łukasz",
      "Straße",   "Tokyo ｶﾀｶﾅ", "Zoë ÅNGSTRÖM",   "Ωmega",       "ябл",
      "日本 太郎"};
  for (std::size_t i = 1; i < names.size(); ++i) {
    EXPECT_LT(CollationKey(names[i - 1]), CollationKey(names[i])) << names[i];
  }
  const std::string start(kMaxKeyCharacters, 'x');
  EXPECT_EQ(CollationKey(start + "a"), CollationKey(start + "b"));
  EXPECT_NE(CollationKey(start.substr(1) + "a"), CollationKey(start.substr(1) + "b"));
}

TEST(Collation, GivesTextsThatDifferOnlyInAccentsCaseAndWidthOnePrefix) {
  for (const char* name : {"Ångström", "ANGELA", "angst", "ａｎｇ", "A\xCC\x8Ang"}) {
    for (const char* prefix : {"Ang", "åNG", ""}) {
      const std::string key = PrefixKey(prefix);
      EXPECT_TRUE(StartsWith(CollationKey(name), key)) << name << prefix;
      EXPECT_LT(CollationKey(name), EndOfPrefix(key)) << name << prefix;
    }
  }
  EXPECT_GT(CollationKey("Anh"), EndOfPrefix(PrefixKey("Ang")));
}

TEST(Collation, FindsWordsByTheirBeginnings) {
  struct Case {
    const char* text;
    const char* word;  // typed by a reader
    bool isFound;
  };
  const std::vector<Case> cases = {{"Zoë ÅNGSTRÖM", "angstrom", true},
                                   {"Zoë ÅNGSTRÖM", "a\xCC\x8Angstro\xCC\x88m ", true},
                                   {"Zoë ÅNGSTRÖM", "ngström", false},
                                   {"Zoë ÅNGSTRÖM", "zoe angstrom", true},
                                   {"Zoë ÅNGSTRÖM", "zoeangstrom", false},
                                   {"Łukasz", "lukasz", true},
                                   {"Straße", "strasse", true},
                                   {"becker", "ｂｅｃｋｅｒ", true},
                                   {"Tokyo ｶﾀｶﾅ", "カタ", true},
                                   {"100% Cotton", "100", true},
                                   {"D'Angelo", "ang", true},
                                   {"Ωmega", "ΩM", true},
                                   {"日本 太郎", "太", true},
                                   {"日本 太郎", "本", false},
                                   {"Henry Ⅷ", "viii", true},
                                   {"Henry VIII", "Ⅷ h", true},
                                   {"เกม", "เ", true},
                                   {"เกม", "เก", true},
                                   {"เกม", "ก", true},
                                   {"กเกม", "กเ", true},
                                   {"ເກມ", "ເ", true},
                                   {"เกเกม", "เกเ", true}};
  for (const auto& [text, word, isFound] : cases) {
    const auto keys = WordKeys(text);
    const auto typed = TypedWordKeys(word);
    EXPECT_FALSE(typed.empty()) << word;
    EXPECT_EQ(std::all_of(typed.begin(), typed.end(),
                          [&](const std::string& prefix) {
                            return std::any_of(keys.begin(), keys.end(), [&](const auto& key) {
                              return StartsWith(key, prefix);
                            });
                          }),
              isFound)
        << text << ": " << word;
  }
  for (const char* noWords : {"", "% -- '", "\x01\x02", "\xff"}) {
    EXPECT_TRUE(WordKeys(noWords).empty()) << noWords;
  }
  for (const auto& key : WordKeys("a\x01"
                                  "b Ångström 日本 ＡＢ")) {
    EXPECT_EQ(key.find(kWordMark), key.npos) << key;
  }
}

TEST(Collation, ListsNamesUnderTheLettersOfReaders) {
  struct Case {
    const char* name;
    const char* label;
  };
  const std::vector<Case> cases = {{"anders", "A"},
                                   {"Ångström", "A"},
                                   {"Łukasz", "L"},
                                   {"øre", "O"},
                                   {"ｂｅｃｋｅｒ", "B"},
                                   {"ßig", "S"},
                                   {"100 Percent", "1"},
                                   {"_under", "_"},
                                   {"Ωmega", "Ω"},
                                   {"ябл", "Я"},
                                   {"Йод", "Й"},
                                   {"ışık", "ı"},
                                   {"أحمد", "أ"},
                                   {"日本", "日"},
                                   {"\x01"
                                    "Ben",
                                    "B"},
                                   {"\u200E\u200E\u200E\u200E\u200E\u200Eben", "B"},
                                   {"เกม", "ก"},
                                   {"", ""},
                                   {"\x01\x02", ""}};
  for (const auto& [name, label] : cases) {
    const Letter letter = LetterOf(name, CollationKey(name));
    EXPECT_EQ(letter.label, label) << name;
    EXPECT_TRUE(StartsWith(CollationKey(name), letter.key)) << name;
    EXPECT_TRUE(letter.label.empty() || letter.key == PrefixKey(label)) << name;
  }
  const std::string outdated = CollationKey("Zoe");
  const Letter none = LetterOf("Ben", outdated);
  EXPECT_EQ(none.label, "");
  EXPECT_TRUE(!none.key.empty() && StartsWith(outdated, none.key));
}

}  // namespace

}  // namespace phonebook::tests
