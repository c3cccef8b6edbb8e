/// @file
/// What a monitor asks: /health and /metrics, on a thread and an address of their own; and
/// notifications to systemd.
#pragma once

#include <string>
#include <thread>
#include <vector>

#include "phonebook/http_server.h"
#include "phonebook/server.h"

namespace phonebook {

/// Serves while it exists. Tells systemd that the phone book is ready, stops, and is alive, the
/// last as often as its unit asks for and as long as the server is serving.
class AdminServer {
 public:
  /// @param address IP address and port, such as "127.0.0.1:9480"; empty for none.
  /// @param hosts what a Host field may name besides IP addresses and localhost, as `HostNameOf`
  /// returns it.
  /// @throws std::runtime_error when the port is not available.
  AdminServer(const std::string& address, std::vector<std::string> hosts, Server& server);
  ~AdminServer();
  AdminServer(const AdminServer&) = delete;
  AdminServer& operator=(const AdminServer&) = delete;

  /// Host and port; empty if there are none.
  const std::string& Address() const { return address; }

 private:
  Response Serve(const Request& request) const;
  bool IsOwnHost(const std::string& host) const;

  std::string address;
  const std::vector<std::string> hosts;
  Server& phoneBook;
  bool isReadySent = false;
  HTTPServer http;
  std::thread thread;
};

}  // namespace phonebook
