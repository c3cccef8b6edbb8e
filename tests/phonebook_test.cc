// The phone book as phones use it: a real server, asked over HTTP, on a real SQLite and a real
// PostgreSQL.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <httplib.h>
#include <libxml/parser.h>
#include <libxml/xpath.h>
#include <netinet/in.h>
#include <soci/postgresql/soci-postgresql.h>
#include <soci/soci.h>
#include <soci/sqlite3/soci-sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <future>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "contacts.h"
#include "text.h"

namespace {

namespace fs = std::filesystem;

const std::vector<std::string> kPages = {"",          "directory", "search",  "search?name=a",
                                         "contact/1", "dial/1",    "message", "status"};

struct MakerFacts {
  std::string path;
  const char* userAgent;
  std::vector<std::string> roots;       // the elements that the pages are, in their order
  std::array<const char*, 2> inPages;   // where a directory has its pages before and after
  std::array<const char*, 2> inSearch;  // and what a search found
};
constexpr std::array<const char*, 2> kAttributes = {"/*/@previous", "/*/@next"};
constexpr std::array<const char*, 2> kLinks = {"//a[. = 'Previous']/@href",
                                               "//a[. = 'Next']/@href"};
constexpr std::array<const char*, 2> kKeys = {"//*[Name = 'LEFT']/URL", "//*[Name = 'RIGHT']/URL"};
const std::vector<MakerFacts> kMakers = {
    {"aastra",
     "Aastra55i MAC:00-08-5D-11-22-33 V:2.2.0.166-SIP",
     {"AastraIPPhoneTextMenu", "AastraIPPhoneDirectory", "AastraIPPhoneInputScreen",
      "AastraIPPhoneTextMenu", "AastraIPPhoneTextScreen", "AastraIPPhoneExecute",
      "AastraIPPhoneTextScreen", "AastraIPPhoneStatus"},
     kAttributes,
     {"//*[Label = 'Previous']/URI", "//*[Label = 'Next']/URI"}},
    {"cisco", "Cisco-CP-7962G/9.1", {8, "CiscoIPPhoneDirectory"}, kAttributes, kAttributes},
    {"polycom", "PolycomVVX-VVX_500-UA/4.1.3", {8, "html"}, kLinks, kLinks},
    {"snom",
     "Mozilla/4.0 (compatible; snom370-SIP 8.7.3)",
     {"SnomIPPhoneDirectory", "SnomIPPhoneDirectory", "SnomIPPhoneInput", "SnomIPPhoneDirectory",
      "SnomIPPhoneText", "SnomIPPhoneDirectory", "SnomIPPhoneText", "SnomIPPhoneText"},
     kKeys,
     kKeys},
    {"yealink",
     "Yealink SIP-T28P 2.60.0.140",
     {"YealinkIPPhoneDirectory", "YealinkIPPhoneDirectory", "YealinkIPPhoneDirectory",
      "YealinkIPPhoneDirectory", "YealinkIPPhoneText", "YealinkIPPhoneDirectory",
      "YealinkIPPhoneText", "YealinkIPPhoneText"},
     kKeys,
     kKeys}};

std::string ContentOf(const fs::path& path) {
  std::ostringstream content;
  content << std::ifstream(path).rdbuf();
  return content.str();
}

// Waits for what comes soon or never.
template <typename Condition>
bool Await(Condition condition) {
  for (int i = 0; i < 2000; ++i) {
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return false;
}

sockaddr_in Loopback(int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::string name = fs::temp_directory_path() / "phonebook.XXXXXX";
    path = mkdtemp(name.data());
    fs::permissions(path, fs::perms::owner_all | fs::perms::others_exec);
  }
  ~TemporaryDirectory() { fs::remove_all(path); }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  fs::path path;
};

class Cluster {
 public:
  Cluster() {
    if (Command("make")) Command("start");
  }
  ~Cluster() { Command("stop"); }
  Cluster(const Cluster&) = delete;
  Cluster& operator=(const Cluster&) = delete;

