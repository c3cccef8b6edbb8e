// Counts the allocations of the process and can make those of the current thread fail.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <new>
#include <thread>

struct Allocations {
  std::size_t count = 0;   // since StartCounting
  std::size_t failAt = 0;  // the first allocation to fail, counted from 1; 0: none fails

  // Resets those of the current thread.
  static Allocations& StartCounting(std::size_t failAt = 0);

  // What all threads have allocated and not yet freed.
  static long LiveBlocks();
  static long LiveBytes();
};

// Runs `action` in a thread of its own, as what a thread pools is freed when it ends. Expects that
// nothing stays allocated.
inline void ExpectToFreeAll(const std::function<void()>& action) {
  const long before = Allocations::LiveBlocks();
  std::thread(action).join();
  EXPECT_EQ(Allocations::LiveBlocks(), before);
}

// Runs `action` with memory running out at each of its allocations, until it succeeds. A failure
// must leave nothing allocated and what `expectUnchanged` tests.
// @return the number of failures.
inline std::size_t FailEachAllocation(
    const std::function<void()>& action, const std::function<void()>& expectUnchanged = [] {}) {
  std::size_t failures = 0;
  for (bool hasFailed = true; hasFailed && failures < 1000; failures += hasFailed ? 1 : 0) {
    const auto attempt = [&] {
      Allocations::StartCounting(failures + 1);
      try {
        action();
        hasFailed = false;
      } catch (const std::bad_alloc&) {
      }
      Allocations::StartCounting();
    };
    const long before = Allocations::LiveBlocks();
    std::thread(attempt).join();
    if (!hasFailed) break;
    EXPECT_EQ(Allocations::LiveBlocks(), before) << failures;
    expectUnchanged();
  }
  EXPECT_LT(failures, 1000U);
  return failures;
}
