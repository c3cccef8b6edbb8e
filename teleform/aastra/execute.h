/// @file
/// The Aastra execute document.
#pragma once

#include <teleform/aastra/soft_keys.h>
#include <teleform/core/documents.h>

#include <string>

/// A URI that the phone executes, and soft keys. Writes both attribute flags. The URI is an
/// attribute of an empty element, which ends with `/>` and a line feed.
class TELEFORM_EXPORT AastraIPPhoneExecute : public IPPhoneExecuteXML, public AastraIPPhone {
 public:
  /// @param uri written up to its first NUL; it may be empty. It is also the value of `GetTitle`,
  /// which is not written.
  explicit AastraIPPhoneExecute(const std::string& uri);
  ~AastraIPPhoneExecute() override;

  void Render(std::string& out) override;

 private:
  std::string URI;
};
