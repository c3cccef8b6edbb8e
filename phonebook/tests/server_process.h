/// @file
/// The phone book in a process of its own, and a client of it.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <boost/asio/ip/tcp.hpp>
#include <boost/noncopyable.hpp>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace phonebook::tests {

using Texts = std::vector<std::string>;

inline std::string ContentOf(const std::filesystem::path& path) {
  std::ostringstream content;
  content << std::ifstream(path).rdbuf();
  return content.str();
}

/// Waits for a condition that holds soon or never.
template <typename Condition>
bool Eventually(Condition condition) {
  for (int i = 0; i < 2000; ++i) {
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return false;
}

struct HTTPResponse {
  int status = 0;
  std::string header;  ///< With the status line.
  std::string text;
};

/// The only or first response in `bytes`; its status is 0 if it is incomplete.
inline HTTPResponse ParseResponse(const std::string& bytes) {
  const auto end = bytes.find("\r\n\r\n");
  if (end == bytes.npos) return {};
  return {std::stoi(bytes.substr(9, 3)), bytes.substr(0, end + 2), bytes.substr(end + 4)};
}

/// All bytes until the server closes the connection.
inline std::string ReadAll(boost::asio::ip::tcp::iostream& stream) {
  std::ostringstream all;
  all << stream.rdbuf();
  EXPECT_EQ(stream.error(), boost::asio::error::eof);
  return all.str();
}

/// Starts the server on a free port, and stops it at the end.
class ServerProcess : boost::noncopyable {
 public:
  /// @param directory the working directory and place of the log.
  /// @param mayAccessAll false withdraws the right of root to access all files.
  ServerProcess(const std::filesystem::path& directory, const std::string& database,
                const Texts& options = {}, bool mayAccessAll = true)
      : log(directory / "log") {
    const int out = open(log.c_str(), O_CREAT | O_WRONLY | O_TRUNC | O_APPEND | O_CLOEXEC, 0600);
    Texts words = {PHONEBOOK,     "--port",     "0",     "--admin-address",
                   "127.0.0.1:0", "--database", database};
    words.insert(words.end(), options.begin(), options.end());
    std::vector<char*> arguments;
    for (auto& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    process = fork();
    if (process == 0) {
      dup2(out, STDOUT_FILENO);
      dup2(out, STDERR_FILENO);
      // Another user could not run a server that lies in a folder of root alone.
      for (const int right : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH}) {
        if (!mayAccessAll && geteuid() == 0) prctl(PR_CAPBSET_DROP, right);
      }
      if (chdir(directory.c_str()) == 0) execv(PHONEBOOK, arguments.data());
      _exit(127);
    }
    close(out);
  }
  ~ServerProcess() { EXPECT_TRUE(process == 0 || Stop() == 0) << ContentOf(log); }

  /// Waits until the server listens or ends.
  /// @return whether it listens.
  bool Listens() {
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

  /// Returns the exit status, as `waitpid` reports it.
  int Stop() {
    if (process == 0) return exitStatus;
    kill(process, SIGTERM);
    waitpid(std::exchange(process, 0), &exitStatus, 0);
    return exitStatus;
  }

  bool IsLogged(const std::string& text) const {
    return ContentOf(log).find(text) != std::string::npos;
  }

  std::unique_ptr<boost::asio::ip::tcp::iostream> Connect() const {
    auto stream = std::make_unique<boost::asio::ip::tcp::iostream>();
    stream->expires_after(std::chrono::seconds(30));
    stream->connect("127.0.0.1", port);
    EXPECT_TRUE(*stream) << stream->error().message();
    return stream;
  }

  /// Sends `bytes` and reads until the server closes the connection.
  std::string Exchange(const std::string& bytes) const {
    const auto stream = Connect();
    *stream << bytes << std::flush;
    return ReadAll(*stream);
  }

  /// @param uri a path, or the URI of a page of this server.
  HTTPResponse Get(const std::string& uri, const std::string& userAgent = "a phone") const {
    const bool isWhole = uri.rfind(base, 0) == 0;
    return ParseResponse(Exchange("GET " + (isWhole ? uri.substr(base.size()) : uri) +
                                  " HTTP/1.0\r\nHost: " + base.substr(7) +
                                  "\r\nUser-Agent: " + userAgent + "\r\n\r\n"));
  }

  /// What a monitor gets, of its own address.
  HTTPResponse GetAsMonitor(const std::string& path, const std::string& host = "localhost") {
    const std::string said = ContentOf(log), address = "for a monitor, http://127.0.0.1:";
    const std::string own = port;
    port = said.substr(said.find(address) + address.size());
    port.resize(port.find('/'));
    auto response =
        ParseResponse(Exchange("GET " + path + " HTTP/1.0\r\nHost: " + host + "\r\n\r\n"));
    port = own;
    return response;
  }

  std::filesystem::path log;
  std::string base;  ///< The beginning of its URIs.
  std::string port;

 private:
  pid_t process = 0;
  int exitStatus = 0;
};

}  // namespace phonebook::tests
