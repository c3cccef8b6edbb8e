// The limits of HTTP, and how invalid requests are refused.
#include <gtest/gtest.h>

#include <boost/asio/ip/tcp.hpp>
#include <list>
#include <memory>
#include <optional>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "phonebook/http_server.h"
#include "phonebook/tests/phone_book.h"

namespace phonebook::tests {

namespace {

using boost::asio::ip::tcp;

TEST_P(PhoneBookOnSQLite, BelievesTrustedProxiesAlone) {
  const std::vector<std::pair<std::string, std::string>> clients = {
      {"192.0.2.7", "192.0.2.7"},
      {"198.51.100.1, 192.0.2.8,10.1.2.3 ", "192.0.2.8"},
      {"192.0.2.9:80, 2001:db8::1", "2001:db8::1"},
      {"[2001:db8::2]:80, 10.0.0.1:80", "2001:db8::2"},
      {"192.0.2.9, unknown, 10.0.0.1", "127.0.0.1"},
      {"192.0.2.10\r\nX-Forwarded-For: 192.0.2.11", "192.0.2.11"},
      {"10.0.0.1", "127.0.0.1"}};
  for (const bool isTrusted : {true, false}) {
    const auto server = Serve(
        {"--trusted-proxy", isTrusted ? "127.0.0.1" : "::1", "--trusted-proxy", "10.0.0.0/8"});
    for (const auto& [forwarded, client] : clients) {
      const std::string target = "/none" + client;
      const std::string text = server->Exchange(
          "GET " + target +
          " HTTP/1.0\r\nHost: a\r\nX-Forwarded-Proto: https\r\nX-Forwarded-For: " + forwarded +
          "\r\n\r\n");
      EXPECT_NE(text.find(isTrusted ? "\nhttps://a/snom/" : "\nhttp://a/snom/"), text.npos) << text;
      const std::string logged = " from " + (isTrusted ? client : "127.0.0.1") + ": ";
      EXPECT_TRUE(Eventually([&] { return server->IsLogged(target + logged); })) << forwarded;
    }
  }
}

TEST_P(PhoneBookOnSQLite, RefusesInvalidRequests) {
  const auto server = Serve();
  const std::string host = "Host: a\r\n";
  const std::string end = " HTTP/1.1\r\n" + host + "Connection: close\r\n";
  struct Case {
    std::string request;
    Texts statuses;  // of the answers
    const char* said = "";
  };
  const std::string inner = "GET /aastra/ HTTP/1.1\r\nHost: evil\r\n\r\n";
  const std::string chunked = "Transfer-Encoding: chunked\r\n";
  const std::string crossSite = "Sec-Fetch-Site: cross-site\r\n\r\n";
  const std::string length = "Content-Length: " + std::to_string(inner.size()) + "\r\n";
  std::string ranges = "Range: bytes=0-";
  for (int i = 0; i < 2700; ++i) ranges += ",0-";
  std::vector<Case> cases = {
      {"GET /" + end + "\r\n", {"200"}, "/yealink/\n"},
      {"GET /snom/" + end + ranges + "\r\n\r\n", {"200"}},
      {"GET /snom/" + end + length + "\r\n" + inner, {"200"}},
      {"GET /snom/ HTTP/1.1\r\n" + host + "\r\nGET /snom/" + end + "\r\n", {"200", "200"}},
      {"GET /snom/" + end + length + chunked + "\r\n0\r\n\r\n" + inner, {"400"}},
      {"GET /snom/" + end + "Content-Length: 1\r\n" + length + "\r\n" + inner, {"400"}},
      {"GET /snom/" + end + "Transfer-Encoding: gzip, chunked\r\n\r\n" + inner, {"501"}, "coding"},
      {"GET /snom/" + end + "Transfer-Encoding: chunked, chunked\r\n\r\n0\r\n\r\n" + inner,
       {"400"}},
      {"GET /snom/" + end + chunked + chunked + "\r\n0\r\n\r\n" + inner, {"400"}},
      {"GET /snom/ HTTP/1.0\r\n" + chunked + "\r\n0\r\n\r\n" + inner, {"400"}},
      {"GET /snom/" + end + chunked + "\r\n1\r\nx\r\n0\r\n\r\n" + inner, {"200"}},
      {"GET /snom/ HTTP/1.1\r\n" + host + host + "\r\n", {"400"}},
      {"GET /snom/ HTTP/1.1\r\n\r\n", {"400"}},
      {"GET / HTTP/1.0\r\nHost: a\"<b\r\n\r\n", {"400"}, "http://127.0.0.1"},
      {"\r\nGET /snom/ HTTP/1.1\r\n" + host + "Content-Length: 1\r\n\r\nx\r\n\r\nGET /snom/" + end +
           "\r\n",
       {"200", "200"}},
      {"GET /snom/ HTTP/1.1\r\n" + host + "Expect: 100-continue\r\nContent-Length: 1\r\n\r\n",
       {"200"}},
      {"HEAD /snom/ HTTP/1.1\r\n" + host + "\r\nrubbish\r\n\r\n",
       {"200", "400"},
       "\r\n\r\nHTTP/1.1 400"},
      {"GET /snom/directory" + end + crossSite, {"403"}, "Other sites"},
      {"GET /preview" + end + crossSite, {"200"}, "frame-ancestors"},
      {"GET /snom/" + end + chunked + "\r\n0\r\n" + std::string(90000, 'x'), {"413"}, "too large"},
      {"GET /snom/ HTTP/1.0\r\nConnection: keep-alive\r\n\r\nGET http://b/snom/" + end + "\r\n",
       {"200", "200"},
       "\r\nConnection: keep-alive\r\n"},
      {"GET http://b:80/snom/" + end + "\r\n", {"200"}, "http://b:80/snom/directory"},
      {"GET *" + end + "\r\n", {"400"}, "not understood"},
      {std::string("\x16\x03\x01\x02\x00\x01", 6), {"400"}},
      {"GET /snom/" + std::string(9000, 'x') + end + "\r\n", {"414"}, "too long"},
      {"GET /snom/" + std::string(90000, 'x') + end + "\r\n", {"414"}, "too long"},
      {"GET /snom/" + end + "X: " + std::string(90000, 'x') + "\r\n\r\n", {"431"}, "too large"},
      {"GET /snom/" + end + "Content-Length: 9000\r\n\r\n" + std::string(9000, 'x'),
       {"413"},
       "too large"},
      {"GET /snom/%0a%0dfake" + end + "\r\n", {"404"}, "no such page"},
      {"GET /snom/\x1b[31m" + end + "\r\n", {"400"}},
      {"GET /snom/contact/999999" + end + "\r\n", {"404"}, "not in the phone book"},
      {"GET /snom/contact/99999999999999999999" + end + "\r\n", {"404"}, "not in the phone book"},
      {"GET /snom/directory?after=x" + end + "\r\n", {"400"}, "begins after"},
      {"GET /snom/directory?after=1-%00" + end + "\r\n", {"400"}, "begins after"},
      {"GET /yealink/search?after=%E9%BE%A5" + end + "\r\n", {"404"}, "beyond the last"},
      {"GET /snom/search?name=" + std::string(65, 'x') + end + "\r\n", {"400"}, "64 characters"},
      {"GET /snom/search?name=1+2+3+4+5+6+7" + end + "\r\n", {"400"}, "six words"},
      {"GET /snom/search?letter=a%00b" + end + "\r\n", {"400"}, "UTF-8"},
  };
  for (const char* method : {"POST", "OPTIONS", "TRACE", "CONNECT", "UNKNOWN"}) {
    cases.push_back({method + std::string(" /snom/") + end + "\r\n", {"405"}, "only read"});
  }
  for (const char* page : {"directory/2", "contact/1/2", "status/2", "/2"}) {
    cases.push_back({"GET /snom/" + (page + end) + "\r\n", {"404"}, "no such page"});
  }
  const std::regex date(R"(\r\nDate: \w{3}, \d\d \w{3} \d{4} \d\d:\d\d:\d\d GMT\r\n)");
  std::string lines;
  for (const auto& [request, statuses, said] : cases) {
    const std::string answers = server->Exchange(request);
    Texts found;
    for (auto at = answers.find("HTTP/1.1 "); at != answers.npos;
         at = answers.find("HTTP/1.1 ", at + 1)) {
      found.push_back(answers.substr(at + 9, 3));
    }
    EXPECT_EQ(found, statuses) << request;
    EXPECT_LT(answers.size(), 4000U);
    EXPECT_EQ(answers.find("\r\nContent-Length: 0\r\n"), std::string::npos) << request;
    EXPECT_TRUE(std::regex_search(answers, date)) << answers;
    EXPECT_NE(answers.find(said), std::string::npos) << answers;
    EXPECT_NE(answers.find("\r\nX-Content-Type-Options: nosniff\r\n"), std::string::npos);
    EXPECT_EQ(answers.find("\r\nAllow: GET, HEAD\r\n") != answers.npos, statuses[0] == "405");
    if (statuses.back() != "200") lines += statuses.back() + "\n";
  }
  EXPECT_EQ(server->Stop(), 0);
  std::istringstream log(ContentOf(server->log));
  std::string logged;
  const std::regex refusal(R"([-0-9]+ [0-9:]+\.[0-9]+ warning: ([0-9]+) .* from 127\.0\.0\.1: .+)");
  std::smatch status;
  for (std::string line; std::getline(log, line);) {
    EXPECT_LT(line.size(), 1024U);
    if (std::regex_match(line, status, refusal)) logged += status.str(1) + "\n";
  }
  EXPECT_EQ(logged, lines);
}

TEST_P(PhoneBookOnSQLite, AnswersOnlyToItsHosts) {
  const auto server = Serve({"--host", "Phones.example", "--host", "0:0::1"});
  EXPECT_EQ(server->base.find("http://phones.example:"), 0U);
  const std::vector<std::tuple<std::string, int, int>> cases = {{"phones.EXAMPLE.:80", 200, 200},
                                                                {"[::1]", 200, 200},
                                                                {"localhost:80", 421, 200},
                                                                {"evil.phones.example", 421, 421}};
  for (const auto& [host, status, monitored] : cases) {
    EXPECT_EQ(server->GetAsMonitor("/metrics", host).status, monitored) << host;
    const auto response =
        ParseResponse(server->Exchange("GET /snom/ HTTP/1.0\r\nHost: " + host + "\r\n\r\n"));
    EXPECT_EQ(response.status, status) << host;
    EXPECT_NE(response.text.find(status == 200 ? "http://" + host : server->base),
              std::string::npos);
  }
}

TEST_P(PhoneBookOnSQLite, ServesBesideIdleAndDrippingConnections) {
  const auto server = Serve();
  std::list<std::unique_ptr<tcp::iostream>> idle, dripping;
  for (int i = 0; i < 300; ++i) {
    idle.push_back(server->Connect());
    dripping.push_back(server->Connect());
    *dripping.back() << "GET /snom/" << std::flush;
  }
  EXPECT_EQ(server->Get("/snom/directory").status, 200);
  for (auto& stream : dripping) {
    EXPECT_EQ(ParseResponse(ReadAll(*stream)).status, 408);
  }
  for (auto& stream : idle) {  // and don't mind
    std::string line;
    *stream << "GET /snom/ HTTP/1.1\r\nHost: a\r\n\r\n" << std::flush;
    std::getline(*stream, line);
    EXPECT_EQ(line, "HTTP/1.1 200 OK\r");
  }
}

// A server in this process, whose pages are all `page`.
class HTTPServerInThread : public testing::Test {
 protected:
  void Start(const HTTPLimits& limits) {
    if (thread.joinable()) TearDown();
    server.emplace(HTTPHandlers{[this](const Request&, const ResponseCallback& done) {
                                  done({200, "text/plain", page});
                                },
                                [](const Request&, int status, const std::string& cause) {
                                  return Response{status, "text/plain", cause};
                                }},
                   limits);
    port = std::to_string(server->Listen("127.0.0.1", 0));
    thread = std::thread([this] { server->Run({}); });
  }
  void TearDown() override {
    server->Stop();
    thread.join();
  }
  int Get() const {
    tcp::iostream stream("127.0.0.1", port);
    stream.expires_after(std::chrono::seconds(30));
    stream << "GET / HTTP/1.0\r\n\r\n" << std::flush;
    return ParseResponse(ReadAll(stream)).status;
  }

