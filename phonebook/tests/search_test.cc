// Searches, and the order of the directory.
#include <gtest/gtest.h>
#include <soci/soci.h>
#include <teleform/screens/escape.h>

#include <map>
#include <string>

#include "phonebook/tests/parsed_page.h"
#include "phonebook/tests/phone_book.h"

namespace phonebook::tests {

namespace {

TEST_P(PhoneBook, FindsByWordsAndListsInCollationOrder) {
  const auto server = Serve();
  // In the order of the root collation.
  const Texts names = {"\"Quoted\" \\'s", "100 Percent", "100% Cotton",
                       "Anders",          "ångström",    "Ångström, Linnéa",
                       "becker",          "BECKER AG",   "D'Angelo; DROP TABLE contacts",
                       "Zoë ÅNGSTRÖM",    "Ωmega",       "日本 太郎"};
  Fill({names.rbegin(), names.rend()});
  const auto find = [&](const std::string& search) {
    return ParsedPage(
               server->Get("/aastra/search?name=" + teleform::screens::PercentEncode(search)).text)
        .Items();
  };
  const ParsedPage all(server->Get("/snom/directory").text);
  EXPECT_EQ(all.Items(), names);
  const Texts nobody = {"Nobody found. Search again?"};
  std::string many;
  for (int i = 0; i < 64; ++i) many += "я";  // 64 characters, 128 bytes
  const std::map<std::string, Texts> expected = {
      {"å",
       {"Anders", "ångström", "Ångström, Linnéa", "BECKER AG", "D'Angelo; DROP TABLE contacts",
        "Zoë ÅNGSTRÖM"}},
      {"angs zoe", {"Zoë ÅNGSTRÖM"}},
      {" linnea,  ang", {"Ångström, Linnéa"}},
      {"100%", {"100 Percent", "100% Cotton"}},
      {"' OR 1=1 --", nobody},
      {"d'angelo drop", {"D'Angelo; DROP TABLE contacts"}},
      {"%", nobody},
      {many, nobody}};
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
  int others = 0;
  *session << "SELECT count(*) FROM search_keys LEFT JOIN contacts ON id = contact AND"
              " contacts.all_keys = search_keys.all_keys WHERE id IS NULL",
      soci::into(others);
  EXPECT_EQ(others, 0);
}
}  // namespace

}  // namespace phonebook::tests
