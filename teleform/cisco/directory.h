/// @file
/// The Cisco directory and its entry.
#pragma once

#include <teleform/core/directory_entry.h>
#include <teleform/core/documents.h>

#include <string>

/// An entry that is written as a `DirectoryEntry` element, both fields whole.
class TELEFORM_EXPORT CiscoIPPhoneDirectoryEntry : public IPPhoneDirectoryEntry {
 public:
  /// Copies both strings whole.
  CiscoIPPhoneDirectoryEntry(const std::string& name, const std::string& telephone);
  /// Copies both strings.
  CiscoIPPhoneDirectoryEntry(const CiscoIPPhoneDirectoryEntry& other) = default;
  CiscoIPPhoneDirectoryEntry& operator=(const CiscoIPPhoneDirectoryEntry&) = delete;
  ~CiscoIPPhoneDirectoryEntry() override;

  void Render(std::string& out) override;
};

/// A title, entries up to a limit, and links to the pages before and after.
class TELEFORM_EXPORT CiscoIPPhoneDirectory : public IPPhoneDirectoryXML {
 public:
  /// @param title ends at its NUL; null is the empty title.
  /// @param maxItems the most entries that the directory takes; with 0 and less it takes none.
  CiscoIPPhoneDirectory(const char* title, int maxItems);
  ~CiscoIPPhoneDirectory() override;

  void Render(std::string& out) override;
  bool AppendEntry(const std::string& name, const std::string& telephone) override;

  /// @name Page links
  /// Written whole, as attributes; an empty URI takes its attribute away again.
  /// @{
  void SetPreviousURI(const std::string& uri) override;
  void SetNextURI(const std::string& uri) override;
  /// @}

 private:
  std::string previousURI;
  std::string nextURI;
};
