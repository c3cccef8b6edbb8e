// The limits of HTTP, and how invalid requests are refused.
#include <gtest/gtest.h>

#include <boost/asio/ip/tcp.hpp>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "phonebook/tests/parsed_page.h"
#include "phonebook/tests/phone_book.h"

namespace phonebook::tests {

namespace {

using boost::asio::ip::tcp;

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
  const std::string length = "Content-Length: " + std::to_string(inner.size()) + "\r\n";
  std::string ranges = "Range: bytes=0-";
  for (int i = 0; i < 2700; ++i) ranges += ",0-";
  const std::string tooLong(65, 'x');
  std::vector<Case> cases = {
      {"GET /" + end + "\r\n", {"200"}, "/yealink/\n"},
      {"GET /snom/" + end + ranges + "\r\n\r\n", {"200"}},
      {"GET /snom/" + end + "Accept-Encoding: br, gzip\r\n\r\n", {"200"}},
      {"GET /snom/" + end + length + "\r\n" + inner, {"200"}},
      {"GET /snom/ HTTP/1.1\r\n" + host + "\r\nGET /snom/" + end + "\r\n", {"200", "200"}},
      {"GET /snom/" + end + length + "Transfer-Encoding: chunked\r\n\r\n0\r\n\r\n" + inner,
       {"400"}},
      {"GET /snom/" + end + "Content-Length: 1\r\n" + length + "\r\n" + inner, {"400"}},
      {"GET /snom/" + end + "Transfer-Encoding: identity\r\n\r\n" + inner, {"400"}},
      {"GET /snom/" + end + "Transfer-Encoding: chunked\r\n\r\n0\r\n" + std::string(90000, 'x'),
       {"413"},
       "too large"},
      {"GET /snom/ HTTP/1.0\r\nConnection: keep-alive\r\n\r\nGET http://b/snom/" + end + "\r\n",
       {"200", "200"},
       "\r\nConnection: keep-alive\r\n"},
      {"GET http://b:80/snom/" + end + "\r\n", {"200"}, "http://b:80/snom/directory"},
      {"GET *" + end + "\r\n", {"400"}, "not understood"},
      {"rubbish\r\nrubbish\r\nrubbish\r\n\r\n", {"400"}},
      {std::string("\x16\x03\x01\x02\x00\x01", 6), {"400"}},
      {"GET /snom/" + std::string(9000, 'x') + end + "\r\n", {"414"}, "too long"},
      {"GET /snom/" + std::string(90000, 'x') + end + "\r\n", {"414"}, "too long"},
      {"GET /snom/" + end + "X: " + std::string(90000, 'x') + "\r\n\r\n", {"431"}, "too large"},
      {"GET /snom/" + end + "Content-Length: 9000\r\n\r\n" + std::string(9000, 'x'),
       {"413"},
       "too large"},
      {"GET /snom/%0a%0dfake" + end + "\r\n", {"404"}, "no such page"},
      {"GET /snom/../../etc/passwd" + end + "\r\n", {"404"}, "no such page"},
      {"GET /snom/\x1b[31m" + end + "\r\n", {"400"}},
      {"GET /snom/contact/999999" + end + "\r\n", {"404"}, "not in the phone book"},
      {"GET /snom/contact/99999999999999999999" + end + "\r\n", {"404"}, "not in the phone book"},
      {"GET /snom/dial/x" + end + "\r\n", {"404"}, "not in the phone book"},
      {"GET /snom/directory?after=x" + end + "\r\n", {"400"}, "begins after"},
      {"GET /snom/directory?after=0-%E9%BE%A5" + end + "\r\n", {"404"}, "beyond the last"},
      {"GET /yealink/search?after=%E9%BE%A5" + end + "\r\n", {"404"}, "beyond the last"},
      {"GET /snom/search?name=" + tooLong + end + "\r\n", {"400"}, "64 characters"},
      {"GET /snom/search?name=1+2+3+4+5+6+7" + end + "\r\n", {"400"}, "six words"},
      {"GET /snom/search?name=%ff" + end + "\r\n", {"400"}, "UTF-8"},
      {"GET /snom/search?letter=a%00b" + end + "\r\n", {"400"}, "UTF-8"},
  };
  for (const char* method :
       {"POST", "PUT", "DELETE", "OPTIONS", "TRACE", "PROPFIND", "CONNECT", "UNKNOWN"}) {
    cases.push_back({method + std::string(" /snom/") + end + "\r\n", {"405"}, "only read"});
  }
  for (const std::string& page : kPages) {
    const std::string beyond = "GET /snom/" + page.substr(0, page.find('?')) + "/2";
    cases.push_back({beyond + end + "\r\n", {"404"}, "no such page"});
  }
  for (const auto& [request, statuses, said] : cases) {
    const auto before = ContentOf(server->log).size();
    const std::string answers = server->Exchange(request);
    Texts found;
    for (auto at = answers.find("HTTP/1.1 "); at != answers.npos;
         at = answers.find("HTTP/1.1 ", at + 1)) {
      found.push_back(answers.substr(at + 9, 3));
    }
    EXPECT_EQ(found, statuses) << request;
    EXPECT_LT(answers.size(), 3000U);
    EXPECT_NE(answers.find(said), std::string::npos) << answers;
    EXPECT_NE(answers.find("\r\nX-Content-Type-Options: nosniff\r\n"), std::string::npos);
    EXPECT_EQ(answers.find("\r\nAllow: GET, HEAD\r\n") != answers.npos, statuses[0] == "405");
    const std::string line = ContentOf(server->log).substr(before);
    if (statuses[0] == "200") {
      EXPECT_EQ(line, "");
    } else {
      EXPECT_EQ(line.find("phonebook: " + statuses[0]), 0U) << line;
      EXPECT_NE(line.find(" from 127.0.0.1: "), std::string::npos) << line;
      EXPECT_EQ(line.find('\n'), line.size() - 1) << line;
    }
  }
  const HTTPResponse head = ParseResponse(server->Exchange("HEAD /snom/" + end + "\r\n"));
  EXPECT_EQ(head.status, 200);
  EXPECT_EQ(head.text, "");
  EXPECT_EQ(head.header.find("Content-Length: 0"), std::string::npos);
  EXPECT_EQ(server->Get("/nowhere").status, 404);
  const std::string strange = "GET / HTTP/1.0\r\nHost: a\"<b\r\nUser-Agent: snom\r\n\r\n";
  EXPECT_EQ(ParsedPage(ParseResponse(server->Exchange(strange)).text).Addresses().front(),
            server->base + "/snom/directory");
  EXPECT_NE(server->Get("/preview").header.find("frame-ancestors"), std::string::npos);
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
  EXPECT_FALSE(server->IsLogged("408"));  // yet
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
}  // namespace

}  // namespace phonebook::tests
