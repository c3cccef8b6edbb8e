#include <teleform/core/documents.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace {

// A sort that compares names visits two entries for every comparison and guesses wrong at every
// other one. So each entry is visited once for seven bytes of its name, packed into a number that
// compares as they do, and the numbers are distributed by their highest bits that differ. Only
// entries that are still alike are visited for seven bytes more.
struct Key {
  std::uint64_t chunk;
  IPPhoneDirectoryEntry* entry;
};

// Keys that stand in their place among all others but not yet among each other.
struct Run {
  Key* first;
  Key* last;
  std::size_t position;  // of the chunks in the names; before it the names are alike
};

constexpr std::size_t kChunkBytes = 7;
constexpr std::uint64_t kGoesOn = kChunkBytes + 1;

// Seven bytes of the name, missing ones as 0, and below them how many bytes of it are left, so
// that a name which ends comes before the longer ones, even those that go on with NULs.
std::uint64_t ChunkOf(const std::string& name, std::size_t position) {
  const char* const bytes = name.data() + position;
  const std::size_t left = std::min(name.size() - position, kChunkBytes + 1);
  std::uint64_t chunk = 0;
  if (left > kChunkBytes) {
    for (std::size_t i = 0; i < kChunkBytes; ++i) {
      chunk = chunk << 8 | static_cast<unsigned char>(bytes[i]);
    }
  } else {
    for (std::size_t i = 0; i < left; ++i) {
      chunk |= std::uint64_t{static_cast<unsigned char>(bytes[i])} << (48 - 8 * i);
    }
  }
  return chunk << 8 | left;
}

bool GoesOn(const Key& key) { return (key.chunk & 0xFF) == kGoesOn; }

// For runs so short that distributing them costs more than comparing.
void SortByComparing(const Run& run) {
  const auto isLess = [rest = run.position + kChunkBytes](const Key& a, const Key& b) {
    if (a.chunk != b.chunk || !GoesOn(a)) return a.chunk < b.chunk;
    return std::string_view(a.entry->GetName()).substr(rest) <
           std::string_view(b.entry->GetName()).substr(rest);
  };
  for (Key* key = run.first; key != run.last; ++key) {
    const Key moved = *key;
    Key* place = key;
    for (; place != run.first && isLess(moved, place[-1]); --place) *place = place[-1];
    *place = moved;
  }
}

// Distributes a run by the highest bits in which its chunks differ, and adds what is left to sort
// to `runs`. `buffer` has room for as many keys as the run has.
void Distribute(const Run& run, Key* buffer, std::vector<Run>& runs) {
  std::uint64_t differing = 0;
  for (const Key* key = run.first; key != run.last; ++key) {
    differing |= key->chunk ^ run.first->chunk;
  }
  if (differing == 0) {
    if (!GoesOn(*run.first)) return;
    const std::size_t position = run.position + kChunkBytes;
    for (Key* key = run.first; key != run.last; ++key) {
      key->chunk = ChunkOf(key->entry->GetName(), position);
    }
    runs.push_back({run.first, run.last, position});
    return;
  }

  constexpr int kBits = 8;
  const int shift = std::max(0, 64 - __builtin_clzll(differing) - kBits);
  const auto bucketOf = [shift](const Key& key) { return (key.chunk >> shift) & 0xFF; };
  std::array<Key*, 1 << kBits> ends{};
  {
    std::array<std::size_t, 1 << kBits> sizes{};
    for (const Key* key = run.first; key != run.last; ++key) ++sizes[bucketOf(*key)];
    Key* first = run.first;
    for (std::size_t bucket = 0; bucket < sizes.size(); ++bucket) {
      if (sizes[bucket] > 1) runs.push_back({first, first + sizes[bucket], run.position});
      ends[bucket] = first;
      first += sizes[bucket];
    }
  }
  Key* const bufferEnd = std::copy(run.first, run.last, buffer);
  for (const Key* key = buffer; key != bufferEnd; ++key) *ends[bucketOf(*key)]++ = *key;
}

}  // namespace

IPPhoneDirectoryXML::IPPhoneDirectoryXML(const char* theTitle, int theMaxItems)
    : IPPhoneXML(theTitle), maxItems(theMaxItems) {}

IPPhoneDirectoryXML::~IPPhoneDirectoryXML() = default;

bool IPPhoneDirectoryXML::AppendEntry(const std::string& /*name*/,
                                      const std::string& /*telephone*/) {
  return false;
}

void IPPhoneDirectoryXML::SetPreviousURI(const std::string& /*uri*/) {}

void IPPhoneDirectoryXML::SetNextURI(const std::string& /*uri*/) {}

void IPPhoneDirectoryXML::SortDirectoryItems() {
  constexpr std::ptrdiff_t kFewKeys = 20;
  std::vector<Key> keys;
  keys.reserve(entries.size());
  for (const auto& entry : entries) keys.push_back({ChunkOf(entry->GetName(), 0), entry.get()});
  std::vector<Key> buffer(keys.size());
  std::vector<Run> runs{{keys.data(), keys.data() + keys.size(), 0}};
  while (!runs.empty()) {
    const Run run = runs.back();
    runs.pop_back();
    if (run.last - run.first <= kFewKeys) {
      SortByComparing(run);
    } else {
      Distribute(run, buffer.data(), runs);
    }
  }

  // From here on nothing can fail.
  for (auto& entry : entries) static_cast<void>(entry.release());
  for (std::size_t i = 0; i < keys.size(); ++i) entries[i].reset(keys[i].entry);
}
