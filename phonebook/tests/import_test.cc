// Files of contacts, and imports into a phone book that is being read.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <future>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "phonebook/contacts.h"
#include "phonebook/database/backup.h"
#include "phonebook/tests/parsed_page.h"
#include "phonebook/tests/phone_book.h"

namespace phonebook::tests {

namespace {

TEST(ContactFiles, AreReadOrRefusedWithAllFaults) {
  // Of contacts their fields, or of faults their lines.
  std::vector<std::pair<std::string, std::string>> cases = {
      {"name,telephone\nA,1\n\nB,2", "A|1||;B|2||;"},
      {"\xEF\xBB\xBFKey;Telephone;Mail;NAME\r\n7;1;a@b;\"M\xC3\xBCller; \"\"Anna\"\"\"\r\n",
       "M\xC3\xBCller; \"Anna\"|1||7;"},
      {"\"name\"\t\"telephone\"\t\"department\"\nA\t1\t\"two\r\nlines\"\nB\t2\t\n",
       "A|1|two  lines|;B|2||;"},
      {"# name, telephone\nA \"B\"\t1\t\nC, D\t2\tE\t9\n", "A \"B\"|1||;C, D|2|E|9;"},
      {"A\t\x01\x31\t\x01\nB\t2\t\n", "A|1||;B|2||;"},
      {"name,telephone,key\n\"A\nB\",1,7\n,2,\nC,,\n\nD,3,7\nE\n\xff,4,\n",
       "f:4: the name is empty\nf:5: the telephone is empty\nf:7: the key is that of line 2\n"
       "f:8: expected 3 fields as in the header, not 1\nf:9: this is not UTF-8"},
      {"name,telephone\nA,\"1\nB,2\n", "f:2: a quote is never closed"},
      {"name,telephone\nA,1\nB,\"2\n\"C\",3\n",
       "f:3: a quote is neither doubled nor around a field"},
      {"name,name,phone\nA,B,1\n",
       "f:1: the column name is repeated\nf:1: the header lacks the column telephone"},
      {"A\t1\nB\t2\t3\t4\t5\n",
       "f:1: expected a name, a telephone and a department with tabs between\n"
       "f:2: expected a name, a telephone and a department with tabs between"},
      {"name,telephone\n", "f: no contacts in it"},
      {"", "f: no contacts in it"},
      {"", ""}};
  for (int line = 1; line <= 1000; ++line) {
    cases.back().first += "\t\t\n";
    cases.back().second += "f:" + std::to_string(line) + ": the name is empty\n";
  }
  cases.back().first += "\t\t\n";
  cases.back().second += "f: 1 more lines are malformed";
  for (const auto& [content, expected] : cases) {
    std::istringstream file(content);
    std::string read;
    try {
      for (const auto& contact : ReadContacts(file, "f")) {
        read += contact.name + "|" + contact.telephone + "|" + contact.department + "|" +
                contact.key + ";";
      }
    } catch (const std::exception& error) {
      read = error.what();
    }
    EXPECT_EQ(read, expected) << content;
  }
}

class Imports : public PhoneBook {
 protected:
  // What a command prints; an error without its time.
  std::string Run(const std::string& command, const std::string& file,
                  const std::string& content = "") const {
    const fs::path path = directory.path / file, out = directory.path / "out";
    if (!content.empty()) std::ofstream(path) << content;
    const int status = std::system((PHONEBOOK " --database '" + database + "' " + command + " '" +
                                    path.string() + "' >'" + out.string() + "' 2>&1")
                                       .c_str());
    std::string said = ContentOf(out);
    EXPECT_EQ(status == 0, said.find("error: ") == said.npos) << said;
    said.erase(0, said.empty() ? 0 : said.find(": ") + 2);
    return said.substr(0, said.find('\n'));
  }

