/// @file
/// The Polycom text screen.
#pragma once

#include <teleform/core/documents.h>

#include <string>

/// A title and one block of text, written as an HTML page with the content type "text/html". Markup
/// in the title and the text is not escaped.
class TELEFORM_EXPORT PolycomIPPhoneTextScreen : public IPPhoneTextScreenXML {
 public:
  /// @param title used up to its first NUL.
  explicit PolycomIPPhoneTextScreen(const std::string& title);
  ~PolycomIPPhoneTextScreen() override;

  void Render(std::string& out) override;

  /// Replaces the text, which is written in full.
  /// @param text may be empty and may contain NULs.
  void SetText(const std::string& text) override;

 private:
  std::string text;
};
