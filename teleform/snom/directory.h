/// @file
/// The Snom directory and its entry.
#pragma once

#include <teleform/core/directory_entry.h>
#include <teleform/core/documents.h>
#include <teleform/snom/soft_keys.h>

#include <string>

/// An entry, written as a `DirectoryEntry` element with both fields in full.
class TELEFORM_EXPORT SnomIPPhoneDirectoryEntry : public IPPhoneDirectoryEntry {
 public:
  /// Copies both strings in full, NULs included.
  /// @param name the value of `GetName`.
  /// @param telephone the value of `GetTelephone`.
  SnomIPPhoneDirectoryEntry(const std::string& name, const std::string& telephone);
  /// Copies both strings.
  /// @param other the entry to copy.
  SnomIPPhoneDirectoryEntry(const SnomIPPhoneDirectoryEntry& other) = default;
  SnomIPPhoneDirectoryEntry& operator=(const SnomIPPhoneDirectoryEntry&) = delete;
  ~SnomIPPhoneDirectoryEntry() override;

  void Render(std::string& out) override;
};

/// A title, entries, and soft keys.
class TELEFORM_EXPORT SnomIPPhoneDirectory : public IPPhoneDirectoryXML, public SnomIPPhone {
 public:
  /// @param title a NUL-terminated string; null means the empty title.
  /// @param maxItems stored but not enforced.
  SnomIPPhoneDirectory(const char* title, int maxItems);
  ~SnomIPPhoneDirectory() override;

  void Render(std::string& out) override;
  bool AppendEntry(const std::string& name, const std::string& telephone) override;

  /// @name Page links
  /// Neither stored nor written.
  /// @{
  void SetPreviousURI(const std::string& uri) override;
  void SetNextURI(const std::string& uri) override;
  /// @}
};
