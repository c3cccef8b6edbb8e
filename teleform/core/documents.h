/// @file
/// The root of all documents and the six kinds of document that derive from it.
///
/// A server holds a document through its kind, fills it with the kind's operations and renders it,
/// without knowing which maker's class it constructed.
///
/// Throughout the library: a document owns copies of everything that it is given. A parameter of
/// the type `const char*` ends at its NUL, and null is the empty string; one of the type
/// `const std::string&` is taken whole, and a null pointer given for it is the caller's mistake,
/// for which `std::string` throws `std::logic_error`. Nothing is escaped, trimmed or converted. An
/// operation that runs out of memory throws `std::bad_alloc` and leaves the document as it was.
/// Distinct documents may be used on different threads at the same time; one document must not be.
#pragma once

#include <teleform/core/directory_entry.h>
#include <teleform/core/export.h>

#include <memory>
#include <string>
#include <vector>

/// Bits of the flag word that `IPPhoneXML::SetAttributes` takes.
enum IPPhoneAttributes : unsigned long {
  AttrDestroyOnExit = 0x01,  ///< The phone forgets the screen when the user leaves it.
  AttrBeep = 0x10,           ///< The phone beeps when the document arrives.
};

/// The root of all documents: a title, a content type and two attribute flags.
///
/// Documents can be deleted through a pointer to the root, to their kind or to their maker's
/// soft-key holder. They can't be copied or moved.
class TELEFORM_EXPORT IPPhoneXML {
 public:
  virtual ~IPPhoneXML();
  IPPhoneXML(const IPPhoneXML&) = delete;
  IPPhoneXML& operator=(const IPPhoneXML&) = delete;

  /// Sets both attribute flags from the bits of `flags` (see `IPPhoneAttributes`), so that a bit
  /// that is missing clears its flag. Other bits are ignored. Only the Aastra documents write the
  /// flags; the other makers' phones know none.
  virtual void SetAttributes(unsigned long flags);

  /// Appends the complete document to `out`.
  ///
  /// What `out` already holds stays as it is, and the document does not change, so that it may be
  /// rendered again. `out` grows once at most and, if it grows, to at least twice its capacity.
  ///
  /// @throws std::bad_alloc when memory runs out, and `std::length_error` when `out` can't grow
  /// as far as needed. `out` is then unchanged: it never holds a part of a document.
  virtual void Render(std::string& out) = 0;

  /// The title, up to the first NUL of what the constructor was given.
  const std::string& GetTitle() const noexcept { return title; }

  /// The media type with which to send the rendered text: "text/xml" for every document but the
  /// Polycom text screen, which is "text/html". It names no charset: that is the caller's to add.
  const std::string& GetContentType() const noexcept { return contentType; }

 protected:
  /// @param title ends at its NUL; null is the empty title.
  explicit IPPhoneXML(const char* title);

  bool destroyOnExit = false;  ///< Whether `AttrDestroyOnExit` is set.
  bool beep = false;           ///< Whether `AttrBeep` is set.
  std::string title;           ///< What `GetTitle` returns; it never changes.
  std::string contentType;     ///< What `GetContentType` returns.
};

/// A screen with a title and one block of text.
class TELEFORM_EXPORT IPPhoneTextScreenXML : public IPPhoneXML {
 public:
  ~IPPhoneTextScreenXML() override;

  /// Replaces the text. It is stored whole; each class tells whether a NUL ends it when written.
  virtual void SetText(const std::string& text) = 0;

 protected:
  /// @param title ends at its NUL; null is the empty title.
  explicit IPPhoneTextScreenXML(const char* title);
};

/// A title and a list of items, each a prompt with the URI that it leads to.
class TELEFORM_EXPORT IPPhoneMenuXML : public IPPhoneXML {
 public:
  ~IPPhoneMenuXML() override;

  /// Appends an item.
  /// @return false, and the menu is unchanged, when `prompt` or `uri` is empty or, with makers that
  /// enforce a limit, when the menu is full.
  virtual bool AppendItem(const std::string& prompt, const std::string& uri) = 0;

