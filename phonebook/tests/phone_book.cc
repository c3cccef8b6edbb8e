#include "phonebook/tests/phone_book.h"

#include <soci/postgresql/soci-postgresql.h>
#include <soci/sqlite3/soci-sqlite3.h>

#include <cstdlib>
#include <exception>

#include "phonebook/database/store.h"

namespace phonebook::tests {

namespace {

using boost::asio::ip::tcp;

int FreePort() {
  boost::asio::io_context context;
  return tcp::acceptor(context, {boost::asio::ip::address_v4::loopback(), 0})
      .local_endpoint()
      .port();
}

}  // namespace

TemporaryDirectory::TemporaryDirectory() {
  std::string name = fs::temp_directory_path() / "phonebook.XXXXXX";
  path = mkdtemp(name.data());
  fs::permissions(path, fs::perms::owner_all | fs::perms::others_exec);
}

Cluster::Cluster() : port(FreePort()) { isUsable = Command("make") && Command("start"); }

bool Cluster::Command(const std::string& command) {
  const fs::path log = directory.path / "command.log";
  const bool hasSucceeded =
      std::system((TEMPORARY_POSTGRESQL " " + command + " " + directory.path.string() + " " +
                   std::to_string(port) + " >" + log.string() + " 2>&1")
                      .c_str()) == 0;
  if (!hasSucceeded) reason = command + ": " + ContentOf(log);
  return hasSucceeded;
}

std::string Cluster::URIOf(const std::string& database) const {
  return "postgresql://phonebook@127.0.0.1:" + std::to_string(port) + "/" + database +
         "?sslmode=disable";
}

std::string FailureOf(const std::string& database, const std::vector<Contact>& contacts) {
  try {
    EXPECT_TRUE(Store(database).CreateOrOpen(contacts, [](auto, auto) { return true; }));
    return "";
  } catch (const std::exception& error) {
    return error.what();
  }
}

std::string NameOf(const testing::TestParamInfo<const char*>& tested) { return tested.param; }

void PhoneBook::SetUp() {
  isPostgreSQL = std::string(GetParam()) == "PostgreSQL";
  database = directory.path / "phone book.db";
  if (!isPostgreSQL) return;
  if (!cluster().isUsable) GTEST_SKIP() << cluster().reason;
  static int number = 0;
  const std::string name = "phonebook" + std::to_string(++number);
  soci::session(soci::postgresql, cluster().URIOf("postgres")) << "CREATE DATABASE " << name;
  database = cluster().URIOf(name);
}

Cluster& PhoneBook::cluster() {
  static Cluster theCluster;
  return theCluster;
}

std::unique_ptr<ServerProcess> PhoneBook::Serve(const Texts& options) const {
  auto server = std::make_unique<ServerProcess>(directory.path, database, options);
  EXPECT_TRUE(server->Listens()) << ContentOf(server->log);
  return server;
}

std::unique_ptr<soci::session> PhoneBook::Connect() const {
  return isPostgreSQL
             ? std::make_unique<soci::session>(soci::postgresql, database)
             : std::make_unique<soci::session>(soci::sqlite3, "dbname=\"" + database + "\"");
}

void PhoneBook::Fill(const Texts& names) const {
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

int PhoneBook::Count(const std::string& from) const {
  int count = 0;
  *Connect() << "SELECT count(*) FROM " << from, soci::into(count);
  return count;
}

bool PhoneBook::IsIndexed() const {
  return Eventually(
      [&] { return Count("contacts WHERE is_indexed = FALSE") + Count("removed_contacts") == 0; });
}

void PhoneBook::RemoveDatabase() const {
  if (isPostgreSQL) {
    ASSERT_TRUE(cluster().Command("stop")) << cluster().reason;
  } else {
    fs::rename(database, database + ".away");
  }
}

void PhoneBook::RestoreDatabase() const {
  if (isPostgreSQL) {
    ASSERT_TRUE(cluster().Command("start")) << cluster().reason;
  } else {
    fs::rename(database + ".away", database);
  }
}

INSTANTIATE_TEST_SUITE_P(On, PhoneBook, testing::Values("SQLite", "PostgreSQL"), NameOf);
INSTANTIATE_TEST_SUITE_P(Only, PhoneBookOnSQLite, testing::Values("SQLite"), NameOf);
INSTANTIATE_TEST_SUITE_P(Only, PhoneBookOnPostgreSQL, testing::Values("PostgreSQL"), NameOf);

}  // namespace phonebook::tests
