#include "phonebook/database/postgresql_login.h"

#include <fcntl.h>
#include <poll.h>
#include <soci/postgresql/soci-postgresql.h>
#include <sys/socket.h>
#include <unistd.h>

#include <boost/algorithm/string/replace.hpp>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>
#include <vector>

#include "phonebook/database/unavailable.h"

namespace phonebook {

namespace {

using Clock = std::chrono::steady_clock;

// Every query is meant to take few steps through an index; what helps with many rows makes these
// slow.
constexpr const char* kSettings =
    "-c statement_timeout=2000 -c enable_seqscan=off -c enable_hashjoin=off"
    " -c enable_mergejoin=off -c jit=off -c max_parallel_workers_per_gather=0";

// The login that this thread has begun and SOCI has not yet asked for.
thread_local PostgreSQLLogin* pendingLogin = nullptr;

struct URIParts {
  std::string options, password, host;
  bool hasUserTimeout = false;
};

// The reason of a malformed URI ends at its first quote, behind which a part of the URI stands.
URIParts ParseURI(const std::string& uri) {
  char* error = nullptr;
  PQconninfoOption* const parsed = PQconninfoParse(uri.c_str(), &error);
  if (parsed == nullptr) {
    const std::string reason = error == nullptr ? "" : error;
    PQfreemem(error);
    throw DatabaseUnavailable("the URI of the database is malformed: " +
                              reason.substr(0, reason.find_first_of("\":\n")));
  }
  URIParts parts;
  for (const PQconninfoOption* option = parsed; option->keyword != nullptr; ++option) {
    if (option->val == nullptr) continue;
    const std::string keyword = option->keyword;
    if (keyword == "options") parts.options = option->val;
    if (keyword == "password") parts.password = option->val;
    if (keyword == "host") parts.host = option->val;
    if (keyword == "tcp_user_timeout") parts.hasUserTimeout = true;
  }
  PQconninfoFree(parsed);
  if (parts.host.find('@') != parts.host.npos) {
    throw DatabaseUnavailable(
        "the URI of the database is malformed: an @ in the password is written %40");
  }
  return parts;
}

std::string FirstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

}  // namespace

PostgreSQLLogin::~PostgreSQLLogin() {
  if (socket != -1) close(socket);
}

void PostgreSQLLogin::Open(soci::session& session, const std::string& theURI) {
  uri = theURI;
  const URIParts parts = ParseURI(uri);
  const char* const environment = std::getenv("PGOPTIONS");  // which options in a URI replace
  const std::string own =
      parts.options.empty() && environment != nullptr ? environment : parts.options;
  options = std::string(kSettings) + (own.empty() ? "" : " " + own);
  hasUserTimeout = parts.hasUserTimeout;
  pendingLogin = this;
  try {
    // SOCI takes anything for a connection string that has an =.
    session.open(soci::postgresql, "dbname=");
  } catch (const soci::soci_error& error) {
    // SOCI forgets the connection when its own first statement fails.
    PQfinish(std::exchange(unowned, nullptr));
    const std::string reason = failure.empty() ? FirstLine(error.get_error_message()) : failure;
    throw DatabaseUnavailable(
        parts.password.empty() ? reason : boost::replace_all_copy(reason, parts.password, "***"));
  }
  unowned = nullptr;
  if (std::exchange(pendingLogin, nullptr) != nullptr) {
    throw std::logic_error("SOCI doesn't connect by PQconnectdb");
  }
  if (!isUTF8) throw DatabaseUnavailable("the encoding of the database is not UTF-8");
}

void PostgreSQLLogin::ShutDown() noexcept {
  isShutDown = true;
  if (socket != -1) shutdown(socket, SHUT_RDWR);
}

PGconn* PostgreSQLLogin::Connect() {
  std::vector<const char*> keywords = {"dbname", "options", "client_encoding"};
  std::vector<const char*> values = {uri.c_str(), options.c_str(), "UTF8"};
  if (!hasUserTimeout) {
    keywords.push_back("tcp_user_timeout");
    values.push_back("2000");
  }
  keywords.push_back(nullptr);
  values.push_back(nullptr);
  PGconn* const connection = PQconnectStartParams(keywords.data(), values.data(), 1);
  if (connection == nullptr) return Fail(connection, "out of memory");
  // libpq would write them to stderr, and wait for whoever reads it. The server has logged them.
  constexpr auto kIgnore = [](void*, const PGresult*) {};
  PQsetNoticeReceiver(connection, kIgnore, nullptr);
  if (PQstatus(connection) == CONNECTION_BAD) {
    return Fail(connection, FirstLine(PQerrorMessage(connection)));
  }
  if (!Await(connection)) return Fail(connection, "the database doesn't answer");
  if (PQstatus(connection) != CONNECTION_OK) {
    return Fail(connection, FirstLine(PQerrorMessage(connection)));
  }
  const int own = fcntl(PQsocket(connection), F_DUPFD_CLOEXEC, 0);
  if (own == -1) return Fail(connection, std::string("its socket: ") + std::strerror(errno));
  socket = own;
  if (isShutDown) ShutDown();  // which didn't see the socket
  const char* const encoding = PQparameterStatus(connection, "server_encoding");
  isUTF8 = encoding != nullptr && std::string(encoding) == "UTF8";
  unowned = connection;
  return connection;
}

// Returns false when the login is shut down, or takes too long.
bool PostgreSQLLogin::Await(PGconn* connection) {
  constexpr std::chrono::seconds kTimeout(4);
  constexpr int kMillisecondsUntilSeen = 20;  // of a shutdown
  const auto end = Clock::now() + kTimeout;
  PostgresPollingStatusType state = PGRES_POLLING_WRITING;
  while (state != PGRES_POLLING_OK && state != PGRES_POLLING_FAILED) {
    const bool isReading = state == PGRES_POLLING_READING;
    pollfd ready{PQsocket(connection), static_cast<short>(isReading ? POLLIN : POLLOUT), 0};
    if (isShutDown || Clock::now() > end) return false;
    if (poll(&ready, 1, kMillisecondsUntilSeen) > 0) state = PQconnectPoll(connection);
  }
  return true;
}

PGconn* PostgreSQLLogin::Fail(PGconn* connection, const std::string& reason) {
  failure = reason;
  PQfinish(connection);
  return nullptr;
}

}  // namespace phonebook

// Replaces the function of libpq, by which SOCI connects: that one waits where nobody knows its
// socket, and SOCI then sends a statement of its own and waits for it without a deadline before it
// returns the connection. SOCI takes no connection that was made elsewhere. Other connections of
// the program are made as ever.
extern "C" PGconn* PQconnectdb(const char* conninfo) {
  if (auto* const login = std::exchange(phonebook::pendingLogin, nullptr)) return login->Connect();
  const char* const keywords[] = {"dbname", nullptr};
  const char* const values[] = {conninfo, nullptr};
  return PQconnectdbParams(keywords, values, 1);
}
