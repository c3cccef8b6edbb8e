/// @file
/// The phone book over HTTP.
#pragma once

#include <atomic>
#include <cstddef>
#include <exception>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "phonebook/http_server.h"
#include "phonebook/metrics.h"
#include "phonebook/pages.h"
#include "phonebook/url.h"
#include "phonebook/worker_pool.h"

namespace phonebook {

struct ServerOptions {
  std::string address = "127.0.0.1";
  int port = 8080;  ///< 0 for any free port.
  std::size_t maxConnections = 20000;
  std::size_t databaseConnections = 8;
  PageOptions pages;
  bool isPreviewOff = false;
  std::string baseURL;  ///< What links begin with; by default the Host field of the request.
  std::vector<std::string> proxies;  ///< As `TrustedProxies` takes them.
  std::vector<std::string> hosts;  ///< As `HostNameOf` returns them; if any, no others are served.
};

/// Serves documents to phones, and the preview to browsers.
class Server {
 public:
  Server(const std::string& database, ServerOptions options);

  /// Opens the port.
  /// @return the host and port of a URL that reaches it.
  /// @throws std::runtime_error when the port is not available.
  std::string Listen();

  /// Serves until `Stop`, and answers the requests that arrived before.
  /// @return whether all workers have ended; if not, the server must not be destroyed.
  bool Run();

  /// May be called from any thread.
  void Stop() { http.Stop(); }

  /// Why no pages can be served; empty if they can. May be called from any thread; never waits.
  std::string Failure() const;

  /// Counters and the state in the text format of Prometheus. May be called from any thread.
  std::string MetricsText();

  /// Whether the serving thread goes on. May be called from any thread.
  bool IsServing() const;

 private:
  // A request, the client's maker and the URL that its links begin with.
  struct ParsedRequest {
    std::optional<Maker> maker;
    std::string base;
    bool isOwnHost = true;
    std::optional<RequestTarget> target;  // whose segments are those behind the maker's
  };

  void Serve(Request request, ResponseCallback done);
  std::variant<Response, Task> Dispatch(const Request& request, RequestLabels& labels) const;
  Response Fail(const Request& request, const std::exception_ptr& error) const;
  Response Refuse(const Request& request, int status, const std::string& reason,
                  const std::string& cause = "") const;
  ParsedRequest Parse(const Request& request) const;
  bool IsOwnHost(const std::string& host) const;
  void Maintain();

  ServerOptions options;
  std::string ownHost;
  const std::map<std::string, Response> preview;  // by path
  Metrics metrics;
  mutable std::mutex mutex;  // of what the last look at the database found
  std::string databaseFailure;
  ContactCounts counts;
  std::atomic<Metrics::Clock::time_point> served = Metrics::Clock::now();
  HTTPServer http;
  WorkerPool workers;
  std::atomic<bool> isMaintaining = false;
  std::atomic<bool> isAnswering = false;  // the database, since the last look at it
  Metrics::Clock::time_point nextCount;   // of contacts
  std::string indexingFailure;            // the last one, which is logged once
  std::atomic<bool> hasPending = false;
};

/// The URLs of the home pages of all makers, one a line.
/// @param server what each line begins with: "http://" and the host.
std::string Addresses(const std::string& server);

}  // namespace phonebook
