#include "phonebook/http_connection.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

#include "phonebook/url.h"

namespace phonebook {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using asio::ip::tcp;
using boost::beast::error_code;

using Message = http::request<http::string_body>;

constexpr auto kNever = HTTPConnection::Clock::time_point::max();

std::string TextOf(beast::string_view view) { return {view.data(), view.size()}; }

bool IsHTTP10(const Message& request) { return request.version() < 11; }

// A field that comes several times is one list.
std::string JoinedFields(const Message& request, const char* name) {
  std::string all;
  const auto [begin, end] = request.equal_range(name);
  for (auto field = begin; field != end; ++field) {
    all += (all.empty() ? "" : ",") + TextOf(field->value());
  }
  return all;
}

}  // namespace

// Whoever has an IPv6 address has its network, too.
Peer::Peer(const asio::ip::address& theIP) : ip(theIP), address(ip.to_string()), client(address) {
  if (ip.is_v4()) return;
  const auto own = ip.to_v6();
  if (own.is_v4_mapped()) {
    client = asio::ip::make_address_v4(asio::ip::v4_mapped, own).to_string();
    return;
  }
  auto bytes = own.to_bytes();
  std::fill(bytes.begin() + bytes.size() / 2, bytes.end(), std::uint8_t{0});
  client = asio::ip::make_address_v6(bytes).to_string() + "/64";
}

HTTPConnection::HTTPConnection(HTTPServer& theServer, tcp::socket theSocket, Peer thePeer)
    : server(theServer),
      socket(std::move(theSocket)),
      peer(std::move(thePeer)),
      isProxied(server.limits.proxies.Contains(peer.ip)) {
  error_code ignored;
  socket.set_option(tcp::no_delay(true), ignored);
}

void HTTPConnection::ReadRequest() {
  parser.emplace();
  parser->header_limit(static_cast<std::uint32_t>(server.limits.maxHeader));
  parser->body_limit(server.limits.maxBody);
  parser->eager(true);
  SetDeadline(server.limits.idleTimeout);
  isIdle = true;
  // The buffer of a large request would stay as long as the connection is idle.
  constexpr std::size_t kMaxIdleBuffer = 4096;
  if (buffer.size() == 0 && buffer.capacity() > kMaxIdleBuffer) buffer.shrink_to_fit();
  Parse();
}

// Skips empty lines before a request, which some clients send after a body.
void HTTPConnection::SkipEmptyLines() {
  const auto* const bytes = static_cast<const char*>(buffer.data().data());
  std::size_t size = 0;
  while (isIdle && size + 1 < buffer.size() && bytes[size] == '\r' && bytes[size + 1] == '\n') {
    size += 2;
  }
  buffer.consume(size);
}

