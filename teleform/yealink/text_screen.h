/// @file
/// The Yealink text screen.
#pragma once

#include <teleform/core/documents.h>

#include <string>

/// A title and one block of text. Unlike the other Yealink documents it has no soft keys.
class TELEFORM_EXPORT YealinkIPPhoneTextScreen : public IPPhoneTextScreenXML {
 public:
  /// @param title used up to its first NUL.
  explicit YealinkIPPhoneTextScreen(const std::string& title);
  ~YealinkIPPhoneTextScreen() override;

  void Render(std::string& out) override;

  /// Replaces the text, which is written in full.
  /// @param text may be empty and may contain NULs.
  void SetText(const std::string& text) override;

 private:
  std::string text;
};
