#include "phonebook/server.h"

#include <teleform/screens/escape.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <memory>
#include <sstream>
#include <string_view>
#include <utility>

#include "phonebook/preview.h"
#include "phonebook/text.h"

namespace phonebook {

namespace {

using teleform::screens::AllMakers;
using teleform::screens::PercentDecode;
using teleform::screens::PercentEncode;

constexpr const char* kPlainText = "text/plain; charset=utf-8";
constexpr const char* kUnavailable = "The phone book can't be read now.";

// What a refusal is called, and what it tells where there is no more to say.
struct StatusFacts {
  int status;
  const char* title;
  const char* reason;
};
constexpr StatusFacts kStatuses[] = {
    {400, "Not understood", "The request was not understood."},
    {404, "Not found", kNoPage},
    {405, "Not allowed", "The phone book is only read."},
    {408, "Too slow", "The request took too long to arrive."},
    {413, "Too large", "The request is too large."},
    {414, "Too long", "The address is too long."},
    {431, "Too large", "The request's header is too large."},
    {500, "Error", "The phone book made a mistake."},
    {503, "Please try again", kUnavailable},
};

const StatusFacts& StatusFactsOf(int status) {
  for (const auto& facts : kStatuses) {
    if (facts.status == status) return facts;
  }
  return kStatuses[0];
}

Response MakeResponse(int status, const std::string& type, std::string body) {
  return {status,
          type,
          std::move(body),
          {{"Cache-Control", "no-cache"}, {"X-Content-Type-Options", "nosniff"}}};
}

Response MakeResponse(int status, IPPhoneXML& document) {
  std::string text;
  document.Render(text);
  Response reply =
      MakeResponse(status, document.GetContentType() + "; charset=utf-8", std::move(text));
  if (document.GetContentType() == "text/html") {
    reply.fields.emplace_back("Content-Security-Policy",
                              "default-src 'none'; frame-ancestors 'none'");
  }
  return reply;
}

// One line; what comes from outside can't end it.
void Log(const Request& request, int status, const std::string& reason) {
  constexpr const char* kReadable = "/ ?=&%:;,()[]'\"@!$*+";
  std::ostringstream line;
  line << "phonebook: " << status << " " << PercentEncode(request.method) << " "
       << PercentEncode(request.target, kReadable) << " from " << request.address << ": "
       << PercentEncode(reason, kReadable) << "\n";
  std::fputs(line.str().c_str(), stderr);  // which goes on after the disk was full
}

// Takes what comes before a separator, or all, off the front of `text`.
std::string_view Take(std::string_view& text, char separator) {
  const auto end = std::min(text.find(separator), text.size());
  const auto taken = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return taken;
}

}  // namespace

std::string Addresses(const std::string& server) {
  std::string addresses;
  for (const auto& facts : AllMakers()) {
    addresses += server + "/" + std::string(facts.slug) + "/\n";
  }
  return addresses;
}

Server::Server(const std::string& database, ServerOptions theOptions)
    : options(std::move(theOptions)),
      preview(MakePreview()),
      http({[this](Request request, HTTPServer::Answer answer) {
              Serve(std::move(request), std::move(answer));
            },
            [this](const Request& request, int status) {
              return Refuse(request, status, StatusFactsOf(status).reason);
            }},
           {options.phones}),
      workers(database, options.connections) {
  http.Every(std::chrono::milliseconds(20), [this] { workers.Watch(); });
  http.Every(std::chrono::milliseconds(300), [this] { IndexPending(); });
}

std::string Server::Listen() {
  options.port = http.Listen(options.address, options.port);
  // All addresses of a machine are not one to call.
  const std::string& given = options.address;
  const std::string address = given == "0.0.0.0" ? "127.0.0.1" : given == "::" ? "::1" : given;
  const bool isIPv6 = address.find(':') != address.npos;
  ownHost = (isIPv6 ? "[" + address + "]" : address) + ":" + std::to_string(options.port);
  return ownHost;
}

bool Server::Run() {
  constexpr std::chrono::milliseconds kEnd(1500);
  http.Run(WorkerPool::kPatience + std::chrono::milliseconds(500));
  return workers.Stop(kEnd);
}

void Server::Serve(Request request, HTTPServer::Answer answer) {
  if (request.method != "GET" && request.method != "HEAD") {
    answer(Refuse(request, 405, StatusFactsOf(405).reason));
    return;
  }
  const auto asset = preview.find(request.target.substr(0, request.target.find('?')));
  if (asset != preview.end()) {
    answer(asset->second);
    return;
  }
  const ParsedRequest visitor = VisitorOf(request);
  if (!visitor.maker && IsPage(visitor.path)) {
    answer(MakeResponse(200, kPlainText, Addresses(visitor.base)));
    return;
  }
  // The page may fail here, or on a worker.
  struct Asked {
    Request request;
    HTTPServer::Answer answer;
    std::function<Document(Store&)> question;
  };
  const auto asked = std::make_shared<Asked>(Asked{std::move(request), std::move(answer), nullptr});
  Response reply = Attempt(asked->request, [&] {
    if (!visitor.maker) throw HTTPError(404, kNoPage);
    auto finding = Route({*visitor.maker, visitor.base, visitor.path, visitor.params});
    if (auto* found = std::get_if<Document>(&finding)) return MakeResponse(200, **found);
    asked->question = std::get<1>(std::move(finding));
    return Response{};
  });
  if (!asked->question) {
    asked->answer(std::move(reply));
    return;
  }
  workers.Do({[this, asked](Store& store) -> std::function<void()> {
                Response found;
                std::exception_ptr failure;
                try {
                  found = MakeResponse(200, *asked->question(store));
                } catch (...) {
                  failure = std::current_exception();
                }
                // Whoever has been given up meanwhile is in the log already.
                return [this, asked, failure, found = std::move(found)]() mutable {
                  asked->answer(Attempt(asked->request, [&] {
                    if (failure != nullptr) std::rethrow_exception(failure);
                    return std::move(found);
                  }));
                };
              },
              [this, asked] {
                asked->answer(
                    Refuse(asked->request, 503, kUnavailable, "the database takes too long"));
              }});
}

// What `reply` gives, or what to say when it fails.
Response Server::Attempt(const Request& request, const std::function<Response()>& reply) const {
  try {
    return reply();
  } catch (const HTTPError& refusal) {
    return Refuse(request, refusal.status, refusal.what());
  } catch (const DatabaseUnavailable& error) {
    return Refuse(request, 503, kUnavailable, error.what());
  } catch (const std::exception& error) {
    return Refuse(request, 500, StatusFactsOf(500).reason, error.what());
  }
}

Response Server::Refuse(const Request& request, int status, const std::string& reason,
                        const std::string& cause) const {
  Log(request, status, cause.empty() ? reason : cause);
  const ParsedRequest visitor = VisitorOf(request);
  Response reply =
      visitor.maker ? MakeResponse(status, *ComposeErrorPage(*visitor.maker, visitor.base,
                                                             StatusFactsOf(status).title, reason))
                    : MakeResponse(status, kPlainText, reason + "\n" + Addresses(visitor.base));
  if (status == 405) reply.fields.emplace_back("Allow", "GET, HEAD");
  if (status == 503) reply.fields.emplace_back("Retry-After", "5");
  return reply;
}

Server::ParsedRequest Server::VisitorOf(const Request& request) const {
  ParsedRequest visitor;
  visitor.base = options.baseURL;
  if (visitor.base.empty()) {
    const bool isHost = !request.host.empty() && PercentEncode(request.host, ":[]") == request.host;
    visitor.base = "http://" + (isHost ? request.host : ownHost);
  }
  std::string_view query = request.target;
  for (std::string_view path = Take(query, '?'); !path.empty();) {
    const auto segment = Take(path, '/');
    if (!segment.empty()) visitor.path.push_back(PercentDecode(segment, false));
  }
  while (!query.empty()) {
    std::string_view value = Take(query, '&');
    const auto name = Take(value, '=');
    visitor.params.emplace(PercentDecode(name, true), PercentDecode(value, true));
  }
  if (!visitor.path.empty()) visitor.maker = teleform::screens::MakerOfSlug(visitor.path.front());
  if (visitor.maker) {
    visitor.path.erase(visitor.path.begin());
  } else {
    visitor.maker = teleform::screens::MakerOfUserAgent(request.userAgent);
  }
  return visitor;
}

// Lets a worker sort in what other programs have written, again at once while there is more.
void Server::IndexPending() {
  if (isRefreshing.exchange(true)) return;
  workers.Do({[this](Store& store) -> std::function<void()> {
                bool hasMore = false;
                try {
                  hasMore = store.IndexPending();
                } catch (const std::exception&) {  // phones are told, and may read what is there
                }
                return [this, hasMore] {
                  isRefreshing = false;
                  if (hasMore) IndexPending();
                };
              },
              [this] { isRefreshing = false; }});
}

}  // namespace phonebook
