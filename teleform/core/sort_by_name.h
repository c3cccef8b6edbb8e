// The order that directories promise.
#pragma once

#include <teleform/core/directory_entry.h>

#include <memory>
#include <vector>

namespace teleform {

// Sorts entries, none of which is null, by the bytes of their names, a name before the longer ones
// that begin with it; equal names stay in their order. They stay as they are if memory runs out.
void SortByName(std::vector<std::unique_ptr<IPPhoneDirectoryEntry>>& entries);

}  // namespace teleform
