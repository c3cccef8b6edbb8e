/// @file
/// An entry of a directory, and the orders in which entries can be compared.
#pragma once

#include <teleform/core/export.h>

#include <ostream>
#include <string>

/// A name and the telephone number or URI that the phone dials for it.
///
/// Entries can be copied, not assigned: neither field changes after construction. Each maker's
/// directory creates entries of its own class, which knows how that maker writes one.
class TELEFORM_EXPORT IPPhoneDirectoryEntry {
 public:
  /// Copies both strings whole; either may be empty and may hold NULs.
  IPPhoneDirectoryEntry(const std::string& name, const std::string& telephone);
  /// Copies both strings.
  IPPhoneDirectoryEntry(const IPPhoneDirectoryEntry& other);
  IPPhoneDirectoryEntry& operator=(const IPPhoneDirectoryEntry&) = delete;
  virtual ~IPPhoneDirectoryEntry();

  /// Appends the entry as its maker writes it; this base class writes nothing. What is thrown, and
  /// what holds then, is as for `IPPhoneXML::Render`.
  virtual void Render(std::string& out);

  /// @name Order by name
  /// Bytes compare as unsigned, without regard to locale or letter case, and a name comes before
  /// the longer names that begin with it. The telephone takes no part.
  /// @{
  bool operator<(const IPPhoneDirectoryEntry& other);   ///< Whether this name comes first.
  bool operator<=(const IPPhoneDirectoryEntry& other);  ///< The same, or the names are equal.
  bool operator>(const IPPhoneDirectoryEntry& other);   ///< Whether this name comes last.
  bool operator>=(const IPPhoneDirectoryEntry& other);  ///< The same, or the names are equal.
  /// @}

  /// The name, whole; it stays the entry's.
  const std::string& GetName() const noexcept { return name; }

  /// The telephone number or URI, whole; it stays the entry's.
  const std::string& GetTelephone() const noexcept { return telephone; }

 protected:
  std::string name;       ///< What `GetName` returns.
  std::string telephone;  ///< What `GetTelephone` returns.
};

/// Writes the name of `entry`, NULs included, and nothing else.
TELEFORM_EXPORT std::ostream& operator<<(std::ostream& os, const IPPhoneDirectoryEntry& entry);

/// Whether `a` must be placed before `b`: at the first position inside both names where they
/// differ, the byte of `a` is the smaller one (unsigned; letter case is not folded).
///
/// Of two names that are equal, or of which one begins with the other, neither comes before the
/// other. That makes it unfit as the order of a standard sort: Ann is unordered against Anna and
/// against Annb, yet Anna comes before Annb. `IPPhoneDirectoryXML::SortDirectoryItems` sorts by an
/// order that never contradicts this one.
/// @param a not null; it stays the caller's.
/// @param b not null; it stays the caller's.
TELEFORM_EXPORT bool compare_case(IPPhoneDirectoryEntry* a, IPPhoneDirectoryEntry* b);
