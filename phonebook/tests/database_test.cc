// A database that is unavailable, hangs or is lost.
#include <gtest/gtest.h>

#include <boost/asio/ip/tcp.hpp>
#include <filesystem>
#include <future>
#include <memory>
#include <vector>

#include "phonebook/tests/parsed_page.h"
#include "phonebook/tests/phone_book.h"

namespace phonebook::tests {

namespace {

using boost::asio::ip::tcp;

TEST_P(PhoneBook, RecoversWithTheDatabase) {
  const auto server = Serve();
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(server->Get("/aastra/directory").status, 200);
    RemoveDatabase();
    for (const char* page :
         {"/aastra/directory", "/cisco/search", "/snom/contact/1", "/yealink/message"}) {
      HTTPResponse response;  // soon, as a connection to SQLite looks after its file now and then
      EXPECT_TRUE(Eventually([&] { return (response = server->Get(page)).status == 503; })) << page;
      EXPECT_NE(response.header.find("\r\nRetry-After: 5\r\n"), std::string::npos);
      EXPECT_EQ(ParsedPage(response.text).First("/*/Title"), "Please try again");
    }
    EXPECT_EQ(server->Get("/aastra/").status, 200);  // needs no database
    EXPECT_TRUE(server->IsLogged("503 GET /snom/contact/1"));
    RestoreDatabase();
  }
  for (int round = 0; round < 2; ++round) {  // the second on connections that have died meanwhile
    std::vector<std::future<int>> answers(32);
    for (auto& answer : answers) {
      answer =
          std::async(std::launch::async, [&] { return server->Get("/snom/directory").status; });
    }
    for (auto& answer : answers) EXPECT_EQ(answer.get(), 200);
    RemoveDatabase();
    RestoreDatabase();
  }
  if (!isPostgreSQL) fs::resize_file(database, 0);  // as to copy another file over it begins
  EXPECT_GT(server->Get("/snom/directory").status, 0);
}

TEST_P(PhoneBookOnPostgreSQL, TimesOutWhenTheDatabaseHangs) {
  for (const bool isStopped : {false, true}) {
    const auto server = Serve();
    EXPECT_EQ(server->Get("/aastra/directory").status, 200);
    ASSERT_TRUE(cluster().Command("freeze")) << cluster().reason;
    std::vector<std::unique_ptr<tcp::iostream>> asked(600);  // more than wait in the queue
    for (auto& stream : asked) {
      stream = server->Connect();
      *stream << "GET /snom/directory HTTP/1.0\r\n\r\n" << std::flush;
    }
    EXPECT_EQ(server->Get("/aastra/").status, 200);
    EXPECT_TRUE(!isStopped || server->Stop() == 0);
    for (auto& stream : asked) EXPECT_EQ(ParseResponse(ReadAll(*stream)).status, 503);
    ASSERT_TRUE(cluster().Command("thaw")) << cluster().reason;
    EXPECT_TRUE(isStopped ||
                Eventually([&] { return server->Get("/snom/directory").status == 200; }));
  }
}
}  // namespace

}  // namespace phonebook::tests
