/// @file
/// What a screen shows, said once for the phones of all makers: `compose.h` makes documents of it.
///
/// Texts are given as people wrote them, in UTF-8, and URIs as they are requested: composing
/// escapes them with `EscapeXML`, which replaces control characters, NULs and invalid bytes. An
/// empty text or URI of an item, a person or a form's field becomes "-", as documents refuse empty
/// ones; titles, lines and hints may be empty. Soft keys are added in their order, by `AddSoftKey`;
/// those that a document can't have are left out.
#pragma once

#include <teleform/screens/soft_keys.h>

#include <string>
#include <vector>

namespace teleform::screens {

/// An item of a menu.
struct Item {
  std::string text{};  ///< What the phone shows.
  std::string uri{};   ///< Where it leads.
};

/// A choice of pages.
struct Menu {
  std::string title{};          ///< The heading.
  std::vector<Item> items{};    ///< The choices, in their order.
  std::vector<SoftKey> keys{};  ///< The soft keys, in their order.
  std::string previous{};       ///< The URI of the page before this one; empty when there is none.
  std::string next{};           ///< The URI of the page after this one; empty when there is none.
};

/// Somebody to call.
struct Person {
  std::string name{};       ///< What the phone shows.
  std::string telephone{};  ///< What the phone dials: a number or a SIP address.
  std::string note{};       ///< Shown behind the name where the document has room, that is in HTML.
};

/// A list of people, each of whom is called by choosing them.
struct List {
  std::string title{};           ///< The heading.
  std::vector<Person> people{};  ///< The people, in their order.
  std::vector<SoftKey> keys{};   ///< The soft keys, in their order.
  std::string previous{};        ///< The URI of the page before this one; empty when there is none.
  std::string next{};            ///< The URI of the page after this one; empty when there is none.
};

/// A text to read.
struct Text {
  std::string title{};               ///< The heading.
  std::vector<std::string> lines{};  ///< The lines, without line feeds.
  std::string target{};         ///< A URI or number: where each line leads if it becomes an entry.
  std::vector<SoftKey> keys{};  ///< The soft keys, in their order.
};

/// A form with one field.
struct Form {
  std::string title{};      ///< The heading.
  std::string hint{};       ///< Shown above the field where the document has room, that is in HTML.
  std::string prompt{};     ///< Shown before the field.
  std::string uri{};        ///< Where the phone sends the value; it has no query.
  std::string parameter{};  ///< The name of the value in the query.
  std::vector<SoftKey> keys{};  ///< The soft keys, in their order.
};

/// A call that the phone starts by itself, or else offers.
struct Call {
  Person person{};              ///< Who is called.
  std::vector<SoftKey> keys{};  ///< The soft keys, in their order.
};

/// A message on top of what the phone shows.
struct Alert {
  Text text{};  ///< The message.
  /// @name What only a status says
  /// Aastra phones know it; a text screen leaves it out.
  /// @{
  bool isUrgent = true;   ///< Whether the phone beeps and shows the message as an alert.
  std::string session{};  ///< A later message of the same session replaces this one.
  int timeout = 10;       ///< Seconds for which an urgent message is shown, if above 0.
  /// @}
};

}  // namespace teleform::screens
