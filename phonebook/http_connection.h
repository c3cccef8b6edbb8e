/// @file
/// A connection of the HTTP server. It reads one request at a time, has it served and writes the
/// response. Private to the server.
#pragma once

#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/error.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "phonebook/http_server.h"

namespace phonebook {

/// The client of a connection or, behind a proxy, of a request.
struct Peer {
  explicit Peer(const boost::asio::ip::address& address);
  boost::asio::ip::address ip;
  std::string address;
  std::string client;  ///< The address, or the network (/64) of an IPv6 address.
};

class HTTPConnection : public std::enable_shared_from_this<HTTPConnection> {
 public:
  using Clock = std::chrono::steady_clock;

  HTTPConnection(HTTPServer& server, boost::asio::ip::tcp::socket socket, Peer peer);

  /// Waits for the next request, which may have arrived with the one before, and serves it.
  void ReadRequest();

  void Write(Response response);

  /// Ends a step that is overdue: refuses an incomplete request, or else closes the connection.
  /// @param isServerFull shortens the time for which the connection may be idle.
  void CheckDeadline(Clock::time_point now, bool isServerFull);

  Clock::time_point Deadline() const { return deadline; }
  void Close();

  /// Closes the connection unless a request has begun to arrive.
  void CloseIfIdle();

 private:
  using error_code = boost::beast::error_code;

  void SkipEmptyLines();
  void Parse();
  int CheckHeader() const;
  int CheckHost() const;
  int CheckTransferEncoding() const;
  bool IsBodyAwaited() const;
  void Read();
  void OnRead(error_code error, std::size_t size);
  void Serve();
  void Refuse(error_code error);
  void Refuse(int status);
  void Send(Response response);
  Request Described(bool hasHost = true) const;
  void OnWrite(error_code error);
  void Shutdown();
  void Drain();
  void Remove() { server.Remove(shared_from_this()); }
  void SetDeadline(std::chrono::milliseconds timeout) { deadline = Clock::now() + timeout; }

  HTTPServer& server;
  boost::asio::ip::tcp::socket socket;
  const Peer peer;
  const bool isProxied;
  Clock::time_point deadline;
  boost::beast::flat_buffer buffer;
  std::optional<boost::beast::http::request_parser<boost::beast::http::string_body>> parser;
  std::optional<boost::beast::http::response<boost::beast::http::string_body>> message;
  bool isIdle = false;
  bool isOverdue = false;
  bool isKeptAlive = false;
  std::size_t unsent = 0;  // of server.unsent
  // The last one, as clients send the same with each request and parsing it takes a while.
  mutable std::string validHost;
};

}  // namespace phonebook
