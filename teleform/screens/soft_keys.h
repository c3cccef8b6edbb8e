/// @file
/// Soft keys by what they do: each maker has a place or a name for it.
#pragma once

#include <teleform/core/documents.h>
#include <teleform/core/export.h>

#include <string>
#include <string_view>

namespace teleform::screens {

/// What a soft key does.
enum class SoftKeyRole : int { kSelect, kDial, kSubmit, kPrevious, kNext, kSearch, kHome, kExit };

/// A soft key of a screen.
struct SoftKey {
  SoftKeyRole role{};
  std::string uri{};    ///< What the key loads; empty for what the phone does by itself.
  std::string label{};  ///< What the key shows, where it has a text; empty for `LabelOf(role)`.
};

/// The English label of a key, such as "Select"; it ends at a NUL and lives as long as the program.
/// @throws std::invalid_argument when `role` is no role.
TELEFORM_EXPORT std::string_view LabelOf(SoftKeyRole role);

/// Whether the maker of `document` has soft keys for such a document.
TELEFORM_EXPORT bool HasSoftKeys(const IPPhoneXML& document) noexcept;

/// Adds a soft key to a document of any maker, in the place or under the name that the maker has
/// for the role. On Aastra phones, which have six places, a key whose place is taken gets the first
/// free one. `EscapeXML` makes the texts well-formed.
/// @param uri what the key loads, not escaped; empty for what the phone does by itself, which only
/// Aastra phones can, and only when selecting, dialling, submitting and leaving.
/// @param label what the key shows on Aastra phones, not escaped; empty for `LabelOf(role)`.
/// @return false, and the document is unchanged, when it can't have such a key, when it has one of
/// that name already, or when all places are taken.
/// @throws std::bad_alloc when memory runs out, and std::invalid_argument when `role` is no role;
/// the document is unchanged.
TELEFORM_EXPORT bool AddSoftKey(IPPhoneXML& document, SoftKeyRole role, std::string_view uri,
                                std::string_view label = {});

}  // namespace teleform::screens
