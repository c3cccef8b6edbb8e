// The phone book as phones use it: a real server, asked over HTTP, on a real SQLite and a real
// PostgreSQL.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/xpath.h>
#include <soci/postgresql/soci-postgresql.h>
#include <soci/soci.h>
#include <soci/sqlite3/soci-sqlite3.h>
#include <sys/wait.h>
#include <teleform/screens/escape.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <boost/asio/ip/tcp.hpp>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <future>
#include <list>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "phonebook/contacts.h"

namespace {

namespace fs = std::filesystem;
using boost::asio::ip::tcp;
using std::chrono::seconds;
using Texts = std::vector<std::string>;

const Texts kPages = {"",          "directory", "search",  "search?name=a",
                      "contact/1", "dial/1",    "message", "status"};

struct MakerFacts {
  std::string path;
  const char* userAgent;
  Texts roots;                          // the elements that the pages are, in their order
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
    {"yealink", "Yealink SIP-T28P 2.60.0.140", {8, "YealinkIPPhoneDirectory"}, kKeys, kKeys}};

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
    boost::asio::io_context context;
    return tcp::acceptor(context, {boost::asio::ip::address_v4::loopback(), 0})
        .local_endpoint()
        .port();
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
  Texts Find(const std::string& path) const {
    Texts texts;
    const std::unique_ptr<xmlXPathContext, decltype(&xmlXPathFreeContext)> context(
        xmlXPathNewContext(document.get()), xmlXPathFreeContext);
    const std::unique_ptr<xmlXPathObject, decltype(&xmlXPathFreeObject)> found(
        xmlXPathEvalExpression(reinterpret_cast<const xmlChar*>(path.c_str()), context.get()),
        xmlXPathFreeObject);
    const xmlNodeSet* nodes = found == nullptr ? nullptr : found->nodesetval;
    for (int i = 0; nodes != nullptr && i < nodes->nodeNr; ++i) {
      xmlChar* content = xmlNodeGetContent(nodes->nodeTab[i]);
      texts.emplace_back(reinterpret_cast<const char*>(content));
      xmlFree(content);
    }
    return texts;
  }
  std::string First(const std::string& path) const {
    const auto found = Find(path);
    return found.empty() ? "" : found.front();
  }
  std::string Root() const {
    const xmlNode* root = xmlDocGetRootElement(document.get());
    return root == nullptr ? "" : reinterpret_cast<const char*>(root->name);
  }
  Texts Items() const {
    const std::string others = "[not(. = 'Home' or . = 'Search' or . = 'Previous' or . = 'Next')]";
    return Find("//MenuItem/Prompt | //DirectoryEntry/Name" + others + " | //p/a" + others);
  }
  Texts Addresses() const {
    return Find("//@*[starts-with(., 'http:')] | //text()[starts-with(., 'http:')]");
  }
  // What the page can dial.
  Texts Numbers() const {
    return Find(
        "//Telephone[not(starts-with(., 'http:'))] | //@href[starts-with(., 'tel:')] |"
        " //ExecuteItem/@URI");
  }

 private:
  std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document;
};

struct Answer {
  int status = 0;
  std::string header;  // with the status line
  std::string text;
};

Answer Parse(const std::string& answer) {
  const auto end = answer.find("\r\n\r\n");
  if (end == answer.npos) return {};
  return {std::stoi(answer.substr(9, 3)), answer.substr(0, end + 2), answer.substr(end + 4)};
}

// All that comes until the server closes the connection.
std::string AllFrom(tcp::iostream& stream) {
  std::ostringstream all;
  all << stream.rdbuf();
  EXPECT_EQ(stream.error(), boost::asio::error::eof);
  return all.str();
}

