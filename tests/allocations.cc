#include "allocations.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
thread_local Allocations allocations;
std::atomic<long> liveBlocks, liveBytes;
}  // namespace

Allocations& Allocations::StartCounting(std::size_t failAt) {
  allocations = {0, failAt};
  return allocations;
}

long Allocations::LiveBlocks() { return liveBlocks; }

long Allocations::LiveBytes() { return liveBytes; }

void* operator new(std::size_t size) {
  ++allocations.count;
  if (allocations.failAt != 0 && allocations.count >= allocations.failAt) throw std::bad_alloc();
  void* const memory = std::malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  ++liveBlocks;
  liveBytes += static_cast<long>(malloc_usable_size(memory));
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
  --liveBlocks;
  liveBytes -= static_cast<long>(malloc_usable_size(memory));
  std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept { operator delete(memory); }
