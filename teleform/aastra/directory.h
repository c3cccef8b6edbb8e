/// @file
/// The Aastra directory and its entry.
#pragma once

#include <teleform/aastra/soft_keys.h>
#include <teleform/core/directory_entry.h>
#include <teleform/core/documents.h>

#include <string>

/// An entry, written as a `MenuItem` element with both fields in full.
class TELEFORM_EXPORT AastraIPPhoneDirectoryEntry : public IPPhoneDirectoryEntry {
 public:
  /// Copies both strings in full, NULs included.
  /// @param name the value of `GetName`.
  /// @param telephone the value of `GetTelephone`.
  AastraIPPhoneDirectoryEntry(const std::string& name, const std::string& telephone);
  /// Copies both strings.
  /// @param other the entry to copy.
  AastraIPPhoneDirectoryEntry(const AastraIPPhoneDirectoryEntry& other) = default;
  AastraIPPhoneDirectoryEntry& operator=(const AastraIPPhoneDirectoryEntry&) = delete;
  ~AastraIPPhoneDirectoryEntry() override;

  void Render(std::string& out) override;
};

/// A title, a limited number of entries, links to the previous and next page, and soft keys. Writes
/// both attribute flags.
class TELEFORM_EXPORT AastraIPPhoneDirectory : public IPPhoneDirectoryXML, public AastraIPPhone {
 public:
  /// @param title a NUL-terminated string; null means the empty title.
  /// @param maxItems the maximum number of entries; 0 or less rejects every entry.
  AastraIPPhoneDirectory(const char* title, int maxItems);
  ~AastraIPPhoneDirectory() override;

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
