// The sort behind SortDirectoryItems.
#pragma once

#include <teleform/core/directory_entry.h>

#include <memory>
#include <vector>

namespace teleform {

// Sorts the entries stably by name, in ascending order of unsigned bytes; a prefix sorts before
// longer names. No entry may be null. Throws std::bad_alloc when memory runs out and leaves the
// entries unchanged.
void SortByName(std::vector<std::unique_ptr<IPPhoneDirectoryEntry>>& entries);

}  // namespace teleform
