#include "allocations.h"

#include <cstdlib>
#include <new>

namespace {
thread_local Allocations watched;
}

Allocations& Allocations::Watch(std::size_t failAt) {
  watched = {0, watched.alive, failAt};
  return watched;
}

void* operator new(std::size_t size) {
  ++watched.made;
  if (watched.failAt != 0 && watched.made >= watched.failAt) throw std::bad_alloc();
  void* const memory = std::malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  ++watched.alive;
  return memory;
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  try {
    return operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void operator delete(void* memory) noexcept {
  if (memory == nullptr) return;
  --watched.alive;
  std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept { operator delete(memory); }
