#include "phonebook/database/connection.h"

#include <libpq-fe.h>
#include <soci/postgresql/soci-postgresql.h>
#include <soci/sqlite3/soci-sqlite3.h>
#include <sys/socket.h>
#include <teleform/screens/escape.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>

namespace phonebook {

namespace {

// No connection is used by two threads at once, and nobody asks how much memory there is: SQLite
// can do without the locks for that, which its threads would wait for. Before main(), as SQLite
// can't be configured once it is used.
const bool isSQLiteConfigured =
    sqlite_api::sqlite3_config(SQLITE_CONFIG_MULTITHREAD) == SQLITE_OK &&
    sqlite_api::sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0) == SQLITE_OK &&
    sqlite_api::sqlite3_config(SQLITE_CONFIG_URI, 1) == SQLITE_OK;

// What libpq waits for by itself must end as well. (SOCI passes on an address as it is only if
// there is an = in it, which these are.)
std::string WithTimeouts(const std::string& uri) {
  return uri + (uri.find('?') == uri.npos ? "?" : "&") + "connect_timeout=2&tcp_user_timeout=2000";
}

}  // namespace

DatabaseConnection::DatabaseConnection(const std::string& database) : dialect(DialectOf(database)) {
  if (dialect.isPostgreSQL) {
    OpenServer(database);
  } else {
    OpenFile(database);
  }
}

DatabaseConnection::~DatabaseConnection() {
  if (socket != -1) close(socket);
}

void DatabaseConnection::OpenServer(const std::string& uri) {
  session.open(soci::postgresql, WithTimeouts(uri));
  auto* const backend = session.get_backend();
  socket = dup(PQsocket(static_cast<soci::postgresql_session_backend*>(backend)->conn_));
  // Every query is meant to take few steps through an index; what helps with many rows makes these
  // slow.
  for (const char* option :
       {"statement_timeout = 2000", "enable_seqscan = off", "enable_hashjoin = off",
        "enable_mergejoin = off", "jit = off", "max_parallel_workers_per_gather = 0"}) {
    session << "SET " << option;
  }
}

void DatabaseConnection::OpenFile(const std::string& path) {
  if (!isSQLiteConfigured) throw std::runtime_error("SQLite can't be configured for threads");
  // A URI, in whose path neither SQLite nor SOCI finds a meaning.
  const std::string uri =
      "file:" + teleform::screens::PercentEncode(std::filesystem::absolute(path).string(), "/");
  const auto open = [&](const std::string& name) {
    session.open(soci::sqlite3, "dbname=\"" + name + "\" timeout=2");
    session << "SELECT count(*) FROM sqlite_master";
  };
  try {
    open(uri);
  } catch (const soci::soci_error&) {
    // A read-only database can't have a write-ahead log.
    if (access(path.c_str(), W_OK) == 0) throw;
    session.close();
    open(uri + "?immutable=1");
  }
}

void DatabaseConnection::Interrupt() noexcept {
  if (dialect.isPostgreSQL) {
    shutdown(socket, SHUT_RDWR);  // the one way to end a wait for a server that doesn't answer
  } else {
    auto* const backend = session.get_backend();
    sqlite_api::sqlite3_interrupt(static_cast<soci::sqlite3_session_backend*>(backend)->conn_);
  }
}

Transaction::~Transaction() {
  if (isCommitted) return;
  try {
    session << "ROLLBACK";
  } catch (const std::exception&) {  // The end of a lost connection rolls back, too.
  }
}

bool IsLocked(const soci::soci_error& error) {
  const auto* const sqlite = dynamic_cast<const soci::sqlite3_soci_error*>(&error);
  return sqlite != nullptr && sqlite->result() == SQLITE_BUSY;
}

std::string MessageOf(const soci::soci_error& error) {
  const std::string message = error.get_error_message();
  return message.substr(0, message.find('\n'));
}

void Prepare(soci::statement& statement, const std::string& sql) {
  statement.alloc();
  statement.prepare(sql);
  statement.define_and_bind();
}

}  // namespace phonebook
