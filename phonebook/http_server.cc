#include "phonebook/http_server.h"

#include <algorithm>
#include <boost/asio/dispatch.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <unordered_set>

namespace phonebook {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
using asio::ip::tcp;
using beast::error_code;
using Clock = std::chrono::steady_clock;

constexpr auto kNever = Clock::time_point::max();

}  // namespace

class HTTPServer::Implementation {
 public:
  Implementation(Handlers theHandlers, HTTPLimits theLimits)
      : handlers(std::move(theHandlers)), limits(theLimits) {
    // One look at all of them costs less than a timer for each step of each.
    Every(std::chrono::milliseconds(100), [this] { Check(); });
  }

  int Listen(const std::string& address, int port);
  void Every(std::chrono::milliseconds interval, std::function<void()> tick);
  void Run(std::chrono::milliseconds patience);
  void Stop();

 private:
  class Connection;

  void Accept();
  void Greet(tcp::socket socket);
  void Check();
  void Leave(const std::shared_ptr<Connection>& connection);
  void Answer(const std::weak_ptr<Connection>& connection, Response reply);

  std::mutex mutex;
  std::vector<std::pair<std::weak_ptr<Connection>, Response>> answers;
  Handlers handlers;
  HTTPLimits limits;
  asio::io_context context{1};
  std::unordered_set<std::shared_ptr<Connection>> connections;
  tcp::acceptor acceptor{context};
  tcp::endpoint peer;  // who was accepted last; a socket tells no more once its peer has gone
  asio::steady_timer pause{context};
  asio::steady_timer end{context};
  std::chrono::milliseconds endPatience{};
  bool isAccepting = false;
  bool isStopping = false;
};

// One at a time, a connection waits for a request, reads it, has it answered, and writes the
// answer.
class HTTPServer::Implementation::Connection : public std::enable_shared_from_this<Connection> {
 public:
  Connection(Implementation& theServer, tcp::socket theSocket)
      : server(theServer),
        socket(std::move(theSocket)),
        address(server.peer.address().to_string()) {
    error_code ignored;
    socket.set_option(tcp::no_delay(true), ignored);
  }

  // Waits for a request, which the one before may have brought along.
  void Await() {
    parser.emplace();
    parser->header_limit(static_cast<std::uint32_t>(server.limits.header));
    parser->body_limit(server.limits.body);
    parser->eager(true);
    Expect(server.limits.idle);
    isIdle = true;
    Parse();
  }

  void Send(Response reply) {
    isKept = isKept && !server.isStopping;
    response.emplace(static_cast<http::status>(reply.status), 11);
    response->set(http::field::content_type, reply.type);
    for (const auto& [name, value] : reply.fields) response->set(name, value);
    response->keep_alive(isKept);
    // Those who speak HTTP/1.0 must be told.
    if (isKept && isOld) response->set(http::field::connection, "keep-alive");
    response->content_length(reply.body.size());
    if (!isHead) response->body() = std::move(reply.body);
    Expect(server.limits.taking);
    http::async_write(socket, *response,
                      [self = shared_from_this()](error_code error, std::size_t) {
                        self->response.reset();
                        self->parser.reset();
                        if (error) {
                          self->End();
                        } else if (self->isKept) {
                          self->Await();
                        } else {
                          self->Finish();
                        }
                      });
  }

  // Ends what has taken too long by `now`, but for a request: that is refused.
  void Check(Clock::time_point now) {
    if (now < due) return;
    due = kNever;
    error_code ignored;
    isLate = parser && !isIdle && !response;
    if (isLate) {
      socket.cancel(ignored);
    } else {
      socket.close(ignored);
    }
  }

  // Ends a connection on which nothing has been asked.
  void CloseIfIdle() {
    error_code ignored;
    if (isIdle && socket.available(ignored) == 0) socket.close(ignored);
  }

 private:
  void Expect(std::chrono::milliseconds within) { due = Clock::now() + within; }

  void Parse() {
    error_code error;
    if (buffer.size() > 0) {
      if (std::exchange(isIdle, false)) Expect(server.limits.arrival);
      buffer.consume(parser->put(buffer.data(), error));
    }
    if (error && error != http::error::need_more) {
      Refuse(error);
    } else if (parser->is_done()) {
      Serve();
    } else if (buffer.size() > server.limits.header) {
      Refuse(413);  // by what Beast collects without a limit: the edges of a body in pieces
    } else {
      Read();
    }
  }

  void Read() {
    constexpr std::size_t kMost = 2048;
    socket.async_read_some(buffer.prepare(kMost),
                           [self = shared_from_this()](error_code error, std::size_t size) {
                             self->buffer.commit(size);
                             if (self->isLate) {
                               self->Refuse(408);
                             } else if (error && self->isIdle) {
                               self->End();
                             } else if (error) {
                               self->Refuse(error);
                             } else {
                               self->Parse();
                             }
                           });
  }

  // Refuses what could not be read, unless there is nobody to tell.
  void Refuse(error_code error) {
    const error_code anyOfHTTP = http::error::bad_method;
    if (error == http::error::body_limit) {
      Refuse(413);
    } else if (error == http::error::header_limit) {
      Refuse(parser->get().target().empty() ? 414 : 431);
    } else if (error.category() == anyOfHTTP.category() && error != http::error::end_of_stream &&
               error != http::error::partial_message) {
      Refuse(400);
    } else {
      End();
    }
  }

