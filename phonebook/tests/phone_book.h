/// @file
/// The fixture of tests over HTTP: a server, on a real SQLite or a real PostgreSQL.
#pragma once

#include <gtest/gtest.h>
#include <soci/postgresql/soci-postgresql.h>
#include <soci/soci.h>
#include <soci/sqlite3/soci-sqlite3.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "phonebook/contacts.h"
#include "phonebook/database/store.h"
#include "phonebook/tests/server_process.h"

namespace phonebook::tests {

namespace fs = std::filesystem;

/// The paths of all pages, behind the maker's segment.
inline const Texts kPages = {"",          "directory", "search",  "search?name=a",
                             "contact/1", "dial/1",    "message", "status"};

class TemporaryDirectory : boost::noncopyable {
 public:
  TemporaryDirectory() {
    std::string name = fs::temp_directory_path() / "phonebook.XXXXXX";
    path = mkdtemp(name.data());
    fs::permissions(path, fs::perms::owner_all | fs::perms::others_exec);
  }
  ~TemporaryDirectory() { fs::remove_all(path); }
  fs::path path;
};

/// How many files there are beside an SQLite database whose names have its name, it included.
inline auto FilesNamed(const fs::path& database) {
  std::error_code ignored;  // no folder: a URI
  return std::count_if(
      fs::directory_iterator(database.parent_path(), ignored), {}, [&](auto& file) {
        return file.path().filename().string().find(database.filename()) != std::string::npos;
      });
}

/// A PostgreSQL of the tests' own.
class Cluster : boost::noncopyable {
 public:
  Cluster() {
    {
      boost::asio::io_context context;
      boost::asio::ip::tcp::acceptor free(context, {boost::asio::ip::address_v4::loopback(), 0});
      port = free.local_endpoint().port();
    }
    isUsable = Command("make") && Command("start");
  }
  ~Cluster() { Command("stop"); }

  /// Runs a command of `temporary_postgresql`.
  /// @return whether it succeeded; if not, `reason` tells why.
  bool Command(const std::string& command) {
    const fs::path log = directory.path / "command.log";
    const bool hasSucceeded =
        std::system((TEMPORARY_POSTGRESQL " " + command + " " + directory.path.string() + " " +
                     std::to_string(port) + " >" + log.string() + " 2>&1")
                        .c_str()) == 0;
    if (!hasSucceeded) reason = command + ": " + ContentOf(log);
    return hasSucceeded;
  }

  std::string URIOf(const std::string& database) const {
    return "postgresql://phonebook@127.0.0.1:" + std::to_string(port) + "/" + database +
           "?sslmode=disable";
  }

  bool isUsable = false;
  std::string reason;

 private:
  TemporaryDirectory directory;
  int port = 0;
};

/// Opens a database and fills it if it is new.
/// @return why it is refused; empty if it is not.
inline std::string FailureOf(const std::string& database,
                             const std::vector<Contact>& contacts = {{"\xC5\x81", "1", ""}}) {
  try {
    Store(database).CreateOrOpen(contacts, [](auto, auto) {});
    return "";
  } catch (const std::exception& error) {
    return error.what();
  }
}

/// The name of a test on this database.
inline std::string NameOf(const testing::TestParamInfo<const char*>& tested) {
  return tested.param;
}

/// A test with a database of its own in SQLite or PostgreSQL.
class PhoneBook : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    isPostgreSQL = std::string(GetParam()) == "PostgreSQL";
    database = directory.path / "phone book.db";
    if (!isPostgreSQL) return;
    if (!cluster().isUsable) GTEST_SKIP() << cluster().reason;
    static int number = 0;
    const std::string name = "phonebook" + std::to_string(++number);
    soci::session(soci::postgresql, cluster().URIOf("postgres")) << "CREATE DATABASE " << name;
    database = cluster().URIOf(name);
  }

  /// Shared by all tests of the process.
  static Cluster& cluster() {
    static Cluster theCluster;
    return theCluster;
  }

  /// A server that listens.
  std::unique_ptr<ServerProcess> Serve(const Texts& options = {}) const {
    auto server = std::make_unique<ServerProcess>(directory.path, database, options);
    EXPECT_TRUE(server->Listens()) << ContentOf(server->log);
    return server;
  }

  /// A connection to the database.
  std::unique_ptr<soci::session> Connect() const {
    return isPostgreSQL
               ? std::make_unique<soci::session>(soci::postgresql, database)
               : std::make_unique<soci::session>(soci::sqlite3, "dbname=\"" + database + "\"");
  }

  /// Replaces the contacts by one for each name, with telephones that differ, and waits until the
  /// server has indexed them.
  void Fill(const Texts& names) const {
    const auto session = Connect();
    soci::transaction transaction(*session);
    *session << "DELETE FROM contacts";
    for (std::size_t i = 0; i < names.size(); ++i) {
      const std::string telephone = names[i] + std::to_string(i);
      *session << "INSERT INTO contacts (name, telephone, department) VALUES (:n, :t, :d)",
          soci::use(names[i]), soci::use(telephone), soci::use(names[i]);
    }
    transaction.commit();
    EXPECT_TRUE(IsIndexed());
  }

  /// How many rows a FROM clause selects.
  int Count(const std::string& from) const {
    int count = 0;
    *Connect() << "SELECT count(*) FROM " << from, soci::into(count);
    return count;
  }

  /// Waits until no contact is pending.
  bool IsIndexed() const {
    return Eventually([&] {
      return Count("contacts WHERE is_indexed = FALSE") + Count("removed_contacts") == 0;
    });
  }

  void RemoveDatabase() const { Move("stop", database, database + ".away"); }
  void RestoreDatabase() const { Move("start", database + ".away", database); }
  void Move(const char* command, const std::string& from, const std::string& to) const {
    if (!isPostgreSQL) return fs::rename(from, to);
    ASSERT_TRUE(cluster().Command(command)) << cluster().reason;
  }

  TemporaryDirectory directory;
  bool isPostgreSQL = false;
  std::string database;
};

using PhoneBookOnSQLite = PhoneBook;
using PhoneBookOnPostgreSQL = PhoneBook;

}  // namespace phonebook::tests
