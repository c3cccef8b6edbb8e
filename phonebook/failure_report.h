/// @file
/// Reports a repeated failure once.
#pragma once

#include <exception>
#include <mutex>
#include <string>
#include <utility>

namespace phonebook {

/// Tells new reasons from those of the run before, for work that is tried several times a second.
/// Callable from any thread.
class FailureReport {
 public:
  /// @return what to log; empty if the last run failed for the same reason.
  std::string NewReason(const std::exception_ptr& error) {
    std::string reason = "unknown";
    try {
      std::rethrow_exception(error);
    } catch (const std::exception& failure) {
      reason = failure.what();
    } catch (...) {
    }
    const std::lock_guard lock(mutex);
    return std::exchange(last, reason) == reason ? "" : reason;
  }

  /// Forgets the reason, after a run that succeeded.
  void Clear() {
    const std::lock_guard lock(mutex);
    last.clear();
  }

 private:
  std::mutex mutex;
  std::string last;
};

}  // namespace phonebook
