/// @file
/// The makers whose phones the library composes documents for, and what a server must know of each.
///
/// Throughout `teleform::screens`: functions may be called from any thread at the same time, but no
/// document may be used on two threads. A value outside an enumeration is refused with
/// `std::invalid_argument`.
#pragma once

#include <teleform/core/export.h>

#include <cstddef>
#include <optional>
#include <string_view>

namespace teleform::screens {

/// The makers. A new one comes last, because the values are part of the binary interface.
enum class Maker : int { kAastra, kCisco, kPolycom, kSnom, kYealink };

/// What a server must know of a maker's phones.
struct MakerFacts {
  Maker maker{};             ///< The maker.
  std::string_view name{};   ///< The name, such as "Aastra".
  std::string_view slug{};   ///< The name in lower case, for the paths of URIs.
  int pageSize = 0;          ///< How many items fit well on one page of the phones.
  bool writesPages = false;  ///< Whether the directory itself links the pages before and after.
};

/// A range of facts, for loops; they live as long as the program.
struct MakerRange {
  const MakerFacts* first;  ///< The first facts.
  const MakerFacts* last;   ///< The place behind the last facts.

  /// The first facts.
  const MakerFacts* begin() const noexcept { return first; }
  /// The place behind the last facts.
  const MakerFacts* end() const noexcept { return last; }
  /// How many facts there are.
  std::size_t size() const noexcept { return static_cast<std::size_t>(last - first); }
};

/// The facts of all makers, in the order of the enumeration.
TELEFORM_EXPORT MakerRange AllMakers() noexcept;

/// The facts of `maker`; they live as long as the program.
/// @param maker the maker that is described.
/// @throws std::invalid_argument when `maker` is outside its enumeration.
TELEFORM_EXPORT const MakerFacts& FactsOf(Maker maker);

/// The maker whose slug is exactly `slug`, case included; none for an empty slug.
/// @param slug any text.
TELEFORM_EXPORT std::optional<Maker> MakerOfSlug(std::string_view slug) noexcept;

/// The maker whose name occurs in `userAgent`, the value of a request's User-Agent field, which may
/// hold any bytes. The case of ASCII letters does not matter. Of several makers the first in the
/// order of the enumeration is returned; of an empty field, none.
/// @param userAgent any text.
TELEFORM_EXPORT std::optional<Maker> MakerOfUserAgent(std::string_view userAgent) noexcept;

}  // namespace teleform::screens
