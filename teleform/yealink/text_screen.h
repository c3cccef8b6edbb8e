/// @file
/// The Yealink text screen.
#pragma once

#include <teleform/core/documents.h>

#include <string>

/// A title and one block of text. It has no soft keys, unlike the other Yealink documents.
class TELEFORM_EXPORT YealinkIPPhoneTextScreen : public IPPhoneTextScreenXML {
 public:
  /// @param title ends at its first NUL.
  explicit YealinkIPPhoneTextScreen(const std::string& title);
  ~YealinkIPPhoneTextScreen() override;

  void Render(std::string& out) override;

  /// Replaces the text, which is written whole.
  void SetText(const std::string& text) override;

 private:
  std::string text;
};
