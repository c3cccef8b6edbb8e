/// @file
/// The Aastra text screen.
#pragma once

#include <teleform/aastra/soft_keys.h>
#include <teleform/core/documents.h>

#include <string>

/// A title, one block of text, and soft keys. Writes both attribute flags.
class TELEFORM_EXPORT AastraIPPhoneTextScreen : public IPPhoneTextScreenXML, public AastraIPPhone {
 public:
  /// @param title used up to its first NUL.
  explicit AastraIPPhoneTextScreen(const std::string& title);
  ~AastraIPPhoneTextScreen() override;

  void Render(std::string& out) override;

  /// Replaces the text. It is stored in full and written up to its first NUL.
  /// @param text may be empty and may contain NULs.
  void SetText(const std::string& text) override;

 private:
  std::string text;
};