  Request Described() const {
    const auto& message = parser->get();
    const auto text = [](beast::string_view view) { return std::string(view.data(), view.size()); };
    Request request{text(message.method_string()), text(message.target()),
                    text(message[http::field::host]), text(message[http::field::user_agent]),
                    address};
    const std::string scheme = "http://";
    if (request.target.rfind(scheme, 0) == 0) {  // as phones ask that believe this to be a proxy
      request.host = request.target.substr(scheme.size());
      request.host.resize(std::min(request.host.find('/'), request.host.size()));
      request.target.erase(0, scheme.size() + request.host.size());
    }
    return request;
  }

  void Serve() {
    const auto& message = parser->get();
    isOld = message.version() < 11;
    isKept = message.keep_alive();
    isHead = message.method() == http::verb::head;
    if (message.target().size() > server.limits.target) {
      Refuse(414);
      return;
    }
    // Where the body ends can't be told, or is told differently by those in between.
    if (message.count(http::field::transfer_encoding) > 0 && (isOld || !message.chunked())) {
      Refuse(400);
      return;
    }
    due = kNever;
    auto answer = [weak = weak_from_this(), &server = server](Response reply) {
      server.Answer(weak, std::move(reply));
    };
    server.handlers.serve(Described(), std::move(answer));
  }

  void Refuse(int status) {
    isKept = false;
    Send(server.handlers.refuse(Described(), status));
  }

  // Lets the last answer arrive: to close with bytes unread would take it back.
  void Finish() {
    constexpr std::chrono::milliseconds kLinger(500);
    error_code ignored;
    socket.shutdown(tcp::socket::shutdown_send, ignored);
    Expect(kLinger);
    Drain();
  }

  void Drain() {
    buffer.clear();
    socket.async_read_some(buffer.prepare(4096),
                           [self = shared_from_this()](error_code error, std::size_t) {
                             if (error) {
                               self->End();
                             } else {
                               self->Drain();
                             }
                           });
  }

  void End() { server.Leave(shared_from_this()); }

  Implementation& server;
  tcp::socket socket;
  Clock::time_point due;  // when what is expected has taken too long
  beast::flat_buffer buffer;
  std::optional<http::request_parser<http::string_body>> parser;
  std::optional<http::response<http::string_body>> response;
  std::string address;
  bool isIdle = false;
  bool isLate = false;
  bool isKept = false;
  bool isHead = false;
  bool isOld = false;  // speaks HTTP/1.0
};

int HTTPServer::Implementation::Listen(const std::string& address, int port) {
  error_code error;
  const auto ip = asio::ip::make_address(address, error);
  const tcp::endpoint endpoint(ip, static_cast<std::uint16_t>(port));
  if (!error) acceptor.open(endpoint.protocol(), error);
  if (!error) acceptor.set_option(tcp::acceptor::reuse_address(true), error);
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
  isAccepting = !isStopping && connections.size() < limits.connections;
  if (!isAccepting) return;
  acceptor.async_accept(peer, [this](error_code error, tcp::socket socket) {
    if (isStopping) return;
    if (!error) {
      Greet(std::move(socket));
      Accept();
      return;
    }
    pause.expires_after(std::chrono::milliseconds(100));  // until there are descriptors again
    pause.async_wait([this](error_code) { Accept(); });
  });
}

void HTTPServer::Implementation::Greet(tcp::socket socket) {
  (*connections.insert(std::make_shared<Connection>(*this, std::move(socket))).first)->Await();
}

void HTTPServer::Implementation::Check() {
  const auto now = Clock::now();
  for (const auto& connection : connections) connection->Check(now);
}

void HTTPServer::Implementation::Leave(const std::shared_ptr<Connection>& connection) {
  connections.erase(connection);
  if (isStopping && connections.empty()) {
    context.stop();
  } else if (!isAccepting) {
    Accept();
  }
}

// Answers come from other threads; those that come together are written in one go.
void HTTPServer::Implementation::Answer(const std::weak_ptr<Connection>& connection,
                                        Response reply) {
  {
    const std::lock_guard lock(mutex);
    answers.emplace_back(connection, std::move(reply));
    if (answers.size() > 1) return;
  }
  asio::dispatch(context, [this] {
    std::vector<std::pair<std::weak_ptr<Connection>, Response>> written;
    {
      const std::lock_guard lock(mutex);
      written.swap(answers);
    }
    for (auto& [weak, one] : written) {
      if (const auto alive = weak.lock()) alive->Send(std::move(one));
    }
  });
}

void HTTPServer::Implementation::Every(std::chrono::milliseconds interval,
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

void HTTPServer::Implementation::Run(std::chrono::milliseconds patience) {
  endPatience = patience;
  context.run();
}

void HTTPServer::Implementation::Stop() {
  asio::post(context, [this] {
    if (isStopping) return;
    // Who has connected already is answered, too.
    error_code error;
    acceptor.non_blocking(true, error);
    while (!error) {
      tcp::socket socket(context);
      acceptor.accept(socket, peer, error);
      if (!error) Greet(std::move(socket));
    }
    isStopping = true;
    acceptor.close(error);
    end.expires_after(endPatience);
    end.async_wait([this](error_code) { context.stop(); });
    const auto open = connections;
    for (const auto& connection : open) connection->CloseIfIdle();
    if (connections.empty()) context.stop();
  });
}

HTTPServer::HTTPServer(Handlers handlers, HTTPLimits limits)
    : implementation(std::make_unique<Implementation>(std::move(handlers), limits)) {}

HTTPServer::~HTTPServer() = default;

int HTTPServer::Listen(const std::string& address, int port) {
  return implementation->Listen(address, port);
}

void HTTPServer::Every(std::chrono::milliseconds interval, std::function<void()> tick) {
  implementation->Every(interval, std::move(tick));
}

void HTTPServer::Run(std::chrono::milliseconds patience) { implementation->Run(patience); }

void HTTPServer::Stop() { implementation->Stop(); }

}  // namespace phonebook
