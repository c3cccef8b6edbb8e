/// @file
/// Threads that ask the database, so that nobody else waits for it.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "phonebook/database/store.h"

namespace phonebook {

/// Something to ask the database. Neither function may throw.
struct Job {
  /// Asks on a worker, and gives how to tell the answer, which is called if there is still time.
  std::function<std::function<void()>(Store&)> ask;
  /// Called instead, on any thread, when there is no time for an answer.
  std::function<void()> giveUp;
};

/// As many threads as connections to the database, and a bounded queue before them. What does not
/// fit, or takes longer than `kPatience`, waiting included, is given up.
class WorkerPool {
 public:
  static constexpr std::chrono::milliseconds kPatience{2500};
  static constexpr std::size_t kLongestQueue = 512;

  WorkerPool(const std::string& database, std::size_t count);

  /// Waits for the threads to end.
  ~WorkerPool();

  /// May be called from any thread.
  void Do(Job job);

  /// Gives up what has taken too long, and frees the workers that are at it. To be called several
  /// times a second; it never waits for the database.
  void Watch();

  /// Gives up all jobs and ends the threads.
  /// @return whether they have ended within `patience`. If not, the destructor may wait for ever.
  bool Stop(std::chrono::milliseconds patience);

 private:
  using Clock = std::chrono::steady_clock;
  struct Task {
    Job job;
    Clock::time_point due;
    bool isOver = false;  // that is answered or given up
  };
  struct Worker {
    explicit Worker(const std::string& database) : store(database) {}
    Store store;
    std::shared_ptr<Task> task;  // that it is at
    Clock::time_point begin;     // of the task
    bool isAsleep = false;
    std::condition_variable wake;
    std::thread thread;
  };

  void Work(Worker& worker);
  void WakeSomebody();
  void GiveUp(Clock::time_point dueBefore);

  std::mutex mutex;
  std::condition_variable ended;
  std::deque<std::shared_ptr<Task>> queue;
  std::deque<Worker> workers;
  Clock::duration average{};  // of what jobs take
  std::size_t running = 0;
  bool isStopping = false;
};

}  // namespace phonebook
