#include "phonebook/worker_pool.h"

#include <algorithm>
#include <utility>

namespace phonebook {

namespace {

void FailUnserved(const Task& task) {
  task.done({}, std::make_exception_ptr(DatabaseUnavailable("the database takes too long")));
}

}  // namespace

std::string ReasonOf(const std::exception_ptr& error) {
  try {
    std::rethrow_exception(error);
  } catch (const std::exception& failure) {
    return failure.what();
  }
}

WorkerPool::WorkerPool(const std::string& database, std::size_t size) : running(size) {
  shortTasks.maxRunning = size;
  longTasks.maxRunning = std::max<std::size_t>(size / 2, 1);
  for (std::size_t i = 0; i < size; ++i) workers.emplace_back(database);
  try {
    for (auto& worker : workers) {
      worker.thread = std::thread([this, &worker] { Work(worker); });
    }
  } catch (...) {
    Join();
    throw;
  }
}

WorkerPool::~WorkerPool() { Join(); }

void WorkerPool::Join() {
  Stop({});
  for (auto& worker : workers) {
    if (worker.thread.joinable()) worker.thread.join();
  }
}

void WorkerPool::Submit(Task task) {
  auto queued = std::make_shared<QueuedTask>();
  queued->task = std::move(task);
  queued->deadline = Clock::now() + kTimeout;
  if (!Queue(queued)) FailUnserved(queued->task);
}

// Queues a task. Otherwise returns false, and in `queued` the one that has no place.
bool WorkerPool::Queue(std::shared_ptr<QueuedTask>& queued) {
  const std::lock_guard lock(mutex);
  if (isStopping) return false;
  std::shared_ptr<QueuedTask> replaced;
  auto& queue = LaneOf(*queued).queue;
  const bool isFull = queue.Size() >= kMaxQueue;
  if (isFull && !queue.PopFromLargest(queued->task.client, replaced)) return false;
  queue.Push(queued->task.client, queued);
  WakeWorker();
  if (isFull) queued = std::move(replaced);
  return !isFull;
}

void WorkerPool::Work(Worker& worker) {
  while (const auto task = NextTask(worker)) Run(worker, *task);
}

// Waits for a task. Returns none when the pool is stopped.
std::shared_ptr<WorkerPool::QueuedTask> WorkerPool::NextTask(Worker& worker) {
  std::shared_ptr<QueuedTask> previous;  // is destroyed without the lock
  std::unique_lock lock(mutex);
  previous = std::exchange(worker.task, nullptr);
  if (previous != nullptr) {
    Lane& lane = LaneOf(*previous);
    lane.average += (worker.end - worker.begin - lane.average) / 16;
    --lane.running;
  }
  Lane* lane = nullptr;
  while ((lane = NextLane()) == nullptr && !isStopping) {
    worker.isAsleep = true;
    worker.wake.wait(lock, [&] { return !worker.isAsleep || isStopping; });
  }
  if (isStopping) {
    --running;
    ended.notify_all();
    return nullptr;
  }
  worker.task = lane->queue.Pop();
  ++lane->running;
  worker.begin = Clock::now();
  if (worker.task->task.isLong) WakeWorker();  // for short tasks, which don't wait for this one
  return worker.task;
}

// Returns the lane whose turn it is; null if no task may run.
WorkerPool::Lane* WorkerPool::NextLane() {
  Lane* lane = isLongNext ? &longTasks : &shortTasks;
  if (!lane->IsReady()) lane = isLongNext ? &shortTasks : &longTasks;
  if (!lane->IsReady()) return nullptr;
  isLongNext = lane == &shortTasks;
  return lane;
}

// Runs a task and finishes it, unless it has expired meanwhile.
void WorkerPool::Run(Worker& worker, QueuedTask& queued) {
  Response response;
  std::exception_ptr error;
  try {
    response = queued.task.run(worker.store);
  } catch (...) {
    error = std::current_exception();
  }
  worker.end = Clock::now();
  if (!queued.isFinished.exchange(true)) queued.task.done(std::move(response), error);
}

// Where tasks take some microseconds, more than one worker spends more time on taking turns than on
// them: others are woken only if those that are awake won't reach the last task soon.
void WorkerPool::WakeWorker() {
  constexpr std::chrono::milliseconds kSoon(1);
  const auto now = Clock::now();
  Worker* sleeper = nullptr;
  int awake = 0;
  for (auto& worker : workers) {
    if (worker.isAsleep) {
      if (sleeper == nullptr) sleeper = &worker;
    } else if (worker.task == nullptr ||
               (!worker.task->task.isLong && now - worker.begin < kSoon)) {
      ++awake;
    }
  }
  Clock::duration wait{};
  for (const auto* lane : {&shortTasks, &longTasks}) {
    if (lane->IsReady()) wait += lane->average * static_cast<int>(lane->queue.Size());
  }
  const bool isReady = shortTasks.IsReady() || longTasks.IsReady();
  if (!isReady || sleeper == nullptr || wait < awake * kSoon) return;
  sleeper->isAsleep = false;
  sleeper->wake.notify_one();
}

void WorkerPool::ExpireOverdue(Clock::time_point now) {
  std::vector<std::shared_ptr<QueuedTask>> expired;
  {
    const std::lock_guard lock(mutex);
    for (auto* lane : {&shortTasks, &longTasks}) {
      lane->queue.TakeLeading([now](const auto& queued) { return queued->deadline <= now; },
                              [&](auto queued) { expired.push_back(std::move(queued)); });
    }
    for (auto& worker : workers) {
      if (worker.task == nullptr || worker.task->deadline > now) continue;
      if (!worker.task->isFinished.exchange(true)) expired.push_back(worker.task);
      worker.store.Interrupt();
    }
    WakeWorker();
  }
  for (const auto& queued : expired) FailUnserved(queued->task);
}

std::size_t WorkerPool::Queued() {
  const std::lock_guard lock(mutex);
  return shortTasks.queue.Size() + longTasks.queue.Size();
}

bool WorkerPool::Stop(std::chrono::milliseconds timeout) {
  constexpr std::chrono::milliseconds kInterval(50);
  const auto end = Clock::now() + timeout;
  std::unique_lock lock(mutex);
  isStopping = true;
  for (auto& worker : workers) worker.wake.notify_one();
  do {
    lock.unlock();
    ExpireOverdue(Clock::time_point::max());
    lock.lock();
    ended.wait_until(lock, std::min(end, Clock::now() + kInterval),
                     [this] { return running == 0; });
  } while (running > 0 && Clock::now() < end);
  return running == 0;
}

}  // namespace phonebook