  bool Command(const std::string& command) {
    const fs::path log = directory.path / "command.log";
    isUsable = std::system((TEMPORARY_POSTGRESQL " " + command + " " + directory.path.string() +
                            " " + std::to_string(port) + " >" + log.string() + " 2>&1")
                               .c_str()) == 0;
    if (!isUsable) reason = command + ": " + ContentOf(log);
    return isUsable;
  }
  std::string Address(const std::string& database) const {
    return "postgresql://phonebook@127.0.0.1:" + std::to_string(port) + "/" + database +
           "?sslmode=disable";
  }

  bool isUsable = false;
  std::string reason;

 private:
  static int FreePort() {
    const int any = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = Loopback(0);
    socklen_t size = sizeof address;
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(any, generic, size) != 0 || getsockname(any, generic, &size) != 0) {
      throw std::runtime_error("no port is free");
    }
    close(any);
    return ntohs(address.sin_port);
  }
  TemporaryDirectory directory;
  int port = FreePort();
};

// A document as the phone's parser sees it. The Polycom pages are HTML that is XML as well.
class Parsed {
 public:
  explicit Parsed(const std::string& text)
      : document(xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, "UTF-8",
                               XML_PARSE_NONET | XML_PARSE_HUGE),
                 xmlFreeDoc) {
    EXPECT_NE(document, nullptr) << text;
  }

  // What stands where `path` leads.
  std::vector<std::string> Find(const char* path) const {
    std::vector<std::string> texts;
    const std::unique_ptr<xmlXPathContext, decltype(&xmlXPathFreeContext)> context(
        xmlXPathNewContext(document.get()), xmlXPathFreeContext);
    const std::unique_ptr<xmlXPathObject, decltype(&xmlXPathFreeObject)> found(
        xmlXPathEvalExpression(reinterpret_cast<const xmlChar*>(path), context.get()),
        xmlXPathFreeObject);
    const xmlNodeSet* nodes = found == nullptr ? nullptr : found->nodesetval;
    for (int i = 0; nodes != nullptr && i < nodes->nodeNr; ++i) {
      xmlChar* content = xmlNodeGetContent(nodes->nodeTab[i]);
      texts.emplace_back(reinterpret_cast<const char*>(content));
      xmlFree(content);
    }
    return texts;
  }
  std::string First(const char* path) const {
    const auto found = Find(path);
    return found.empty() ? "" : found.front();
  }
  std::string Root() const {
    const xmlNode* root = xmlDocGetRootElement(document.get());
    return root == nullptr ? "" : reinterpret_cast<const char*>(root->name);
  }
  std::vector<std::string> Items() const {
    return Find(
        "//MenuItem/Prompt | //DirectoryEntry/Name | //p/a[not(. = 'Home' or . = 'Search' or"
        " . = 'Previous' or . = 'Next')]");
  }
  std::vector<std::string> Addresses() const {
    return Find("//@*[starts-with(., 'http:')] | //text()[starts-with(., 'http:')]");
  }

 private:
  std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document;
};

struct Answer {
  int status;
  std::string type;
  std::string retryAfter;
  std::string text;
};

// The phone book in a process of its own.
class Server {
 public:
  Server(const fs::path& directory, const std::string& database) : log(directory / "log") {
    Start(directory, database);
    EXPECT_TRUE(Await([&] { return ContentOf(log).find("/preview") != std::string::npos; }))
        << ContentOf(log);
    const std::string said = ContentOf(log);
    port = std::stoi(said.substr(said.find("127.0.0.1:") + 10));
    base = "http://127.0.0.1:" + std::to_string(port);
  }
  ~Server() { EXPECT_EQ(Stop(), 0) << ContentOf(log); }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  // Returns how the process ended; a second call does nothing.
  int Stop() {
    if (process == 0) return 0;
    kill(process, SIGTERM);
    int status = 0;
    waitpid(process, &status, 0);
    process = 0;
    return status;
  }
  // `address` is a path, or what a document calls a page of this server.
  Answer Get(const std::string& address, const std::string& userAgent = "a phone") const {
    httplib::Client client("127.0.0.1", port);
    client.set_url_encode(false);
    client.set_read_timeout(30);
    const bool isWhole = address.rfind(base, 0) == 0;
    const auto result =
        client.Get(isWhole ? address.substr(base.size()) : address, {{"User-Agent", userAgent}});
    if (!result) return {0, to_string(result.error()), "", ""};
    return {result->status, result->get_header_value("Content-Type"),
            result->get_header_value("Retry-After"), result->body};
  }

