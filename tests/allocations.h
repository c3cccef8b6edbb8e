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

// Toolchains with which memory leaks when it runs out, in the library as well: GCC before 12
// doesn't destroy the members of an aggregate whose initialization throws, as in the setters of the
// Aastra input, the Aastra status and the Snom input. With libc++ before 16, composing screens
// leaks.
#if (defined(__GNUC__) && !defined(__clang__) && __GNUC__ < 12) || \
    (defined(_LIBCPP_VERSION) && _LIBCPP_VERSION < 16000)
constexpr bool kToolchainLeaks = true;
#else
constexpr bool kToolchainLeaks = false;
#endif

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
      EXPECT_TRUE(after == before || kToolchainLeaks) << failures << ": " << after - before;
      expectUnchanged();
    }
  }
  ADD_FAILURE() << "too many allocations";
  return failures;
}
