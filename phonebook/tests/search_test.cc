// Searches, and the order of the directory.
#include <gtest/gtest.h>
#include <teleform/screens/escape.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "phonebook/collation.h"
#include "phonebook/database/store.h"
#include "phonebook/tests/parsed_page.h"
#include "phonebook/tests/phone_book.h"

namespace phonebook::tests {

namespace {

TEST_P(PhoneBook, FindsByWordsAndListsInCollationOrder) {
  const auto server = Serve();
  // In the order of the root collation.
  const Texts names = {"\"Quoted\" \\'s",
                       "100% Cotton",
                       "Anders",
                       "ångström",
                       "becker",
                       "BECKER AG",
                       "D'Angelo; DROP TABLE contacts",
                       "Zoë ÅNGSTRÖM",
                       "Ωmega"};
  Fill({names.rbegin(), names.rend()});
  const auto find = [&](const std::string& search) {
    return ParsedPage(
               server->Get("/aastra/search?name=" + teleform::screens::PercentEncode(search)).text)
        .Items();
  };
  const ParsedPage all(server->Get("/snom/directory").text);
  EXPECT_EQ(all.Items(), names);
  const Texts nobody = {"Nobody found. Search again?"};
  const std::map<std::string, Texts> expected = {
      {"å", {"Anders", "ångström", "BECKER AG", "D'Angelo; DROP TABLE contacts", "Zoë ÅNGSTRÖM"}},
      {"angs zoe", {"Zoë ÅNGSTRÖM"}},
      {"100%", {"100% Cotton"}},
      {"' OR 1=1 --", nobody},
      {"d'angelo,  drop ", {"D'Angelo; DROP TABLE contacts"}},
      {std::string(64, 'x'), nobody},
      {"%", nobody},
      {"anders6", nobody}};  // a telephone
  for (const auto& [search, found] : expected) EXPECT_EQ(find(search), found) << search;

  // Also by the department, and at once under another name.
  const auto session = Connect();
  *session << "UPDATE contacts SET department = 'Research & Sales' WHERE name = 'becker'";
  *session << "UPDATE contacts SET name = 'Bekker' WHERE name = 'BECKER AG'";
  *session << "DELETE FROM contacts WHERE name = 'Ωmega'";
  EXPECT_TRUE(IsIndexed());
  EXPECT_EQ(find("sal bec"), Texts{"becker"});
  EXPECT_EQ(find("becker"), (Texts{"becker", "Bekker"}));  // whose department is still BECKER AG
  EXPECT_EQ(find("bekk"), Texts{"Bekker"});
  EXPECT_EQ(find("omega"), nobody);

  // Nothing is left of who had the same number before, by whatever means.
  const std::string zoe =
      " INTO contacts (id, name, telephone, department)"
      " VALUES (1000, 'Zoë ÅNGSTRÖM', '1', 'Zoo')";
  for (const Texts& changes :
       {Texts{"UPDATE contacts SET id = 1000, department = 'Zoo' WHERE name = 'Zoë ÅNGSTRÖM'"},
        Texts{"DELETE FROM contacts WHERE id = 1000", "INSERT" + zoe},
        Texts{isPostgreSQL ? "TRUNCATE contacts" : "DELETE FROM contacts", "INSERT" + zoe},
        Texts{isPostgreSQL ? "ANALYZE" : "INSERT OR REPLACE" + zoe}}) {
    for (const auto& change : changes) *session << change;
    EXPECT_TRUE(IsIndexed());
    EXPECT_EQ(find("angs zoo"), Texts{"Zoë ÅNGSTRÖM"}) << changes.front();
  }
  EXPECT_EQ(Count("search_keys LEFT JOIN contacts ON id = contact AND"
                  " contacts.all_keys = search_keys.all_keys WHERE id IS NULL"),
            0);
}

TEST_P(PhoneBook, LooksForCommonWordsInSteps) {
  std::vector<Contact> contacts;
  for (int i = 0; i < 7000; ++i) {
    const bool isBoth = i == 100 || i == 6900;
    contacts.push_back({"N" + std::to_string(10000 + i), "1",
                        isBoth       ? "red blue"
                        : i > 6950   ? "green"
                        : i % 2 == 0 ? "red"
                                     : "blue"});
  }
  EXPECT_EQ(FailureOf(database, contacts), "");
  const auto server = Serve();
  const std::string more = "There may be more. Add a letter to the search?";
  const std::string search = server->base + "/aastra/search?name=blue+red";
  const auto follow = [&](std::string address, const std::string& label) {
    std::vector<Texts> pages;
    while (!address.empty() && pages.size() < 9) {
      const ParsedPage page(server->Get(address).text);
      pages.push_back(page.Items());
      address = page.First("//*[Label = '" + label + "']/URI");
    }
    return pages;
  };
  EXPECT_EQ(follow(search, "Next"), (std::vector<Texts>{{"N10100", more}, {more}, {"N16900"}}));
  EXPECT_EQ(follow(search + "&before=6901-N16900", "Previous"),
            (std::vector<Texts>{{more}, {more}, {"N10100", more}}));
  EXPECT_EQ(follow(search + "+n169", "Next"), std::vector<Texts>{{"N16900"}});  // a rare word

  // Contacts that are removed, and not yet from the index, take no places on a page.
  EXPECT_EQ(server->Stop(), 0);
  *Connect() << "DELETE FROM contacts WHERE id BETWEEN 6952 AND 6990";
  const Selection green{"", {*WordKeys("green").begin()}};
  EXPECT_EQ(Store(database).ListContacts(green, {}, 20).contacts.size(), 10U);
}

TEST_P(PhoneBook, ImportsTheSearchKeysThatIndexingMakes) {
  std::vector<Contact> contacts;
  for (UChar32 character = '!'; character < 0x3100; character += 4) {
    std::string text;
    icu::UnicodeString(character).toUTF8String(text);
    contacts.push_back({"A " + text + "x", "1", text + "y a"});
  }
  EXPECT_EQ(FailureOf(database, contacts), "");
  for (const char* sql : {"CREATE TABLE imported AS SELECT * FROM search_keys",
                          "DELETE FROM search_keys", "UPDATE contacts SET is_indexed = FALSE"}) {
    *Connect() << sql;
  }
  const auto server = Serve();
  EXPECT_TRUE(IsIndexed());
  EXPECT_EQ(Count("search_keys"), Count("imported"));
  EXPECT_EQ(Count("(SELECT * FROM imported EXCEPT SELECT * FROM search_keys) d"), 0);
}

TEST_P(PhoneBook, ListsChangedNamesInTheirOldOrderUntilTheyAreIndexed) {
  std::vector<Contact> contacts;
  for (int i = 10; i < 99; ++i) contacts.push_back({"N" + std::to_string(i), "1", "Sales"});
  EXPECT_EQ(FailureOf(database, contacts), "");
  *Connect() << "UPDATE contacts SET name = CASE WHEN id % 2 = 0 THEN 'A' ELSE 'Z' END ||"
                " CAST(1000 - id AS VARCHAR(9))";
  Store store(database);
  for (const Selection& selection : {Selection{}, Selection{"", {*WordKeys("sales").begin()}}}) {
    std::vector<long long> seen;
    Cursor cursor;
    for (bool hasNext = true; hasNext && seen.size() < 99;) {
      const ContactPage page = store.ListContacts(selection, cursor, 7);
      for (const auto& contact : page.contacts) seen.push_back(contact.id);
      ASSERT_FALSE(page.contacts.empty());
      const auto& last = page.contacts.back();
      cursor = {true, CollationKey(last.name), last.id};
      hasNext = page.hasNext;
    }
    EXPECT_EQ(seen.size(), contacts.size());
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));  // ids follow the names
  }
  // Names that don't begin with the letters under which they are listed.
  std::size_t pages = 1;
  LetterPage letters = store.ListLetters({}, 20);
  for (; letters.hasNext && pages < 9; ++pages) {
    ASSERT_TRUE(letters.end);
    letters = store.ListLetters({true, CollationKey(letters.end->name), letters.end->id}, 20);
  }
  EXPECT_EQ(pages, 2U);
}
}  // namespace

}  // namespace phonebook::tests
