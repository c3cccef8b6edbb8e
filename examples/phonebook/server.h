/// @file
/// The phone book over HTTP.
#pragma once

#include <httplib.h>

#include <optional>
#include <string>
#include <vector>

#include "phonebook/bounded_server.h"
#include "phonebook/pages.h"
#include "phonebook/store.h"

namespace phonebook {

struct ServerOptions {
  std::string address = "127.0.0.1";
  int port = 8080;      ///< 0 takes any that is free.
  int threads = 64;     ///< How many connections are served at the same time; the others wait.
  std::string baseURL;  ///< "http://" and the host in links, where the Host header can't be used.
};

/// Answers phones with documents, and browsers with the preview.
class Server {
 public:
  /// @param store must outlive the server.
  Server(Store& store, ServerOptions options);

  /// Opens the port.
  /// @return the address and the port, as a URL has them.
  /// @throws std::runtime_error when the port can't be had.
  std::string Bind();

  /// Serves until `Stop`, and returns once all open requests are answered.
  /// @throws std::runtime_error when no more connections can be accepted.
  void Run();

  /// May be called from any other thread once `Run` has been or is about to be called.
  void Stop();

 private:
  // Which maker's phone asks, and for what of its pages.
  struct Target {
    std::optional<Maker> maker;
    std::vector<std::string> path;
  };

  void Serve(const httplib::Request& request, httplib::Response& response);
  void Refuse(const httplib::Request& request, httplib::Response& response, int status,
              const std::string& reason, const std::string& cause = "");
  void ServePreview();
  static Target TargetOf(const httplib::Request& request);
  std::string BaseOf(const httplib::Request& request) const;
  std::string OwnHost() const;

  Store& store;
  ServerOptions options;
  BoundedServer http;
  int listening = -1;
};

/// The addresses to try, one a maker.
/// @param server "http://" and the host.
std::string Addresses(const std::string& server);

}  // namespace phonebook
