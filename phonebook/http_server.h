/// @file
/// An HTTP server for small requests without side effects and any number of idle connections.
#pragma once

#include <atomic>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <cstddef>
#include <ctime>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "phonebook/http_message.h"
#include "phonebook/trusted_proxies.h"

namespace phonebook {

/// What a client may cost.
struct HTTPLimits {
  std::size_t maxConnections = 20000;  ///< Further clients wait to be accepted.
  TrustedProxies proxies{};            ///< Whose X-Forwarded-For and X-Forwarded-Proto count.
  bool isOldestReplaced = false;       ///< Instead, each replaces the one to be closed first.
  std::size_t maxHeader = 16384;       ///< In bytes, including the request line.
  std::size_t maxTarget = 8192;        ///< In bytes.
  std::size_t maxBody = 8192;          ///< In bytes; a body is discarded.
  std::size_t maxUnsent = 64 << 20;    ///< In bytes, of all responses being written.
  std::size_t maxSmall = 16384;    ///< In bytes; larger responses take half of `maxUnsent` at most.
  std::size_t sendBuffer = 32768;  ///< The kernel's, of a connection.
  std::chrono::seconds requestTimeout{5};       ///< For a whole request, from its first byte.
  std::chrono::seconds responseTimeout{5};      ///< For the client to take a response.
  std::chrono::seconds idleTimeout{60};         ///< Between requests.
  std::chrono::seconds idleTimeoutWhenFull{5};  ///< While there are `maxConnections`.
};

/// What a server does with requests. Neither function may block.
struct HTTPHandlers {
  /// Serves a request. The callback may be called from any thread, also after the connection was
  /// closed, but not after the server was destroyed.
  std::function<void(Request, ResponseCallback)> serve;
  /// Returns the response to a request that is malformed or exceeds a limit. The connection is
  /// closed after it.
  /// @param cause for the log, or empty.
  std::function<Response(const Request&, int status, const std::string& cause)> refuse;
};

class HTTPConnection;

/// Serves all connections on the thread that calls `Run`.
class HTTPServer {
 public:
  HTTPServer(HTTPHandlers handlers, HTTPLimits limits);

  /// Opens the port, any free one for 0, and returns it.
  /// @throws std::runtime_error when the port is not available.
  int Listen(const std::string& address, int port);

  /// Calls `tick` periodically on the thread of `Run`.
  void CallEvery(std::chrono::milliseconds interval, std::function<void()> tick);

  /// Serves until `Stop`. Returns once all pending requests are answered, or `timeout` after the
  /// stop.
  void Run(std::chrono::milliseconds timeout);

  /// How many clients are connected. May be called from any thread.
  std::size_t Connections() const { return count; }

  /// May be called from any thread, also before `Run`.
  void Stop();

 private:
  friend class HTTPConnection;
  using QueuedResponse = std::pair<std::weak_ptr<HTTPConnection>, Response>;

  void Accept();
  void OnAccept(boost::asio::ip::tcp::socket socket);
  void CloseOldest();
  void CheckDeadlines();
  void Respond(const std::weak_ptr<HTTPConnection>& connection, Response response);
  void WriteQueued();
  void Remove(const std::shared_ptr<HTTPConnection>& connection);
  const std::string& Date();
  void AcceptPending();
  void OnStop();

  const HTTPHandlers handlers;
  const HTTPLimits limits;
  std::mutex mutex;
  std::vector<QueuedResponse> queue;
  boost::asio::io_context context{1};
  std::unordered_set<std::shared_ptr<HTTPConnection>> connections;
  std::atomic<std::size_t> count = 0;  // of connections, for other threads
  boost::asio::ip::tcp::acceptor acceptor{context};
  // The client accepted last; its socket forgets the address once it has gone.
  boost::asio::ip::tcp::endpoint peer;
  boost::asio::steady_timer pause{context};
  boost::asio::steady_timer end{context};
  std::chrono::milliseconds stopTimeout{};
  bool isAccepting = false;
  bool isStopping = false;
  std::size_t unsent = 0;  // bytes of responses being written
  std::string date;
  std::time_t dateTime = -1;
};

}  // namespace phonebook
