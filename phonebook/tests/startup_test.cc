// How the server starts: its options, and the import into a new database.
#include <gtest/gtest.h>
#include <soci/sqlite3/soci-sqlite3.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "phonebook/database/new_file.h"
#include "phonebook/tests/parsed_page.h"
#include "phonebook/tests/phone_book.h"

namespace phonebook::tests {

namespace {

TEST_P(PhoneBook, IsFilledOnceByServersStartedTogether) {
  std::vector<std::future<std::unique_ptr<ServerProcess>>> starting(4);
  for (std::size_t i = 0; i < starting.size(); ++i) {
    const fs::path own = directory.path / std::to_string(i);
    fs::create_directory(own);
    starting[i] = std::async(std::launch::async, [this, own] {
      auto server = std::make_unique<ServerProcess>(own, database);
      EXPECT_TRUE(server->Listens()) << ContentOf(server->log);
      return server;
    });
  }
  for (auto& started : starting) EXPECT_EQ(started.get()->Get("/cisco/directory").status, 200);
  EXPECT_EQ(Count("contacts"), 40);
  *Connect() << "DELETE FROM contacts";  // what the owner removed stays removed
  EXPECT_EQ(ParsedPage(Serve()->Get("/snom/directory").text).First("//Title"),
            "Nobody is in the phone book");
}

TEST_P(PhoneBook, LeavesNothingBehindWhenTheImportIsStopped) {
  const fs::path contacts = directory.path / "contacts.tsv";
  {
    std::ofstream file(contacts);
    for (int i = 0; i < 200000; ++i) file << "Contact " << i * 7919 % 200000 << "\t" << i << "\t\n";
  }
  ServerProcess server(directory.path, database, {"--contacts", contacts});
  EXPECT_TRUE(Eventually([&] {  // until it is at it
    return isPostgreSQL ? Count("pg_locks WHERE locktype = 'advisory'") > 0
                        : FilesNamed(database) > 0;
  }));
  EXPECT_FALSE(fs::exists(database));
  EXPECT_EQ(WEXITSTATUS(server.Stop()), 1);
  EXPECT_TRUE(server.IsLogged("stopped; the database is unchanged\n"));
  EXPECT_EQ(FilesNamed(database), 0);
  EXPECT_EQ(ParsedPage(Serve()->Get("/snom/directory").text).First("//Name"), "Adebayo, Folasade");
}

TEST(NewFile, AppearsOnceWhole) {
  const TemporaryDirectory directory;
  const std::string target = directory.path / "new.db";
  const std::string prefix = directory.path / ".new.db.phonebook-import-";
  std::ofstream(prefix + "0badcafe") << "of a process that died";
  std::ofstream(prefix + "of-today") << "of the user";
  {
    NewFile first(target), second(target);
    EXPECT_FALSE(fs::exists(prefix + "0badcafe"));
    EXPECT_EQ(FilesNamed(target), 3);
    std::ofstream(first.Path()) << "first";
    std::ofstream(second.Path()) << "second";
    EXPECT_TRUE(IsDatabaseMissing(target));
    EXPECT_TRUE(first.Publish());
    EXPECT_FALSE(second.Publish());
  }
  EXPECT_EQ(ContentOf(target), "first");
  EXPECT_EQ(FilesNamed(target), 2);
  fs::remove(target);
  for (const char* companion : {"-journal", "-wal", "-shm"}) {
    std::ofstream(target + companion) << "of a file that is gone";
    EXPECT_THROW(IsDatabaseMissing(target), std::runtime_error);
    NewFile file(target);
    EXPECT_THROW(file.Publish(), std::runtime_error);
    fs::remove(target + companion);
  }
}

TEST_P(PhoneBookOnSQLite, StartsOnlyWithValidOptions) {
  const auto file = [&](const std::string& name, const std::string& content) {
    std::ofstream(directory.path / name) << content;
    return (directory.path / name).string();
  };
  const std::string other = directory.path / "other.db";
  soci::session(soci::sqlite3, "dbname=\"" + other + "\"") << "CREATE TABLE contacts (id INTEGER)";
  const std::string damaged = directory.path / "damaged.db";
  ServerProcess(directory.path, damaged).Listens();
  std::fstream(damaged, std::ios::in | std::ios::out).seekp(4096) << std::string(4096, 'x');
  const std::string dangling = directory.path / "dangling.db";
  fs::create_symlink(directory.path / "missing.db", dangling);
  struct Case {
    Texts options;
    std::string said;
    std::string path{};  // of the database
  };
  const std::vector<Case> cases = {
      {{}, "other tables than a phone book", other},
      {{}, "No such file", directory.path / "no" / "such.db"},
      {{}, "damaged.db: database disk image is malformed", damaged},
      {{}, "symbolic link to a missing file", dangling},
      {{}, "not a database", file("text", "no database at all, but some text")},
      {{"--contacts", file("nul.tsv", std::string("A\0\t1\t\n", 6))}, "nul.tsv:1: there is a NUL"},
      {{"--address", "8.8.8.8"}, "can't listen on 8.8.8.8"},
      {{"--config", file("typo.conf", "prot = 8080\n")}, "prot"},
      {{"--config", file("bad.conf", "region = Germany\n")}, "a country such as DE"},
      {{"--config", file("twice.conf", "region = DE\nport = 0\nregion = FR\n")}, "repeats region"},
      {{"--trusted-proxy", "192.0.2.0/33"}, "it must be like 192.0.2.1"},
      {{"--admin-address", "somewhere:1"}, "it must be like 127.0.0.1"},
      {{"--admin-address", "127.0.0.1:"}, "it must be like 127.0.0.1"},
      {{"--host", "phone_book.example"}, "it must be a host name"},
      {{"--base-url", "ftp://phonebook.example"}, "it must be like http://"},
      {{"--base-url", "https://phonebook.example/?a"}, "it must be like http://"},
  };
  for (const auto& [options, said, path] : cases) {
    ServerProcess refused(directory.path, path.empty() ? database : path, options);
    EXPECT_FALSE(refused.Listens());
    EXPECT_NE(refused.Stop(), 0);
    EXPECT_TRUE(refused.IsLogged(said)) << ContentOf(refused.log);
    EXPECT_FALSE(fs::exists(database));
  }
  const std::string odd = "file:a \"b\" 'c'?.db";
  EXPECT_TRUE(ServerProcess(directory.path, odd).Listens());
  EXPECT_GT(fs::file_size(directory.path / odd), 0U);
  const auto text = file("windows.tsv",
                         "\xEF\xBB\xBF"
                         "Anna\t1\tSales\r\nBen\t2\t\r\n");
  {
    const auto server =
        Serve({"--config",
               file("a.conf",
                    "# All options\naddress = 0.0.0.0\nbase-url = HTTPS://phones.example/book//\n"
                    "contacts = \"" +
                        text + "\"\nhost = [\"127.0.0.1\", \"phones.example\"]\n")});
    EXPECT_FALSE(server->IsLogged("0.0.0.0"));
    EXPECT_NE(server->Get("/snom/").text.find(">HTTPS://phones.example/book/snom/directory<"),
              std::string::npos);
  }
  const auto found = ParsedPage(Serve()->Get("/snom/directory").text);
  EXPECT_EQ(found.Items(), (Texts{"Anna", "Ben"}));

  const std::string link = directory.path / "link.db";
  fs::create_symlink(database, link);
  // A file that nobody may write, as it is and when another takes its place.
  fs::permissions(directory.path, fs::perms{0555});
  fs::permissions(database, fs::perms{0444});
  ServerProcess reader(directory.path, database, {}, false);
  ASSERT_TRUE(reader.Listens()) << ContentOf(reader.log);
  EXPECT_EQ(ParsedPage(reader.Get("/snom/search?name=ben").text).Items(), Texts{"Ben"});
  EXPECT_TRUE(
      Eventually([&] { return reader.IsLogged("not indexed: the database is read-only"); }));
  EXPECT_EQ(reader.Stop(), 0);
  // Changes beside it that nobody may read.
  std::ofstream(database + "-wal") << "changes";
  fs::permissions(database + "-wal", fs::perms::none);
  for (const std::string& path : {database, link}) {
    ServerProcess refused(directory.path, path, {}, false);
    EXPECT_FALSE(refused.Listens());
    EXPECT_TRUE(refused.IsLogged("-wal can't be read")) << ContentOf(refused.log);
  }
  fs::permissions(directory.path, fs::perms::owner_all | fs::perms::others_exec);
}
}  // namespace

}  // namespace phonebook::tests
