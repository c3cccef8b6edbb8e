/// @file
/// The Polycom text screen.
#pragma once

#include <teleform/core/documents.h>

#include <string>

/// A title and one block of text, written as an HTML page; its content type is "text/html". Markup
/// in either reaches the phone as it is.
class TELEFORM_EXPORT PolycomIPPhoneTextScreen : public IPPhoneTextScreenXML {
 public:
  /// @param title ends at its first NUL.
  explicit PolycomIPPhoneTextScreen(const std::string& title);
  ~PolycomIPPhoneTextScreen() override;

  void Render(std::string& out) override;

  /// Replaces the text, which is written whole.
  void SetText(const std::string& text) override;

 private:
  std::string text;
};
