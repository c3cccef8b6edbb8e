/// @file
/// The Yealink directory and its entry.
#pragma once

#include <teleform/core/directory_entry.h>
#include <teleform/core/documents.h>
#include <teleform/yealink/soft_keys.h>

#include <string>

/// An entry, written as a `DirectoryEntry` element with both fields in full.
class TELEFORM_EXPORT YealinkIPPhoneDirectoryEntry : public IPPhoneDirectoryEntry {
 public:
  /// Copies both strings in full, NULs included.
  /// @param name the value of `GetName`.
  /// @param telephone the value of `GetTelephone`.
  YealinkIPPhoneDirectoryEntry(const std::string& name, const std::string& telephone);
  /// Copies both strings.
  /// @param other the entry to copy.
  YealinkIPPhoneDirectoryEntry(const YealinkIPPhoneDirectoryEntry& other) = default;
  YealinkIPPhoneDirectoryEntry& operator=(const YealinkIPPhoneDirectoryEntry&) = delete;
  ~YealinkIPPhoneDirectoryEntry() override;

  void Render(std::string& out) override;
};

/// A title, entries, and soft keys.
class TELEFORM_EXPORT YealinkIPPhoneDirectory : public IPPhoneDirectoryXML, public YealinkIPPhone {
 public:
  /// @param title a NUL-terminated string; null means the empty title.
  /// @param maxItems stored but not enforced.
  YealinkIPPhoneDirectory(const char* title, int maxItems);
  ~YealinkIPPhoneDirectory() override;

  void Render(std::string& out) override;
  bool AppendEntry(const std::string& name, const std::string& telephone) override;

  /// @name Page links
  /// Neither stored nor written.
  /// @{
  void SetPreviousURI(const std::string& uri) override;
  void SetNextURI(const std::string& uri) override;
  /// @}
};
