/// @file
/// The Snom text screen.
#pragma once

#include <teleform/core/documents.h>
#include <teleform/snom/soft_keys.h>

#include <string>

/// A title, one block of text, and soft keys.
class TELEFORM_EXPORT SnomIPPhoneTextScreen : public IPPhoneTextScreenXML, public SnomIPPhone {
 public:
  /// @param title used up to its first NUL.
  explicit SnomIPPhoneTextScreen(const std::string& title);
  ~SnomIPPhoneTextScreen() override;

  void Render(std::string& out) override;

  /// Replaces the text, which is written in full.
  /// @param text may be empty and may contain NULs.
  void SetText(const std::string& text) override;

 private:
  std::string text;
};
