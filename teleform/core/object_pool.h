// Keeps the entries and items of documents that have ended for the next documents of the thread.
//
// A server constructs, fills, renders and destroys a document for each request. Half of that time
// went into allocating and freeing entries and their long texts: without the pool, a directory of
// 32 takes 1.9 times as long, one of 1000 2.6 times.
//
// - Each thread has a pool of its own, so that there is nothing to lock. It keeps at most
//   kMaxPooledBytes and is freed when the thread ends. A library that was loaded at run time stays
//   loaded until then.
// - A pooled object comes from `new` like any other. It may leave its document, and its owner may
//   delete it on any thread.
#pragma once

#include <teleform/core/directory_entry.h>
#include <teleform/core/exact_class.h>
#include <teleform/core/pieces.h>

#include <cstddef>
#include <forward_list>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace teleform {

// With a sanitizer nothing is pooled, so that it sees the life of each object.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsPooling = false;
#elif defined(__has_feature)
constexpr bool kIsPooling = !__has_feature(address_sanitizer) && !__has_feature(memory_sanitizer) &&
                            !__has_feature(thread_sanitizer);
#else
constexpr bool kIsPooling = true;
#endif

// The most memory for objects, their texts and the lists of them. It fits a directory of 1000.
constexpr std::size_t kMaxPooledBytes = std::size_t{128} << 10;

class ObjectPool {
 public:
  // Appends an object with these texts to those of a document, which don't change if it throws.
  template <typename Object, typename Base>
  static void Append(std::vector<std::unique_ptr<Base>>& objects, const std::string& first,
                     const std::string& second) {
    // Few lists on phones are longer.
    constexpr std::size_t kFirstCapacity = 32;
    if (objects.capacity() == 0) objects.reserve(kFirstCapacity);
    ClassPool* const pool = OfClass(&Delete<Object>);
    if (pool == nullptr || pool->objects.empty()) {
      objects.push_back(std::make_unique<Object>(first, second));
      if (pool != nullptr) pool->wasEmpty = true;
      return;
    }
    std::unique_ptr<Object> object(static_cast<Object*>(pool->objects.back().object));
    thisThread.pools->bytes -= pool->objects.back().bytes;
    pool->objects.pop_back();
    const auto texts = TextsOf(*object);
    Assign(texts.first, first);
    Assign(texts.second, second);
    objects.push_back(std::move(object));
  }

  // Removes the objects of a document from the first to the last. The pool takes those that are of
  // the class Object and of no subclass.
  template <typename Object, typename Base>
  static void Clear(std::vector<std::unique_ptr<Base>>& objects) noexcept {
    if (objects.empty()) return;
    ClassPool* const pool = OfClass(&Delete<Object>);
    if (pool != nullptr) MakeRoomFor(*pool, objects.size());
    const void* const vtable = VtableOf<Object>();
    for (auto& object : objects) {
      if (pool != nullptr && object != nullptr && VtableOf(*object) == vtable) {
        auto& own = static_cast<Object&>(*object);
        const std::size_t bytes = sizeof own + sizeof(void*) + BytesOf(TextsOf(own));
        if (pool->objects.size() < pool->objects.capacity() &&
            thisThread.pools->bytes + bytes <= kMaxPooledBytes) {
          pool->objects.push_back({&own, bytes});
          thisThread.pools->bytes += bytes;
          static_cast<void>(object.release());
          continue;
        }
      }
      object.reset();
    }
    objects.clear();
  }

 private:
  // The objects of one class.
  struct ClassPool {
    struct Pooled {
      void* object;
      std::size_t bytes;
    };
    void (*deleteObject)(void* object);
    bool wasEmpty = false;  // when the last document took objects
    std::vector<Pooled> objects{};
  };

  struct ThreadPools {
    ThreadPools() = default;
    ThreadPools(const ThreadPools&) = delete;
    ThreadPools& operator=(const ThreadPools&) = delete;
    ~ThreadPools() { DeleteObjects(); }
    void DeleteObjects() noexcept;

    std::size_t bytes = 0;
    std::forward_list<ClassPool> classes;  // they stay in place while destructors add others
  };

  struct Thread {
    ThreadPools* pools;
    bool isEnding;
  };
  // Without the attribute each access calls a function, and an entry takes 5 ns of 20 longer.
#ifdef __ELF__
  __attribute__((tls_model("initial-exec")))
#endif
  static constinit thread_local Thread thisThread;

  // The pool of a class, or null where nothing is pooled.
  static ClassPool* OfClass(void (*deleteObject)(void*)) noexcept {
    if (thisThread.pools != nullptr) {
      for (auto& pool : thisThread.pools->classes) {
        if (pool.deleteObject == deleteObject) return &pool;
      }
    }
    return AddClass(deleteObject);
  }
  static ClassPool* AddClass(void (*deleteObject)(void*)) noexcept;

  // Makes room for so many more objects, as far as the limit and the other classes let it.
  static void MakeRoomFor(ClassPool& pool, std::size_t objects) noexcept;

  template <typename Object>
  static void Delete(void* object) {
    delete static_cast<Object*>(object);
  }

  using Texts = std::pair<std::string&, std::string&>;

  template <typename Object>
  static Texts TextsOf(Object& object) {
    if constexpr (std::is_base_of_v<IPPhoneDirectoryEntry, Object>) {
      IPPhoneDirectoryEntry& entry = object;
      return {entry.name, entry.telephone};
    } else {
      return {object.prompt, object.URI};
    }
  }

  // What the texts take outside the object, with what the allocator adds.
  static std::size_t BytesOf(const Texts& texts) {
    const auto bytes = [](const std::string& text) {
      const bool isInside = text.capacity() < sizeof(std::string);
      return isInside ? 0 : text.capacity() + 2 * sizeof(void*);
    };
    return bytes(texts.first) + bytes(texts.second);
  }

  // Faster than std::string::assign for short texts.
  static void Assign(std::string& to, const std::string& from) {
    to.clear();
    teleform::Append(to, from);
  }
};

}  // namespace teleform
