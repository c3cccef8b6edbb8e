/// @file
/// The phone book in a process of its own, and a client of it.
#pragma once

#include <sys/types.h>

#include <boost/asio/ip/tcp.hpp>
#include <boost/noncopyable.hpp>
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace phonebook::tests {

using Texts = std::vector<std::string>;

std::string ContentOf(const std::filesystem::path& path);

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
HTTPResponse ParseResponse(const std::string& bytes);

/// All bytes until the server closes the connection.
std::string ReadAll(boost::asio::ip::tcp::iostream& stream);

/// Starts the server on a free port, and stops it at the end.
class ServerProcess : boost::noncopyable {
 public:
  /// @param directory the working directory and place of the log.
  /// @param isOwner false runs it as a user who owns nothing.
  ServerProcess(const std::filesystem::path& directory, const std::string& database,
                const Texts& options = {}, bool isOwner = true);
  ~ServerProcess();

  /// Waits until the server listens or ends.
  /// @return whether it listens.
  bool Listens();

  /// Returns the exit status, as `waitpid` reports it.
  int Stop();

  bool IsLogged(const std::string& text) const;

  std::unique_ptr<boost::asio::ip::tcp::iostream> Connect() const;

  /// Sends `bytes` and reads until the server closes the connection.
  std::string Exchange(const std::string& bytes) const;

  /// @param uri a path, or the URI of a page of this server.
  HTTPResponse Get(const std::string& uri, const std::string& userAgent = "a phone") const;

  std::filesystem::path log;
  std::string base;  ///< The beginning of its URIs.
  std::string port;

 private:
  pid_t process = 0;
  int exitStatus = 0;
};

}  // namespace phonebook::tests
