/// @file
/// Soft keys by what they do. Each maker has a place or a name for each role.
#pragma once

#include <teleform/core/documents.h>
#include <teleform/core/export.h>

#include <string>
#include <string_view>

namespace teleform::screens {

/// What a soft key does.
enum class SoftKeyRole : int {
  kSelect,    ///< Selects the current item.
  kDial,      ///< Calls the current entry.
  kSubmit,    ///< Submits the form.
  kPrevious,  ///< Loads the page before this one.
  kNext,      ///< Loads the page after this one.
  kSearch,    ///< Loads the search.
  kHome,      ///< Loads the first page.
  kExit,      ///< Leaves the screen.
};

/// A soft key of a screen.
struct SoftKey {
  SoftKeyRole role{};   ///< What the key does.
  std::string uri{};    ///< What the key loads; empty for the phone's built-in action.
  std::string label{};  ///< What the key shows, where it has a text; empty for `LabelOf(role)`.
};

/// The English label of a role, such as "Select". It is never empty, is followed by a NUL, and
/// lives as long as the program.
/// @param role the role of the key.
/// @throws std::invalid_argument when `role` is outside its enumeration.
TELEFORM_EXPORT std::string_view LabelOf(SoftKeyRole role);

/// Whether the maker of `document` has soft keys for such a document.
/// @param document any document, also of a class that the library does not have.
TELEFORM_EXPORT bool HasSoftKeys(const IPPhoneXML& document) noexcept;

/// Adds a soft key to a document of any maker.
///
/// - Aastra: in the role's place among six, or in the first free place if that one is taken. An
///   empty URI stands for the built-in action; only `kSelect`, `kDial`, `kSubmit` and `kExit` have
///   one.
/// - Snom and Yealink: under the name that their phones have for the role. They show their own
///   labels and have no built-in actions, so that a key needs a URI.
/// - All other documents have no soft keys.
///
/// `EscapeXML` makes the URI and the label well-formed, whatever bytes they hold.
/// @param document stays the caller's.
/// @param role what the key does.
/// @param uri what the key loads; empty for the built-in action.
/// @param label what the key shows, where it has a text; empty for `LabelOf(role)`.
/// @return false, and the document is unchanged, when it can't have such a key, when it has one of
/// that name already, or when all places are taken.
/// @throws std::bad_alloc when memory runs out, and `std::invalid_argument` when `role` is
/// outside its enumeration, whatever the document; the document is unchanged.
TELEFORM_EXPORT bool AddSoftKey(IPPhoneXML& document, SoftKeyRole role, std::string_view uri,
                                std::string_view label = {});

}  // namespace teleform::screens
