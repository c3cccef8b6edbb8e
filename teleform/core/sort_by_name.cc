#include <teleform/core/sort_by_name.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

namespace teleform {

namespace {

// A most-significant-digit radix sort with cached keys. A comparison sort would load two entries
// per comparison and mispredict every second branch. This sort packs seven bytes of each name into
// an integer that compares like them, then distributes the integers by their highest differing
// bits. Only entries with equal chunks are loaded again, for the next seven bytes.
struct SortKey {
  std::uint64_t chunk;
  IPPhoneDirectoryEntry* entry;
};

// A range of keys that is in its final place but not yet sorted within itself.
struct Range {
  SortKey* first;
  SortKey* last;
  std::size_t offset;  // of the chunks in the names, which are equal up to it
};

constexpr std::size_t kChunkBytes = 7;
constexpr std::uint64_t kLengthMask = 0xFF;  // the bits of a chunk that hold the remaining length
constexpr std::uint64_t kContinues = kChunkBytes + 1;

// Seven bytes of the name, padded with zeros, and in the lowest byte the remaining length, capped
// at kContinues. The length sorts a name before longer names that continue with NULs.
std::uint64_t ChunkOf(const std::string& name, std::size_t offset) {
  const char* const text = name.data() + offset;
  const std::size_t remaining = std::min<std::size_t>(name.size() - offset, kContinues);
  std::array<char, kContinues> bytes{};
  if (remaining == kContinues) {
    std::memcpy(bytes.data(), text, kContinues);  // a constant size, copied inline
  } else {
    std::memcpy(bytes.data(), text, remaining);
  }
  std::uint64_t chunk = 0;
  for (const char byte : bytes) chunk = chunk << 8 | static_cast<unsigned char>(byte);
  return (chunk & ~kLengthMask) | remaining;
}

// Loads the next chunks of a range whose chunks are equal and pushes it to `pending`. If the names
// end in this chunk, they are equal and the range is done.
void LoadNextChunks(Range range, std::vector<Range>& pending) {
  if ((range.first->chunk & kLengthMask) != kContinues) return;
  range.offset += kChunkBytes;
  for (SortKey* key = range.first; key != range.last; ++key) {
    key->chunk = ChunkOf(key->entry->GetName(), range.offset);
  }
  pending.push_back(range);
}

// Faster than Distribute for short ranges.
void SortByInsertion(const Range& range, std::vector<Range>& pending) {
  for (SortKey* key = range.first; key != range.last; ++key) {
    const SortKey moved = *key;
    SortKey* slot = key;
    for (; slot != range.first && moved.chunk < slot[-1].chunk; --slot) *slot = slot[-1];
    *slot = moved;
  }
  for (SortKey* first = range.first; first != range.last;) {
    SortKey* last = first + 1;
    while (last != range.last && last->chunk == first->chunk) ++last;
    if (last - first > 1) LoadNextChunks({first, last, range.offset}, pending);
    first = last;
  }
}

// std::bit_width returns an int or the type of its argument, depending on the library.
int BitWidth(std::uint64_t bits) {
  return std::numeric_limits<std::uint64_t>::digits - std::countl_zero(bits);
}

// Distributes a range into buckets by the highest bits in which its chunks differ. `buffer` must
// hold as many keys as the range.
void Distribute(const Range& range, SortKey* buffer, std::vector<Range>& pending) {
  std::uint64_t differingBits = 0;
  for (const SortKey* key = range.first; key != range.last; ++key) {
    differingBits |= key->chunk ^ range.first->chunk;
  }
  if (differingBits == 0) {
    LoadNextChunks(range, pending);
    return;
  }

  // About half as many buckets as keys; more were slower.
  constexpr int kMaxRadixBits = 8;
  const auto keys = static_cast<std::size_t>(range.last - range.first);
  const int bits = std::min(kMaxRadixBits, BitWidth(keys) - 1);
  const int shift = std::max(0, BitWidth(differingBits) - bits);
  const std::uint32_t buckets = std::uint32_t{1} << bits;
  const auto bucketOf = [=](const SortKey& key) {
    return static_cast<std::uint32_t>(key.chunk >> shift) & (buckets - 1);
  };
  std::array<std::size_t, 1 << kMaxRadixBits> sizes;
  std::fill_n(sizes.begin(), buckets, 0);
  for (const SortKey* key = range.first; key != range.last; ++key) ++sizes[bucketOf(*key)];
  std::array<SortKey*, 1 << kMaxRadixBits> ends;
  SortKey* first = range.first;
  for (std::size_t bucket = 0; bucket < buckets; ++bucket) {
    if (sizes[bucket] > 1) pending.push_back({first, first + sizes[bucket], range.offset});
    ends[bucket] = first;
    first += sizes[bucket];
  }
  SortKey* const bufferEnd = std::copy(range.first, range.last, buffer);
  for (const SortKey* key = buffer; key != bufferEnd; ++key) *ends[bucketOf(*key)]++ = *key;
}

}  // namespace

void SortByName(std::vector<std::unique_ptr<IPPhoneDirectoryEntry>>& entries) {
  constexpr std::ptrdiff_t kInsertionSortLimit = 16;
  std::vector<SortKey> keys;
  keys.reserve(entries.size());
  for (const auto& entry : entries) keys.push_back({ChunkOf(entry->GetName(), 0), entry.get()});
  std::vector<SortKey> buffer(keys.size());
  std::vector<Range> pending;  // all but the first have at least two keys
  pending.reserve(keys.size() / 2 + 1);
  pending.push_back({keys.data(), keys.data() + keys.size(), 0});
  while (!pending.empty()) {
    const Range range = pending.back();
    pending.pop_back();
    if (range.last - range.first <= kInsertionSortLimit) {
      SortByInsertion(range, pending);
    } else {
      Distribute(range, buffer.data(), pending);
    }
  }

  for (auto& entry : entries) static_cast<void>(entry.release());
  for (std::size_t i = 0; i < keys.size(); ++i) entries[i].reset(keys[i].entry);
}

}  // namespace teleform
