/// @file
/// The Snom input screen.
#pragma once

#include <teleform/core/documents.h>
#include <teleform/snom/soft_keys.h>

#include <string>

/// A form for one value, with soft keys. It can be rendered before `SetParams` has succeeded: its
/// elements are then empty. The prompt is written twice, above the form and beside the value.
class TELEFORM_EXPORT SnomIPPhoneInput : public IPPhoneInputXML, public SnomIPPhone {
 public:
  /// @param title ends at its first NUL.
  /// @param inputFlags what may be typed, in the phone's letters ("a" text, "n" number, "t"
  /// telephone number, "p" password, ...); written whole, without a test.
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
