/// @file
/// The Aastra execute document.
#pragma once

#include <teleform/aastra/soft_keys.h>
#include <teleform/core/documents.h>

#include <string>

/// A URI that the phone is to carry out, and soft keys; writes both attribute flags. The URI is an
/// attribute of an element without content, which ends in `/>` and a line feed.
class TELEFORM_EXPORT AastraIPPhoneExecute : public IPPhoneExecuteXML, public AastraIPPhone {
 public:
  /// @param uri written up to its first NUL; it may be empty. It is the document's title as well,
  /// which is not written.
  explicit AastraIPPhoneExecute(const std::string& uri);
  ~AastraIPPhoneExecute() override;

  void Render(std::string& out) override;

 private:
  std::string URI;
};
