// Tells objects of a class from those of its subclasses.
#pragma once

#include <cstring>

namespace teleform {

// Not by typeid, as callers may compile their subclasses without type information.
template <typename Object>
const void* VtableOf(const Object& object) {
  const void* vtable = nullptr;
  std::memcpy(static_cast<void*>(&vtable), static_cast<const void*>(&object), sizeof vtable);
  return vtable;
}

// The virtual table of the entry or item class.
template <typename Object>
const void* VtableOf() {
  static const void* const vtable = VtableOf(Object("", ""));
  return vtable;
}

}  // namespace teleform
