/// @file
/// The soft keys of Snom phones.
#pragma once

#include <teleform/core/export.h>

#include <string>
#include <vector>

/// The keys of a Snom phone. The digits are 0, then 9 down to 1.
enum SnomSoftKeyCommands : int {
  SNOM_SK_CANCEL = 0,
  SNOM_SK_ENTER = 1,
  SNOM_SK_ONHOOK = 2,
  SNOM_SK_RIGHT = 3,
  SNOM_SK_LEFT = 4,
  SNOM_SK_REDIAL = 5,
  SNOM_SK_SPEAKER = 6,
  SNOM_SK_TRANSFER = 7,
  SNOM_SK_CONFERENCE = 8,
  SNOM_SK_HELP = 9,
  SNOM_SK_F_MUTE = 10,
  SNOM_SK_F_UP = 11,
  SNOM_SK_F_DOWN = 12,
  SNOM_SK_REC = 13,
  SNOM_SK_SNOM = 14,
  SNOM_SK_DND = 15,
  SNOM_SK_F_MINIBROWSER_SELECT = 16,
  SNOM_SK_F_MINIBROWSER_EXIT = 17,
  SNOM_SK_F_MINIBROWSER_UPDATE = 18,
  SNOM_SK_F_MINIBROWSER_SEARCH = 19,
  SNOM_SK_F_MINIBROWSER_CANCEL = 20,
  SNOM_SK_F_MINIBROWSER_BACK = 21,
  SNOM_SK_F_MINIBROWSER_DIAL = 22,
  SNOM_SK_F_MINIBROWSER_EDIT_DIAL = 23,
  SNOM_SK_F_MINIBROWSER_EDIT_NEXT = 24,
  SNOM_SK_0 = 25,
  SNOM_SK_9 = 26,
  SNOM_SK_8 = 27,
  SNOM_SK_7 = 28,
  SNOM_SK_6 = 29,
  SNOM_SK_5 = 30,
  SNOM_SK_4 = 31,
  SNOM_SK_3 = 32,
  SNOM_SK_2 = 33,
  SNOM_SK_1 = 34,
  SNOM_SK_HASH = 35,
  SNOM_SK_STAR = 36,
};

/// A soft key: the name of the phone's key and the URL that it loads.
class TELEFORM_EXPORT SnomSoftKey {
 public:
  /// A key with an empty name and an empty URL.
  SnomSoftKey();
  /// @name Copying and moving
  /// A moved-from key is valid, with unspecified strings.
  /// @{

  /// Copies the strings.
  /// @param other the key to copy.
  SnomSoftKey(const SnomSoftKey& other);
  /// Moves the strings.
  /// @param other the key to move.
  SnomSoftKey(SnomSoftKey&& other) noexcept;
  /// Copies the strings.
  /// @param other the key to copy.
  SnomSoftKey& operator=(const SnomSoftKey& other);
  /// Moves the strings.
  /// @param other the key to move.
  SnomSoftKey& operator=(SnomSoftKey&& other) noexcept;
  /// @}
  virtual ~SnomSoftKey();

  /// Appends the key as a `SoftKeyItem` element, with the guarantees of `IPPhoneXML::Render`.
  /// @param out the string to append to.
  void Render(std::string& out);

  /// The name of the phone's key. The soft key owns the string.
  const std::string& GetName() const noexcept { return name; }

  /// The URL that the key loads. The soft key owns the string.
  const std::string& GetURL() const noexcept { return URL; }

 private:
  friend class SnomIPPhone;
  SnomSoftKey(const char* name, const char* url);

  std::string name;
  std::string URL;
};

/// The soft keys of a Snom document. The document writes them in insertion order, immediately
/// before its closing tag.
class TELEFORM_EXPORT SnomIPPhone {
 public:
  /// Starts without soft keys.
  SnomIPPhone();
  virtual ~SnomIPPhone();
  SnomIPPhone(const SnomIPPhone&) = delete;
  SnomIPPhone& operator=(const SnomIPPhone&) = delete;

  /// Adds a key at the end. Several keys may have the same command.
  /// @param command the phone's key; an unknown value adds a key with an empty name.
  /// @param text the URL, a NUL-terminated string; null means the empty URL.
  /// @return always true.
  /// @throws std::bad_alloc when memory runs out; no key is added.
  bool AddSoftKey(SnomSoftKeyCommands command, const char* text);

 protected:
  std::vector<SnomSoftKey> softKeys;  ///< The keys in insertion order.
};