  fs::path log;
  int port = 0;
  std::string base;

 private:
  void Start(const fs::path& directory, const std::string& database) {
    const int out = open(log.c_str(), O_CREAT | O_WRONLY | O_TRUNC | O_APPEND | O_CLOEXEC, 0600);
    process = fork();
    if (process == 0) {
      dup2(out, STDOUT_FILENO);
      dup2(out, STDERR_FILENO);
      if (chdir(directory.c_str()) == 0) {
        execl(PHONEBOOK, PHONEBOOK, "--port", "0", "--database", database.c_str(), nullptr);
      }
      _exit(127);
    }
    close(out);
  }
  pid_t process = 0;
};

// A database of the test's own in SQLite or PostgreSQL, and how to take it away.
class PhoneBook : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    isPostgreSQL = std::string(GetParam()) == "PostgreSQL";
    database = directory.path / "phone book.db";
    if (!isPostgreSQL) return;
    if (!cluster().isUsable) GTEST_SKIP() << cluster().reason;
    static int number = 0;
    const std::string name = "phonebook" + std::to_string(++number);
    soci::session(soci::postgresql, cluster().Address("postgres")) << "CREATE DATABASE " << name;
    database = cluster().Address(name);
  }

  static Cluster& cluster() {
    static Cluster theCluster;
    return theCluster;
  }
  std::unique_ptr<soci::session> Connect() const {
    return isPostgreSQL
               ? std::make_unique<soci::session>(soci::postgresql, database)
               : std::make_unique<soci::session>(soci::sqlite3, "dbname=\"" + database + "\"");
  }
  // Replaces the contacts by one for each name, with telephones that differ.
  void Fill(const std::vector<std::string>& names) const {
    const auto session = Connect();
    soci::transaction transaction(*session);
    *session << "DELETE FROM contacts";
    for (std::size_t i = 0; i < names.size(); ++i) {
      const std::string telephone = names[i] + std::to_string(i);
      *session << "INSERT INTO contacts (name, telephone, department) VALUES (:n, :t, :d)",
          soci::use(names[i]), soci::use(telephone), soci::use(names[i]);
    }
    transaction.commit();
  }
  void TakeAway() const {
    if (isPostgreSQL) {
      ASSERT_TRUE(cluster().Command("stop")) << cluster().reason;
    } else {
      fs::rename(database, database + ".away");
    }
  }
  void BringBack() const {
    if (isPostgreSQL) {
      ASSERT_TRUE(cluster().Command("start")) << cluster().reason;
    } else {
      fs::rename(database + ".away", database);
    }
  }

  TemporaryDirectory directory;
  bool isPostgreSQL = false;
  std::string database;
};

INSTANTIATE_TEST_SUITE_P(On, PhoneBook, testing::Values("SQLite", "PostgreSQL"),
                         [](const auto& tested) { return std::string(tested.param); });

// Follows every address from every maker's home and every contact, and says how many pages there
// are.
std::size_t VisitAll(const Server& server, soci::session& session) {
  std::vector<long long> ids(1000);
  session << "SELECT id FROM contacts", soci::into(ids);
  std::set<std::string> seen;
  for (const auto& maker : kMakers) {
    const std::string home = server.base + "/" + maker.path + "/";
    std::vector<std::string> waiting = {home, home + "search?name=c"};
    for (const long long id : ids) {
      waiting.push_back(home + "contact/" + std::to_string(id));
      waiting.push_back(home + "dial/" + std::to_string(id));
    }
    while (!waiting.empty()) {
      const std::string address = waiting.back();
      waiting.pop_back();
      if (!seen.insert(address).second) continue;
      const Answer answer = server.Get(address);
      EXPECT_EQ(answer.status, 200) << address << answer.text;
      EXPECT_EQ(answer.type,
                maker.path == "polycom" ? "text/html; charset=utf-8" : "text/xml; charset=utf-8");
      for (const auto& next : Parsed(answer.text).Addresses()) waiting.push_back(next);
    }
  }
  return seen.size();
}

