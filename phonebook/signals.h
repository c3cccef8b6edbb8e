/// @file
/// SIGTERM and SIGINT, which stop the program.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

namespace phonebook {

/// Handles SIGTERM and SIGINT. Must be created before other threads, which inherit the signal mask,
/// and outlive `main`.
class Signals {
 public:
  /// @param status with which a signal ends the program while no handler is set.
  explicit Signals(int status);

  /// Calls `handler` on a signal, at once if there was one before, while the returned value lives.
  std::shared_ptr<void> OnStop(std::function<void()> handler);

  std::atomic<bool> isStopped = false;

 private:
  std::mutex mutex;
  std::function<void()> stop;
};

}  // namespace phonebook
