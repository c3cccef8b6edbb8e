/// @file
/// The Aastra directory and its entry.
#pragma once

#include <teleform/aastra/soft_keys.h>
#include <teleform/core/directory_entry.h>
#include <teleform/core/documents.h>

#include <string>

/// An entry that is written as a `MenuItem` element, both fields whole.
class TELEFORM_EXPORT AastraIPPhoneDirectoryEntry : public IPPhoneDirectoryEntry {
 public:
  /// Copies both strings whole.
  AastraIPPhoneDirectoryEntry(const std::string& name, const std::string& telephone);
  /// Copies both strings.
  AastraIPPhoneDirectoryEntry(const AastraIPPhoneDirectoryEntry& other) = default;
  AastraIPPhoneDirectoryEntry& operator=(const AastraIPPhoneDirectoryEntry&) = delete;
  ~AastraIPPhoneDirectoryEntry() override;

  void Render(std::string& out) override;
};

/// A title, entries up to a limit, links to the pages before and after, and soft keys; writes both
/// attribute flags.
class TELEFORM_EXPORT AastraIPPhoneDirectory : public IPPhoneDirectoryXML, public AastraIPPhone {
 public:
  /// @param title ends at its NUL; null is the empty title.
  /// @param maxItems the most entries that the directory takes; with 0 and less it takes none.
  AastraIPPhoneDirectory(const char* title, int maxItems);
  ~AastraIPPhoneDirectory() override;

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
