/// @file
/// The document that shows a screen on a maker's phone: of the kind that the screen asks for, or
/// else the nearest that the maker has.
///
///     Document document = ComposeText(Maker::kSnom, {"Lunch", {"Soup & bread"}});
///     std::string text;
///     document->Render(text);  // to be sent as document->GetContentType()
///
/// The caller owns the document, which holds copies and is never null unless `ComposeForm` says so.
/// Everything that a screen holds is escaped on its way into the document, so that the document is
/// well-formed whatever bytes the screen holds (see `EscapeXML`). Nothing is cut off and no number
/// of items is refused.
///
/// When memory runs out, `std::bad_alloc` is thrown and nothing is left behind.
/// `std::invalid_argument` is thrown for a maker or a role of a soft key outside its enumeration.
#pragma once

#include <teleform/core/documents.h>
#include <teleform/core/export.h>
#include <teleform/screens/makers.h>
#include <teleform/screens/screens.h>

#include <memory>

namespace teleform::screens {

/// A document of any maker and kind.
using Document = std::unique_ptr<IPPhoneXML>;

/// A menu, or else a directory whose entries hold the items' URIs, or else a text screen with
/// links.
/// @param maker the maker of the phone.
/// @param menu what the document shows.
TELEFORM_EXPORT Document ComposeMenu(Maker maker, const Menu& menu);

/// A directory, or else a text screen with links. Where a directory has no soft keys, those that
/// load a URI are entries at its end.
/// @param maker the maker of the phone.
/// @param list what the document shows.
TELEFORM_EXPORT Document ComposeList(Maker maker, const List& list);

/// A text screen, or else a directory with one entry a line. A Yealink text screen has no soft
/// keys: a text with keys that load a URI becomes a directory there, too.
/// @param maker the maker of the phone.
/// @param text what the document shows.
TELEFORM_EXPORT Document ComposeText(Maker maker, const Text& text);

/// An input form, or else a text screen with an HTML form; null for a maker that has neither.
/// @param maker the maker of the phone.
/// @param form what the document shows.
TELEFORM_EXPORT Document ComposeForm(Maker maker, const Form& form);

/// An execute document, or else what `ComposeList` makes of the one person under its name. What is
/// dialed is percent-encoded but for `+`, `*`, `:` and `@`; an empty number dials nothing.
/// @param maker the maker of the phone.
/// @param call what the document shows.
TELEFORM_EXPORT Document ComposeCall(Maker maker, const Call& call);

/// A status, whose message is the lines with blanks between them, or else what `ComposeText` makes
/// of the text.
/// @param maker the maker of the phone.
/// @param alert what the document shows.
TELEFORM_EXPORT Document ComposeAlert(Maker maker, const Alert& alert);

}  // namespace teleform::screens
