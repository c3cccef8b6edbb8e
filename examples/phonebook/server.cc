#include "phonebook/server.h"

#include <sys/socket.h>

#include <chrono>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>
#include <utility>

#include "phonebook/assets.h"
#include "text.h"

namespace phonebook {

namespace {

constexpr auto kPatience = std::chrono::seconds(5);
constexpr std::size_t kLargestRequest = 65536;
constexpr int kKeepAliveInSeconds = 2;
constexpr std::size_t kRequestsOfConnection = 1000;
constexpr std::size_t kLongestBody = 8192;
constexpr int kRetryAfterInSeconds = 5;

const char* TitleOf(int status) {
  switch (status) {
    case 404:
      return "Not found";
    case 405:
      return "Not allowed";
    case 413:
    case 414:
      return "Too large";
    case 500:
      return "Error";
    case 503:
      return "Please try again";
    default:
      return "Not understood";
  }
}

constexpr const char* kPlainText = "text/plain; charset=utf-8";

void Send(IPPhoneXML& document, httplib::Response& response) {
  std::string text;
  document.Render(text);
  response.set_content(text, document.GetContentType() + "; charset=utf-8");
}

// One line; what comes from outside can't end it.
void Log(const httplib::Request& request, int status, const std::string& reason) {
  constexpr const char* kReadable = "/ ?=&%:;,()[]'\"@!$*+";
  std::ostringstream line;
  line << "phonebook: " << status << " " << request.method << " "
       << PercentEncoded(request.target, kReadable) << " from "
       << (request.remote_addr.empty() ? "somebody" : request.remote_addr) << ": "
       << PercentEncoded(reason, kReadable) << "\n";
  std::cerr << line.str();
}

std::vector<std::string> PartsOf(const std::string& path) {
  std::vector<std::string> parts;
  std::istringstream stream(path);
  for (std::string part; std::getline(stream, part, '/');) {
    if (!part.empty()) parts.push_back(part);
  }
  return parts;
}

}  // namespace

std::string Addresses(const std::string& server) {
  std::string addresses;
  for (const auto& facts : AllMakers()) {
    addresses += server + "/" + std::string(facts.path) + "/\n";
  }
  return addresses;
}

Server::Server(Store& theStore, ServerOptions theOptions)
    : store(theStore), options(std::move(theOptions)), http(kLargestRequest, kPatience) {
  while (!options.baseURL.empty() && options.baseURL.back() == '/') options.baseURL.pop_back();
  http.new_task_queue = [this] {
    return new httplib::ThreadPool(static_cast<std::size_t>(options.threads));
  };
  http.set_write_timeout(kPatience);
  http.set_keep_alive_timeout(kKeepAliveInSeconds);
  http.set_keep_alive_max_count(kRequestsOfConnection);
  http.set_payload_max_length(kLongestBody);
  http.set_tcp_nodelay(true);
  http.set_default_headers({{"Cache-Control", "no-cache"}});
  // httplib's own options would let a second server take a part of the phones of the first.
  http.set_socket_options([this](int socket) {
    const int isOn = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &isOn, sizeof isOn);
    listening = socket;
  });

  ServePreview();
  http.Get(".*", [this](const auto& request, auto& response) { Serve(request, response); });
  const auto refuse = [this](const auto& request, auto& response) {
    response.set_header("Allow", "GET, HEAD");
    Refuse(request, response, 405, "The phone book is only read.");
  };
  http.Post(".*", refuse).Put(".*", refuse).Patch(".*", refuse).Delete(".*", refuse);
  http.Options(".*", refuse);
  http.set_error_handler([this](const auto& request, auto& response) {
    if (!response.body.empty()) return;
    Refuse(request, response, response.status, "The request was not understood.");
  });
}

std::string Server::Bind() {
  if (options.port == 0) {
    options.port = http.bind_to_any_port(options.address);
    if (options.port < 0) throw std::runtime_error("can't listen on " + options.address);
  } else if (!http.bind_to_port(options.address, options.port)) {
    throw std::runtime_error("can't listen on " + OwnHost());
  }
  // The distribution's httplib lets 5 connections wait: too few for phones that start together.
  listen(listening, SOMAXCONN);
  return OwnHost();
}

void Server::Run() {
  if (!http.listen_after_bind()) throw std::runtime_error("can't accept connections");
}

void Server::Stop() {
  // httplib forgets a stop that comes before it runs.
  while (!http.is_running()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  http.stop();
}

void Server::Serve(const httplib::Request& request, httplib::Response& response) {
  try {
    const Target target = TargetOf(request);
    if (!target.maker) {
      if (!IsPage(target.path)) throw Refusal(404, kNoPage);
      response.set_content(Addresses(BaseOf(request)), kPlainText);
      return;
    }
    Send(*Answer({*target.maker, BaseOf(request), target.path, request.params}, store), response);
  } catch (const Refusal& refusal) {
    Refuse(request, response, refusal.status, refusal.what());
  } catch (const Unavailable& error) {
    response.set_header("Retry-After", std::to_string(kRetryAfterInSeconds));
    Refuse(request, response, 503, "The phone book can't be read now.", error.what());
  } catch (const std::exception& error) {
    Refuse(request, response, 500, "The phone book made a mistake.", error.what());
  }
}

void Server::Refuse(const httplib::Request& request, httplib::Response& response, int status,
                    const std::string& reason, const std::string& cause) {
  Log(request, status, cause.empty() ? reason : cause);
  response.status = status;
  if (const auto maker = TargetOf(request).maker) {
    Send(*Apology(*maker, BaseOf(request), TitleOf(status), reason), response);
  } else {
    response.set_content(reason + "\n" + Addresses(BaseOf(request)), kPlainText);
  }
}

Server::Target Server::TargetOf(const httplib::Request& request) {
  Target target{std::nullopt, PartsOf(request.path)};
  if (!target.path.empty()) target.maker = MakerByPath(target.path.front());
  if (target.maker) {
    target.path.erase(target.path.begin());
  } else {
    target.maker = MakerByUserAgent(request.get_header_value("User-Agent"));
  }
  return target;
}

std::string Server::BaseOf(const httplib::Request& request) const {
  if (!options.baseURL.empty()) return options.baseURL;
  const std::string host = request.get_header_value("Host");
  const bool isHost = !host.empty() && PercentEncoded(host, ":[]") == host;
  return "http://" + (isHost ? host : OwnHost());
}

std::string Server::OwnHost() const {
  const bool isIPv6 = options.address.find(':') != options.address.npos;
  return (isIPv6 ? "[" + options.address + "]" : options.address) + ":" +
         std::to_string(options.port);
}

void Server::ServePreview() {
  const auto serve = [this](const char* path, const std::string& content, const char* type) {
    http.Get(path, [content, type](const auto&, auto& response) {
      response.set_header("Content-Security-Policy", "default-src 'self'; img-src data:");
      response.set_content(content, type);
    });
  };
  serve("/preview", kPreviewPage, "text/html; charset=utf-8");
  serve("/preview/preview.css", kPreviewStyle, "text/css; charset=utf-8");
  serve("/preview/preview.js", kPreviewScript, "text/javascript; charset=utf-8");

  nlohmann::json choices = {{"makers", nlohmann::json::array()},
                            {"pages", nlohmann::json::array()}};
  for (const auto& facts : AllMakers()) {
    choices["makers"].push_back({{"name", facts.name}, {"path", facts.path}});
  }
  for (const auto& page : PageNames()) {
    choices["pages"].push_back({{"title", page.title}, {"path", page.path}});
  }
  serve("/preview/choices.json", choices.dump(), "application/json");
}

}  // namespace phonebook
