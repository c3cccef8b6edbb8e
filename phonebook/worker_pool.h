/// @file
/// Threads that query the database, so that the serving thread never waits for it.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "phonebook/database/store.h"
#include "phonebook/fair_queue.h"
#include "phonebook/http_message.h"

namespace phonebook {

/// A task whose response comes from the database.
struct Task {
  /// Runs on a worker thread, and may throw.
  std::function<Response(Store&)> run;
  /// Takes the response, or else the exception of `run`, or `DatabaseUnavailable` when there is no
  /// time or place for the task. Called once, on any thread. Must not throw.
  std::function<void(Response, const std::exception_ptr&)> done;
  /// The client that the task is for. Clients take turns.
  std::string client{};
  /// Whether it takes milliseconds of the database. Others never wait for a worker until all of
  /// these are done.
  bool isLong = false;
};

/// The message of an exception.
std::string ReasonOf(const std::exception_ptr& error);

/// Worker threads, one per connection to the database, fed by two bounded queues in which clients
/// take turns: one of long tasks, which occupy half of the workers at most, and one of the others.
class WorkerPool {
 public:
  using Clock = std::chrono::steady_clock;

  /// The time for a task, including its time in the queue.
  static constexpr std::chrono::milliseconds kTimeout{2500};
  static constexpr std::size_t kMaxQueue = 512;  ///< Of either queue.

  /// @throws std::system_error when a thread can't be created.
  WorkerPool(const std::string& database, std::size_t size);

  /// Waits for the threads to end.
  ~WorkerPool();

  /// Queues a task. If its queue is full, the last task of the client with the most tasks fails at
  /// once, which may be this one; so does every task when the pool is stopped. May be called from
  /// any thread.
  void Submit(Task task);

  /// Fails the overdue tasks and interrupts their queries. Call it several times a second; it never
  /// waits for the database.
  void ExpireOverdue(Clock::time_point now = Clock::now());

  /// How many tasks wait for a worker. May be called from any thread.
  std::size_t Queued();

  /// Fails all tasks and ends the threads.
  /// @return whether they have ended within `timeout`. If not, the destructor may wait forever.
  bool Stop(std::chrono::milliseconds timeout);

 private:
  struct QueuedTask {
    Task task;
    Clock::time_point deadline;
    std::atomic<bool> isFinished = false;  // its response is delivered, or will be by one thread
  };
  // The tasks of a kind.
  struct Lane {
    FairQueue<std::shared_ptr<QueuedTask>> queue;
    Clock::duration average{};  // of the running time of tasks, without delivery
    std::size_t running = 0;
    std::size_t maxRunning = 0;
    bool IsReady() const { return queue.Size() > 0 && running < maxRunning; }
  };
  struct Worker {
    explicit Worker(const std::string& database) : store(database) {}
    Store store;
    std::shared_ptr<QueuedTask> task;
    Clock::time_point begin;  // of the task
    Clock::time_point end;    // of its query; the worker's own
    bool isAsleep = false;
    std::condition_variable wake;
    std::thread thread;
  };

  void Join();
  void Work(Worker& worker);
  std::shared_ptr<QueuedTask> NextTask(Worker& worker);
  static void Run(Worker& worker, QueuedTask& queued);
  bool Queue(std::shared_ptr<QueuedTask>& queued);
  Lane& LaneOf(const QueuedTask& queued) { return queued.task.isLong ? longTasks : shortTasks; }
  Lane* NextLane();
  void WakeWorker();

  std::mutex mutex;
  std::condition_variable ended;
  Lane shortTasks, longTasks;
  bool isLongNext = false;
  std::deque<Worker> workers;
  std::size_t running = 0;  // workers
  bool isStopping = false;
};

}  // namespace phonebook
