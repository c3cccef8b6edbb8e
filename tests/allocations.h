// Counts the allocations of the current thread and can make them fail.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <new>

struct Allocations {
  std::size_t count = 0;   // since StartCounting
  long live = 0;           // allocated and not yet freed
  std::size_t failAt = 0;  // the first allocation to fail, counted from 1; 0: none fails

  // Resets `count` and `failAt`, but not `live`.
  static Allocations& StartCounting(std::size_t failAt = 0);
};

// Runs `action` with memory running out at each of its allocations, until it succeeds. A failure
// must leave nothing allocated and what `expectUnchanged` tests.
// @return the number of failures.
inline std::size_t FailEachAllocation(
    const std::function<void()>& action, const std::function<void()>& expectUnchanged = [] {}) {
  std::size_t failures = 0;
  for (; failures < 1000; ++failures) {
    const long before = Allocations::StartCounting(failures + 1).live;
    try {
      action();
      Allocations::StartCounting();
      return failures;
    } catch (const std::bad_alloc&) {
      const long after = Allocations::StartCounting().live;
      EXPECT_EQ(after, before) << failures;
      expectUnchanged();
    }
  }
  ADD_FAILURE() << "too many allocations";
  return failures;
}
