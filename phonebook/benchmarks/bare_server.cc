// The upper limit for the phone book on its HTTP library: a server that sends the same response to
// every request and enforces no limits.
//
// Usage: bare_server PORT SIZE    SIZE is that of the body in bytes
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <utility>

namespace {

namespace http = boost::beast::http;
using boost::asio::ip::tcp;
using boost::system::error_code;

class Connection : public std::enable_shared_from_this<Connection> {
 public:
  Connection(tcp::socket theSocket, std::size_t size) : socket(std::move(theSocket)) {
    socket.set_option(tcp::no_delay(true));
    response.set(http::field::content_type, "text/xml; charset=utf-8");
    response.set(http::field::cache_control, "no-cache");
    response.set("X-Content-Type-Options", "nosniff");
    response.body() = std::string(size, 'x');
    response.prepare_payload();
  }

  void Read() {
    request = {};
    http::async_read(socket, buffer, request,
                     [self = shared_from_this()](error_code error, std::size_t) {
                       if (!error) self->Write();
                     });
  }

 private:
  void Write() {
    http::async_write(socket, response, [self = shared_from_this()](error_code error, std::size_t) {
      if (!error) self->Read();
    });
  }

  tcp::socket socket;
  boost::beast::flat_buffer buffer;
  http::request<http::empty_body> request;
  http::response<http::string_body> response;
};

void Accept(tcp::acceptor& acceptor, std::size_t size) {
  acceptor.async_accept([&acceptor, size](error_code error, tcp::socket socket) {
    if (!error) std::make_shared<Connection>(std::move(socket), size)->Read();
    Accept(acceptor, size);
  });
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 3) return EXIT_FAILURE;
  boost::asio::io_context context(1);
  const auto port = static_cast<unsigned short>(std::atoi(argv[1]));
  tcp::acceptor acceptor(context, {boost::asio::ip::address_v4::loopback(), port});
  Accept(acceptor, static_cast<std::size_t>(std::atoi(argv[2])));
  context.run();
} catch (const std::exception& error) {
  std::cerr << error.what() << "\n";
  return EXIT_FAILURE;
}
