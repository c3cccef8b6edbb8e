/// @file
/// What a page says, and the document that says it to a maker's phone: one of the kind that the
/// page asks for, or else the nearest that the maker has.
///
/// Texts and URIs are given here as they are; making them fit for XML is done by composing them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "phonebook/makers.h"

namespace phonebook {

using Document = std::unique_ptr<IPPhoneXML>;

struct SoftKey {
  Key key;
  std::string uri;  ///< As `AddSoftKey` takes it.
};

/// Something to choose from a list: it leads to a URI, or it is dialled.
struct Item {
  std::string text;
  std::string uri;
  std::string telephone{};  ///< What is dialled; empty when the item leads to its URI.
  std::string written{};    ///< The same as people write it.
};

struct List {
  std::string title;
  std::vector<Item> items;
  std::vector<SoftKey> keys;
  std::string previous{};  ///< The URIs of the pages before and after; empty when there is none.
  std::string next{};
};

struct Text {
  std::string title;
  std::vector<std::string> lines;
  std::string target;  ///< Where a line leads, a URI or a number, when lines are shown as a list.
  std::vector<SoftKey> keys;
};

/// A form with one field.
struct Form {
  std::string title;
  std::string hint;  ///< Shown where there is room for it.
  std::string prompt;
  std::string uri;
  std::string parameter;
  std::vector<SoftKey> keys;
};

/// A menu, else a directory, else a text screen with links.
Document ComposeMenu(Maker maker, const List& list);

/// A directory, else a text screen with links. Where it has no soft keys, those that lead somewhere
/// are items at its end.
Document ComposeDirectory(Maker maker, const List& list);

/// A text screen, else a directory of its lines.
Document ComposeText(Maker maker, const Text& text);

/// An input form, else a text screen with a form in HTML; null for a maker that has neither.
Document ComposeForm(Maker maker, const Form& form);

/// A document that makes the phone dial `item`, else a directory with it alone.
Document ComposeCall(Maker maker, const Item& item, const std::vector<SoftKey>& keys);

/// An alert on top of what the phone shows, or without a sound if there is nothing to be alarmed
/// at; else a text screen.
Document ComposeAlert(Maker maker, const Text& text, bool isAlarming);

}  // namespace phonebook
