#include "phonebook/tests/server_process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <sstream>
#include <utility>

namespace phonebook::tests {

using boost::asio::ip::tcp;

std::string ContentOf(const std::filesystem::path& path) {
  std::ostringstream content;
  content << std::ifstream(path).rdbuf();
  return content.str();
}

HTTPResponse ParseResponse(const std::string& bytes) {
  const auto end = bytes.find("\r\n\r\n");
  if (end == bytes.npos) return {};
  return {std::stoi(bytes.substr(9, 3)), bytes.substr(0, end + 2), bytes.substr(end + 4)};
}

std::string ReadAll(tcp::iostream& stream) {
  std::ostringstream all;
  all << stream.rdbuf();
  EXPECT_EQ(stream.error(), boost::asio::error::eof);
  return all.str();
}

ServerProcess::ServerProcess(const std::filesystem::path& directory, const std::string& database,
                             const Texts& options, bool isOwner)
    : log(directory / "log") {
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

ServerProcess::~ServerProcess() { EXPECT_TRUE(process == 0 || Stop() == 0) << ContentOf(log); }

bool ServerProcess::Listens() {
  EXPECT_TRUE(Eventually(
      [&] { return IsLogged("/preview") || waitpid(process, &exitStatus, WNOHANG) != 0; }));
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

int ServerProcess::Stop() {
  if (process == 0) return exitStatus;
  kill(process, SIGTERM);
  waitpid(std::exchange(process, 0), &exitStatus, 0);
  return exitStatus;
}

bool ServerProcess::IsLogged(const std::string& text) const {
  return ContentOf(log).find(text) != std::string::npos;
}

std::unique_ptr<tcp::iostream> ServerProcess::Connect() const {
  auto stream = std::make_unique<tcp::iostream>();
  stream->expires_after(std::chrono::seconds(30));
  stream->connect("127.0.0.1", port);
  EXPECT_TRUE(*stream) << stream->error().message();
  return stream;
}

std::string ServerProcess::Exchange(const std::string& bytes) const {
  const auto stream = Connect();
  *stream << bytes << std::flush;
  return ReadAll(*stream);
}

HTTPResponse ServerProcess::Get(const std::string& uri, const std::string& userAgent) const {
  const bool isWhole = uri.rfind(base, 0) == 0;
  return ParseResponse(Exchange("GET " + (isWhole ? uri.substr(base.size()) : uri) +
                                " HTTP/1.0\r\nHost: " + base.substr(7) +
                                "\r\nUser-Agent: " + userAgent + "\r\n\r\n"));
}

}  // namespace phonebook::tests
