// The pages of the phone book, for phones of every maker.
#include "phonebook/pages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "phonebook/database/selection.h"
#include "phonebook/tests/parsed_page.h"
#include "phonebook/tests/phone_book.h"

namespace phonebook::tests {

namespace {

struct MakerFacts {
  std::string path;
  const char* userAgent;
  Texts roots;                       // the elements that the pages are, in their order
  std::array<std::string, 2> links;  // to the pages of contacts before and after
};
const std::array<std::string, 2> kKeys = {"//*[Name = 'LEFT']/URL", "//*[Name = 'RIGHT']/URL"};
const std::vector<MakerFacts> kMakers = {
    {"aastra",
     "Aastra55i MAC:00-08-5D-11-22-33 V:2.2.0.166-SIP",
     {"AastraIPPhoneTextMenu", "AastraIPPhoneDirectory", "AastraIPPhoneInputScreen",
      "AastraIPPhoneTextMenu", "AastraIPPhoneTextScreen", "AastraIPPhoneExecute",
      "AastraIPPhoneTextScreen", "AastraIPPhoneStatus"},
     {"/AastraIPPhoneDirectory/@previous | /AastraIPPhoneTextMenu/*[Label = 'Previous']/URI",
      "/AastraIPPhoneDirectory/@next | /AastraIPPhoneTextMenu/*[Label = 'Next']/URI"}},
    {"cisco", "Cisco-CP-7962G/9.1", {8, "CiscoIPPhoneDirectory"}, {"/*/@previous", "/*/@next"}},
    {"polycom",
     "PolycomVVX-VVX_500-UA/4.1.3",
     {8, "html"},
     {"//a[. = 'Previous']/@href", "//a[. = 'Next']/@href"}},
    {"snom",
     "Mozilla/4.0 (compatible; snom370-SIP 8.7.3)",
     {"SnomIPPhoneDirectory", "SnomIPPhoneDirectory", "SnomIPPhoneInput", "SnomIPPhoneDirectory",
      "SnomIPPhoneText", "SnomIPPhoneDirectory", "SnomIPPhoneText", "SnomIPPhoneText"},
     kKeys},
    {"yealink", "Yealink SIP-T28P 2.60.0.140", {8, "YealinkIPPhoneDirectory"}, kKeys}};

// Follows every address from every maker's home, a search and every contact. Everywhere there is a
// way home, and at every contact one to dial it.
void WalkAll(const ServerProcess& server, soci::session& session) {
  std::vector<long long> ids(1000);
  session << "SELECT id FROM contacts", soci::into(ids);
  for (const auto& maker : kMakers) {
    const std::string home = server.base + "/" + maker.path + "/";
    Texts waiting = {home, home + "search?name=c"};
    for (const long long id : ids) {
      waiting.push_back(home + "contact/" + std::to_string(id));
      waiting.push_back(home + "dial/" + std::to_string(id));
    }
    std::set<std::string> seen;
    std::set<std::string> found;
    while (!waiting.empty()) {
      const std::string address = waiting.back();
      waiting.pop_back();
      if (!seen.insert(address).second) continue;
      const HTTPResponse response = server.Get(address);
      EXPECT_EQ(response.status, 200) << address << response.text;
      const bool isHTML = maker.path == "polycom";
      const std::string type = isHTML ? "text/html" : "text/xml";
      EXPECT_NE(response.header.find("\r\nContent-Type: " + type + "; charset=utf-8\r\n"),
                type.npos);
      EXPECT_EQ(response.header.find("\r\nContent-Security-Policy: ") != std::string::npos, isHTML);
      const ParsedPage page(response.text);
      const Texts addresses = page.Addresses();
      const auto leadsTo = [&](const std::string& target) {
        return std::count(addresses.begin(), addresses.end(), target) > 0;
      };
      EXPECT_TRUE(address == home || leadsTo(home)) << address << response.text;
      if (address.find("/contact/") != address.npos) {
        const std::string dial = home + "dial" + address.substr(address.rfind('/'));
        EXPECT_TRUE(leadsTo(dial) || !page.Numbers().empty()) << address << response.text;
      }
      EXPECT_TRUE(address.find("/dial/") == address.npos || page.Numbers().size() == 1) << address;
      if (address.find("search?letter=") != address.npos) {
        for (const auto& name : page.Items()) found.insert(name);
      }
      waiting.insert(waiting.end(), addresses.begin(), addresses.end());
    }
    const bool hasLetters = maker.path == "cisco" || maker.path == "yealink";
    EXPECT_EQ(found.size(), hasLetters ? ids.size() : 0) << home;
  }
}

TEST(Pages, AreTestedAndDocumented) {
  const std::string documentation = ContentOf(DOCUMENTATION "phonebook.md");
  for (const auto& page : AllPages()) {
    const std::string path = page.path + (page.takesContact ? "/" : "");
    EXPECT_EQ(std::count(kPages.begin(), kPages.end(), path + (page.takesContact ? "1" : "")), 1)
        << path;
    const std::string row = "| `/" + path;
    EXPECT_NE(documentation.find(row), std::string::npos) << row;
  }
}

TEST_P(PhoneBook, ComposesTheNearestDocumentOfEachMaker) {
  const auto server = Serve();
  std::set<std::string> keys;
  for (const auto& maker : kMakers) {
    for (std::size_t page = 0; page < kPages.size(); ++page) {
      const std::string path = "/" + maker.path + "/" + kPages[page];
      const ParsedPage found(server->Get(path).text);
      EXPECT_EQ(found.Root(), maker.roots.at(page)) << path;
      const Texts own = found.Find("//SoftKey[starts-with(URI, 'Soft')] | //SoftKeyItem/Name");
      keys.insert(own.begin(), own.end());
      EXPECT_EQ(ParsedPage(server->Get("/" + kPages[page], maker.userAgent).text).Root(),
                maker.roots.at(page))
          << maker.userAgent;
    }
    EXPECT_EQ(ParsedPage(server->Get("/cisco/", maker.userAgent).text).Root(),
              "CiscoIPPhoneDirectory");
  }
  EXPECT_EQ(keys, (std::set<std::string>{"\nDial\nSoftKey:Dial\n", "\nExit\nSoftKey:Exit\n",
                                         "\nSearch\nSoftKey:Submit\n", "\nSelect\nSoftKey:Select\n",
                                         "CANCEL", "F_MINIBROWSER_DIAL", "F_MINIBROWSER_SEARCH",
                                         "RIGHT"}));
  EXPECT_EQ(server->Get("/", "Mozilla/5.0").text, [&] {
    std::string makers;
    for (const auto& maker : kMakers) makers += server->base + "/" + maker.path + "/\n";
    return makers;
  }());
  WalkAll(*server, *Connect());

  // An alert without a text is none.
  const ParsedPage alert(server->Get("/aastra/status").text);
  EXPECT_EQ(alert.First("/*/@Beep") + alert.First("//Message/@type"), "yesalert");
  *Connect() << "UPDATE notices SET text = ''";
  const ParsedPage none(server->Get("/aastra/status").text);
  EXPECT_EQ(none.First("/*/@Beep") + none.First("//Message/@type"), "");
  EXPECT_EQ(none.First("//Message"), "\nNothing today.");
}

TEST_P(PhoneBookOnSQLite, ServesValidHTML) {
  if (std::system("command -v tidy >/dev/null") != 0) GTEST_SKIP() << "tidy is not installed";
  const auto server = Serve();
  const std::string tidy = "cd " + directory.path.string() + " && tidy -qe -utf8 page 2>found";
  for (const auto& page : kPages) {  // which have no type, and a title outside "head"
    std::ofstream(directory.path / "page") << server->Get("/polycom/" + page).text;
    EXPECT_EQ(WEXITSTATUS(std::system(tidy.c_str())), 1);
    EXPECT_EQ(ContentOf(directory.path / "found"),
              "line 1 column 1 - Warning: missing <!DOCTYPE> declaration\n");
  }
}

TEST_P(PhoneBookOnSQLite, SpeaksItsLanguageAlone) {
  const auto server = Serve({"--language", "de"});
  Texts paths = kPages;
  paths.insert(paths.end(), {"search?name=s", "search?name=nobody", "contact/0", "none"});
  std::set<std::string> found;
  for (const auto& maker : kMakers) {
    for (const auto& path : paths) {
      const ParsedPage page(server->Get("/" + maker.path + "/" + path).text);
      for (const auto& text : page.Find("//text() | //@value")) {
        const auto begin = text.find_first_not_of('\n');
        if (begin != text.npos) found.insert(text.substr(begin, text.find('\n', begin) - begin));
      }
    }
  }
  for (const char* english : {"Phone book", "Directory", "Search", "Search: s", "Alert", "Select",
                              "Exit", "Home", "Dial", "Previous", "Next", "Not found", "Submit"}) {
    EXPECT_EQ(found.count(english), 0U) << english;
  }
  for (const char* german : {"Telefonbuch", "Suche: s", "Auswählen", "Wählen", "Weiter",
                             "Niemand gefunden. Neu suchen?", "Nicht gefunden"}) {
    EXPECT_EQ(found.count(german), 1U) << german;
  }
}

TEST_P(PhoneBook, PagesThroughContactsThatChangeMeanwhile) {
  const auto server = Serve();
  const auto session = Connect();
  Texts names(1000);
  for (std::size_t i = 0; i < 1000; ++i) {
    names[i] = "Contact " + std::to_string(10000 + i * 7919 % 1000 / 2);  // each name twice
  }
  const auto pageThrough = [&](const std::string& path, const MakerFacts& maker) {
    Texts addresses = {server->base + path};
    Texts seen;
    std::set<std::string> targets;
    while (!addresses.back().empty()) {
      const ParsedPage page(server->Get(addresses.back()).text);
      if (addresses.size() == 3) {  // what comes before the pages seen, and goes
        *session << "INSERT INTO contacts (name, telephone) VALUES ('Contact 1 comes', '1')";
        *session << "DELETE FROM contacts WHERE name = 'Contact 10000'";
        EXPECT_TRUE(IsIndexed());
      } else if (addresses.size() > 3) {
        const ParsedPage before(server->Get(page.First(maker.links[0])).text);
        EXPECT_EQ(before.Items().back(), seen.back());
        EXPECT_EQ(before.First(maker.links[1]), addresses.back());
      }
      for (const auto& name : page.Items()) seen.push_back(name);
      for (const auto& target : page.Find("//MenuItem/URI | //DirectoryEntry/Telephone |"
                                          " //p/a[starts-with(., 'Contact')]/@href")) {
        targets.insert(target);
      }
      addresses.push_back(page.First(maker.links[1]));
    }
    EXPECT_EQ(seen, names) << path;
    EXPECT_GE(targets.size(), 1000U);
  };
  for (const auto& maker : kMakers) {
    for (const char* path : {"/directory", "/search?name=con"}) {
      Fill(names);
      if (std::string(path) == "/directory") {  // ids of either sign and of 19 digits
        *session << "UPDATE contacts SET id = 9223372036854775806 - id WHERE id % 2 = 0";
        *session << "UPDATE contacts SET id = id - 9223372036854775807 WHERE id % 2 = 1";
        EXPECT_TRUE(IsIndexed());
      }
      std::sort(names.begin(), names.end());
      pageThrough("/" + maker.path + path, maker);
    }
  }
}

TEST_P(PhoneBook, ServesWellFormedPagesOfHostileContacts) {
  const auto server = Serve();
  Texts hostile = {"<b>bold</b>",           "& &amp; &#0;",       "\"quoted' name\"",
                   "]]><![CDATA[",          "tab\tand\nline\r\n", "?page=2&name=%00",
                   "z \xc2\x85\xef\xbf\xbe"};
  std::string shuffled;  // does not compress
  for (unsigned i = 0; i < 10000; ++i)
    shuffled += static_cast<char>('!' + i * i * 2654435761U / 65536 % 90);
  hostile.push_back(shuffled);
  // Letters of their own, though they are others with an accent, or without a dot.
  hostile.insert(hostile.end(), {"Йод", "Яна", "أحمد", "يوسف", "ışık"});
  if (!isPostgreSQL) {  // which keeps such bytes out
    hostile.insert(hostile.end(), {"\xff\xfe", "a\xc3", "b\xe2\x82", "\xed\xa0\x80", "caf\xe9",
                                   std::string(1000, '\x80')});
  }
  Fill(hostile);
  const auto session = Connect();
  shuffled += "]]>\x01&<";
  for (int line = 0; line < 40; ++line) shuffled += "\nmore than a page";
  *session << "UPDATE notices SET text = :text", soci::use(shuffled);
  WalkAll(*server, *session);
  for (const char* contact :
       {"NULL, '1', '', FALSE", "'', '1', '', FALSE", "'a', NULL, '', FALSE", "'a', '', '', FALSE",
        "'a', '1', NULL, FALSE", "'a', '1', '', NULL"}) {
    EXPECT_THROW(*session << "INSERT INTO contacts (name, telephone, department, is_indexed)"
                             " VALUES ("
                          << contact << ")",
                 soci::soci_error)
        << contact;
  }
  *session << "INSERT INTO contacts (name, telephone) VALUES ('\xc2\x85', '1')";
  const std::string ignored = "\x01\x02";  // take no part in the order
  *session << "INSERT INTO contacts (name, telephone) VALUES (:name, '2')", soci::use(ignored);
  if (!isPostgreSQL) {  // an empty blob is no empty text
    *session << "INSERT INTO contacts (id, name, telephone, department)"
                " VALUES (-5, x'', x'', x'')";
    *session << "INSERT INTO removed_contacts (contact) VALUES (NULL)";
    hostile.emplace_back();
    for (const char* page : {"/snom/contact/-5", "/snom/directory?after=-5-"}) {
      EXPECT_EQ(server->Get(page).status, 200) << page;
    }
  }
  EXPECT_TRUE(IsIndexed());
  EXPECT_EQ(ParsedPage(server->Get("/cisco/directory").text).Items().size(), hostile.size() + 2);
  EXPECT_GT(ParsedPage(server->Get("/yealink/search").text).Items().size(), 5U);

  // A page shows the beginning of a text of any length.
  std::string endless;
  for (int i = 0; i < 100000; ++i) endless += "ä";
  *session << "UPDATE notices SET text = :text", soci::use(endless);
  *session << "UPDATE contacts SET telephone = :text WHERE telephone = '2'", soci::use(endless);
  const auto shows = [&](const std::string& page, int characters) {
    const std::string text = server->Get(page).text;
    return text.find(endless.substr(0, 2 * static_cast<std::size_t>(characters)) + "<") !=
           text.npos;
  };
  EXPECT_TRUE(shows("/aastra/message", kMaxNoticeCharacters));
  const std::string lines(kMaxNoticeCharacters, '\n');
  *session << "UPDATE notices SET text = :text", soci::use(lines);
  EXPECT_EQ(ParsedPage(server->Get("/cisco/message").text).Items().size(), 100U);
  EXPECT_TRUE(shows("/cisco/directory", kMaxShownCharacters));
  long long id = 0;
  *session << "SELECT max(id) FROM contacts", soci::into(id);
  EXPECT_TRUE(shows("/cisco/contact/" + std::to_string(id), kMaxShownCharacters));
}

INSTANTIATE_TEST_SUITE_P(On, PhoneBook, testing::Values("SQLite", "PostgreSQL"), NameOf);
INSTANTIATE_TEST_SUITE_P(Only, PhoneBookOnSQLite, testing::Values("SQLite"), NameOf);
INSTANTIATE_TEST_SUITE_P(Only, PhoneBookOnPostgreSQL, testing::Values("PostgreSQL"), NameOf);

}  // namespace

}  // namespace phonebook::tests
