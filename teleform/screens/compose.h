/// @file
/// The document that shows a screen on a maker's phone: of the kind that the screen asks for, or
/// else the nearest that the maker has.
///
///     Document document = ComposeText(Maker::kSnom, {"Lunch", {"Soup & bread"}});
///     std::string text;
///     document->Render(text);  // to be sent as document->GetContentType()
///
/// The caller owns the document, which holds copies. When memory runs out, `std::bad_alloc` is
/// thrown and nothing is left behind. `std::invalid_argument` is thrown for a maker or a role of a
/// soft key that is none.
#pragma once

#include <teleform/core/documents.h>
#include <teleform/core/export.h>
#include <teleform/screens/makers.h>
#include <teleform/screens/screens.h>

#include <memory>

namespace teleform::screens {

/// A document of any maker and kind.
using Document = std::unique_ptr<IPPhoneXML>;

/// A menu, else a directory whose entries hold the items' URIs, else a text screen with links.
TELEFORM_EXPORT Document ComposeMenu(Maker maker, const Menu& menu);

/// A directory, else a text screen with links. Where a directory has no soft keys, those that load
/// a URI are entries at its end.
TELEFORM_EXPORT Document ComposeList(Maker maker, const List& list);

/// A text screen, else a directory of its lines. A Yealink text screen has no soft keys: with keys
/// that load a URI a text becomes a directory there, too.
TELEFORM_EXPORT Document ComposeText(Maker maker, const Text& text);

/// An input form, else a text screen with a form in HTML; null for a maker that has neither.
TELEFORM_EXPORT Document ComposeForm(Maker maker, const Form& form);

/// An execute document, else what `ComposeList` makes of the one person, with the name as its
/// title.
TELEFORM_EXPORT Document ComposeCall(Maker maker, const Call& call);

/// A status, else what `ComposeText` makes of the text.
TELEFORM_EXPORT Document ComposeAlert(Maker maker, const Alert& alert);

}  // namespace teleform::screens
