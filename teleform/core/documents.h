/// @file
/// The base class of all documents and the six document kinds that derive from it.
///
/// A server fills and renders a document through its kind. Only the constructor call depends on the
/// maker.
///
/// These rules apply to the whole library:
/// - A document owns copies of all its arguments.
/// - A `const char*` argument is a NUL-terminated string. Null means the empty string.
/// - A `const std::string&` argument is copied in full, NULs included. A null pointer in its place
///   is a caller error: `std::string` throws `std::logic_error`.
/// - A title of either type ends at its first NUL.
/// - Nothing is escaped, trimmed or converted.
/// - An operation that runs out of memory throws `std::bad_alloc` and does not change the document.
/// - Different threads may use different documents concurrently, but not the same document.
#pragma once

#include <teleform/core/directory_entry.h>
#include <teleform/core/export.h>

#include <memory>
#include <string>
#include <vector>

/// Flag bits for `IPPhoneXML::SetAttributes`.
enum IPPhoneAttributes : unsigned long {
  AttrDestroyOnExit = 0x01,  ///< The phone discards the screen when the user leaves it.
  AttrBeep = 0x10,           ///< The phone beeps when the document arrives.
};

/// The base class of all documents: a title, a content type and two attribute flags.
///
/// A document can be deleted through a pointer to this class, to its kind or to its maker's soft
/// key class. Documents can't be copied or moved.
class TELEFORM_EXPORT IPPhoneXML {
 public:
  virtual ~IPPhoneXML();
  IPPhoneXML(const IPPhoneXML&) = delete;
  IPPhoneXML& operator=(const IPPhoneXML&) = delete;

  /// Sets each attribute flag whose bit is in `flags` (see `IPPhoneAttributes`) and clears the
  /// others. Unknown bits are ignored. Only Aastra documents write the flags; the other makers'
  /// phones have none.
  /// @param flags the bits of `IPPhoneAttributes`, combined by `|`.
  virtual void SetAttributes(unsigned long flags);

  /// Appends the complete document to `out`.
  ///
  /// Existing content of `out` is kept. The document does not change and can be rendered again.
  /// `out` is reallocated at most once, to at least twice its capacity.
  ///
  /// @param out the string to append to.
  /// @throws std::bad_alloc when memory runs out, and `std::length_error` when the result exceeds
  /// the maximum size of a string. `out` is then unchanged and never holds a partial document.
  virtual void Render(std::string& out) = 0;

  /// The title, which is the constructor's argument up to its first NUL.
  const std::string& GetTitle() const noexcept { return title; }

  /// The media type of the rendered text: "text/html" for the Polycom text screen, "text/xml" for
  /// all other documents. The caller adds the charset.
  const std::string& GetContentType() const noexcept { return contentType; }

 protected:
  /// @param title a NUL-terminated string; null means the empty title.
  explicit IPPhoneXML(const char* title);

  bool destroyOnExit = false;  ///< Whether `AttrDestroyOnExit` is set.
  bool beep = false;           ///< Whether `AttrBeep` is set.
  std::string title;           ///< The value of `GetTitle`; it never changes.
  std::string contentType;     ///< The value of `GetContentType`.
};

/// A screen with a title and one block of text.
class TELEFORM_EXPORT IPPhoneTextScreenXML : public IPPhoneXML {
 public:
  ~IPPhoneTextScreenXML() override;

  /// Replaces the text, which is stored in full. Each class documents whether rendering stops at
  /// the first NUL.
  /// @param text may be empty and may contain NULs.
  virtual void SetText(const std::string& text) = 0;

 protected:
  /// @param title a NUL-terminated string; null means the empty title.
  explicit IPPhoneTextScreenXML(const char* title);
};

/// A title and a list of items, each with a prompt and a target URI.
class TELEFORM_EXPORT IPPhoneMenuXML : public IPPhoneXML {
 public:
  ~IPPhoneMenuXML() override;

  /// Appends an item.
  /// @param prompt the text that the phone shows.
  /// @param uri the URI that the item leads to.
  /// @return false if `prompt` or `uri` is empty or if the menu is full; the menu is then
  /// unchanged. Only some makers' menus enforce their limit.
  virtual bool AppendItem(const std::string& prompt, const std::string& uri) = 0;

  /// Replaces the URI of the previous page. Does nothing unless a subclass documents otherwise.
  /// @param uri an absolute address; empty for no link.
  virtual void SetPreviousURI(const std::string& uri);