void HTTPConnection::Parse() {
  SkipEmptyLines();
  error_code error;
  const bool isHalfEmptyLine =
      isIdle && buffer.size() == 1 && *static_cast<const char*>(buffer.data().data()) == '\r';
  if (buffer.size() > 0 && !isHalfEmptyLine) {
    if (std::exchange(isIdle, false)) SetDeadline(server.limits.requestTimeout);
    buffer.consume(parser->put(buffer.data(), error));
  }
  const int status = parser->is_header_done() ? CheckHeader() : 0;
  if (status != 0) {
    Refuse(status);
  } else if (error && error != http::error::need_more) {
    Refuse(error);
  } else if (parser->is_done() || IsBodyAwaited()) {
    Serve();
  } else if (buffer.size() > server.limits.maxHeader) {
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

// Returns the status that refuses the header, or 0.
int HTTPConnection::CheckHeader() const {
  if (parser->get().target().size() > server.limits.maxTarget) return 414;
  const int status = CheckHost();
  return status != 0 ? status : CheckTransferEncoding();
}

int HTTPConnection::CheckHost() const {
  const auto& request = parser->get();
  const auto count = request.count(http::field::host);
  if (count == 0) return IsHTTP10(request) ? 0 : 400;
  if (count > 1) return 400;
  const std::string host = TextOf(request[http::field::host]);
  if (!host.empty() && host == validHost) return 0;
  if (!HostNameOf(host)) return 400;
  validHost = host;
  return 0;
}

// With another coding the length of the body is unknown, or proxies see another one.
int HTTPConnection::CheckTransferEncoding() const {
  const auto& request = parser->get();
  const auto [begin, end] = request.equal_range(http::field::transfer_encoding);
  if (begin == end) return 0;
  if (IsHTTP10(request)) return 400;
  if (std::next(begin) == end && beast::iequals(begin->value(), "chunked")) return 0;
  for (auto field = begin; field != end; ++field) {
    for (const auto coding : http::token_list(field->value())) {
      if (!beast::iequals(coding, "chunked")) return 501;
    }
  }
  return 400;
}

// Whether the client waits for a status before it sends the body.
bool HTTPConnection::IsBodyAwaited() const {
  const auto& request = parser->get();
  return parser->is_header_done() && !IsHTTP10(request) &&
         beast::iequals(request[http::field::expect], "100-continue");
}

void HTTPConnection::Serve() {
  isKeptAlive = parser->get().keep_alive() && parser->is_done();
  deadline = kNever;
  server.handlers.serve(Described(), [weak = weak_from_this(), &owner = server](Response response) {
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
  const bool hasHost = parser->is_header_done() && CheckHost() == 0;
  Send(server.handlers.refuse(Described(hasHost), status, ""));
}

// @param hasHost whether the header is complete and its Host field well-formed.
Request HTTPConnection::Described(bool hasHost) const {
  const auto& request = parser->get();
  const char* scheme = "http";
  Peer client = peer;
  if (isProxied) {
    client =
        Peer(server.limits.proxies.ClientOf(JoinedFields(request, "X-Forwarded-For"), peer.ip));
    if (beast::iequals(JoinedFields(request, "X-Forwarded-Proto"), "https")) scheme = "https";
  }
  return {TextOf(request.method_string()),
          TextOf(request.target()),
          hasHost ? TextOf(request[http::field::host]) : "",
          TextOf(request[http::field::user_agent]),
          std::move(client.address),
          std::move(client.client),
          scheme,
          beast::iequals(request["Sec-Fetch-Site"], "cross-site")};
}

void HTTPConnection::Write(Response response) {
  const auto& limits = server.limits;
  const std::size_t size = response.body.size();
  if (size + server.unsent > (size > limits.maxSmall ? limits.maxUnsent / 2 : limits.maxUnsent)) {
    isKeptAlive = false;
    response = server.handlers.refuse(Described(), 503, "too many responses are unsent");
  }
  Send(std::move(response));
}

void HTTPConnection::Send(Response response) {
  const bool isHead = parser->get().method() == http::verb::head;
  isKeptAlive = isKeptAlive && !server.isStopping;
  message.emplace(static_cast<http::status>(response.status), 11);
  message->set(http::field::date, server.Date());
  message->set(http::field::content_type, response.type);
  for (const auto& [name, value] : response.fields) message->set(name, value);
  message->keep_alive(isKeptAlive);
  // The default of HTTP/1.0 is to close.
  if (isKeptAlive && IsHTTP10(parser->get())) message->set(http::field::connection, "keep-alive");
  message->content_length(response.body.size());
  if (!isHead) message->body() = std::move(response.body);
  unsent = message->body().size();
  server.unsent += unsent;
  SetDeadline(server.limits.responseTimeout);
  http::async_write(socket, *message, [self = shared_from_this()](error_code error, std::size_t) {
    self->OnWrite(error);
  });
}

void HTTPConnection::OnWrite(error_code error) {
  server.unsent -= std::exchange(unsent, 0);
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

void HTTPConnection::CheckDeadline(Clock::time_point now, bool isServerFull) {
  const auto& limits = server.limits;
  if (isIdle && isServerFull) now += limits.idleTimeout - limits.idleTimeoutWhenFull;
  error_code ignored;
  if (now < deadline || (isIdle && socket.available(ignored) > 0)) return;
  isOverdue = parser && !isIdle && !message;
  if (isOverdue) {
    deadline = kNever;
    socket.cancel(ignored);
  } else {
    Close();
  }
}

void HTTPConnection::Close() {
  error_code ignored;
  deadline = kNever;
  socket.close(ignored);
}

void HTTPConnection::CloseIfIdle() {
  error_code ignored;
  if (isIdle && socket.available(ignored) == 0) Close();
}

}  // namespace phonebook
