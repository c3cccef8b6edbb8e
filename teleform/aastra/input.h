/// @file
/// The Aastra input screen.
#pragma once

#include <teleform/aastra/soft_keys.h>
#include <teleform/core/documents.h>

#include <string>

/// A form with one input field, and soft keys. Writes both attribute flags. The elements of
/// the field are empty until `SetParams` succeeds.
class TELEFORM_EXPORT AastraIPPhoneInput : public IPPhoneInputXML, public AastraIPPhone {
 public:
  /// @param title used up to its first NUL.
  /// @param type the input type as the phone names it ("IP", "string", "number", ...); written in
  /// full without validation.
  /// @param password whether the phone hides the input.
  AastraIPPhoneInput(const std::string& title, const std::string& type, bool password);
  ~AastraIPPhoneInput() override;

  void Render(std::string& out) override;
  bool SetParams(const std::string& prompt, const std::string& url, const std::string& parameter,
                 const std::string& defaultValue) override;

 private:
  struct Params {
    std::string prompt;
    std::string URL;
    std::string parameter;
    std::string defaultValue;
  };

  bool password;
  std::string type;
  Params params;
};
