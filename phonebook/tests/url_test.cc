// Request targets, hosts and base URLs.
#include "phonebook/url.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace phonebook {

namespace {

TEST(URL, ParsesRequestTargets) {
  const std::map<std::string, RequestTarget> cases = {
      {"/snom/dire%63tory", {"", "/snom/dire%63tory", {"snom", "directory"}, {}}},
      {"//snom//a/", {"", "//snom//a/", {"snom", "a"}, {}}},
      {"/../a", {"", "/../a", {"..", "a"}, {}}},
      {"/a+b%00c", {"", "/a+b%00c", {std::string("a+b\0c", 5)}, {}}},
      {"/s?na%6de=a%2bb+c&name=d", {"", "/s", {"s"}, {{"name", "a+b c"}}}},
      {"/s?x;y&z=?/", {"", "/s", {"s"}, {{"x;y", ""}, {"z", "?/"}}}},
      {"/s?name=100%&b=%a", {"", "/s", {"s"}, {{"name", "100%"}, {"b", "%a"}}}},
      {"/s?name=\xc3\xa5\"[#]", {"", "/s", {"s"}, {{"name", "\xc3\xa5\"[#]"}}}},
      {"http://a:1/snom?b=c", {"a:1", "/snom", {"snom"}, {{"b", "c"}}}},
      {"HTTPS://[::1]?b=c", {"[::1]", "", {}, {{"b", "c"}}}},
  };
  for (const auto& [target, expected] : cases) {
    const auto parsed = ParseRequestTarget(target);
    ASSERT_TRUE(parsed) << target;
    EXPECT_EQ(parsed->host, expected.host) << target;
    EXPECT_EQ(parsed->path, expected.path) << target;
    EXPECT_EQ(parsed->segments, expected.segments) << target;
    EXPECT_EQ(parsed->params, expected.params) << target;
  }
  for (const char* target :
       {"", "*", "snom/", "a:80", "ftp://a/", "http:///snom", "http://a:b/", "http://a_b/"}) {
    EXPECT_FALSE(ParseRequestTarget(target)) << target;
  }
}

TEST(URL, TellsHostNames) {
  const std::string longest(63, 'a');
  const std::map<std::string, std::string> expected = {
      {"Phone-Book.EXAMPLE.:8080", "phone-book.example"},
      {"4a.5b", "4a.5b"},
      {"[0:0::1]:80", "[::1]"},
      {"a:", "a"},
      {longest, longest},
  };
  for (const auto& [host, name] : expected) EXPECT_EQ(HostNameOf(host), name);
  for (const char* host :
       {"",      ":80",     "a/b",     "a?b",   "a#b",       "a@b",      "a\"<b", "a b",
        "a:b",   "[v1.x]",  "a:65536", "a:1:2", "a:000080",  "[::1",     "[",     "[]",
        "[::g]", "[::1]80", "::1",     "]:[",   "\xc3\xa5",  "a_b",      "a..b",  ".",
        ".a",    "-a",      "a-.b",    "1.2.3", "1.2.3.256", "1.2.3.4.5"}) {
    EXPECT_FALSE(HostNameOf(host)) << host;
  }
  EXPECT_FALSE(HostNameOf(longest + "a"));
  EXPECT_FALSE(HostNameOf(longest + "." + longest + "." + longest + "." + longest));
}

}  // namespace

}  // namespace phonebook
