/// @file
/// What a monitor asks: /health and /metrics, on a thread and an address of their own; and
/// notifications to systemd.
#pragma once

#include <functional>
#include <string>
#include <thread>

#include "phonebook/http_server.h"

namespace phonebook {

/// What the server tells about itself. Neither function may wait for the database or the network.
struct AdminHandlers {
  std::function<std::string()> failure;  ///< Why it can't serve pages; empty if it can.
  std::function<std::string()> metrics;  ///< In the text format of Prometheus.
};

/// Serves while it exists. Tells systemd that the phone book is ready, stops, and is alive, the
/// last as often as its unit asks for and as long as `isServing` returns true.
class AdminServer {
 public:
  /// @param address IP address and port, such as "127.0.0.1:9480"; empty for none.
  /// @throws std::runtime_error when the port is not available.
  AdminServer(const std::string& address, AdminHandlers handlers, std::function<bool()> isServing);
  ~AdminServer();
  AdminServer(const AdminServer&) = delete;
  AdminServer& operator=(const AdminServer&) = delete;

  /// Host and port; empty if there are none.
  const std::string& Address() const { return address; }

 private:
  std::string address;
  HTTPServer http;
  std::thread thread;
};

}  // namespace phonebook
