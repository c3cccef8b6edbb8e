// Counts and, on demand, fails the allocations of the thread that asks.
#pragma once

#include <cstddef>

struct Allocations {
  std::size_t made = 0;    // since the counting began
  long alive = 0;          // made and not yet freed
  std::size_t failAt = 0;  // this one, counted from 1, and all after it fail; 0: none

  // Starts counting anew.
  static Allocations& Watch(std::size_t failAt = 0);
};
