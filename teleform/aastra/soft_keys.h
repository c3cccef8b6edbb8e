/// @file
/// The soft keys of Aastra phones.
#pragma once

#include <teleform/core/export.h>

#include <string>
#include <vector>

/// The actions that an Aastra phone has built in.
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

/// One soft key: its position on the phone, its label and the URI that it runs.
/// Only `AastraIPPhone::AddSoftKey` makes one.
class TELEFORM_EXPORT AastraSoftKey {
 public:
  /// @name A key is a value
  /// @{
  AastraSoftKey(const AastraSoftKey& other);                 ///< Copies the strings.
  AastraSoftKey(AastraSoftKey&& other) noexcept;             ///< Leaves `other` with any strings.
  AastraSoftKey& operator=(const AastraSoftKey& other);      ///< Copies the strings.
  AastraSoftKey& operator=(AastraSoftKey&& other) noexcept;  ///< Leaves `other` with any strings.
  /// @}
  virtual ~AastraSoftKey();

  /// Appends the key's `SoftKey` element, as `IPPhoneXML::Render` appends a document.
  void Render(std::string& out);

  /// The position, 1 to 6.
  int GetIndex() const noexcept { return index; }
  /// The text on the key, whole; it stays the key's.
  const std::string& GetLabel() const noexcept { return label; }

  /// What the key runs, whole; it stays the key's.
  const std::string& GetURI() const noexcept { return URI; }

 private:
  friend class AastraIPPhone;
  AastraSoftKey(int index, const char* label, const char* uri);

  int index;
  std::string label;
  std::string URI;
};

/// The soft keys of an Aastra document, which writes them in the order in which they were added,
/// just before its closing element.
class TELEFORM_EXPORT AastraIPPhone {
 public:
  AastraIPPhone();
  virtual ~AastraIPPhone();
  AastraIPPhone(const AastraIPPhone&) = delete;
  AastraIPPhone& operator=(const AastraIPPhone&) = delete;

  /// Adds a key behind those that are there, also when one of them has the same position.
  /// @param index the position, 1 to 6.
  /// @param label ends at its NUL; null is the empty label.
  /// @param command an unknown value counts as `AASTRA_SK_SELECT`.
  /// @return false, and nothing is added, when `index` is not a position.
  /// @throws std::bad_alloc when memory runs out; nothing is added.
  bool AddSoftKey(int index, const char* label, AastraSoftKeyCommands command);

  /// The same with a URI of the caller's; it ends at its NUL, and null is the empty URI. That is
  /// also what a literal 0 is: `AASTRA_SK_SELECT` must be given by its name.
  bool AddSoftKey(int index, const char* label, const char* uri);

 protected:
  std::vector<AastraSoftKey> softKeys;  ///< The keys in the order in which they were added.
};
