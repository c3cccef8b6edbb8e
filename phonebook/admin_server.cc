#include "phonebook/admin_server.h"

#include <systemd/sd-daemon.h>

#include <algorithm>
#include <boost/asio/buffer.hpp>
#include <boost/asio/local/datagram_protocol.hpp>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "phonebook/url.h"

namespace phonebook {

namespace {

using boost::asio::local::datagram_protocol;

constexpr std::size_t kMaxConnections = 100;

Response MakeResponse(int status, std::string body) {
  return {status, "text/plain; charset=utf-8", std::move(body), {{"Cache-Control", "no-store"}}};
}

// Sends a message to systemd. sd_notify() would wait while nobody reads the socket.
// @return false when it is not sent, as there is no room for it.
bool Notify(std::string_view message) try {
  const char* const name = std::getenv("NOTIFY_SOCKET");
  std::string path = name == nullptr ? "" : name;
  if (path.empty()) return true;
  if (path.front() == '@') path.front() = '\0';  // an abstract one
  boost::asio::io_context context;
  datagram_protocol::socket socket(context, datagram_protocol());
  socket.non_blocking(true);
  socket.send_to(boost::asio::buffer(message), path);
  return true;
} catch (...) {
  return false;
}

}  // namespace

AdminServer::AdminServer(const std::string& theAddress, std::vector<std::string> theHosts,
                         Server& server)
    : hosts(std::move(theHosts)),
      phoneBook(server),
      http({[this](const Request& request, const ResponseCallback& done) { done(Serve(request)); },
            [](const Request&, int status, const std::string&) {
              return MakeResponse(status, "Not understood\n");
            }},
           {kMaxConnections, {}, true}) {  // half-sent requests keep no monitor waiting
  if (!theAddress.empty()) {
    const auto colon = theAddress.rfind(':');
    const auto ip = IPAddressOf(theAddress.substr(0, colon)).value();
    const int port = http.Listen(ip.to_string(), std::stoi(theAddress.substr(colon + 1)));
    address = theAddress.substr(0, colon + 1) + std::to_string(port);
  }
  std::uint64_t timeout = 0;  // in microseconds
  const bool hasWatchdog = sd_watchdog_enabled(0, &timeout) > 0;
  const auto interval = std::clamp<std::uint64_t>(hasWatchdog ? timeout / 3000 : 1000, 10, 3600000);
  isReadySent = Notify("READY=1");
  http.CallEvery(std::chrono::milliseconds(interval), [this, hasWatchdog] {
    if (!isReadySent) isReadySent = Notify("READY=1");  // systemd waits for it
    if (hasWatchdog && phoneBook.IsServing()) Notify("WATCHDOG=1");
  });
  thread = std::thread([this] { http.Run({}); });
}

AdminServer::~AdminServer() {
  Notify("STOPPING=1");
  http.Stop();
  thread.join();
}

Response AdminServer::Serve(const Request& request) const {
  if (request.method != "GET" && request.method != "HEAD") return MakeResponse(405, "Only GET\n");
  if (!IsOwnHost(request.host)) return MakeResponse(421, "Not a host of the phone book\n");
  if (request.target == "/health") {
    const std::string failure = phoneBook.Failure();
    return failure.empty() ? MakeResponse(200, "OK\n") : MakeResponse(503, failure + "\n");
  }
  if (request.target != "/metrics") return MakeResponse(404, "There are /health and /metrics.\n");
  Response response = MakeResponse(200, phoneBook.MetricsText());
  response.type = "text/plain; version=0.0.4; charset=utf-8";
  return response;
}

// Whether no other site can lead browsers here by this name. HTTP/1.0 doesn't always have one.
bool AdminServer::IsOwnHost(const std::string& host) const {
  const auto name = HostNameOf(host);
  return host.empty() || name == "localhost" || IPAddressOf(host) ||
         std::find(hosts.begin(), hosts.end(), name) != hosts.end();
}

}  // namespace phonebook