TEST_P(PhoneBook, GivesEachMakerTheNearestDocumentThatItHas) {
  const Server server(directory.path, database);
  for (const auto& maker : kMakers) {
    for (std::size_t page = 0; page < kPages.size(); ++page) {
      const std::string path = "/" + maker.path + "/" + kPages[page];
      EXPECT_EQ(Parsed(server.Get(path).text).Root(), maker.roots[page]) << path;
      EXPECT_EQ(Parsed(server.Get("/" + kPages[page], maker.userAgent).text).Root(),
                maker.roots[page])
          << maker.userAgent;
    }
    EXPECT_EQ(Parsed(server.Get("/cisco/", maker.userAgent).text).Root(), "CiscoIPPhoneDirectory");
  }
  const Answer unknown = server.Get("/", "Mozilla/5.0");
  EXPECT_EQ(unknown.status, 200);
  EXPECT_EQ(unknown.type, "text/plain; charset=utf-8");
  for (const auto& maker : kMakers) {
    EXPECT_NE(unknown.text.find("/" + maker.path + "/\n"), std::string::npos);
  }
  EXPECT_GT(VisitAll(server, *Connect()), 2U * 5 * 40);
}

TEST_P(PhoneBook, PagesThroughAThousandContactsForthAndBack) {
  const Server server(directory.path, database);
  std::vector<std::string> names(1000);
  for (std::size_t i = 0; i < 1000; ++i) {
    names[i] = "Contact " + std::to_string(10000 + i * 7919 % 1000 / 2);  // each name twice
  }
  Fill(names);
  std::sort(names.begin(), names.end());
  const auto pageThrough = [&](const std::string& path, std::array<const char*, 2> links) {
    std::vector<std::string> addresses = {server.base + path};
    std::vector<std::string> seen;
    std::set<std::string> targets;
    while (!addresses.back().empty()) {
      const Parsed page(server.Get(addresses.back()).text);
      if (addresses.size() > 2) {
        EXPECT_EQ(page.First(links[0]), addresses[addresses.size() - 2]);
      }
      for (const auto& name : page.Items()) seen.push_back(name);
      for (const auto& target : page.Find("//MenuItem/URI | //Telephone |"
                                          " //p/a[starts-with(., 'Contact')]/@href")) {
        targets.insert(target);
      }
      addresses.push_back(page.First(links[1]));
    }
    EXPECT_EQ(seen, names) << path;
    EXPECT_EQ(targets.size(), 1000U);
    EXPECT_GT(addresses.size(), 1000U / 32);
  };
  for (const auto& maker : kMakers) {
    pageThrough("/" + maker.path + "/directory", maker.inPages);
    pageThrough("/" + maker.path + "/search?name=con", maker.inSearch);
  }
}

