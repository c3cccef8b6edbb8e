// Counts the allocations of the current thread and can make them fail.
#pragma once

#include <cstddef>

struct Allocations {
  std::size_t count = 0;   // since StartCounting
  long live = 0;           // allocated and not yet freed
  std::size_t failAt = 0;  // the first allocation to fail, counted from 1; 0: none fails

  // Resets `count` and `failAt`, but not `live`.
  static Allocations& StartCounting(std::size_t failAt = 0);
};
