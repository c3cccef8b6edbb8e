/// @file
/// HTTP as a phone book needs it: small requests that are only read, any number of idle
/// connections.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace phonebook {

/// What is known of a request; of one that was not understood that may be the address alone.
struct Request {
  std::string method;
  std::string target;  ///< The path and the query, as they came.
  std::string host;
  std::string userAgent;
  std::string address;  ///< Whom it came from.
};

struct Response {
  int status = 200;
  std::string type;
  std::string body;
  std::vector<std::pair<std::string, std::string>> fields{};  ///< More of the header.
};

/// What a client may cost.
struct HTTPLimits {
  std::size_t connections = 20000;  ///< The ones beyond wait to be accepted.
  std::size_t header = 16384;       ///< In bytes, with the request line.
  std::size_t target = 8192;        ///< The same of the URL.
  std::size_t body = 8192;          ///< It is read over.
  std::chrono::seconds arrival{5};  ///< For a whole request, from its first byte on.
  std::chrono::seconds taking{5};   ///< For an answer to be taken.
  std::chrono::seconds idle{60};    ///< Between requests.
};

/// Serves any number of connections on the thread that calls `Run`.
class HTTPServer {
 public:
  /// Takes the one reply to a request; it may be called from any thread, also when the connection
  /// has ended, but not after the server was destroyed.
  using Answer = std::function<void(Response)>;

  struct Handlers {
    /// A request has arrived. Must not wait.
    std::function<void(Request, Answer)> serve;
    /// A request was refused by this status, because it exceeds a limit or is not HTTP. Gives what
    /// to say before the connection is closed.
    std::function<Response(const Request&, int status)> refuse;
  };

  HTTPServer(Handlers handlers, HTTPLimits limits);
  ~HTTPServer();

  /// Opens the port, any that is free for 0, and returns it.
  /// @throws std::runtime_error when it can't be had.
  int Listen(const std::string& address, int port);

  /// Calls `tick` on the thread of `Run` again and again.
  void Every(std::chrono::milliseconds interval, std::function<void()> tick);

  /// Serves until `Stop`, and returns once all requests that had arrived are answered, or
  /// `patience` after the stop.
  void Run(std::chrono::milliseconds patience);

  /// May be called from any thread, also before `Run`.
  void Stop();

 private:
  class Implementation;
  std::unique_ptr<Implementation> implementation;
};

}  // namespace phonebook