TEST_P(PhoneBook, FindsWhatNamesBeginWith) {
  const Server server(directory.path, database);
  const std::vector<std::string> names = {
      "\"Quoted\" \\'s", "100% Cotton", "100 Percent", "<b>&amp;", "D'Angelo; DROP TABLE contacts",
      "_under",          "日本 太郎",   "Ωmega",       "ябл",      "becker",
      "Becker, Jonas",   "BECKER AG"};
  Fill(names);
  std::map<std::string, std::vector<std::string>> expected = {
      {"%", {"Nobody found. Search again?"}},
      {"_", {"_under"}},
      {"100%", {"100% Cotton"}},
      {"BeCkEr", {"becker", "BECKER AG", "Becker, Jonas"}},
      {"日", {"日本 太郎"}},
      {"Ω", {"Ωmega"}},
      {"ябл", {"ябл"}},
      {"' OR 1=1 --", {"Nobody found. Search again?"}},
      {std::string(64, 'x'), {"Nobody found. Search again?"}},
      {"D'Angelo; DROP", {"D'Angelo; DROP TABLE contacts"}}};
  for (const auto& name : names) {
    if (name != "becker") expected[name] = {name};
  }
  std::string many;
  for (int i = 0; i < 64; ++i) many += "я";  // 64 characters, 128 bytes
  expected[many] = {"Nobody found. Search again?"};
  for (const auto& maker : kMakers) {
    for (const auto& [search, found] : expected) {
      const Answer answer = server.Get("/" + maker.path + "/search?name=" + PercentEncoded(search));
      EXPECT_EQ(Parsed(answer.text).Items(), found) << maker.path << " " << search;
    }
  }
}

TEST_P(PhoneBook, StaysXMLWithHostileContacts) {
  const Server server(directory.path, database);
  std::vector<std::string> hostile = {
      "<b>bold</b>",      "& &amp; &#0;",         "\"quoted' name\"",     "]]><![CDATA[",
      "\x01\x02\x1f\x7f", "tab\tand\nline\r\n",   "\xc2\x85\xef\xbf\xbe", " ",
      "?page=2&name=%00", std::string(10000, 'n')};
  std::string shuffled;  // does not compress
  for (unsigned i = 0; i < 10000; ++i)
    shuffled += static_cast<char>('!' + i * i * 2654435761U / 65536 % 90);
  hostile.push_back(shuffled);
  if (!isPostgreSQL) {  // which keeps such bytes out
    for (const char* broken : {"\xff\xfe", "\xc3", "\xe2\x82", "\xed\xa0\x80", "\xc0\xaf",
                               "\xf5\x80\x80\x80", "caf\xe9"}) {
      hostile.emplace_back(broken);
    }
  }
  Fill(hostile);
  const auto session = Connect();
  shuffled += "]]>\x01&<";
  for (int line = 0; line < 40; ++line) shuffled += "\nmore than a page";
  *session << "UPDATE notices SET text = :text", soci::use(shuffled);
  EXPECT_GT(VisitAll(server, *session), 10 * hostile.size());
}