  // All contacts by id.
  std::string Contacts() const {
    std::string found;
    const auto session = Connect();
    for (const auto& contact : soci::rowset<std::string>(
             session->prepare << "SELECT id || ' ' || name || ' ' || telephone || ' ' ||"
                                 " department || ' ' || key FROM contacts"
                                 " WHERE is_indexed = TRUE ORDER BY id")) {
      found += contact + "\n";
    }
    return found;
  }
};

using ImportsOnSQLite = Imports;

TEST_P(Imports, KeepTheIdsOfThoseWhoStay) {
  const std::string names = "name,telephone,department\n";
  const std::string keys = "name,telephone,department,key\n";
  struct Case {
    std::string content, said, contacts;
  };
  const std::vector<Case> cases = {
      {names + "Ann,1,S\nBob,2,S\nCem,3,S\nBob,4,T\n", "4 added, 0 changed, 0 removed, 0 unchanged",
       "1 Ann 1 S \n2 Bob 2 S \n3 Bob 4 T \n4 Cem 3 S \n"},
      // The rows moved; of two Bobs each is the one who has more in common.
      {names + "Bob,5,T\nBob,2,S\nDan,6,S\nAnn,9,X\n", "1 added, 2 changed, 1 removed, 1 unchanged",
       "1 Ann 9 X \n2 Bob 2 S \n3 Bob 5 T \n5 Dan 6 S \n"},
      {keys + "Ann,9,X,a\nBob,2,S,b\nBob,5,T,c\nDan,6,S,d\n",
       "0 added, 4 changed, 0 removed, 0 unchanged",
       "1 Ann 9 X a\n2 Bob 2 S b\n3 Bob 5 T c\n5 Dan 6 S d\n"},
      // Ann married, and somebody else has the name and number of one Bob.
      {keys + "Zoe,9,X,a\nBob,2,S,e\nBob,5,T,c\nDan,6,S,d\n",
       "1 added, 1 changed, 1 removed, 2 unchanged",
       "1 Zoe 9 X a\n3 Bob 5 T c\n5 Dan 6 S d\n6 Bob 2 S e\n"},
      {names + "Zoe,9,X\nBob,5,T\nDan,6,S\nBob,2,S\n", "0 added, 0 changed, 0 removed, 4 unchanged",
       "1 Zoe 9 X a\n3 Bob 5 T c\n5 Dan 6 S d\n6 Bob 2 S e\n"}};
  std::string before;
  for (const auto& [content, said, contacts] : cases) {
    EXPECT_EQ(Run("import", "people.csv", content), said);
    const bool isFirst = before.empty();
    EXPECT_EQ(before = Contacts(), contacts);
    if (!isFirst) continue;
    // What others have added stays with who stays, and only with them.
    for (const char* sql :
         {"ALTER TABLE contacts ADD COLUMN photo TEXT", "UPDATE contacts SET photo = name",
          "CREATE TABLE cars (owner BIGINT PRIMARY KEY REFERENCES contacts ON DELETE CASCADE)",
          "INSERT INTO cars SELECT id FROM contacts"}) {
      *Connect() << sql;
    }
  }
  EXPECT_EQ(Count("cars"), 2);
  EXPECT_EQ(Count("contacts JOIN cars ON id = owner WHERE photo IN ('Ann', 'Bob')"), 2);
  const auto server = Serve();
  // One sheet of faults, and one that lacks most people.
  EXPECT_NE(Run("import", "faults.csv", keys + "Eve,,,\n,1,,\n").find("faults.csv:2: "),
            std::string::npos);
  EXPECT_NE(Run("import", "few.csv", names + "Zoe,9,X\n").find("remove 3 of 4"), std::string::npos);
  EXPECT_EQ(Contacts(), before);
  // Readers see the old or the new book.
  std::string many = names;
  for (int i = 0; i < 3000; ++i) many += "New " + std::to_string(10000 + i) + ",1,\n";
  auto importing =
      std::async(std::launch::async, [&] { return Run("import --force", "new", many); });
  std::set<std::string> firsts;
  do {
    firsts.insert(ParsedPage(server->Get("/aastra/directory").text).Items().front());
  } while (importing.wait_for(std::chrono::milliseconds(0)) != std::future_status::ready);
  EXPECT_EQ(importing.get(), "3000 added, 0 changed, 4 removed, 0 unchanged");
  firsts.insert(ParsedPage(server->Get("/aastra/directory").text).Items().front());
  EXPECT_EQ(firsts, (std::set<std::string>{"Bob", "New 10000"}));
  EXPECT_EQ(ParsedPage(server->Get("/aastra/search?name=12999").text).Items(), Texts{"New 12999"});
  // Triggers and indexes are there again, and other programs' contacts get ids of their own.
  EXPECT_EQ(FailureOf(database), "");
  *Connect() << "INSERT INTO contacts (name, telephone) VALUES ('Last', '1')";
  EXPECT_TRUE(IsIndexed());
  EXPECT_EQ(Count("contacts"), 3001);
}

TEST_P(ImportsOnSQLite, AreBackedUp) {
  EXPECT_EQ(Run("import", "people.csv", "name,telephone\nAnn,1\nBob,2\n").substr(0, 7), "2 added");
  const auto server = Serve({"--contacts", directory.path / "people.csv"});
  EXPECT_TRUE(Eventually([&] { return server->IsLogged("--contacts does nothing"); }));
  *Connect() << "INSERT INTO contacts (name, telephone) VALUES ('In the log', '3')";
  EXPECT_TRUE(IsIndexed());
  EXPECT_EQ(Run("backup", "copy.db"), "");
  EXPECT_NE(Run("backup", "copy.db").find("copy.db exists"), std::string::npos);
  EXPECT_THROW(BackUp(database, directory.path / "stopped", [] { throw 1; }), int);
  EXPECT_EQ(FilesNamed(directory.path / "stopped"), 0);
  database = directory.path / "copy.db";
  EXPECT_EQ(ParsedPage(Serve()->Get("/cisco/directory").text).Items(),
            (Texts{"Ann", "Bob", "In the log"}));
  database = directory.path / "typo.db";
  EXPECT_NE(Run("backup", "empty.db").find("unable to open"), std::string::npos);
  EXPECT_FALSE(fs::exists(database));
  std::ofstream(database).flush();
  EXPECT_NE(Run("backup", "empty.db").find("no phone book"), std::string::npos);
  EXPECT_EQ(FilesNamed(directory.path / "empty.db"), 0);
}

INSTANTIATE_TEST_SUITE_P(On, Imports, testing::Values("SQLite", "PostgreSQL"), NameOf);
INSTANTIATE_TEST_SUITE_P(Only, ImportsOnSQLite, testing::Values("SQLite"), NameOf);

}  // namespace

}  // namespace phonebook::tests
