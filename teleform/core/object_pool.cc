#include <teleform/core/object_pool.h>

#include <algorithm>
#include <new>

namespace teleform {

constinit thread_local ObjectPool::Thread ObjectPool::thisThread = {nullptr, !kIsPooling};

void ObjectPool::ThreadPools::DeleteObjects() noexcept {
  for (auto& pool : classes) {
    for (const auto& pooled : pool.objects) pool.deleteObject(pooled.object);
    std::vector<ClassPool::Pooled>().swap(pool.objects);  // the list as well
  }
  bytes = 0;
}

ObjectPool::ClassPool* ObjectPool::AddClass(void (*deleteObject)(void*)) noexcept {
  struct AtThreadEnd {
    ~AtThreadEnd() {
      thisThread.isEnding = true;
      delete std::exchange(thisThread.pools, nullptr);
    }
  };
  if (thisThread.isEnding) return nullptr;  // documents that end later
  try {
    if (thisThread.pools == nullptr) {
      thisThread.pools = new ThreadPools;
      static thread_local const AtThreadEnd atThreadEnd;
    }
    return &thisThread.pools->classes.emplace_front(ClassPool{deleteObject});
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void ObjectPool::MakeRoomFor(ClassPool& pool, std::size_t objects) noexcept {
  ThreadPools& pools = *thisThread.pools;
  // Classes whose pools are full would leave nothing for a class that comes later.
  const bool hasNoShare = std::exchange(pool.wasEmpty, false);
  if (hasNoShare && pools.bytes > kMaxPooledBytes / 2) pools.DeleteObjects();
  constexpr std::size_t kListBytes = sizeof(ClassPool::Pooled);
  constexpr std::size_t kMost = kMaxPooledBytes / (sizeof(IPPhoneDirectoryEntry) + kListBytes);
  const std::size_t before = pool.objects.capacity();
  const std::size_t needed = std::min(pool.objects.size() + objects, kMost);
  if (needed <= before || (needed - before) * kListBytes > kMaxPooledBytes - pools.bytes) return;
  try {
    pool.objects.reserve(needed);
    pools.bytes += (pool.objects.capacity() - before) * kListBytes;
  } catch (const std::bad_alloc&) {  // then fewer are kept
  }
}

}  // namespace teleform
