/// @file
/// A directory entry and its comparison functions.
#pragma once

#include <teleform/core/export.h>

#include <ostream>
#include <string>

namespace teleform {
class ObjectPool;
}

/// A name and the telephone number or URI that the phone dials.
///
/// Entries can be copied but not assigned. Neither field changes after construction. Each maker's
/// directory creates entries of its own subclass, which renders them in that maker's format.
class TELEFORM_EXPORT IPPhoneDirectoryEntry {
 public:
  /// Copies both strings in full. Either may be empty and may contain NULs.
  /// @param name the value of `GetName`.
  /// @param telephone the value of `GetTelephone`.
  IPPhoneDirectoryEntry(const std::string& name, const std::string& telephone);
  /// Copies both strings.
  /// @param other the entry to copy.
  IPPhoneDirectoryEntry(const IPPhoneDirectoryEntry& other);
  IPPhoneDirectoryEntry& operator=(const IPPhoneDirectoryEntry&) = delete;
  virtual ~IPPhoneDirectoryEntry();

  /// Appends the entry in its maker's format. This base class appends nothing. Exceptions and their
  /// guarantees are those of `IPPhoneXML::Render`.
  /// @param out the string to append to.
  virtual void Render(std::string& out);

  /// @name Order by name
  /// Names compare lexicographically by unsigned bytes: a prefix sorts before longer names, and
  /// upper and lower case differ. The locale and the telephone have no influence.
  /// @{

  /// Whether this name sorts before the other.
  /// @param other the entry to compare with.
  bool operator<(const IPPhoneDirectoryEntry& other);
  /// Whether it sorts before or is equal.
  /// @param other the entry to compare with.
  bool operator<=(const IPPhoneDirectoryEntry& other);
  /// Whether this name sorts after the other.
  /// @param other the entry to compare with.
  bool operator>(const IPPhoneDirectoryEntry& other);
  /// Whether it sorts after or is equal.
  /// @param other the entry to compare with.
  bool operator>=(const IPPhoneDirectoryEntry& other);
  /// @}

  /// The full name. The entry owns the string.
  const std::string& GetName() const noexcept { return name; }

  /// The full telephone number or URI. The entry owns the string.
  const std::string& GetTelephone() const noexcept { return telephone; }

 protected:
  std::string name;       ///< The value of `GetName`.
  std::string telephone;  ///< The value of `GetTelephone`.

 private:
  friend class teleform::ObjectPool;
};

/// Writes only the name of `entry`, NULs included.
/// @param os the stream to write to.
/// @param entry the entry to name.
TELEFORM_EXPORT std::ostream& operator<<(std::ostream& os, const IPPhoneDirectoryEntry& entry);

/// Whether the name of `a` sorts before the name of `b` within their common length. The first
/// unsigned byte that differs decides. Letter case is not folded.
///
/// Equal names are unordered, and so are a name and its prefix. The function is not a strict weak
/// order and must not be passed to a standard sort: Ann is unordered against Anna and Annb, but
/// Anna sorts before Annb. `IPPhoneDirectoryXML::SortDirectoryItems` uses an order that never
/// contradicts this one.
/// @param a not null; the caller keeps ownership.
/// @param b not null; the caller keeps ownership.
TELEFORM_EXPORT bool compare_case(IPPhoneDirectoryEntry* a, IPPhoneDirectoryEntry* b);