// The phone book in a process of its own, with a phone that has patience.
class Server {
 public:
  Server(const fs::path& directory, const std::string& database, const Texts& options = {},
         bool isOwner = true)
      : log(directory / "log") {
    Start(directory, database, options, isOwner);
  }
  ~Server() { EXPECT_TRUE(process == 0 || Stop() == 0) << ContentOf(log); }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  // Whether it listens, and not whether it ends before that.
  bool Listens() {
    EXPECT_TRUE(
        Await([&] { return IsLogged("/preview") || waitpid(process, &end, WNOHANG) != 0; }));
    if (!IsLogged("/preview")) {
      process = 0;
      return false;
    }
    const std::string said = ContentOf(log);
    base = said.substr(said.find("http://"));
    base = base.substr(0, base.find("/aastra"));
    port = base.substr(base.rfind(':') + 1);
    return true;
  }
  // Returns how the process ended.
  int Stop() {
    if (process == 0) return end;
    kill(process, SIGTERM);
    waitpid(std::exchange(process, 0), &end, 0);
    return end;
  }
  bool IsLogged(const std::string& text) const {
    return ContentOf(log).find(text) != std::string::npos;
  }

  std::unique_ptr<tcp::iostream> Connect() const {
    auto stream = std::make_unique<tcp::iostream>();
    stream->expires_after(seconds(30));
    stream->connect("127.0.0.1", port);
    EXPECT_TRUE(*stream) << stream->error().message();
    return stream;
  }
  std::string Exchange(const std::string& bytes) const {
    const auto stream = Connect();
    *stream << bytes << std::flush;
    return AllFrom(*stream);
  }
  // `address` is a path, or what a document calls a page of this server.
  Answer Get(const std::string& address, const std::string& userAgent = "a phone") const {
    const bool isWhole = address.rfind(base, 0) == 0;
    return Parse(Exchange("GET " + (isWhole ? address.substr(base.size()) : address) +
                          " HTTP/1.0\r\nHost: " + base.substr(7) + "\r\nUser-Agent: " + userAgent +
                          "\r\n\r\n"));
  }

  fs::path log;
  std::string base;
  std::string port;
  pid_t process = 0;