// Sends `start`, then `more` again and again, and returns what came when the server had enough.
std::string Press(int port, const std::string& start, const std::string& more, int milliseconds) {
  const int connection = socket(AF_INET, SOCK_STREAM, 0);
  const sockaddr_in address = Loopback(port);
  EXPECT_EQ(connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  std::string answer = "it never had enough";
  std::string text = start;
  for (int i = 0; i < 300; ++i) {
    std::array<char, 100> buffer{};
    const bool isSent = send(connection, text.data(), text.size(), MSG_NOSIGNAL) > 0;
    const ssize_t size = recv(connection, buffer.data(), buffer.size(), isSent ? MSG_DONTWAIT : 0);
    if (size >= 0 || !isSent) {
      answer.assign(buffer.data(), static_cast<std::size_t>(std::max(size, ssize_t{0})));
      break;
    }
    text = more;
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  }
  close(connection);
  return answer;
}

TEST_P(PhoneBook, RefusesBadInputWithADocumentAndALineInTheLog) {
  const Server server(directory.path, database);
  const std::map<std::string, int> expected = {
      {"nowhere", 404},
      {"message/2", 404},
      {"directory?page=0", 400},
      {"directory?page=", 400},
      {"directory?page=-1", 400},
      {"directory?page=1x", 400},
      {"directory?page=99", 404},
      {"directory?page=99999999999999999999", 400},
      {"search?name=" + std::string(65, 'x'), 400},
      {"search?name=%ff", 400},
      {"search?name=a%00b", 400},
      {"search?name=a%0ab", 400},
      {"search?name=a&page=0", 400},
      {"contact/999999", 404},
      {"contact/x", 404},
      {"contact/", 404},
      {"contact/99999999999999999999", 404},
      {"dial/0", 404},
      {"%0a%0dfake", 404},
      {"../../etc/passwd", 404},
      {std::string(8000, 'x'), 404},
  };
  for (const auto& maker : kMakers) {
    for (const auto& [page, status] : expected) {
      const auto before = ContentOf(server.log).size();
      const Answer answer = server.Get("/" + maker.path + "/" + page);
      EXPECT_EQ(answer.status, status) << page;
      EXPECT_EQ(Parsed(answer.text).Root(), maker.roots[6]) << page;
      const std::string line = ContentOf(server.log).substr(before);
      EXPECT_EQ(line.find("phonebook: " + std::to_string(status) + " GET /" + maker.path), 0U);
      EXPECT_EQ(line.find('\n'), line.size() - 1) << line;
    }
  }
  Press(server.port, "GET /snom/\x1b[31m HTTP/1.1\r\nHost: a\r\n\r\n", "", 10);
  EXPECT_NE(ContentOf(server.log).find("404 GET /snom/%1B[31m from"), std::string::npos);
  EXPECT_EQ(server.Get("/nowhere").status, 404);
  EXPECT_EQ(server.Get("/nowhere").type, "text/plain; charset=utf-8");
  httplib::Client client("127.0.0.1", server.port);
  EXPECT_EQ(client.Post("/snom/", "name=x", "text/plain")->status, 405);
  EXPECT_EQ(client.Post("/snom/", std::string(9000, 'x'), "text/plain")->status, 413);
  EXPECT_EQ(server.Get("/snom/" + std::string(9000, 'x')).status, 414);
  EXPECT_EQ(Parsed(client.Get("/", {{"Host", "a\"<b"}, {"User-Agent", "snom"}})->body)
                .Addresses()
                .front(),
            server.base + "/snom/directory");

  const std::string start = "GET /snom/ HTTP/1.1\r\nHost: a\r\n";
  const std::string header = "X: " + std::string(1000, 'x') + "\r\n";
  EXPECT_EQ(Press(server.port, start + "\r\n", "", 10).substr(0, 15), "HTTP/1.1 200 OK");
  EXPECT_EQ(Press(server.port, start, header, 1).substr(0, 12), "HTTP/1.1 400");
  EXPECT_EQ(Press(server.port, start, "X", 100).substr(0, 12), "HTTP/1.1 400");
  EXPECT_EQ(server.Get("/snom/").status, 200);
}

TEST_P(PhoneBook, WaitsForADatabaseThatIsAwayAndComesBack) {
  const Server server(directory.path, database);
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(server.Get("/aastra/directory").status, 200);
    TakeAway();
    for (const char* page :
         {"/aastra/directory", "/cisco/search", "/snom/contact/1", "/yealink/message"}) {
      const Answer answer = server.Get(page);
      EXPECT_EQ(answer.status, 503);
      EXPECT_EQ(answer.retryAfter, "5");
      EXPECT_EQ(Parsed(answer.text).First("/*/Title"), "Please try again");
    }
    EXPECT_EQ(server.Get("/aastra/").status, 200);  // needs no database
    EXPECT_NE(ContentOf(server.log).find("503 GET /snom/contact/1"), std::string::npos);
    BringBack();
  }
  for (int round = 0; round < 2; ++round) {  // the second on connections that have died meanwhile
    std::vector<std::future<int>> answers(32);
    for (auto& answer : answers) {
      answer = std::async(std::launch::async, [&] { return server.Get("/snom/directory").status; });
    }
    for (auto& answer : answers) EXPECT_EQ(answer.get(), 200);
    TakeAway();
    BringBack();
  }
}

