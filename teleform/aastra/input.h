/// @file
/// The Aastra input screen.
#pragma once

#include <teleform/aastra/soft_keys.h>
#include <teleform/core/documents.h>

#include <string>

/// A form for one value, with soft keys; writes both attribute flags. It can be rendered before
/// `SetParams` has succeeded: its elements are then empty.
class TELEFORM_EXPORT AastraIPPhoneInput : public IPPhoneInputXML, public AastraIPPhone {
 public:
  /// @param title ends at its first NUL.
  /// @param type what may be typed, in the phone's words ("IP", "string", "number", ...); written
  /// whole, without a test.
  /// @param password whether the phone hides what is typed.
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
