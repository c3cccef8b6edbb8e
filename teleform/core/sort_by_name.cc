#include <teleform/core/sort_by_name.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace teleform {

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
constexpr std::uint64_t kCount = 0xFF;  // the bits of a chunk that hold the count
constexpr std::uint64_t kGoesOn = kChunkBytes + 1;

// Seven bytes of the name, missing ones as 0, and below them how many bytes of it are left, so
// that a name which ends comes before the longer ones, even those that go on with NULs.
std::uint64_t ChunkOf(const std::string& name, std::size_t position) {
  const char* const text = name.data() + position;
  const std::size_t left = std::min<std::size_t>(name.size() - position, kGoesOn);
  std::array<char, kGoesOn> bytes{};
  if (left == kGoesOn) {
    std::memcpy(bytes.data(), text, kGoesOn);  // of a size that the compiler knows
  } else {
    std::memcpy(bytes.data(), text, left);
  }
  std::uint64_t chunk = 0;
  for (const char byte : bytes) chunk = chunk << 8 | static_cast<unsigned char>(byte);
  return (chunk & ~kCount) | left;
}

// Adds a run whose chunks are all alike to `runs`, with the chunks that follow, unless its names
// end.
void LookFurther(Run run, std::vector<Run>& runs) {
  if ((run.first->chunk & kCount) != kGoesOn) return;
  run.position += kChunkBytes;
  for (Key* key = run.first; key != run.last; ++key) {
    key->chunk = ChunkOf(key->entry->GetName(), run.position);
  }
  runs.push_back(run);
}

// For runs so short that distributing them costs more than comparing.
void SortByInsertion(const Run& run, std::vector<Run>& runs) {
  for (Key* key = run.first; key != run.last; ++key) {
    const Key moved = *key;
    Key* place = key;
    for (; place != run.first && moved.chunk < place[-1].chunk; --place) *place = place[-1];
    *place = moved;
  }
  for (Key* first = run.first; first != run.last;) {
    Key* last = first + 1;
    while (last != run.last && last->chunk == first->chunk) ++last;
    if (last - first > 1) LookFurther({first, last, run.position}, runs);
    first = last;
  }
}

// Distributes a run by the highest bits in which its chunks differ. `buffer` has room for as many
// keys as the run has.
void Distribute(const Run& run, Key* buffer, std::vector<Run>& runs) {
  std::uint64_t differing = 0;
  for (const Key* key = run.first; key != run.last; ++key) {
    differing |= key->chunk ^ run.first->chunk;
  }
  if (differing == 0) {
    LookFurther(run, runs);
    return;
  }

  // About half as many buckets as keys: more of them take more time than they save.
  constexpr int kMostBits = 8;
  const auto keys = static_cast<std::size_t>(run.last - run.first);
  const int bits = std::min(kMostBits, static_cast<int>(std::bit_width(keys)) - 1);
  const int shift = std::max(0, static_cast<int>(std::bit_width(differing)) - bits);
  const std::size_t buckets = std::size_t{1} << bits;
  const auto bucketOf = [=](const Key& key) {
    return static_cast<std::size_t>(key.chunk >> shift) & (buckets - 1);
  };
  std::array<std::size_t, 1 << kMostBits> sizes;
  std::fill_n(sizes.begin(), buckets, 0);
  for (const Key* key = run.first; key != run.last; ++key) ++sizes[bucketOf(*key)];
  std::array<Key*, 1 << kMostBits> ends;
  Key* first = run.first;
  for (std::size_t bucket = 0; bucket < buckets; ++bucket) {
    if (sizes[bucket] > 1) runs.push_back({first, first + sizes[bucket], run.position});
    ends[bucket] = first;
    first += sizes[bucket];
  }
  Key* const bufferEnd = std::copy(run.first, run.last, buffer);
  for (const Key* key = buffer; key != bufferEnd; ++key) *ends[bucketOf(*key)]++ = *key;
}

}  // namespace

void SortByName(std::vector<std::unique_ptr<IPPhoneDirectoryEntry>>& entries) {
  constexpr std::ptrdiff_t kFewKeys = 16;
  std::vector<Key> keys;
  keys.reserve(entries.size());
  for (const auto& entry : entries) keys.push_back({ChunkOf(entry->GetName(), 0), entry.get()});
  std::vector<Key> buffer(keys.size());
  std::vector<Run> runs;  // that wait to be sorted; all but the first have two keys at least
  runs.reserve(keys.size() / 2 + 1);
  runs.push_back({keys.data(), keys.data() + keys.size(), 0});
  while (!runs.empty()) {
    const Run run = runs.back();
    runs.pop_back();
    if (run.last - run.first <= kFewKeys) {
      SortByInsertion(run, runs);
    } else {
      Distribute(run, buffer.data(), runs);
    }
  }

  for (auto& entry : entries) static_cast<void>(entry.release());
  for (std::size_t i = 0; i < keys.size(); ++i) entries[i].reset(keys[i].entry);
}

}  // namespace teleform
