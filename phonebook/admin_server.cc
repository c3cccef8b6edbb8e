#include "phonebook/admin_server.h"

#include <systemd/sd-daemon.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <utility>

namespace phonebook {

namespace {

constexpr std::size_t kMaxConnections = 100;

Response MakeResponse(int status, std::string body) {
  return {status, "text/plain; charset=utf-8", std::move(body), {{"Cache-Control", "no-store"}}};
}

Response Answer(const AdminHandlers& handlers, const Request& request) {
  if (request.method != "GET" && request.method != "HEAD") return MakeResponse(405, "Only GET\n");
  if (request.target == "/health") {
    const std::string failure = handlers.failure();
    return failure.empty() ? MakeResponse(200, "OK\n") : MakeResponse(503, failure + "\n");
  }
  if (request.target != "/metrics") return MakeResponse(404, "There are /health and /metrics.\n");
  Response response = MakeResponse(200, handlers.metrics());
  response.type = "text/plain; version=0.0.4; charset=utf-8";
  return response;
}

}  // namespace

AdminServer::AdminServer(const std::string& theAddress, AdminHandlers handlers,
                         std::function<bool()> isServing)
    : http({[handlers = std::move(handlers)](const Request& request, const ResponseCallback& done) {
              done(Answer(handlers, request));
            },
            [](const Request&, int status, const std::string&) {
              return MakeResponse(status, "Not understood\n");
            }},
           {kMaxConnections}) {
  if (!theAddress.empty()) {
    const auto colon = theAddress.rfind(':');
    const std::string host = theAddress.substr(0, colon);
    const bool isBracketed = host.size() > 1 && host.front() == '[';
    const int port = http.Listen(isBracketed ? host.substr(1, host.size() - 2) : host,
                                 std::atoi(theAddress.substr(colon + 1).c_str()));
    address = host + ":" + std::to_string(port);
  }
  std::uint64_t interval = 0;  // in microseconds
  if (sd_watchdog_enabled(0, &interval) > 0) {
    http.CallEvery(std::chrono::milliseconds(interval / 3000), [isServing = std::move(isServing)] {
      if (isServing()) sd_notify(0, "WATCHDOG=1");
    });
  }
  thread = std::thread([this] { http.Run({}); });
  sd_notify(0, "READY=1");
}

AdminServer::~AdminServer() {
  sd_notify(0, "STOPPING=1");
  http.Stop();
  thread.join();
}

}  // namespace phonebook