 private:
  void Start(const fs::path& directory, const std::string& database, const Texts& options,
             bool isOwner) {
    const int out = open(log.c_str(), O_CREAT | O_WRONLY | O_TRUNC | O_APPEND | O_CLOEXEC, 0600);
    Texts words = {PHONEBOOK, "--port", "0", "--database", database};
    words.insert(words.end(), options.begin(), options.end());
    std::vector<char*> arguments;
    for (auto& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    process = fork();
    if (process == 0) {
      constexpr uid_t kNobody = 65534;
      dup2(out, STDOUT_FILENO);
      dup2(out, STDERR_FILENO);
      if (chdir(directory.c_str()) == 0 && (isOwner || geteuid() != 0 || setuid(kNobody) == 0)) {
        execv(PHONEBOOK, arguments.data());
      }
      _exit(127);
    }
    close(out);
  }
  int end = 0;
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
  std::unique_ptr<Server> Serve(const Texts& options = {}) const {
    auto server = std::make_unique<Server>(directory.path, database, options);
    EXPECT_TRUE(server->Listens()) << ContentOf(server->log);
    return server;
  }
  std::unique_ptr<soci::session> Connect() const {
    return isPostgreSQL
               ? std::make_unique<soci::session>(soci::postgresql, database)
               : std::make_unique<soci::session>(soci::sqlite3, "dbname=\"" + database + "\"");
  }
  // Replaces the contacts by one for each name, with telephones that differ, and waits until the
  // server has sorted them in.
  void Fill(const Texts& names) const {
    const auto session = Connect();
    soci::transaction transaction(*session);
    *session << "DELETE FROM contacts";
    for (std::size_t i = 0; i < names.size(); ++i) {
      const std::string telephone = names[i] + std::to_string(i);
      *session << "INSERT INTO contacts (name, telephone, department) VALUES (:n, :t, :d)",
          soci::use(names[i]), soci::use(telephone), soci::use(names[i]);
    }
    transaction.commit();
    EXPECT_TRUE(IsSortedIn());
  }
  bool IsSortedIn() const {
    const auto session = Connect();
    return Await([&] {
      int waiting = 1;
      *session << "SELECT (SELECT count(*) FROM contacts WHERE is_indexed = FALSE) +"
                  " (SELECT count(*) FROM removed)",
          soci::into(waiting);
      return waiting == 0;
    });
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

using PhoneBookOnSQLite = PhoneBook;
INSTANTIATE_TEST_SUITE_P(Only, PhoneBookOnSQLite, testing::Values("SQLite"));
using PhoneBookOnPostgreSQL = PhoneBook;
INSTANTIATE_TEST_SUITE_P(Only, PhoneBookOnPostgreSQL, testing::Values("PostgreSQL"));

// Follows every address from every maker's home, a search and every contact. Everywhere there is a
// way home, and at every contact one to dial it.
void WalkAll(const Server& server, soci::session& session) {
  std::vector<long long> ids(1000);
  session << "SELECT id FROM contacts", soci::into(ids);
  for (const auto& maker : kMakers) {
    const std::string home = server.base + "/" + maker.path + "/";
    Texts waiting = {home, home + "search?name=c"};
    for (const long long id : ids) {
      waiting.push_back(home + "contact/" + std::to_string(id));
      waiting.push_back(home + "dial/" + std::to_string(id));
    }
    std::set<std::string> seen;
    std::set<std::string> found;
    while (!waiting.empty()) {
      const std::string address = waiting.back();
      waiting.pop_back();
      if (!seen.insert(address).second) continue;
      const Answer answer = server.Get(address);
      EXPECT_EQ(answer.status, 200) << address << answer.text;
      const bool isHTML = maker.path == "polycom";
      EXPECT_NE(answer.header.find(isHTML ? "\r\nContent-Type: text/html; charset=utf-8\r\n"
                                          : "\r\nContent-Type: text/xml; charset=utf-8\r\n"),
                std::string::npos);
      EXPECT_EQ(answer.header.find("\r\nContent-Security-Policy: ") != std::string::npos, isHTML);
      const Parsed page(answer.text);
      const Texts addresses = page.Addresses();
      const auto leadsTo = [&](const std::string& target) {
        return std::count(addresses.begin(), addresses.end(), target) > 0;
      };
      EXPECT_TRUE(address == home || leadsTo(home)) << address << answer.text;
      if (address.find("/contact/") != address.npos) {
        const std::string dial = home + "dial" + address.substr(address.rfind('/'));
        EXPECT_TRUE(leadsTo(dial) || !page.Numbers().empty()) << address << answer.text;
      }
      EXPECT_TRUE(address.find("/dial/") == address.npos || page.Numbers().size() == 1) << address;
      if (address.find("search?letter=") != address.npos) {
        for (const auto& name : page.Items()) found.insert(name);
      }
      waiting.insert(waiting.end(), addresses.begin(), addresses.end());
    }
    EXPECT_GT(seen.size(), 2 * ids.size()) << home;
    const bool hasLetters = maker.path == "cisco" || maker.path == "yealink";
    EXPECT_EQ(found.size(), hasLetters ? ids.size() : 0) << home;
  }
}

TEST_P(PhoneBook, GivesEachMakerTheNearestDocumentThatItHas) {
  const auto server = Serve();
  std::set<std::string> keys;
  for (const auto& maker : kMakers) {
    for (std::size_t page = 0; page < kPages.size(); ++page) {
      const std::string path = "/" + maker.path + "/" + kPages[page];
      const Parsed found(server->Get(path).text);
      EXPECT_EQ(found.Root(), maker.roots[page]) << path;
      const Texts own = found.Find("//SoftKey[starts-with(URI, 'Soft')] | //SoftKeyItem/Name");
      keys.insert(own.begin(), own.end());
      EXPECT_EQ(Parsed(server->Get("/" + kPages[page], maker.userAgent).text).Root(),
                maker.roots[page])
          << maker.userAgent;
    }
    EXPECT_EQ(Parsed(server->Get("/cisco/", maker.userAgent).text).Root(), "CiscoIPPhoneDirectory");
  }
  EXPECT_EQ(keys, (std::set<std::string>{"\nDial\nSoftKey:Dial\n", "\nExit\nSoftKey:Exit\n",
                                         "\nSearch\nSoftKey:Submit\n", "\nSelect\nSoftKey:Select\n",
                                         "CANCEL", "F_MINIBROWSER_DIAL", "F_MINIBROWSER_SEARCH",
                                         "RIGHT"}));
  EXPECT_EQ(server->Get("/", "Mozilla/5.0").text, [&] {
    std::string makers;
    for (const auto& maker : kMakers) makers += server->base + "/" + maker.path + "/\n";
    return makers;
  }());
  WalkAll(*server, *Connect());

  for (const auto& page :
       kPages) {  // documents have no type, and an element "Title" outside "head"
    std::ofstream(directory.path / "page") << server->Get("/polycom/" + page).text;
    const std::string tidy = "tidy -qe -utf8 " + (directory.path / "page").string() + " 2>" +
                             (directory.path / "found").string();
    EXPECT_EQ(WEXITSTATUS(std::system(tidy.c_str())), 1);
    EXPECT_EQ(ContentOf(directory.path / "found"),
              "line 1 column 1 - Warning: missing <!DOCTYPE> declaration\n")
        << page;
  }

  // An alert without a text is none.
  const Parsed alert(server->Get("/aastra/status").text);
  EXPECT_EQ(alert.First("/*/@Beep") + alert.First("//Message/@type"), "yesalert");
  *Connect() << "UPDATE notices SET text = ''";
  const Parsed none(server->Get("/aastra/status").text);
  EXPECT_EQ(none.First("/*/@Beep") + none.First("//Message/@type"), "");
  EXPECT_EQ(none.First("//Message"), "\nNothing today.");
}

TEST_P(PhoneBook, PagesThroughAThousandContactsWhileOthersComeAndGo) {
  const auto server = Serve();
  const auto session = Connect();
  Texts names(1000);
  for (std::size_t i = 0; i < 1000; ++i) {
    names[i] = "Contact " + std::to_string(10000 + i * 7919 % 1000 / 2);  // each name twice
  }
  const auto pageThrough = [&](const std::string& path, std::array<const char*, 2> links) {
    Texts addresses = {server->base + path};
    Texts seen;
    std::set<std::string> targets;
    while (!addresses.back().empty()) {
      const Parsed page(server->Get(addresses.back()).text);
      if (addresses.size() == 3) {  // what comes before the pages seen, and goes
        *session << "INSERT INTO contacts (name, telephone) VALUES ('Contact 1 comes', '1')";
        *session << "DELETE FROM contacts WHERE name = 'Contact 10000'";
        EXPECT_TRUE(IsSortedIn());
      } else if (addresses.size() > 3) {
        const Parsed before(server->Get(page.First(links[0])).text);
        EXPECT_EQ(before.Items().back(), seen.back());
        EXPECT_EQ(before.First(links[1]), addresses.back());
      }
      for (const auto& name : page.Items()) seen.push_back(name);
      for (const auto& target : page.Find("//MenuItem/URI | //DirectoryEntry/Telephone |"
                                          " //p/a[starts-with(., 'Contact')]/@href")) {
        targets.insert(target);
      }
      addresses.push_back(page.First(links[1]));
    }
    EXPECT_EQ(seen, names) << path;
    EXPECT_GE(targets.size(), 1000U);
  };
  for (const auto& maker : kMakers) {
    for (const char* path : {"/directory", "/search?name=con"}) {
      Fill(names);
      std::sort(names.begin(), names.end());
      pageThrough("/" + maker.path + path,
                  *path == '/' && path[1] == 'd' ? maker.inPages : maker.inSearch);
    }
  }
}

TEST_P(PhoneBook, FindsAnybodyByAnyWordsAndListsThemAsReadersExpect) {
  const auto server = Serve();
  // In the order of the root collation.
  const Texts names = {"_under",
                       "\"Quoted\" \\'s",
                       "100 Percent",
                       "100% Cotton",
                       "Anders",
                       "ångström",
                       "Ångström, Linnéa",
                       "becker",
                       "BECKER AG",
                       "D'Angelo; DROP TABLE contacts",
                       "Łukasz",
                       "Straße",
                       "Tokyo ｶﾀｶﾅ",
                       "Zoë ÅNGSTRÖM",
                       "Ωmega",
                       "ябл",
                       "日本 太郎"};
  Fill({names.rbegin(), names.rend()});
  const auto find = [&](const std::string& search) {
    return Parsed(
               server->Get("/aastra/search?name=" + teleform::screens::PercentEncode(search)).text)
        .Items();
  };
  const Parsed all(server->Get("/snom/directory").text);
  EXPECT_EQ(all.Items(), names);
  const Texts nobody = {"Nobody found. Search again?"};
  std::string many;
  for (int i = 0; i < 64; ++i) many += "я";  // 64 characters, 128 bytes
  const std::map<std::string, Texts> expected = {
      {"å",
       {"Anders", "ångström", "Ångström, Linnéa", "BECKER AG", "D'Angelo; DROP TABLE contacts",
        "Zoë ÅNGSTRÖM"}},
      {"ANGSTROM", {"ångström", "Ångström, Linnéa", "Zoë ÅNGSTRÖM"}},
      {"a\xCC\x8Angstro\xCC\x88m ", {"ångström", "Ångström, Linnéa", "Zoë ÅNGSTRÖM"}},
      {"angs zoe", {"Zoë ÅNGSTRÖM"}},
      {" linnea,  ang", {"Ångström, Linnéa"}},
      {"ngström", nobody},
      {"lukasz", {"Łukasz"}},
      {"strasse", {"Straße"}},
      {"ｂｅｃｋｅｒ", {"becker", "BECKER AG"}},
      {"カタ", {"Tokyo ｶﾀｶﾅ"}},
      {"100", {"100 Percent", "100% Cotton"}},
      {"100%", {"100 Percent", "100% Cotton"}},
      {"ΩM", {"Ωmega"}},
      {"太", {"日本 太郎"}},
      {"' OR 1=1 --", nobody},
      {"d'angelo drop", {"D'Angelo; DROP TABLE contacts"}},
      {"%", nobody},
      {many, nobody}};
  for (const auto& [search, found] : expected) EXPECT_EQ(find(search), found) << search;

  // Also by the department, and at once under another name.
  const auto session = Connect();
  *session << "UPDATE contacts SET department = 'Research & Sales' WHERE name = 'becker'";
  *session << "UPDATE contacts SET name = 'Bekker' WHERE name = 'BECKER AG'";
  *session << "DELETE FROM contacts WHERE name = 'Ωmega'";
  EXPECT_TRUE(IsSortedIn());
  EXPECT_EQ(find("sal bec"), Texts{"becker"});
  EXPECT_EQ(find("becker"), (Texts{"becker", "Bekker"}));  // whose department is still BECKER AG
  EXPECT_EQ(find("bekk"), Texts{"Bekker"});
  EXPECT_EQ(find("omega"), nobody);

  // Nothing is left of who had the same number before, by whatever means.
  const std::string zoe =
      " INTO contacts (id, name, telephone, department)"
      " VALUES (1000, 'Zoë ÅNGSTRÖM', '1', 'Zoo')";
  for (const Texts& changes :
       {Texts{"UPDATE contacts SET id = 1000, department = 'Zoo' WHERE name = 'Zoë ÅNGSTRÖM'"},
        Texts{"DELETE FROM contacts WHERE id = 1000", "INSERT" + zoe},
        Texts{isPostgreSQL ? "TRUNCATE contacts" : "DELETE FROM contacts", "INSERT" + zoe},
        Texts{isPostgreSQL ? "ANALYZE" : "INSERT OR REPLACE" + zoe}}) {
    for (const auto& change : changes) *session << change;
    EXPECT_TRUE(IsSortedIn());
    EXPECT_EQ(find("angs zoo"), Texts{"Zoë ÅNGSTRÖM"}) << changes.front();
  }
  int others = 0;
  *session << "SELECT count(*) FROM words LEFT JOIN contacts ON id = contact AND"
              " contacts.words = words.words WHERE id IS NULL",
      soci::into(others);
  EXPECT_EQ(others, 0);
}

TEST_P(PhoneBook, StaysXMLWithHostileContacts) {
  const auto server = Serve();
  Texts hostile = {"<b>bold</b>",           "& &amp; &#0;",       "\"quoted' name\"",
                   "]]><![CDATA[",          "tab\tand\nline\r\n", "?page=2&name=%00",
                   "z \xc2\x85\xef\xbf\xbe"};
  std::string shuffled;  // does not compress
  for (unsigned i = 0; i < 10000; ++i)
    shuffled += static_cast<char>('!' + i * i * 2654435761U / 65536 % 90);
  hostile.push_back(shuffled);
  // Letters of their own, though they are others with an accent, or without a dot.
  for (const char* odd : {"Йод", "Яна", "أحمد", "يوسف", "ışık"}) hostile.emplace_back(odd);
  if (!isPostgreSQL) {  // which keeps such bytes out
    for (const char* broken : {"\xff\xfe", "a\xc3", "b\xe2\x82", "\xed\xa0\x80", "caf\xe9"}) {
      hostile.emplace_back(broken);
    }
    hostile.emplace_back(1000, '\x80');
  }
  Fill(hostile);
  const auto session = Connect();
  shuffled += "]]>\x01&<";
  for (int line = 0; line < 40; ++line) shuffled += "\nmore than a page";
  *session << "UPDATE notices SET text = :text", soci::use(shuffled);
  WalkAll(*server, *session);
  for (const char* contact :
       {"NULL, '1', '', FALSE", "'', '1', '', FALSE", "'a', NULL, '', FALSE", "'a', '', '', FALSE",
        "'a', '1', NULL, FALSE", "'a', '1', '', NULL"}) {
    EXPECT_THROW(*session << "INSERT INTO contacts (name, telephone, department, is_indexed)"
                             " VALUES ("
                          << contact << ")",
                 soci::soci_error)
        << contact;
  }
  *session << "INSERT INTO contacts (name, telephone) VALUES ('\xc2\x85', '1')";
  const std::string ignored = "\x01\x02";  // take no part in the order
  *session << "INSERT INTO contacts (name, telephone) VALUES (:name, '2')", soci::use(ignored);
  EXPECT_TRUE(IsSortedIn());
  EXPECT_EQ(Parsed(server->Get("/cisco/directory").text).Items().size(), hostile.size() + 2);
  EXPECT_GT(Parsed(server->Get("/yealink/search").text).Items().size(), 5U);
}

TEST_P(PhoneBookOnSQLite, RefusesWhatItDoesNotServe) {
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
      {"GET /snom/directory?after=1-%E9%BE%A5" + end + "\r\n", {"404"}, "beyond the last"},
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
  const Answer head = Parse(server->Exchange("HEAD /snom/" + end + "\r\n"));
  EXPECT_EQ(head.status, 200);
  EXPECT_EQ(head.text, "");
  EXPECT_EQ(head.header.find("Content-Length: 0"), std::string::npos);
  EXPECT_EQ(server->Get("/nowhere").status, 404);
  const std::string strange = "GET / HTTP/1.0\r\nHost: a\"<b\r\nUser-Agent: snom\r\n\r\n";
  EXPECT_EQ(Parsed(Parse(server->Exchange(strange)).text).Addresses().front(),
            server->base + "/snom/directory");
  EXPECT_NE(server->Get("/preview").header.find("frame-ancestors"), std::string::npos);
}

TEST_P(PhoneBookOnSQLite, ServesBesideThoseWhoAreIdleOrDrip) {
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
    EXPECT_EQ(Parse(AllFrom(*stream)).status, 408);
  }
  for (auto& stream : idle) {  // and don't mind
    std::string line;
    *stream << "GET /snom/ HTTP/1.1\r\nHost: a\r\n\r\n" << std::flush;
    std::getline(*stream, line);
    EXPECT_EQ(line, "HTTP/1.1 200 OK\r");
  }
}

TEST_P(PhoneBook, WaitsForADatabaseThatIsAwayAndComesBack) {
  const auto server = Serve();
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(server->Get("/aastra/directory").status, 200);
    TakeAway();
    for (const char* page :
         {"/aastra/directory", "/cisco/search", "/snom/contact/1", "/yealink/message"}) {
      Answer answer;  // soon, as a connection to SQLite looks after its file now and then
      EXPECT_TRUE(Await([&] { return (answer = server->Get(page)).status == 503; })) << page;
      EXPECT_NE(answer.header.find("\r\nRetry-After: 5\r\n"), std::string::npos);
      EXPECT_EQ(Parsed(answer.text).First("/*/Title"), "Please try again");
    }
    EXPECT_EQ(server->Get("/aastra/").status, 200);  // needs no database
    EXPECT_TRUE(server->IsLogged("503 GET /snom/contact/1"));
    BringBack();
  }
  for (int round = 0; round < 2; ++round) {  // the second on connections that have died meanwhile
    std::vector<std::future<int>> answers(32);
    for (auto& answer : answers) {
      answer =
          std::async(std::launch::async, [&] { return server->Get("/snom/directory").status; });
    }
    for (auto& answer : answers) EXPECT_EQ(answer.get(), 200);
    TakeAway();
    BringBack();
  }
  if (!isPostgreSQL) fs::resize_file(database, 0);  // as to copy another file over it begins
  EXPECT_GT(server->Get("/snom/directory").status, 0);
}

TEST_P(PhoneBookOnPostgreSQL, DoesNotWaitLongForADatabaseThatHangs) {
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
    for (auto& stream : asked) EXPECT_EQ(Parse(AllFrom(*stream)).status, 503);
    ASSERT_TRUE(cluster().Command("thaw")) << cluster().reason;
    EXPECT_TRUE(isStopped || Await([&] { return server->Get("/snom/directory").status == 200; }));
  }
}

