#include "phonebook/http_server.h"

#include <spdlog/fmt/chrono.h>

#include <algorithm>
#include <boost/asio/dispatch.hpp>
#include <boost/asio/post.hpp>
#include <cstdint>
#include <stdexcept>
#include <utility>

#include "phonebook/http_connection.h"

namespace phonebook {

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::beast::error_code;

}  // namespace

HTTPServer::HTTPServer(HTTPHandlers theHandlers, HTTPLimits theLimits)
    : handlers(std::move(theHandlers)), limits(std::move(theLimits)) {
  // Looking at all connections now and then costs less than a timer for each step of each.
  CallEvery(std::chrono::milliseconds(100), [this] { CheckDeadlines(); });
}

int HTTPServer::Listen(const std::string& address, int port) {
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

void HTTPServer::Accept() {
  isAccepting =
      !isStopping && (limits.isOldestReplaced || connections.size() < limits.maxConnections);
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

void HTTPServer::OnAccept(tcp::socket socket) {
  if (limits.isOldestReplaced && connections.size() >= limits.maxConnections) CloseOldest();
  const auto connection =
      std::make_shared<HTTPConnection>(*this, std::move(socket), Peer(peer.address()));
  connections.insert(connection);
  count = connections.size();
  connection->ReadRequest();
}

void HTTPServer::CloseOldest() {
  const auto oldest = std::min_element(
      connections.begin(), connections.end(),
      [](const auto& left, const auto& right) { return left->Deadline() < right->Deadline(); });
  (*oldest)->Close();
}

void HTTPServer::CheckDeadlines() {
  const auto now = HTTPConnection::Clock::now();
  const bool isFull = connections.size() >= limits.maxConnections;
  for (const auto& connection : connections) connection->CheckDeadline(now, isFull);
}

void HTTPServer::Remove(const std::shared_ptr<HTTPConnection>& connection) {
  connections.erase(connection);
  count = connections.size();
  if (isStopping && connections.empty()) {
    context.stop();
  } else if (!isAccepting) {
    Accept();
  }
}

// Responses come from other threads. One wake-up of the serving thread writes all queued ones.
void HTTPServer::Respond(const std::weak_ptr<HTTPConnection>& connection, Response response) {
  {
    const std::lock_guard lock(mutex);
    queue.emplace_back(connection, std::move(response));
    if (queue.size() > 1) return;
  }
  asio::dispatch(context, [this] { WriteQueued(); });
}

void HTTPServer::WriteQueued() {
  std::vector<QueuedResponse> responses;
  {
    const std::lock_guard lock(mutex);
    responses.swap(queue);
  }
  for (auto& [weak, response] : responses) {
    if (const auto connection = weak.lock()) connection->Write(std::move(response));
  }
}

void HTTPServer::CallEvery(std::chrono::milliseconds interval, std::function<void()> tick) {
  const auto timer = std::make_shared<asio::steady_timer>(context, interval);
  timer->async_wait([this, timer, interval, tick = std::move(tick)](error_code) {
    tick();
    CallEvery(interval, tick);
  });
}

void HTTPServer::Run(std::chrono::milliseconds timeout) {
  stopTimeout = timeout;
  context.run();
}

void HTTPServer::Stop() {
  asio::post(context, [this] { OnStop(); });
}

void HTTPServer::OnStop() {
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
void HTTPServer::AcceptPending() {
  error_code error;
  acceptor.non_blocking(true, error);
  while (!error) {
    tcp::socket socket(context);
    acceptor.accept(socket, peer, error);
    if (!error) OnAccept(std::move(socket));
  }
}

const std::string& HTTPServer::Date() {
  const std::time_t now = std::time(nullptr);
  if (now != dateTime) date = fmt::format("{:%a, %d %b %Y %H:%M:%S} GMT", fmt::gmtime(now));
  dateTime = now;
  return date;
}

}  // namespace phonebook
