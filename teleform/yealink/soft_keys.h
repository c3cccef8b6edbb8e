/// @file
/// The soft keys of Yealink phones.
#pragma once

#include <teleform/core/export.h>

#include <string>
#include <vector>

/// The keys of a Yealink phone. The digits are 0, then 9 down to 1.
enum YealinkSoftKeyCommands : int {
  YEALINK_SK_CANCEL = 0,
  YEALINK_SK_ENTER = 1,
  YEALINK_SK_ONHOOK = 2,
  YEALINK_SK_RIGHT = 3,
  YEALINK_SK_LEFT = 4,
  YEALINK_SK_REDIAL = 5,
  YEALINK_SK_SPEAKER = 6,
  YEALINK_SK_TRANSFER = 7,
  YEALINK_SK_CONFERENCE = 8,
  YEALINK_SK_HELP = 9,
  YEALINK_SK_F_MUTE = 10,
  YEALINK_SK_F_UP = 11,
  YEALINK_SK_F_DOWN = 12,
  YEALINK_SK_REC = 13,
  YEALINK_SK_YEALINK = 14,
  YEALINK_SK_DND = 15,
  YEALINK_SK_F_MINIBROWSER_SELECT = 16,
  YEALINK_SK_F_MINIBROWSER_EXIT = 17,
  YEALINK_SK_F_MINIBROWSER_UPDATE = 18,
  YEALINK_SK_F_MINIBROWSER_SEARCH = 19,
  YEALINK_SK_F_MINIBROWSER_CANCEL = 20,
  YEALINK_SK_F_MINIBROWSER_BACK = 21,
  YEALINK_SK_F_MINIBROWSER_DIAL = 22,
  YEALINK_SK_F_MINIBROWSER_EDIT_DIAL = 23,
  YEALINK_SK_F_MINIBROWSER_EDIT_NEXT = 24,
  YEALINK_SK_0 = 25,
  YEALINK_SK_9 = 26,
  YEALINK_SK_8 = 27,
  YEALINK_SK_7 = 28,
  YEALINK_SK_6 = 29,
  YEALINK_SK_5 = 30,
  YEALINK_SK_4 = 31,
  YEALINK_SK_3 = 32,
  YEALINK_SK_2 = 33,
  YEALINK_SK_1 = 34,
  YEALINK_SK_HASH = 35,
  YEALINK_SK_STAR = 36,
};

/// A soft key: the name of the phone's key and the URL that it loads.
class TELEFORM_EXPORT YealinkSoftKey {
 public:
  /// A key with an empty name and an empty URL.
  YealinkSoftKey();
  /// @name Copying and moving
  /// A moved-from key is valid, with unspecified strings.
  /// @{

  /// Copies the strings.
  /// @param other the key to copy.
  YealinkSoftKey(const YealinkSoftKey& other);
  /// Moves the strings.
  /// @param other the key to move.
  YealinkSoftKey(YealinkSoftKey&& other) noexcept;
  /// Copies the strings.
  /// @param other the key to copy.
  YealinkSoftKey& operator=(const YealinkSoftKey& other);
  /// Moves the strings.
  /// @param other the key to move.
  YealinkSoftKey& operator=(YealinkSoftKey&& other) noexcept;
  /// @}
  virtual ~YealinkSoftKey();

  /// Appends the key as a `SoftKeyItem` element, with the guarantees of `IPPhoneXML::Render`.
  /// @param out the string to append to.
  void Render(std::string& out);

  /// The name of the phone's key. The soft key owns the string.
  const std::string& GetName() const noexcept { return name; }

  /// The URL that the key loads. The soft key owns the string.
  const std::string& GetURL() const noexcept { return URL; }

 private:
  friend class YealinkIPPhone;
  YealinkSoftKey(const char* name, const char* url);

  std::string name;
  std::string URL;
};

/// The soft keys of a Yealink document. The document writes them in insertion order, immediately
/// before its closing tag.
class TELEFORM_EXPORT YealinkIPPhone {
 public:
  /// Starts without soft keys.
  YealinkIPPhone();
  virtual ~YealinkIPPhone();
  YealinkIPPhone(const YealinkIPPhone&) = delete;
  YealinkIPPhone& operator=(const YealinkIPPhone&) = delete;

  /// Adds a key at the end. Several keys may have the same command.
  /// @param command the phone's key; an unknown value adds a key with an empty name.
  /// @param text the URL, a NUL-terminated string; null means the empty URL.
  /// @return always true.
  /// @throws std::bad_alloc when memory runs out; no key is added.
  bool AddSoftKey(YealinkSoftKeyCommands command, const char* text);

 protected:
  std::vector<YealinkSoftKey> softKeys;  ///< The keys in insertion order.
};
