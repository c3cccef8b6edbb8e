#include "phonebook/server.h"

#include <teleform/screens/escape.h>

#include <algorithm>
#include <exception>
#include <functional>
#include <utility>

#include "phonebook/log.h"
#include "phonebook/preview.h"

namespace phonebook {

namespace {

using teleform::screens::AllMakers;
using teleform::screens::FactsOf;
using teleform::screens::PercentEncode;

constexpr const char* kPlainText = "text/plain; charset=utf-8";
constexpr const char* kUnavailable = Marked("The phone book can't be read now.");

// The title and the default reason of an error page.
struct StatusFacts {
  int status;
  const char* title;
  const char* reason;
};
constexpr StatusFacts kStatuses[] = {
    {400, Marked("Not understood"), Marked("The request was not understood.")},
    {403, Marked("Not allowed"), Marked("Other sites can't read the phone book.")},
    {404, Marked("Not found"), kNoPage},
    {405, Marked("Not allowed"), Marked("The phone book is only read.")},
    {408, Marked("Too slow"), Marked("The request took too long to arrive.")},
    {413, Marked("Too large"), Marked("The request is too large.")},
    {414, Marked("Too long"), Marked("The address is too long.")},
    {421, Marked("Not found"), Marked("The phone book has another address.")},
    {431, Marked("Too large"), Marked("The request's header is too large.")},
    {500, Marked("Error"), Marked("The phone book made a mistake.")},
    {501, Marked("Not understood"), Marked("The coding of the request is unknown.")},
    {503, Marked("Please try again"), kUnavailable},
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
  Response response =
      MakeResponse(status, document.GetContentType() + "; charset=utf-8", std::move(text));
  if (document.GetContentType() == "text/html") {
    response.fields.emplace_back("Content-Security-Policy",
                                 "default-src 'none'; frame-ancestors 'none'");
  }
  return response;
}

// Percent-encodes what the log can't hold, and leaves room for what follows.
std::string Readable(const std::string& text, std::size_t maxSize) {
  std::string readable = PercentEncode(text, "/ ?=&%:;,()[]'\"@!$*+");
  if (readable.size() > maxSize) readable.replace(maxSize, readable.npos, "...");
  return readable;
}

void Log(const Request& request, int status, const std::string& reason) {
  const bool isOwnFault = status == 500 || status == 503;
  LogRequest(isOwnFault ? spdlog::level::err : spdlog::level::warn, request.client,
             std::to_string(status) + " " + Readable(request.method, 20) + " " +
                 Readable(request.target, 500) + " from " + request.address + ": " +
                 Readable(reason, 300));
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
      preview(options.isPreviewOff ? std::map<std::string, Response>() : MakePreview()),
      http({[this](Request request, ResponseCallback done) {
              Serve(std::move(request), std::move(done));
            },
            [this](const Request& request, int status, const std::string& cause) {
              metrics.Count({}, status, {});
              return Refuse(request, status, StatusFactsOf(status).reason, cause);
            }},
           {options.maxConnections, TrustedProxies(options.proxies)}),
      workers(database, options.databaseConnections) {
  http.CallEvery(std::chrono::milliseconds(20), [this] { workers.ExpireOverdue(); });
  http.CallEvery(std::chrono::milliseconds(300), [this] { Maintain(); });
  http.CallEvery(std::chrono::seconds(1), [this] {
    LogOmitted();
    served = Metrics::Clock::now();
  });
}

std::string Server::Listen() {
  options.port = http.Listen(options.address, options.port);
  // No client can call the wildcard address.
  const std::string& given = options.address;
  const std::string address = given == "0.0.0.0" ? "127.0.0.1" : given == "::" ? "::1" : given;
  const std::string name = address.find(':') != address.npos ? "[" + address + "]" : address;
  ownHost =
      (options.hosts.empty() ? name : options.hosts.front()) + ":" + std::to_string(options.port);
  return ownHost;
}

bool Server::Run() {
  constexpr std::chrono::milliseconds kStopTimeout(1500);
  http.Run(WorkerPool::kTimeout + std::chrono::milliseconds(500));
  return workers.Stop(kStopTimeout);
}

void Server::Serve(Request request, ResponseCallback respond) {
  RequestLabels labels;
  std::variant<Response, Task> result;
  const auto begin = Metrics::Clock::now();
  try {
    result = Dispatch(request, labels);
  } catch (...) {
    result = Fail(request, std::current_exception());
  }
  auto done = [this, labels, begin, respond = std::move(respond)](Response response) {
    metrics.Count(labels, response.status, Metrics::Clock::now() - begin);
    respond(std::move(response));
  };
  if (auto* response = std::get_if<Response>(&result)) {
    done(std::move(*response));
    return;
  }
  Task& task = std::get<Task>(result);
  task.client = request.client;
  task.done = [this, request = std::move(request), done = std::move(done)](
                  Response response, const std::exception_ptr& error) {
    done(error ? Fail(request, error) : std::move(response));
  };
  workers.Submit(std::move(task));
}

// Returns the response, or the task that it takes.
std::variant<Response, Task> Server::Dispatch(const Request& request, RequestLabels& labels) const {
  if (request.method != "GET" && request.method != "HEAD") {
    throw HTTPError(405, StatusFactsOf(405).reason);
  }
  ParsedRequest parsed = Parse(request);
  if (!parsed.target) throw HTTPError(400, StatusFactsOf(400).reason);
  if (!parsed.isOwnHost) throw HTTPError(421, StatusFactsOf(421).reason);
  const auto asset = preview.find(parsed.target->path);
  if (asset != preview.end()) return asset->second;
  if (request.isCrossSite) throw HTTPError(403, StatusFactsOf(403).reason);
  if (parsed.maker) labels.maker = FactsOf(*parsed.maker).slug;
  const Page* const found = FindPage(parsed.target->segments);
  if (found == nullptr) throw HTTPError(404, kNoPage);
  labels.page = found->path.empty() ? std::string_view("home") : found->path;
  if (!parsed.maker) return MakeResponse(200, kPlainText, Addresses(parsed.base));
  auto page =
      found->compose({*parsed.maker, std::move(parsed.base), std::move(parsed.target->segments),
                      std::move(parsed.target->params), &options.pages});
  if (auto* document = std::get_if<Document>(&page)) return MakeResponse(200, **document);
  Task task;
  task.run = [compose = std::get<std::function<Document(Store&)>>(std::move(page))](Store& store) {
    return MakeResponse(200, *compose(store));
  };
  task.isLong = found->isSearch;
  return task;
}

// Returns the error page of an exception, and logs it.
Response Server::Fail(const Request& request, const std::exception_ptr& error) const {
  try {
    std::rethrow_exception(error);
  } catch (const HTTPError& refusal) {
    return Refuse(request, refusal.status, refusal.what());
  } catch (const DatabaseUnavailable& failure) {
    return Refuse(request, 503, kUnavailable, failure.what());
  } catch (const std::exception& failure) {
    return Refuse(request, 500, StatusFactsOf(500).reason, failure.what());
  }
}

// Returns an error page, and logs it.
// @param cause what the log tells instead of the reason.
Response Server::Refuse(const Request& request, int status, const std::string& reason,
                        const std::string& cause) const {
  Log(request, status, cause.empty() ? reason : cause);
  const ParsedRequest parsed = Parse(request);
  Response response =
      parsed.maker ? MakeResponse(status, *ComposeErrorPage(
                                              {*parsed.maker, parsed.base, {}, {}, &options.pages},
                                              StatusFactsOf(status).title, reason))
                   : MakeResponse(status, kPlainText, reason + "\n" + Addresses(parsed.base));
  if (status == 405) response.fields.emplace_back("Allow", "GET, HEAD");
  if (status == 503) response.fields.emplace_back("Retry-After", "5");
  return response;
}

Server::ParsedRequest Server::Parse(const Request& request) const {
  ParsedRequest parsed{{}, options.baseURL, true, ParseRequestTarget(request.target)};
  const bool isAbsolute = parsed.target && !parsed.target->host.empty();
  const std::string& host = isAbsolute ? parsed.target->host : request.host;
  parsed.isOwnHost = IsOwnHost(host);
  if (parsed.base.empty()) {
    parsed.base =
        std::string(request.scheme) + "://" + (parsed.isOwnHost && !host.empty() ? host : ownHost);
  }
  if (parsed.target && !parsed.target->segments.empty()) {
    auto& segments = parsed.target->segments;
    parsed.maker = teleform::screens::MakerOfSlug(segments.front());
    if (parsed.maker) segments.erase(segments.begin());
  }
  if (!parsed.maker) parsed.maker = teleform::screens::MakerOfUserAgent(request.userAgent);
  return parsed;
}

// Whether the server answers requests to a host. HTTP/1.0 doesn't always name one.
bool Server::IsOwnHost(const std::string& host) const {
  const auto& hosts = options.hosts;
  return hosts.empty() || host.empty() ||
         std::find(hosts.begin(), hosts.end(), HostNameOf(host)) != hosts.end();
}

// Looks whether the database answers, and now and then how many contacts it has; indexes what other
// programs have written, and goes on while contacts are pending.
void Server::Maintain() {
  constexpr std::chrono::seconds kCountInterval(15);  // as counting a million takes a while
  if (isMaintaining.exchange(true)) return;
  const auto now = Metrics::Clock::now();
  const bool isCounting = now >= nextCount;
  if (isCounting) nextCount = now + kCountInterval;
  isAnswering = false;
  workers.Submit({[this, isCounting](Store& store) {
                    std::optional<ContactCounts> counted;
                    if (isCounting) counted = store.CountContacts();
                    if (!isCounting) store.FindContact(0);
                    std::unique_lock lock(mutex);
                    databaseFailure.clear();
                    counts = counted.value_or(counts);
                    lock.unlock();
                    isAnswering = true;
                    hasPending = store.IndexPending();
                    return Response{};
                  },
                  [this](const Response&, const std::exception_ptr& error) {
                    const std::string reason = error ? ReasonOf(error) : "";
                    if (std::exchange(indexingFailure, reason) != reason && error) {
                      phonebook::Log(spdlog::level::err,
                                     "changed contacts are not indexed: " + reason);
                    }
                    std::unique_lock lock(mutex);
                    if (!isAnswering) databaseFailure = reason;
                    lock.unlock();
                    isMaintaining = false;
                    if (hasPending.exchange(false)) Maintain();
                  }});
}

bool Server::IsServing() const {
  constexpr std::chrono::seconds kTimeout(5);
  return Metrics::Clock::now() - served.load() < kTimeout;
}

std::string Server::Failure() const {
  if (!IsServing()) return "the serving thread hangs";
  const std::lock_guard lock(mutex);
  return databaseFailure.empty() ? "" : "the database: " + databaseFailure;
}

std::string Server::MetricsText() {
  std::unique_lock lock(mutex);
  const std::vector<Metrics::Gauge> gauges = {
      {"phonebook_connections", "Open connections of clients.",
       static_cast<double>(http.Connections())},
      {"phonebook_queued_requests", "Requests that wait for a connection to the database.",
       static_cast<double>(workers.Queued())},
      {"phonebook_database_up", "Whether the database answers.", databaseFailure.empty() ? 1. : 0.},
      {"phonebook_contacts", "Contacts.", static_cast<double>(counts.all)},
      {"phonebook_contacts_not_indexed", "Contacts that are not indexed yet.",
       static_cast<double>(counts.pending)}};
  lock.unlock();
  return metrics.Text(gauges);
}

}  // namespace phonebook
