/// @file
/// The Yealink menu and its item.
#pragma once

#include <teleform/core/documents.h>
#include <teleform/yealink/soft_keys.h>

#include <memory>
#include <string>
#include <vector>

namespace teleform {
class ObjectPool;
}

/// A prompt and its target URI, both written in full.
class TELEFORM_EXPORT YealinkIPPhoneMenuItem {
 public:
  /// Copies both strings in full, NULs included.
  /// @param prompt the value of `GetPrompt`.
  /// @param uri the value of `GetURI`.
  YealinkIPPhoneMenuItem(const std::string& prompt, const std::string& uri);
  virtual ~YealinkIPPhoneMenuItem();
  YealinkIPPhoneMenuItem(const YealinkIPPhoneMenuItem&) = delete;
  YealinkIPPhoneMenuItem& operator=(const YealinkIPPhoneMenuItem&) = delete;

  /// Appends the item as a `DirectoryEntry` element, with the guarantees of
  /// `IPPhoneXML::Render`.
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

/// A title, items, and soft keys. Yealink phones have no menu element. The menu is written as
/// a directory, with prompts as names and URIs as telephones.
class TELEFORM_EXPORT YealinkIPPhoneMenu : public IPPhoneMenuXML, public YealinkIPPhone {
 public:
  /// @param title a NUL-terminated string; null means the empty title.
  /// @param maxItems stored but not enforced.
  YealinkIPPhoneMenu(const char* title, int maxItems);
  ~YealinkIPPhoneMenu() override;

  void Render(std::string& out) override;
  bool AppendItem(const std::string& prompt, const std::string& uri) override;

  /// @name Page links
  /// Neither stored nor written.
  /// @{
  void SetPreviousURI(const std::string& uri) override;
  void SetNextURI(const std::string& uri) override;
  /// @}

 private:
  std::vector<std::unique_ptr<YealinkIPPhoneMenuItem>> items;
};
