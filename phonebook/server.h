/// @file
/// The phone book over HTTP.
#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "phonebook/http_server.h"
#include "phonebook/pages.h"
#include "phonebook/worker_pool.h"

namespace phonebook {

struct ServerOptions {
  std::string address = "127.0.0.1";
  int port = 8080;              ///< 0 takes any that is free.
  std::size_t phones = 20000;   ///< As many connections at the same time.
  std::size_t connections = 8;  ///< As many questions to the database at the same time.
  std::string baseURL;          ///< What links begin with, where the Host header can't be used.
};

/// Answers phones with documents, and browsers with the preview.
class Server {
 public:
  Server(const std::string& database, ServerOptions options);

  /// Opens the port.
  /// @return an address of it and the port, as a URL has them.
  /// @throws std::runtime_error when the port can't be had.
  std::string Listen();

  /// Serves until `Stop`, and answers what has been asked before.
  /// @return whether the database has let go of all workers; if not, nothing may be destroyed any
  /// more.
  bool Run();

  /// May be called from any thread.
  void Stop() { http.Stop(); }

 private:
  // Who asks, and for what of a maker's pages.
  struct ParsedRequest {
    std::optional<Maker> maker;
    std::string base;  // what links begin with
    std::vector<std::string> path;
    std::map<std::string, std::string> params;
  };

  void Serve(Request request, HTTPServer::Answer answer);
  Response Attempt(const Request& request, const std::function<Response()>& reply) const;
  Response Refuse(const Request& request, int status, const std::string& reason,
                  const std::string& cause = "") const;
  ParsedRequest VisitorOf(const Request& request) const;
  void IndexPending();

  ServerOptions options;
  std::string ownHost;
  const std::map<std::string, Response> preview;  // by path
  HTTPServer http;
  WorkerPool workers;
  std::atomic<bool> isRefreshing = false;
};

/// The addresses to try, one a maker.
/// @param server "http://" and the host.
std::string Addresses(const std::string& server);

}  // namespace phonebook
