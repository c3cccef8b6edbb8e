#include "phonebook/http_connection.h"

#include <cstdint>
#include <utility>

namespace phonebook {

namespace {

namespace asio = boost::asio;
namespace http = boost::beast::http;
using asio::ip::tcp;
using boost::beast::error_code;

constexpr auto kNever = HTTPConnection::Clock::time_point::max();

}  // namespace

HTTPConnection::HTTPConnection(ConnectionOwner& theOwner, tcp::socket theSocket,
                               std::string theAddress)
    : owner(theOwner), socket(std::move(theSocket)), address(std::move(theAddress)) {
  error_code ignored;
  socket.set_option(tcp::no_delay(true), ignored);
}

void HTTPConnection::ReadRequest() {
  parser.emplace();
  parser->header_limit(static_cast<std::uint32_t>(owner.limits.maxHeader));
  parser->body_limit(owner.limits.maxBody);
  parser->eager(true);
  SetDeadline(owner.limits.idleTimeout);
  isIdle = true;
  Parse();
}

void HTTPConnection::Parse() {
  error_code error;
  if (buffer.size() > 0) {
    if (std::exchange(isIdle, false)) SetDeadline(owner.limits.requestTimeout);
    buffer.consume(parser->put(buffer.data(), error));
  }
  if (error && error != http::error::need_more) {
    Refuse(error);
  } else if (parser->is_done()) {
    Serve();
  } else if (buffer.size() > owner.limits.maxHeader) {
    Refuse(413);  // Beast buffers chunk headers without a limit
  } else {
    Read();
  }
}

void HTTPConnection::Read() {
  constexpr std::size_t kMaxRead = 2048;
  socket.async_read_some(buffer.prepare(kMaxRead),
                         [self = shared_from_this()](error_code error, std::size_t size) {
                           self->OnRead(error, size);
                         });
}

void HTTPConnection::OnRead(error_code error, std::size_t size) {
  buffer.commit(size);
  if (isOverdue) {
    Refuse(408);
  } else if (error && isIdle) {
    Remove();
  } else if (error) {
    Refuse(error);
  } else {
    Parse();
  }
}

void HTTPConnection::Serve() {
  const auto& request = parser->get();
  isHTTP10 = request.version() < 11;
  isKeptAlive = request.keep_alive();
  isHead = request.method() == http::verb::head;
  if (request.target().size() > owner.limits.maxTarget) {
    Refuse(414);
    return;
  }
  // The length of the body is unknown, or proxies see another one.
  if (request.count(http::field::transfer_encoding) > 0 && (isHTTP10 || !request.chunked())) {
    Refuse(400);
    return;
  }
  deadline = kNever;
  owner.handlers.serve(Described(), [weak = weak_from_this(), &owner = owner](Response response) {
    owner.Respond(weak, std::move(response));
  });
}

// Refuses what could not be read, unless the client has gone.
void HTTPConnection::Refuse(error_code error) {
  const error_code anyOfHTTP = http::error::bad_method;
  if (error == http::error::body_limit) {
    Refuse(413);
  } else if (error == http::error::header_limit) {
    Refuse(parser->get().target().empty() ? 414 : 431);
  } else if (error.category() == anyOfHTTP.category() && error != http::error::end_of_stream &&
             error != http::error::partial_message) {
    Refuse(400);
  } else {
    Remove();
  }
}

void HTTPConnection::Refuse(int status) {
  isKeptAlive = false;
  Write(owner.handlers.refuse(Described(), status));
}

Request HTTPConnection::Described() const {
  const auto& request = parser->get();
  const auto text = [](boost::beast::string_view view) {
    return std::string(view.data(), view.size());
  };
  return {text(request.method_string()), text(request.target()), text(request[http::field::host]),
          text(request[http::field::user_agent]), address};
}

void HTTPConnection::Write(Response response) {
  isKeptAlive = isKeptAlive && !owner.isStopping;
  message.emplace(static_cast<http::status>(response.status), 11);
  message->set(http::field::content_type, response.type);
  for (const auto& [name, value] : response.fields) message->set(name, value);
  message->keep_alive(isKeptAlive);
  // The default of HTTP/1.0 is to close.
  if (isKeptAlive && isHTTP10) message->set(http::field::connection, "keep-alive");
  message->content_length(response.body.size());
  if (!isHead) message->body() = std::move(response.body);
  SetDeadline(owner.limits.responseTimeout);
  http::async_write(socket, *message, [self = shared_from_this()](error_code error, std::size_t) {
    self->OnWrite(error);
  });
}

void HTTPConnection::OnWrite(error_code error) {
  message.reset();
  parser.reset();
  if (error) {
    Remove();
  } else if (isKeptAlive) {
    ReadRequest();
  } else {
    Shutdown();
  }
}

// Lets the last response arrive: closing with unread bytes would reset the connection.
void HTTPConnection::Shutdown() {
  constexpr std::chrono::milliseconds kLinger(500);
  error_code ignored;
  socket.shutdown(tcp::socket::shutdown_send, ignored);
  SetDeadline(kLinger);
  Drain();
}

void HTTPConnection::Drain() {
  buffer.clear();
  socket.async_read_some(buffer.prepare(4096),
                         [self = shared_from_this()](error_code error, std::size_t) {
                           if (error) {
                             self->Remove();
                           } else {
                             self->Drain();
                           }
                         });
}

void HTTPConnection::CheckDeadline(Clock::time_point now) {
  if (now < deadline) return;
  deadline = kNever;
  error_code ignored;
  isOverdue = parser && !isIdle && !message;
  if (isOverdue) {
    socket.cancel(ignored);
  } else {
    socket.close(ignored);
  }
}

void HTTPConnection::CloseIfIdle() {
  error_code ignored;
  if (isIdle && socket.available(ignored) == 0) socket.close(ignored);
}

}  // namespace phonebook
