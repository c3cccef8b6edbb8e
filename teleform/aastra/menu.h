/// @file
/// The Aastra menu and its item.
#pragma once

#include <teleform/aastra/soft_keys.h>
#include <teleform/core/documents.h>

#include <memory>
#include <string>
#include <vector>

namespace teleform {
class ObjectPool;
}

/// A prompt and its target URI, both written in full.
class TELEFORM_EXPORT AastraIPPhoneMenuItem {
 public:
  /// Copies both strings in full, NULs included.
  /// @param prompt the value of `GetPrompt`.
  /// @param uri the value of `GetURI`.
  AastraIPPhoneMenuItem(const std::string& prompt, const std::string& uri);
  virtual ~AastraIPPhoneMenuItem();
  AastraIPPhoneMenuItem(const AastraIPPhoneMenuItem&) = delete;
  AastraIPPhoneMenuItem& operator=(const AastraIPPhoneMenuItem&) = delete;

  /// Appends the item as a `MenuItem` element, with the guarantees of `IPPhoneXML::Render`.
  /// @param out the string to append to.
  void Render(std::string& out);

  /// The full text of the item. The item owns the string.
  const std::string& GetPrompt() const noexcept { return prompt; }

  /// The full target URI. The item owns the string.
  const std::string& GetURI() const noexcept { return URI; }

 private:
  friend class teleform::ObjectPool;

  std::string prompt;
  std::string URI;
};

/// A title, a limited number of items, and soft keys. Writes both attribute flags.
class TELEFORM_EXPORT AastraIPPhoneMenu : public IPPhoneMenuXML, public AastraIPPhone {
 public:
  /// @param title used up to its first NUL.
  /// @param maxItems the maximum number of items; 0 or less rejects every item.
  AastraIPPhoneMenu(const std::string& title, int maxItems);
  ~AastraIPPhoneMenu() override;

  void Render(std::string& out) override;
  bool AppendItem(const std::string& prompt, const std::string& uri) override;

  /// @name Page links
  /// Stored but not written: an Aastra menu has no page links.
  /// @{
  void SetPreviousURI(const std::string& uri) override;
  void SetNextURI(const std::string& uri) override;
  /// @}

 private:
  std::string previousURI;
  std::string nextURI;
  std::vector<std::unique_ptr<AastraIPPhoneMenuItem>> items;
};
