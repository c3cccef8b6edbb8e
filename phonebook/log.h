/// @file
/// The log: lines on stderr, each with time and level. A thread of its own writes them, so that
/// nobody else waits for a slow reader.
#pragma once

#include <spdlog/common.h>

#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace phonebook {

/// Starts the thread. Lines logged before are written at once.
/// @throws std::system_error when the thread can't be created.
void StartLog();

/// Logs a line, of which at most 950 characters are written. Control characters become spaces.
/// Lines that exceed the queue are dropped and counted. May be called from any thread; never waits.
void Log(spdlog::level::level_enum level, std::string_view line);

/// Logs a line about a request, unless there are too many from its client in this second.
void LogRequest(spdlog::level::level_enum level, const std::string& client, std::string_view line);

/// Logs how many lines have been dropped or exceeded the limit of a client. Call it every second.
void LogOmitted();

/// Waits until all lines are written, at most for `timeout`.
void FlushLog(std::chrono::milliseconds timeout);

/// Counts the lines of each client in an interval. Callable from any thread.
class ClientLineLimit {
 public:
  static constexpr std::size_t kMaxLines = 100;     ///< Of a client.
  static constexpr std::size_t kMaxClients = 1000;  ///< Further ones share one limit.

  /// Counts a line.
  /// @return whether the client may have it.
  bool Admit(const std::string& client);

  /// Begins the next interval.
  /// @return the clients that exceeded the limit, and by how many lines.
  std::vector<std::pair<std::string, std::size_t>> Reset();

 private:
  std::mutex mutex;
  std::unordered_map<std::string, std::size_t> lines;
};

}  // namespace phonebook
