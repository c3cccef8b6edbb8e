/// @file
/// The Snom input screen.
#pragma once

#include <teleform/core/documents.h>
#include <teleform/snom/soft_keys.h>

#include <string>

/// A form with one input field, and soft keys. The elements of the field are empty until
/// `SetParams` succeeds. The prompt is written twice, as the heading of the form and as the label
/// of the field.
class TELEFORM_EXPORT SnomIPPhoneInput : public IPPhoneInputXML, public SnomIPPhone {
 public:
  /// @param title used up to its first NUL.
  /// @param inputFlags the input type as the phone names it ("a" text, "n" number, "t" telephone
  /// number, "p" password, ...); written in full without validation.
  SnomIPPhoneInput(const std::string& title, const std::string& inputFlags);
  ~SnomIPPhoneInput() override;

  void Render(std::string& out) override;
  bool SetParams(const std::string& prompt, const std::string& url, const std::string& parameter,
                 const std::string& defaultValue) override;

 private:
  struct Params {
    std::string prompt;
    std::string URL;
    std::string queryStringParam;
    std::string defaultValue;
  };

  std::string inputFlags;
  Params params;
};