  /// Replaces the URI of the next page. Does nothing unless a subclass documents otherwise.
  /// @param uri an absolute address; empty for no link.
  virtual void SetNextURI(const std::string& uri);

 protected:
  /// @param title a NUL-terminated string; null means the empty title.
  /// @param maxItems the limit, any number. If the subclass enforces it, 0 or less rejects all
  /// items.
  IPPhoneMenuXML(const char* title, int maxItems);

  int maxItems;  ///< The constructor's argument.
};

/// A title and a list of entries, each a name with a telephone number or URI.
class TELEFORM_EXPORT IPPhoneDirectoryXML : public IPPhoneXML {
 public:
  ~IPPhoneDirectoryXML() override;

  /// Appends an entry at the end.
  /// @param name the text that the phone shows.
  /// @param telephone the number or URI that the phone dials.
  /// @return false if `name` or `telephone` is empty or if the directory is full; the directory is
  /// then unchanged. Only some makers' directories enforce their limit. This base class rejects
  /// every entry.
  virtual bool AppendEntry(const std::string& name, const std::string& telephone);

  /// Replaces the URI of the previous page. Does nothing unless a subclass documents otherwise.
  /// @param uri an absolute address; empty for no link.
  virtual void SetPreviousURI(const std::string& uri);

  /// Replaces the URI of the next page. Does nothing unless a subclass documents otherwise.
  /// @param uri an absolute address; empty for no link.
  virtual void SetNextURI(const std::string& uri);

  /// Sorts the entries by name in ascending byte order. A prefix sorts before longer names, and
  /// equal names keep their order. Only this call sorts: entries appended later stay at the end
  /// until the next call.
  virtual void SortDirectoryItems();

 protected:
  /// @param title a NUL-terminated string; null means the empty title.
  /// @param maxItems the limit, any number. If the subclass enforces it, 0 or less rejects all
  /// entries.
  IPPhoneDirectoryXML(const char* title, int maxItems);

  int maxItems;  ///< The constructor's argument.

  /// The entries in rendering order. None is null. Each is an instance of the entry class of the
  /// directory that appended it. The destructor of this class deletes them from first to last.
  std::vector<std::unique_ptr<IPPhoneDirectoryEntry>> entries;
};

/// A form with one input field, whose value the phone sends to a URL as a named parameter.
class TELEFORM_EXPORT IPPhoneInputXML : public IPPhoneXML {
 public:
  ~IPPhoneInputXML() override;

  /// Replaces all four values, which are stored and written in full.
  /// @param prompt the label that the phone shows.
  /// @param url the URL to which the phone sends the input.
  /// @param parameter the name of the query parameter that carries the input.
  /// @param defaultValue the initial input; it may be empty.
  /// @return false if `prompt`, `url` or `parameter` is empty; all four values are then unchanged.
  virtual bool SetParams(const std::string& prompt, const std::string& url,
                         const std::string& parameter, const std::string& defaultValue) = 0;

 protected:
  /// @param title a NUL-terminated string; null means the empty title.
  explicit IPPhoneInputXML(const char* title);
};

/// A document without a screen that makes the phone execute a URI.
class TELEFORM_EXPORT IPPhoneExecuteXML : public IPPhoneXML {
 public:
  ~IPPhoneExecuteXML() override;

 protected:
  /// @param title a NUL-terminated string; null means the empty title.
  explicit IPPhoneExecuteXML(const char* title);
};

/// A status message that belongs to a session.
class TELEFORM_EXPORT IPPhoneStatusXML : public IPPhoneXML {
 public:
  /// The type of a message. Any other value is treated as `MsgTypeNormal`.
  enum MsgType : int {
    MsgTypeNormal = 0,  ///< A message.
    MsgTypeAlert = 1,   ///< An alert, which may have a timeout.
  };

  ~IPPhoneStatusXML() override;

  /// Replaces all five values. Every value is accepted.
  /// @param session the session of the message; written in full.
  /// @param message the text; written in full.
  /// @param index the index of the message; any number.
  /// @param type a normal message or an alert.
  /// @param timeout in the phone's unit; written only for an alert and only if positive.
  virtual void SetMessage(const std::string& session, const std::string& message, int index,
                          MsgType type, int timeout) = 0;

 protected:
  /// A status with an empty title.
  IPPhoneStatusXML();
};