TEST_P(PhoneBook, WaitsForADatabaseThatIsLockedButNotForLong) {
  Server server(directory.path, database);
  const auto session = Connect();
  const auto lock = [&] {
    *session << (isPostgreSQL ? "BEGIN" : "BEGIN EXCLUSIVE");
    if (isPostgreSQL) *session << "LOCK TABLE contacts";
  };
  lock();
  EXPECT_EQ(server.Get("/aastra/directory").status, 503);
  *session << "ROLLBACK";
  EXPECT_EQ(server.Get("/aastra/directory").status, 200);

  lock();
  auto open =
      std::async(std::launch::async, [&] { return server.Get("/aastra/directory").status; });
  EXPECT_EQ(open.wait_for(std::chrono::milliseconds(500)), std::future_status::timeout);
  auto stopped = std::async(std::launch::async, [&] { return server.Stop(); });
  EXPECT_EQ(stopped.wait_for(std::chrono::milliseconds(500)), std::future_status::timeout);
  *session << "ROLLBACK";
  EXPECT_EQ(open.get(), 200);
  EXPECT_EQ(stopped.get(), 0);
  EXPECT_NE(ContentOf(server.log).find("phonebook: stopped\n"), std::string::npos);
}

TEST_P(PhoneBook, IsFilledOnceByServersThatStartTogether) {
  std::vector<std::future<std::unique_ptr<Server>>> starting(4);
  for (std::size_t i = 0; i < starting.size(); ++i) {
    const fs::path own = directory.path / std::to_string(i);
    fs::create_directory(own);
    starting[i] = std::async(std::launch::async,
                             [this, own] { return std::make_unique<Server>(own, database); });
  }
  for (auto& started : starting) {
    const auto server = started.get();
    EXPECT_EQ(server->Get("/cisco/directory").status, 200);
    const std::string again = "timeout 10 " PHONEBOOK " --database '" + database + "' --port " +
                              std::to_string(server->port) + " >/dev/null 2>&1";
    EXPECT_EQ(WEXITSTATUS(std::system(again.c_str())), 1);  // the port is taken
  }
  int contacts = 0;
  *Connect() << "SELECT count(*) FROM contacts", soci::into(contacts);
  EXPECT_EQ(contacts, 40);
  *Connect() << "DELETE FROM contacts";  // what the owner removed stays removed
  EXPECT_EQ(Parsed(Server(directory.path, database).Get("/snom/directory").text).Items().size(),
            0U);
}

TEST(Text, IsFitForXML) {
  const std::map<std::string, std::string> expected = {
      {"", ""},
      {"plain \t\n", "plain \t\n"},
      {"<a href=\"x\">&amp;'", "&lt;a href=&quot;x&quot;&gt;&amp;amp;'"},
      {std::string("\0\x01\x1f\r\x7f\xc2\x80\xc2\x9f", 9), "       "},
      {"\xc2\xa0\xdf\xbf\xe0\xa0\x80\xed\x9f\xbf\xee\x80\x80\xef\xbf\xbd\xf0\x90\x80\x80\xf4\x8f"
       "\xbf\xbf",
       "\xc2\xa0\xdf\xbf\xe0\xa0\x80\xed\x9f\xbf\xee\x80\x80\xef\xbf\xbd\xf0\x90\x80\x80\xf4\x8f"
       "\xbf\xbf"},
      {"\xc1\xbf", "\uFFFD\uFFFD"},
      {"\xe0\x9f\xbf", "\uFFFD\uFFFD\uFFFD"},
      {"\xed\xa0\x80", "\uFFFD\uFFFD\uFFFD"},
      {"\xef\xbf\xbf", "\uFFFD\uFFFD\uFFFD"},
      {"\xf0\x8f\xbf\xbf", "\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"\xf4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"caf\xe9 \xe2\x82", "caf\uFFFD \uFFFD\uFFFD"},
  };
  for (const auto& [text, fit] : expected) {
    EXPECT_EQ(Fit(text), fit);
  }
  EXPECT_EQ(PercentEncoded("aZ0-._~ +&=?/%ä", "+"), "aZ0-._~%20+%26%3D%3F%2F%25%C3%A4");
  EXPECT_EQ(Dialled("+49 (30) 55-50.1/00*#"), "+49305550100*#");
  EXPECT_EQ(Dialled("anna.k@example.org"), "anna.k@example.org");
}

}  // namespace