  /// Replaces the URI of the page before this one. Does nothing unless the maker's class says so.
  virtual void SetPreviousURI(const std::string& uri);

  /// Replaces the URI of the page after this one. Does nothing unless the maker's class says so.
  virtual void SetNextURI(const std::string& uri);

 protected:
  /// @param title ends at its NUL; null is the empty title.
  /// @param maxItems stored as it is; with makers that enforce it, 0 and less refuse every item.
  IPPhoneMenuXML(const char* title, int maxItems);

  int maxItems;  ///< The limit, as the constructor got it.
};

/// A title and a list of entries, each a name with a telephone number or URI.
class TELEFORM_EXPORT IPPhoneDirectoryXML : public IPPhoneXML {
 public:
  ~IPPhoneDirectoryXML() override;

  /// Appends an entry behind those that the directory holds.
  /// @return false, and the directory is unchanged, when `name` or `telephone` is empty or, with
  /// makers that enforce a limit, when the directory is full. This base accepts no entry at all.
  virtual bool AppendEntry(const std::string& name, const std::string& telephone);

  /// Replaces the URI of the page before this one. Does nothing unless the maker's class says so.
  virtual void SetPreviousURI(const std::string& uri);

  /// Replaces the URI of the page after this one. Does nothing unless the maker's class says so.
  virtual void SetNextURI(const std::string& uri);

  /// Sorts the entries by name: ascending byte order, a name before the longer names that begin
  /// with it, equal names in the order in which they were appended. Nothing sorts by itself, and
  /// entries appended later stand behind the sorted ones until the next sort.
  virtual void SortDirectoryItems();

 protected:
  /// @param title ends at its NUL; null is the empty title.
  /// @param maxItems stored as it is; with makers that enforce it, 0 and less refuse every entry.
  IPPhoneDirectoryXML(const char* title, int maxItems);

  int maxItems;  ///< The limit, as the constructor got it.

  /// The entries in the order in which they are written; none is null, and each is of the entry
  /// class of the directory that appended it. The destructor of this class deletes them from the
  /// first to the last.
  std::vector<std::unique_ptr<IPPhoneDirectoryEntry>> entries;
};

/// A form that asks for one value and sends it to a URL as a named parameter.
class TELEFORM_EXPORT IPPhoneInputXML : public IPPhoneXML {
 public:
  ~IPPhoneInputXML() override;

  /// Replaces all four values; they are stored and written whole.
  /// @param prompt the question that the phone shows.
  /// @param url where the phone sends the answer.
  /// @param parameter the name under which it sends it.
  /// @param defaultValue the answer offered; the only one of the four that may be empty.
  /// @return false, and all four stay as they were, when one of the first three is empty.
  virtual bool SetParams(const std::string& prompt, const std::string& url,
                         const std::string& parameter, const std::string& defaultValue) = 0;

 protected:
  /// @param title ends at its NUL; null is the empty title.
  explicit IPPhoneInputXML(const char* title);
};

/// A document that shows nothing and makes the phone carry out a URI.
class TELEFORM_EXPORT IPPhoneExecuteXML : public IPPhoneXML {
 public:
  ~IPPhoneExecuteXML() override;

 protected:
  /// @param title ends at its NUL; null is the empty title.
  explicit IPPhoneExecuteXML(const char* title);
};

/// A status message that belongs to a session.
class TELEFORM_EXPORT IPPhoneStatusXML : public IPPhoneXML {
 public:
  /// What kind of message it is; a value outside the list counts as `MsgTypeNormal`.
  enum MsgType : int {
    MsgTypeNormal = 0,
    MsgTypeAlert = 1,
  };

  ~IPPhoneStatusXML() override;

  /// Replaces the message and all that belongs to it. Nothing is refused.
  /// @param session the session to which the message belongs; written whole.
  /// @param message the text; written whole.
  /// @param index the message's index; any number.
  /// @param type a plain message or an alert.
  /// @param timeout in the phone's unit; only an alert has one, and only above 0.
  virtual void SetMessage(const std::string& session, const std::string& message, int index,
                          MsgType type, int timeout) = 0;

 protected:
  IPPhoneStatusXML();
};
