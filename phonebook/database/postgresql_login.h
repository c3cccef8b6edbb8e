/// @file
/// Login to PostgreSQL, every wait of which another thread can end.
#pragma once

#include <libpq-fe.h>
#include <soci/soci.h>

#include <atomic>
#include <string>

namespace phonebook {

/// The login of one session, and afterwards the way to end its waits.
class PostgreSQLLogin {
 public:
  PostgreSQLLogin() = default;
  ~PostgreSQLLogin();
  PostgreSQLLogin(const PostgreSQLLogin&) = delete;
  PostgreSQLLogin& operator=(const PostgreSQLLogin&) = delete;

  /// Opens `session`, with the settings of the phone book and those of `uri`.
  /// @throws DatabaseUnavailable when the server refuses, doesn't answer within some seconds or has
  /// another encoding than UTF-8. The message never contains the password.
  void Open(soci::session& session, const std::string& uri);

  /// Makes everything that waits for the server fail, now and later: the login, queries, and the
  /// end of prepared statements. Callable from any thread; never waits.
  void ShutDown() noexcept;

  /// Connects instead of `PQconnectdb`.
  PGconn* Connect();

 private:
  bool Await(PGconn* connection);
  PGconn* Fail(PGconn* connection, const std::string& reason);

  std::string uri, options, failure;
  bool hasUserTimeout = false;
  std::atomic<bool> isShutDown = false;
  // Duplicated: libpq may close its own while another thread uses it.
  std::atomic<int> socket = -1;
  PGconn* unowned = nullptr;  // until SOCI has it
  bool isUTF8 = false;
};

}  // namespace phonebook
