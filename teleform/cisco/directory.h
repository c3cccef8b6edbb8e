/// @file
/// The Cisco directory and its entry.
#pragma once

#include <teleform/core/directory_entry.h>
#include <teleform/core/documents.h>

#include <string>

/// An entry, written as a `DirectoryEntry` element with both fields in full.
class TELEFORM_EXPORT CiscoIPPhoneDirectoryEntry : public IPPhoneDirectoryEntry {
 public:
  /// Copies both strings in full, NULs included.
  /// @param name the value of `GetName`.
  /// @param telephone the value of `GetTelephone`.
  CiscoIPPhoneDirectoryEntry(const std::string& name, const std::string& telephone);
  /// Copies both strings.
  /// @param other the entry to copy.
  CiscoIPPhoneDirectoryEntry(const CiscoIPPhoneDirectoryEntry& other) = default;
  CiscoIPPhoneDirectoryEntry& operator=(const CiscoIPPhoneDirectoryEntry&) = delete;
  ~CiscoIPPhoneDirectoryEntry() override;

  void Render(std::string& out) override;
};

/// A title, a limited number of entries, and links to the previous and next page.
class TELEFORM_EXPORT CiscoIPPhoneDirectory : public IPPhoneDirectoryXML {
 public:
  /// @param title a NUL-terminated string; null means the empty title.
  /// @param maxItems the maximum number of entries; 0 or less rejects every entry.
  CiscoIPPhoneDirectory(const char* title, int maxItems);
  ~CiscoIPPhoneDirectory() override;

  void Render(std::string& out) override;
  bool AppendEntry(const std::string& name, const std::string& telephone) override;

  /// @name Page links
  /// Written in full as attributes of the root element. An empty URI removes its attribute.
  /// @{
  void SetPreviousURI(const std::string& uri) override;
  void SetNextURI(const std::string& uri) override;
  /// @}

 private:
  std::string previousURI;
  std::string nextURI;
};
