/// @file
/// A connection to SQLite or PostgreSQL, and transactions and prepared statements on it.
#pragma once

#include <soci/soci.h>

#include <string>

#include "phonebook/database/schema.h"

namespace phonebook {

/// A connection that waits for nothing longer than some seconds.
class DatabaseConnection {
 public:
  /// @param database the path of an SQLite file, or a URI of PostgreSQL.
  /// @throws soci::soci_error when the database doesn't answer.
  explicit DatabaseConnection(const std::string& database);
  ~DatabaseConnection();
  DatabaseConnection(const DatabaseConnection&) = delete;
  DatabaseConnection& operator=(const DatabaseConnection&) = delete;

  /// Makes the present query fail. Callable from any thread; never waits.
  void Interrupt() noexcept;

  const Dialect& dialect;
  soci::session session;

 private:
  void OpenFile(const std::string& path);
  void OpenServer(const std::string& uri);

  int socket =
      -1;  // of PostgreSQL, duplicated: libpq may close its own while another thread uses it
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

/// Whether an SQLite file is locked by another connection.
bool IsLocked(const soci::soci_error& error);

/// The message of the database, without the lines in which PostgreSQL repeats the statement.
std::string MessageOf(const soci::soci_error& error);

/// Prepares `sql` for a statement that knows its variables.
void Prepare(soci::statement& statement, const std::string& sql);

}  // namespace phonebook
