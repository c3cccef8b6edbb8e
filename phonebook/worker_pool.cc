#include "phonebook/worker_pool.h"

#include <utility>

namespace phonebook {

WorkerPool::WorkerPool(const std::string& database, std::size_t count) : running(count) {
  for (std::size_t i = 0; i < count; ++i) workers.emplace_back(database);
  for (auto& worker : workers) {
    worker.thread = std::thread([this, &worker] { Work(worker); });
  }
}

WorkerPool::~WorkerPool() {
  Stop({});
  for (auto& worker : workers) worker.thread.join();
}

void WorkerPool::Do(Job job) {
  {
    const std::lock_guard lock(mutex);
    if (queue.size() < kLongestQueue && !isStopping) {
      queue.push_back(std::make_shared<Task>(Task{std::move(job), Clock::now() + kPatience}));
      WakeSomebody();
      return;
    }
  }
  job.giveUp();
}

void WorkerPool::Watch() {
  GiveUp(Clock::now());
  const std::lock_guard lock(mutex);
  WakeSomebody();
}

bool WorkerPool::Stop(std::chrono::milliseconds patience) {
  constexpr std::chrono::milliseconds kGlance(50);
  const auto end = Clock::now() + patience;
  std::unique_lock lock(mutex);
  isStopping = true;
  for (auto& worker : workers) worker.wake.notify_one();
  while (running > 0 && Clock::now() < end) {
    lock.unlock();
    GiveUp(Clock::time_point::max());
    lock.lock();
    ended.wait_for(lock, kGlance, [this] { return running == 0; });
  }
  return running == 0;
}

void WorkerPool::Work(Worker& worker) {
  std::function<void()> answer;
  for (std::unique_lock lock(mutex);; lock.lock()) {
    auto task = std::exchange(worker.task, nullptr);
    const bool isLate = task != nullptr && std::exchange(task->isOver, true);
    if (task != nullptr) average += (Clock::now() - worker.begin - average) / 16;
    while (task == nullptr && queue.empty() && !isStopping) {
      worker.isAsleep = true;
      worker.wake.wait(lock, [&] { return !worker.isAsleep || isStopping; });
    }
    if (task == nullptr && isStopping) {
      --running;
      ended.notify_all();
      return;
    }
    if (!queue.empty()) {
      worker.task = std::move(queue.front());
      queue.pop_front();
      worker.begin = Clock::now();
    }
    lock.unlock();
    if (task != nullptr && !isLate) answer();
    if (worker.task != nullptr) answer = worker.task->job.ask(worker.store);
  }
}

// Where jobs take some microseconds, more than one worker spends more time on taking turns than on
// them: others are woken only if those who are awake won't come to the last job soon.
void WorkerPool::WakeSomebody() {
  constexpr std::chrono::milliseconds kSoon(1);
  const auto now = Clock::now();
  Worker* sleeper = nullptr;
  int awake = 0;
  for (auto& worker : workers) {
    if (worker.isAsleep) {
      if (sleeper == nullptr) sleeper = &worker;
    } else if (worker.task == nullptr || now - worker.begin < kSoon) {
      ++awake;
    }
  }
  const auto wait = average * static_cast<int>(queue.size());
  if (queue.empty() || sleeper == nullptr || wait < awake * kSoon) return;
  sleeper->isAsleep = false;
  sleeper->wake.notify_one();
}

void WorkerPool::GiveUp(Clock::time_point dueBefore) {
  std::vector<std::shared_ptr<Task>> late;
  {
    const std::lock_guard lock(mutex);
    while (!queue.empty() && queue.front()->due <= dueBefore) {
      late.push_back(std::move(queue.front()));
      queue.pop_front();
    }
    for (auto& worker : workers) {
      if (worker.task == nullptr || worker.task->due > dueBefore) continue;
      if (!std::exchange(worker.task->isOver, true)) late.push_back(worker.task);
      worker.store.Interrupt();
    }
  }
  for (const auto& task : late) task->job.giveUp();
}

}  // namespace phonebook
