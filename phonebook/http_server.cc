#include "phonebook/http_server.h"

#include <algorithm>
#include <atomic>
#include <boost/asio/dispatch.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <cstdint>
#include <mutex>
#include <stdexcept>
#include <unordered_set>
#include <utility>
#include <vector>

#include "phonebook/http_connection.h"

namespace phonebook {

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::beast::error_code;

}  // namespace

class HTTPServer::Implementation : public ConnectionOwner {
 public:
  Implementation(HTTPHandlers theHandlers, HTTPLimits theLimits)
      : ConnectionOwner(std::move(theHandlers), std::move(theLimits)) {
    // Looking at all connections now and then costs less than a timer for each step of each.
    CallEvery(std::chrono::milliseconds(100), [this] { CheckDeadlines(); });
  }

  int Listen(const std::string& address, int port);
  void CallEvery(std::chrono::milliseconds interval, std::function<void()> tick);
  void Run(std::chrono::milliseconds timeout);
  void Stop();

  void Respond(const std::weak_ptr<HTTPConnection>& connection, Response response) override;
  void Remove(const std::shared_ptr<HTTPConnection>& connection) override;

  std::atomic<std::size_t> count = 0;  // of connections, for other threads

 private:
  using QueuedResponse = std::pair<std::weak_ptr<HTTPConnection>, Response>;

  void Accept();
  void OnAccept(tcp::socket socket);
  void CheckDeadlines();
  void WriteQueued();
  void AcceptPending();
  void OnStop();

  std::mutex mutex;
  std::vector<QueuedResponse> queue;
  asio::io_context context{1};
  std::unordered_set<std::shared_ptr<HTTPConnection>> connections;
  tcp::acceptor acceptor{context};
  tcp::endpoint peer;  // the client accepted last; its socket forgets the address once it has gone
  asio::steady_timer pause{context};
  asio::steady_timer end{context};
  std::chrono::milliseconds stopTimeout{};
  bool isAccepting = false;
};

int HTTPServer::Implementation::Listen(const std::string& address, int port) {
  error_code error;
  const auto ip = asio::ip::make_address(address, error);
  const tcp::endpoint endpoint(ip, static_cast<std::uint16_t>(port));
  if (!error) acceptor.open(endpoint.protocol(), error);
  if (!error) acceptor.set_option(tcp::acceptor::reuse_address(true), error);
  // Its connections inherit it. Without it the kernel holds megabytes for a client that reads
  // nothing.
  const tcp::acceptor::send_buffer_size sendBuffer(static_cast<int>(limits.sendBuffer));
  if (!error) acceptor.set_option(sendBuffer, error);
  if (!error) acceptor.bind(endpoint, error);
  if (!error) acceptor.listen(asio::socket_base::max_listen_connections, error);
  if (error) {
    throw std::runtime_error("can't listen on " + address + ", port " + std::to_string(port) +
                             ": " + error.message());
  }
  Accept();
  return acceptor.local_endpoint().port();
}

void HTTPServer::Implementation::Accept() {
  isAccepting = !isStopping && connections.size() < limits.maxConnections;
  if (!isAccepting) return;
  acceptor.async_accept(peer, [this](error_code error, tcp::socket socket) {
    if (isStopping) return;
    if (!error) {
      OnAccept(std::move(socket));
      Accept();
      return;
    }
    pause.expires_after(std::chrono::milliseconds(100));  // until there are descriptors again
    pause.async_wait([this](error_code) { Accept(); });
  });
}

void HTTPServer::Implementation::OnAccept(tcp::socket socket) {
  const auto connection =
      std::make_shared<HTTPConnection>(*this, std::move(socket), Peer(peer.address()));
  connections.insert(connection);
  count = connections.size();
  connection->ReadRequest();
}

void HTTPServer::Implementation::CheckDeadlines() {
  const auto now = HTTPConnection::Clock::now();
  const bool isFull = connections.size() >= limits.maxConnections;
  for (const auto& connection : connections) connection->CheckDeadline(now, isFull);
}

void HTTPServer::Implementation::Remove(const std::shared_ptr<HTTPConnection>& connection) {
  connections.erase(connection);
  count = connections.size();
  if (isStopping && connections.empty()) {
    context.stop();
  } else if (!isAccepting) {
    Accept();
  }
}

// Responses come from other threads. One wake-up of the serving thread writes all queued ones.
void HTTPServer::Implementation::Respond(const std::weak_ptr<HTTPConnection>& connection,
                                         Response response) {
  {
    const std::lock_guard lock(mutex);
    queue.emplace_back(connection, std::move(response));
    if (queue.size() > 1) return;
  }
  asio::dispatch(context, [this] { WriteQueued(); });
}

void HTTPServer::Implementation::WriteQueued() {
  std::vector<QueuedResponse> responses;
  {
    const std::lock_guard lock(mutex);
    responses.swap(queue);
  }
  for (auto& [weak, response] : responses) {
    if (const auto connection = weak.lock()) connection->Write(std::move(response));
  }
}

void HTTPServer::Implementation::CallEvery(std::chrono::milliseconds interval,
                                           std::function<void()> tick) {
  const auto timer = std::make_shared<asio::steady_timer>(context);
  auto again = std::make_shared<std::function<void()>>();
  *again = [timer, interval, tick = std::move(tick), weak = std::weak_ptr(again)] {
    timer->expires_after(interval);
    timer->async_wait([self = weak.lock(), tick](error_code) {
      tick();
      (*self)();
    });
  };
  (*again)();
}

void HTTPServer::Implementation::Run(std::chrono::milliseconds timeout) {
  stopTimeout = timeout;
  context.run();
}

void HTTPServer::Implementation::Stop() {
  asio::post(context, [this] { OnStop(); });
}

void HTTPServer::Implementation::OnStop() {
  if (isStopping) return;
  AcceptPending();
  isStopping = true;
  error_code ignored;
  acceptor.close(ignored);
  end.expires_after(stopTimeout);
  end.async_wait([this](error_code) { context.stop(); });
  const auto open = connections;
  for (const auto& connection : open) connection->CloseIfIdle();
  if (connections.empty()) context.stop();
}

// Accepts the clients that have connected already: their requests are answered, too.
void HTTPServer::Implementation::AcceptPending() {
  error_code error;
  acceptor.non_blocking(true, error);
  while (!error) {
    tcp::socket socket(context);
    acceptor.accept(socket, peer, error);
    if (!error) OnAccept(std::move(socket));
  }
}

HTTPServer::HTTPServer(HTTPHandlers handlers, HTTPLimits limits)
    : implementation(std::make_unique<Implementation>(std::move(handlers), std::move(limits))) {}

HTTPServer::~HTTPServer() = default;

int HTTPServer::Listen(const std::string& address, int port) {
  return implementation->Listen(address, port);
}

void HTTPServer::CallEvery(std::chrono::milliseconds interval, std::function<void()> tick) {
  implementation->CallEvery(interval, std::move(tick));
}

void HTTPServer::Run(std::chrono::milliseconds timeout) { implementation->Run(timeout); }

std::size_t HTTPServer::Connections() const { return implementation->count; }

void HTTPServer::Stop() { implementation->Stop(); }

}  // namespace phonebook
