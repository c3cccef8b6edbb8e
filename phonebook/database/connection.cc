#include "phonebook/database/connection.h"

#include <soci/sqlite3/soci-sqlite3.h>
#include <sys/stat.h>
#include <teleform/screens/escape.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "phonebook/database/unavailable.h"

namespace phonebook {

namespace {

// No connection is used by two threads at once, and nobody asks how much memory there is: SQLite
// can do without the locks for that, which its threads would wait for. Before main(), as SQLite
// can't be configured once it is used.
const bool isSQLiteConfigured =
    sqlite_api::sqlite3_config(SQLITE_CONFIG_MULTITHREAD) == SQLITE_OK &&
    sqlite_api::sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0) == SQLITE_OK &&
    sqlite_api::sqlite3_config(SQLITE_CONFIG_URI, 1) == SQLITE_OK;

int ResultOf(const soci::soci_error& error) {
  const auto* const sqlite = dynamic_cast<const soci::sqlite3_soci_error*>(&error);
  return sqlite == nullptr ? SQLITE_OK : sqlite->result();
}

}  // namespace

DatabaseConnection::DatabaseConnection(std::string theDatabase)
    : dialect(DialectOf(theDatabase)), database(std::move(theDatabase)) {}

void DatabaseConnection::Open() {
  if (dialect.isPostgreSQL) {
    login.Open(session, database);
  } else {
    OpenFile();
  }
}

void DatabaseConnection::OpenFile() {
  if (!isSQLiteConfigured) throw std::runtime_error("SQLite can't be configured for threads");
  // A URI, in whose path neither SQLite nor SOCI finds a meaning.
  const std::string path = std::filesystem::absolute(database).string();
  const std::string uri = "file:" + teleform::screens::PercentEncode(path, "/");
  std::string encoding;
  const auto open = [&](const std::string& mode) {
    session.open(soci::sqlite3, "dbname=\"" + uri + mode + "\" timeout=2");
    session << "SELECT count(*) FROM sqlite_master";
    session << "PRAGMA encoding", soci::into(encoding);
  };
  try {
    open("?mode=rw");  // which creates no file
  } catch (const soci::soci_error& error) {
    // A read-only database can't have a write-ahead log.
    if (IsDamaged(error) || access(path.c_str(), R_OK) != 0 || access(path.c_str(), W_OK) == 0) {
      throw DatabaseUnavailable(database + ": " + MessageOf(error));
    }
    session.close();
    if (HasLog(path)) {
      throw DatabaseUnavailable(database + " is read-only, and the changes in " + database +
                                "-wal can't be read: close the programs that write it, or let this"
                                " user write");
    }
    open("?immutable=1&mode=ro");
  }
  // SQLite compares texts byte by byte in this encoding, and keys are in order in UTF-8 alone.
  if (encoding != "UTF-8") {
    throw DatabaseUnavailable("the encoding of " + database + " is " + encoding + ", not UTF-8");
  }
  session << "PRAGMA foreign_keys = ON";  // of tables that others hang on contacts
  file = static_cast<soci::sqlite3_session_backend*>(session.get_backend())->conn_;
}

void DatabaseConnection::Interrupt() noexcept {
  login.ShutDown();
  if (file != nullptr) sqlite_api::sqlite3_interrupt(file);
}

void DatabaseConnection::Abandon() noexcept { login.ShutDown(); }

bool DatabaseConnection::IsWritable() {
  if (!dialect.isPostgreSQL) return sqlite_api::sqlite3_db_readonly(file, "main") == 0;
  int isWritable = 0;
  session << dialect.isWritable, soci::into(isWritable);
  return isWritable != 0;
}

Transaction::~Transaction() {
  if (isCommitted) return;
  try {
    session << "ROLLBACK";
  } catch (const std::exception&) {  // The end of a lost connection rolls back, too.
  }
}

bool HasLog(const std::string& path) {
  std::error_code error;
  const auto file = std::filesystem::canonical(path, error);  // beside which the log is
  struct stat status = {};
  return !error && stat((file.string() + "-wal").c_str(), &status) == 0 && status.st_size > 0;
}

bool IsLocked(const soci::soci_error& error) { return ResultOf(error) == SQLITE_BUSY; }

bool IsFull(const soci::soci_error& error) { return ResultOf(error) == SQLITE_FULL; }

bool IsDamaged(const soci::soci_error& error) {
  const int result = ResultOf(error);
  return result == SQLITE_CORRUPT || result == SQLITE_NOTADB;
}

std::string MessageOf(const soci::soci_error& error) {
  std::string message = error.get_error_message();
  // SOCI puts the name of its function before the message of SQLite.
  if (message.rfind("sqlite3_", 0) == 0) message.erase(0, message.find(": ") + 2);
  return message.substr(0, message.find('\n'));
}

void Prepare(soci::statement& statement, const std::string& sql) {
  statement.alloc();
  statement.prepare(sql);
  statement.define_and_bind();
}

}  // namespace phonebook
