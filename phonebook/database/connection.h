/// @file
/// A connection to SQLite or PostgreSQL, and transactions and prepared statements on it.
#pragma once

#include <soci/soci.h>

#include <atomic>
#include <string>

#include "phonebook/database/postgresql_login.h"
#include "phonebook/database/schema.h"

namespace sqlite_api {
struct sqlite3;
}

namespace phonebook {

/// A connection that waits for nothing longer than some seconds.
class DatabaseConnection {
 public:
  /// Opens nothing yet.
  /// @param database the path of an SQLite file, or a URI of PostgreSQL.
  explicit DatabaseConnection(std::string database);
  DatabaseConnection(const DatabaseConnection&) = delete;
  DatabaseConnection& operator=(const DatabaseConnection&) = delete;

  /// @throws soci::soci_error or `DatabaseUnavailable` when the database can't be opened.
  void Open();

  /// Makes the present query fail, or `Open`. Callable from any thread; never waits.
  void Interrupt() noexcept;

  /// Ends the connection without a word to the server, which may not answer. Call it before the
  /// prepared statements are destroyed: each tells the server of its end, and waits.
  void Abandon() noexcept;

  /// Whether contacts can be indexed: a read-only file can't be written, nor a database by a role
  /// without the rights.
  bool IsWritable();

  /// The open SQLite file; null on PostgreSQL.
  sqlite_api::sqlite3* File() const { return file; }

  const Dialect& dialect;
  soci::session session;

 private:
  void OpenFile();

  const std::string database;
  PostgreSQLLogin login;
  std::atomic<sqlite_api::sqlite3*> file = nullptr;
};

/// A transaction that writes; rolled back unless committed. `soci::transaction` begins a deferred
/// one on SQLite, which fails at its first write if another connection has written since its first
/// read.
class Transaction {
 public:
  /// @throws soci::soci_error when the database is locked for longer than a query may wait.
  Transaction(soci::session& theSession, const Dialect& dialect) : session(theSession) {
    session << dialect.begin;
  }
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  void Commit() {
    session << "COMMIT";
    isCommitted = true;
  }

 private:
  soci::session& session;
  bool isCommitted = false;
};

/// Whether changes of an SQLite file may be in its write-ahead log.
bool HasLog(const std::string& path);

/// Whether an SQLite file is locked by another connection.
bool IsLocked(const soci::soci_error& error);

/// Whether there is no room for what was written to an SQLite file.
bool IsFull(const soci::soci_error& error);

/// Whether an SQLite file is damaged, or of another kind.
bool IsDamaged(const soci::soci_error& error);

/// The message of the database, without the lines in which PostgreSQL repeats the statement.
std::string MessageOf(const soci::soci_error& error);

/// Prepares `sql` for a statement that knows its variables.
void Prepare(soci::statement& statement, const std::string& sql);

}  // namespace phonebook
