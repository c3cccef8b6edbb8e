/// @file
/// The soft keys of Aastra phones.
#pragma once

#include <teleform/core/export.h>

#include <string>
#include <vector>

/// The built-in actions of an Aastra phone.
enum AastraSoftKeyCommands : int {
  AASTRA_SK_SELECT = 0,
  AASTRA_SK_EXIT = 1,
  AASTRA_SK_DIAL = 2,
  AASTRA_SK_SUBMIT = 3,
  AASTRA_SK_BACKSPACE = 4,
  AASTRA_SK_NEXTSPACE = 5,
  AASTRA_SK_DOT = 6,
  AASTRA_SK_CHANGEMODE = 7,
};

/// A soft key: its position on the phone, its label and the URI that it executes.
/// Only `AastraIPPhone::AddSoftKey` creates soft keys.
class TELEFORM_EXPORT AastraSoftKey {
 public:
  /// @name Copying and moving
  /// A moved-from key is valid, with unspecified strings.
  /// @{

  /// Copies the strings.
  /// @param other the key to copy.
  AastraSoftKey(const AastraSoftKey& other);
  /// Moves the strings.
  /// @param other the key to move.
  AastraSoftKey(AastraSoftKey&& other) noexcept;
  /// Copies the strings.
  /// @param other the key to copy.
  AastraSoftKey& operator=(const AastraSoftKey& other);
  /// Moves the strings.
  /// @param other the key to move.
  AastraSoftKey& operator=(AastraSoftKey&& other) noexcept;
  /// @}
  virtual ~AastraSoftKey();

  /// Appends the key as a `SoftKey` element, with the guarantees of `IPPhoneXML::Render`.
  /// @param out the string to append to.
  void Render(std::string& out);

  /// The position, 1 to 6.
  int GetIndex() const noexcept { return index; }
  /// The full label. The key owns the string.
  const std::string& GetLabel() const noexcept { return label; }

  /// The full URI. The key owns the string.
  const std::string& GetURI() const noexcept { return URI; }

 private:
  friend class AastraIPPhone;
  AastraSoftKey(int index, const char* label, const char* uri);

  int index;
  std::string label;
  std::string URI;
};

/// The soft keys of an Aastra document. The document writes them in insertion order, immediately
/// before its closing tag.
class TELEFORM_EXPORT AastraIPPhone {
 public:
  /// Starts without soft keys.
  AastraIPPhone();
  virtual ~AastraIPPhone();
  AastraIPPhone(const AastraIPPhone&) = delete;
  AastraIPPhone& operator=(const AastraIPPhone&) = delete;

  /// Adds a key at the end. Several keys may have the same position.
  /// @param index the position, 1 to 6.
  /// @param label a NUL-terminated string; null means the empty label.
  /// @param command the action; an unknown value is treated as `AASTRA_SK_SELECT`.
  /// @return false if `index` is out of range; no key is added.
  /// @throws std::bad_alloc when memory runs out; no key is added.
  bool AddSoftKey(int index, const char* label, AastraSoftKeyCommands command);

  /// Adds a key that executes `uri`, a NUL-terminated string; null means the empty URI. Otherwise
  /// like the overload above. A literal 0 selects this overload as a null pointer, so
  /// `AASTRA_SK_SELECT` must be passed by name.
  /// @param index the position, 1 to 6.
  /// @param label a NUL-terminated string; null means the empty label.
  /// @param uri a NUL-terminated string; null means the empty URI.
  bool AddSoftKey(int index, const char* label, const char* uri);

 protected:
  std::vector<AastraSoftKey> softKeys;  ///< The keys in insertion order.
};
