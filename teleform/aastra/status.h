/// @file
/// The Aastra status document.
#pragma once

#include <teleform/aastra/soft_keys.h>
#include <teleform/core/documents.h>

#include <string>

/// A status message and soft keys. Of the attribute flags it writes only the beep. The title is
/// empty and not written. Before the first `SetMessage` the document is a normal message with index
/// 0, an empty session and an empty text.
class TELEFORM_EXPORT AastraIPPhoneStatus : public IPPhoneStatusXML, public AastraIPPhone {
 public:
  /// A normal message with index 0, an empty session and an empty text.
  AastraIPPhoneStatus();
  ~AastraIPPhoneStatus() override;

  /// Numbers are formatted by `NumberToString`.
  /// @param out the string to append to.
  void Render(std::string& out) override;
  void SetMessage(const std::string& session, const std::string& message, int index, MsgType type,
                  int timeout) override;

 private:
  struct Message {
    MsgType type = MsgTypeNormal;
    std::string session;
    std::string text;
    int index = 0;
    int timeout = 0;
  };

  Message message;
};