TEST_P(PhoneBook, IsFilledOnceByServersThatStartTogether) {
  std::vector<std::future<std::unique_ptr<Server>>> starting(4);
  for (std::size_t i = 0; i < starting.size(); ++i) {
    const fs::path own = directory.path / std::to_string(i);
    fs::create_directory(own);
    starting[i] = std::async(std::launch::async, [this, own] {
      auto server = std::make_unique<Server>(own, database);
      EXPECT_TRUE(server->Listens()) << ContentOf(server->log);
      return server;
    });
  }
  for (auto& started : starting) EXPECT_EQ(started.get()->Get("/cisco/directory").status, 200);
  int contacts = 0;
  *Connect() << "SELECT count(*) FROM contacts", soci::into(contacts);
  EXPECT_EQ(contacts, 40);
  *Connect() << "DELETE FROM contacts";  // what the owner removed stays removed
  EXPECT_EQ(Parsed(Serve()->Get("/snom/directory").text).First("//Title"),
            "Nobody is in the phone book");
}

TEST_P(PhoneBook, LeavesNothingBehindWhenItIsStoppedWhileReadingIn) {
  const fs::path contacts = directory.path / "contacts.tsv";
  {
    std::ofstream file(contacts);
    for (int i = 0; i < 200000; ++i) file << "Contact " << i * 7919 % 200000 << "\t" << i << "\t\n";
  }
  Server server(directory.path, database, {"--contacts", contacts});
  EXPECT_TRUE(Await([&] {  // until it is at it
    if (!isPostgreSQL) return fs::exists(database);
    int locks = 0;
    *Connect() << "SELECT count(*) FROM pg_locks WHERE locktype = 'advisory'", soci::into(locks);
    return locks > 0;
  }));
  EXPECT_EQ(WEXITSTATUS(server.Stop()), 1);
  EXPECT_EQ(ContentOf(server.log), "phonebook: stopped; the database is as it was\n");
  EXPECT_FALSE(fs::exists(database));
  EXPECT_EQ(Parsed(Serve()->Get("/snom/directory").text).First("//Name"), "Adebayo, Folasade");
}