  std::string page = std::string(1000, 'x');
  std::optional<HTTPServer> server;
  std::string port;
  std::thread thread;
};

TEST_F(HTTPServerInThread, MakesRoomWhenItIsFull) {
  for (const bool isOldestReplaced : {false, true}) {
    HTTPLimits limits;
    limits.maxConnections = 2;
    limits.idleTimeoutWhenFull = {};
    limits.requestTimeout = std::chrono::hours(1);
    limits.isOldestReplaced = isOldestReplaced;
    Start(limits);
    std::list<tcp::iostream> others;
    for (int i = 0; i < 4; ++i) {
      others.emplace_back("127.0.0.1", port) << (isOldestReplaced ? "GET /" : "") << std::flush;
    }
    EXPECT_EQ(Get(), 200) << isOldestReplaced;
  }
}

TEST_F(HTTPServerInThread, BoundsUnsentResponses) {
  HTTPLimits limits;
  limits.maxUnsent = 3000;
  limits.maxSmall = 900;
  Start(limits);
  EXPECT_EQ(Get(), 200);
  EXPECT_EQ(Get(), 200);  // the first one is sent
  page.resize(2000);
  EXPECT_EQ(Get(), 503);
  page.clear();
  EXPECT_EQ(Get(), 200);
}

}  // namespace

}  // namespace phonebook::tests
