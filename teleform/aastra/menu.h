/// @file
/// The Aastra menu and its item.
#pragma once

#include <teleform/aastra/soft_keys.h>
#include <teleform/core/documents.h>

#include <memory>
#include <string>
#include <vector>

/// A prompt and the URI that it leads to; both are written whole.
class TELEFORM_EXPORT AastraIPPhoneMenuItem {
 public:
  /// Copies both strings whole.
  AastraIPPhoneMenuItem(const std::string& prompt, const std::string& uri);
  virtual ~AastraIPPhoneMenuItem();
  AastraIPPhoneMenuItem(const AastraIPPhoneMenuItem&) = delete;
  AastraIPPhoneMenuItem& operator=(const AastraIPPhoneMenuItem&) = delete;

  /// Appends the item's `MenuItem` element, as `IPPhoneXML::Render` appends a document.
  void Render(std::string& out);

  /// The text of the item, whole; it stays the item's.
  const std::string& GetPrompt() const noexcept { return prompt; }

  /// Where the item leads, whole; it stays the item's.
  const std::string& GetURI() const noexcept { return URI; }

 private:
  std::string prompt;
  std::string URI;
};

/// A title, items up to a limit and soft keys; writes both attribute flags.
class TELEFORM_EXPORT AastraIPPhoneMenu : public IPPhoneMenuXML, public AastraIPPhone {
 public:
  /// @param title ends at its first NUL.
  /// @param maxItems the most items that the menu takes; with 0 and less it takes none.
  AastraIPPhoneMenu(const std::string& title, int maxItems);
  ~AastraIPPhoneMenu() override;

  void Render(std::string& out) override;
  bool AppendItem(const std::string& prompt, const std::string& uri) override;

  /// @name Page links
  /// Stored, not written: an Aastra menu has no place for them.
  /// @{
  void SetPreviousURI(const std::string& uri) override;
  void SetNextURI(const std::string& uri) override;
  /// @}

 private:
  std::string previousURI;
  std::string nextURI;
  std::vector<std::unique_ptr<AastraIPPhoneMenuItem>> items;
};
