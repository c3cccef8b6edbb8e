/// @file
/// The fixture of tests over HTTP: a server, on a real SQLite or a real PostgreSQL.
#pragma once

#include <gtest/gtest.h>
#include <soci/soci.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "phonebook/contacts.h"
#include "phonebook/tests/server_process.h"

namespace phonebook::tests {

namespace fs = std::filesystem;

/// The paths of all pages, behind the maker's segment.
inline const Texts kPages = {"",          "directory", "search",  "search?name=a",
                             "contact/1", "dial/1",    "message", "status"};

class TemporaryDirectory : boost::noncopyable {
 public:
  TemporaryDirectory();
  ~TemporaryDirectory() { fs::remove_all(path); }
  fs::path path;
};

/// A PostgreSQL of the tests' own.
class Cluster : boost::noncopyable {
 public:
  Cluster();
  ~Cluster() { Command("stop"); }

  /// Runs a command of `temporary_postgresql`.
  /// @return whether it succeeded; if not, `reason` tells why.
  bool Command(const std::string& command);

  std::string URIOf(const std::string& database) const;

  bool isUsable = false;
  std::string reason;

 private:
  TemporaryDirectory directory;
  int port;
};

/// Opens a database and fills it if it is new.
/// @return why it is refused; empty if it is not.
std::string FailureOf(const std::string& database,
                      const std::vector<Contact>& contacts = {{"\xC5\x81", "1", ""}});

/// The name of a test on this database.
std::string NameOf(const testing::TestParamInfo<const char*>& tested);

/// A test with a database of its own in SQLite or PostgreSQL.
class PhoneBook : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override;

  /// Shared by all tests of the process.
  static Cluster& cluster();

  /// A server that listens.
  std::unique_ptr<ServerProcess> Serve(const Texts& options = {}) const;

  /// A connection to the database.
  std::unique_ptr<soci::session> Connect() const;

  /// Replaces the contacts by one for each name, with telephones that differ, and waits until the
  /// server has indexed them.
  void Fill(const Texts& names) const;

  /// How many rows a FROM clause selects.
  int Count(const std::string& from) const;

  /// Waits until no contact is pending.
  bool IsIndexed() const;

  void RemoveDatabase() const;
  void RestoreDatabase() const;

  TemporaryDirectory directory;
  bool isPostgreSQL = false;
  std::string database;
};

using PhoneBookOnSQLite = PhoneBook;
using PhoneBookOnPostgreSQL = PhoneBook;

}  // namespace phonebook::tests
