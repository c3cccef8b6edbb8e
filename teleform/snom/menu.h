/// @file
/// The Snom menu and its item.
#pragma once

#include <teleform/core/documents.h>
#include <teleform/snom/soft_keys.h>

#include <memory>
#include <string>
#include <vector>

/// A prompt and the URI that it leads to; both are written whole.
class TELEFORM_EXPORT SnomIPPhoneMenuItem {
 public:
  /// Copies both strings whole.
  SnomIPPhoneMenuItem(const std::string& prompt, const std::string& uri);
  virtual ~SnomIPPhoneMenuItem();
  SnomIPPhoneMenuItem(const SnomIPPhoneMenuItem&) = delete;
  SnomIPPhoneMenuItem& operator=(const SnomIPPhoneMenuItem&) = delete;

  /// Appends the item's `DirectoryEntry` element, as `IPPhoneXML::Render` appends a document.
  void Render(std::string& out);

  /// The text of the item, whole; it stays the item's.
  const std::string& GetPrompt() const noexcept { return prompt; }

  /// Where the item leads, whole; it stays the item's.
  const std::string& GetURI() const noexcept { return URI; }

 private:
  std::string prompt;
  std::string URI;
};

/// A title, items and soft keys. Snom phones know no menu of their own: it is written as a
/// directory whose names are the prompts and whose telephones are the URIs.
class TELEFORM_EXPORT SnomIPPhoneMenu : public IPPhoneMenuXML, public SnomIPPhone {
 public:
  /// @param title ends at its NUL; null is the empty title.
  /// @param maxItems stored, not enforced.
  SnomIPPhoneMenu(const char* title, int maxItems);
  ~SnomIPPhoneMenu() override;

  void Render(std::string& out) override;
  bool AppendItem(const std::string& prompt, const std::string& uri) override;

  /// @name Page links
  /// Neither stored nor written.
  /// @{
  void SetPreviousURI(const std::string& uri) override;
  void SetNextURI(const std::string& uri) override;
  /// @}

 private:
  std::vector<std::unique_ptr<SnomIPPhoneMenuItem>> items;
};
