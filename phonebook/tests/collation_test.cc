// Collation keys, word keys and letters.
#include "phonebook/collation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace phonebook::tests {

namespace {

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

TEST(Collation, FindsWordsByTheirBeginnings) {
  const auto finds = [](const std::string& text, const std::string& typed) {
    const auto keys = WordKeys(text), prefixes = TypedWordKeys(typed);
    EXPECT_FALSE(prefixes.empty()) << typed;
    return std::all_of(prefixes.begin(), prefixes.end(), [&](const auto& prefix) {
      return std::any_of(keys.begin(), keys.end(),
                         [&](const auto& key) { return key.rfind(prefix, 0) == 0; });
    });
  };
  const std::map<std::string, std::vector<std::string>> found = {
      {"Zoë ÅNGSTRÖM", {"angstrom", "a\xCC\x8Angstro\xCC\x88m "}},
      {"Łukasz Straße", {"lukasz", "strasse"}},
      {"becker ｶﾀｶﾅ", {"ｂｅｃｋｅｒ", "カタ"}},
      {"D'Angelo Ωmega", {"ang", "ΩM"}},
      {"日本 太郎", {"太"}},
      {"Henry Ⅷ", {"viii"}},
      {"Henry VIII", {"Ⅷ h"}},
      {"เกม", {"เ", "เก", "ก"}},
      {"กเกม", {"กเ"}},
      {"ເກມ", {"ເ"}},
      {"เกเกม", {"เกเ"}}};
  for (const auto& [text, words] : found) {
    for (const auto& word : words) EXPECT_TRUE(finds(text, word)) << text << ": " << word;
  }
  EXPECT_FALSE(finds("Zoë ÅNGSTRÖM", "ngström"));
  EXPECT_FALSE(finds("Zoë ÅNGSTRÖM", "zoeangstrom"));
  EXPECT_FALSE(finds("日本 太郎", "本"));
  for (const char* noWords : {"", "% -- '", "\x01\x02", "\xff"}) {
    EXPECT_TRUE(WordKeys(noWords).empty()) << noWords;
  }
  for (const auto& key : WordKeys("a\x01"
                                  "b Ångström 日本 ＡＢ")) {
    EXPECT_EQ(key.find(kWordMark), key.npos) << key;
  }
}

TEST(Collation, ListsNamesUnderTheLettersOfReaders) {
  const std::map<std::string, std::vector<std::string>> names = {
      {"A", {"anders", "Ångström"}},
      {"B",
       {"ｂｅｃｋｅｒ",
        "\x01"
        "Ben",
        "\u200E\u200E\u200E\u200E\u200E\u200Eben"}},
      {"L", {"Łukasz"}},
      {"O", {"øre"}},
      {"S", {"ßig"}},
      {"1", {"100 Percent"}},
      {"_", {"_under"}},
      {"Ω", {"Ωmega"}},
      {"Я", {"ябл"}},
      {"Й", {"Йод"}},
      {"ı", {"ışık"}},
      {"أ", {"أحمد"}},
      {"日", {"日本"}},
      {"ก", {"เกม"}},
      {"\u1FED", {"\u1FED"}},
      {"\u0F73", {"\u0F73"}},
      {"", {"", "\x01\x02"}}};
  for (const auto& [label, all] : names) {
    for (const auto& name : all) {
      const Letter letter = LetterOf(name, CollationKey(name));
      EXPECT_EQ(letter.label, label) << name;
      EXPECT_EQ(CollationKey(name).rfind(letter.key, 0), 0U) << name;
      EXPECT_TRUE(label.empty() || letter.key == PrefixKey(label)) << name;
    }
  }
  const std::string outdated = CollationKey("Zoe");
  const Letter none = LetterOf("Ben", outdated);
  EXPECT_EQ(none.label, "");
  EXPECT_TRUE(!none.key.empty() && outdated.rfind(none.key, 0) == 0);
}

}  // namespace

}  // namespace phonebook::tests