TEST_P(PhoneBookOnSQLite, StartsWithWhatItCanUse) {
  const auto file = [&](const std::string& name, const std::string& content) {
    std::ofstream(directory.path / name) << content;
    return (directory.path / name).string();
  };
  const std::string other = directory.path / "other.db";
  soci::session(soci::sqlite3, "dbname=\"" + other + "\"") << "CREATE TABLE contacts (id INTEGER)";
  struct Case {
    Texts options;
    std::string said;
    std::string path{};  // of the database
  };
  const std::vector<Case> cases = {
      {{}, "other tables than a phone book", other},
      {{}, "No such file", directory.path / "no" / "such.db"},
      {{}, "not a database", file("text", "no database at all, but some text")},
      {{"--contacts", file("latin.tsv", "A\t1\t\nGr\xfc\xdf\t2\t\n")}, "latin.tsv:2: this is not"},
      {{"--contacts", file("short.tsv", "# A\n\nB\t1\n")}, "short.tsv:3: expected"},
      {{"--address", "8.8.8.8"}, "can't listen on 8.8.8.8"},
      {{"--address", "somewhere"}, "can't listen on somewhere"},
      {{"--base-url", "ftp://phonebook.example"}, "it must be like http://"},
      {{"--base-url", "http://a/\"><b"}, "it must be like http://"},
  };
  for (const auto& [options, said, path] : cases) {
    Server refused(directory.path, path.empty() ? database : path, options);
    EXPECT_FALSE(refused.Listens());
    EXPECT_NE(refused.Stop(), 0);
    EXPECT_TRUE(refused.IsLogged(said)) << ContentOf(refused.log);
    EXPECT_FALSE(fs::exists(database));
  }
  const std::string odd = "file:a \"b\" 'c'?.db";
  EXPECT_TRUE(Server(directory.path, odd).Listens());
  EXPECT_GT(fs::file_size(directory.path / odd), 0U);
  const auto text = file("windows.tsv",
                         "\xEF\xBB\xBF"
                         "Anna\t1\tSales\r\nBen\t2\t\r\n");
  {
    const auto server = Serve(
        {"--contacts", text, "--address", "0.0.0.0", "--base-url", "https://phones.example/book"});
    EXPECT_FALSE(server->IsLogged("0.0.0.0"));
  }
  const auto found = Parsed(Serve()->Get("/snom/directory").text);
  EXPECT_EQ(found.Items(), (Texts{"Anna", "Ben"}));

  // A file that nobody may write, as it is and when another takes its place.
  fs::permissions(directory.path, fs::perms{0555});
  fs::permissions(database, fs::perms{0444});
  Server reader(directory.path, database, {}, false);
  ASSERT_TRUE(reader.Listens()) << ContentOf(reader.log);
  EXPECT_EQ(Parsed(reader.Get("/snom/search?name=ben").text).Items(), Texts{"Ben"});
  fs::permissions(directory.path, fs::perms::owner_all | fs::perms::others_exec);
}

}  // namespace
