// The order, bounds and deadlines of tasks.
#include "phonebook/worker_pool.h"

#include <gtest/gtest.h>

#include <cctype>
#include <chrono>
#include <exception>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>

namespace phonebook {

namespace {

// A pool of one worker, whose first task runs until the gate opens.
class WorkerPoolWithGate : public testing::Test {
 protected:
  WorkerPoolWithGate() {
    const auto started = std::make_shared<std::promise<void>>();
    Submit("gate", [started, opened = gate.get_future().share()] {
      started->set_value();
      opened.wait();
    });
    started->get_future().wait();
  }
  ~WorkerPoolWithGate() override { Open(); }

  // A task that tells in `delivered` how it ends: by its name, and the message of an exception.
  // Its client is the first character of its name; a capital has long tasks.
  void Submit(const std::string& name, const std::function<void()>& run = nullptr) {
    pool.Submit({[name, run](Store&) {
                   if (run != nullptr) run();
                   return Response{200, "", name};
                 },
                 [this, name](const Response& response, const std::exception_ptr& error) {
                   const std::lock_guard lock(mutex);
                   delivered += (error ? name + ": " + ReasonOf(error) : response.body) + "\n";
                 },
                 name.substr(0, 1), std::isupper(name.front()) != 0});
  }
  void Open() {
    if (!std::exchange(isOpen, true)) gate.set_value();
  }
  // Waits until the worker has finished what was submitted before.
  void Finish() {
    const auto finished = std::make_shared<std::promise<void>>();
    pool.Submit({[](Store&) { return Response{}; },
                 [finished](const Response&, const std::exception_ptr&) { finished->set_value(); },
                 "z"});
    finished->get_future().wait();
  }
  std::string Delivered() {
    const std::lock_guard lock(mutex);
    return std::exchange(delivered, "");
  }

  static std::string Late(const std::string& name) {
    return name + ": the database takes too long\n";
  }

  std::mutex mutex;
  std::string delivered;
  bool isOpen = false;
  std::promise<void> gate;
  WorkerPool pool{"never opened.db", 1};
};

TEST_F(WorkerPoolWithGate, LetsClientsTakeTurns) {
  Submit("a1");
  Submit("a2", [] { throw std::runtime_error("failed"); });
  Submit("a3");
  Submit("b1");
  Submit("c1");
  Submit("b2");
  for (const char* name : {"A1", "A2", "B1"}) Submit(name);
  EXPECT_EQ(Delivered(), "");
  Open();
  Finish();
  Finish();
  Finish();
  EXPECT_EQ(Delivered(), "gate\nA1\na1\nB1\nb1\nA2\nc1\na2: failed\nb2\na3\n");
}

TEST(WorkerPool, KeepsWorkersForShortTasks) {
  std::promise<void> gate, isShortDone;
  WorkerPool pool("never opened.db", 2);
  const auto submit = [&](bool isLong, const std::function<void()>& run) {
    pool.Submit({[run](Store&) { return run(), Response{}; },
                 [](const Response&, const std::exception_ptr&) {}, "", isLong});
  };
  const auto opened = gate.get_future().share();
  for (int i = 0; i < 2; ++i) submit(true, [opened] { opened.wait(); });
  submit(false, [&] { isShortDone.set_value(); });
  EXPECT_EQ(isShortDone.get_future().wait_for(std::chrono::seconds(30)), std::future_status::ready);
  gate.set_value();
}

TEST_F(WorkerPoolWithGate, BoundsItsQueue) {
  std::string all = "gate\n";
  for (std::size_t i = 2; i < WorkerPool::kMaxQueue; ++i) {
    Submit("a" + std::to_string(i));
    all += "a" + std::to_string(i) + (i == 2 ? "\nb\n" : "\n");
  }
  const auto last = std::make_shared<std::promise<void>>();
  Submit("a last", [last] { last->set_value(); });
  Submit("a replaced");
  EXPECT_EQ(Delivered(), "");
  Submit("a one more");
  EXPECT_EQ(Delivered(), Late("a one more"));
  Submit("b");
  EXPECT_EQ(Delivered(), Late("a replaced"));
  Open();
  last->get_future().wait();
  Finish();
  EXPECT_EQ(Delivered(), all + "a last\n");
}

TEST_F(WorkerPoolWithGate, ExpiresRunningAndQueuedTasks) {
  Submit("1");
  const auto now = WorkerPool::Clock::now();
  pool.ExpireOverdue(now);
  EXPECT_EQ(Delivered(), "");
  pool.ExpireOverdue(now + WorkerPool::kTimeout);
  EXPECT_EQ(Delivered(), Late("1") + Late("gate"));
  pool.ExpireOverdue(now + WorkerPool::kTimeout);
  Submit("2");
  Open();
  Finish();
  EXPECT_EQ(Delivered(), "2\n");  // the gate's response came too late
}

}  // namespace

}  // namespace phonebook
