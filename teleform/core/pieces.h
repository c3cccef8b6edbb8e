// Appends text to a string. A Render passes its whole output as one list of pieces, in order:
//
//   Append(out,
//          Line("<Greeting", When(isLoud, " Loud=\"yes\""), ">"),
//          Line("<Name>", name, "</Name>"),
//          ForEach(friends, [](const auto& f) { return Line("<Friend>", f, "</Friend>"); }),
//          Line("</Greeting>"));
//
// Append traverses the list twice. The first pass adds up the sizes of all pieces and reserves
// memory in the caller's string, the only step that can fail. The second pass copies the pieces. A
// rendering therefore needs at most one allocation, runs at nearly the speed of memcpy, and is all
// or nothing.
#pragma once

#include <teleform/core/exact_class.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

// Literals, their sizes and conditions are constants only in the function that contains the list.
// Without forced inlining, compilers pass them through memory, which halves the speed.
#define TELEFORM_INLINE __attribute__((always_inline))

namespace teleform {

// == Pieces ==
//
// A piece is text or a composition of pieces. It refers to its text and does not own it. Text is a
// std::string, a std::string_view or an array of characters. An array must be a literal: its last
// character is not written.

// The type carries the size, so that compilers copy a literal inline.
template <std::size_t size>
struct Literal {
  Literal(const char* literal) : text(literal) {}
  const char* text;
};

template <typename... Piece>
struct Group {
  // The condition, then the pieces. With the standard library of GCC 14, Clang 17 can't make a
  // tuple of one element from an array of characters.
  std::tuple<bool, Piece...> pieces;
};

template <typename Container, typename ToPiece>
struct Repetition {
  const Container& items;
  ToPiece toPiece;
};

// The type that stores an argument of type T in a list.
template <typename T>
struct StoredPiece {
  using Type =
      std::conditional_t<std::is_convertible_v<const T&, std::string_view>, std::string_view, T>;
};
template <std::size_t size>
struct StoredPiece<char[size]> {
  using Type = Literal<size - 1>;
};
template <typename T>
using StoredPieceType = typename StoredPiece<T>::Type;

// Pieces that are written only if the condition holds, such as an attribute.
template <typename... T>
Group<StoredPieceType<T>...> When(bool condition, const T&... piece) {
  return {{condition, piece...}};
}

// A sequence of pieces.
template <typename... T>
Group<StoredPieceType<T>...> Pieces(const T&... piece) {
  return When(true, piece...);
}

// A sequence of pieces and a line feed.
template <typename... T>
auto Line(const T&... piece) {
  return Pieces(piece..., "\n");
}

// One piece per item of a container; `toPiece` maps an item to its piece.
template <typename Container, typename ToPiece>
Repetition<Container, ToPiece> ForEach(const Container& items, ToPiece toPiece) {
  return {items, toPiece};
}

// The text before the first NUL, or all of it.
inline std::string_view UpToNul(const std::string& text) { return text.c_str(); }

// == Sizes ==

// The sum of sizes. A document may contain the same text several times, which could overflow a
// 32-bit std::size_t. No alias of it elsewhere, as std::uint64_t is, for -Wuseless-cast.
using TotalSize = unsigned long long;

inline TotalSize Size(std::string_view text) { return text.size(); }

template <std::size_t size>
constexpr TotalSize Size(const Literal<size>& /*literal*/) {
  return size;
}

template <typename... Piece, std::size_t... index>
TELEFORM_INLINE inline TotalSize Size(const Group<Piece...>& group,
                                      std::index_sequence<index...> /*all*/) {
  return (Size(std::get<index + 1>(group.pieces)) + ...);
}

template <typename... Piece>
TELEFORM_INLINE inline TotalSize Size(const Group<Piece...>& group) {
  return std::get<0>(group.pieces) ? Size(group, std::index_sequence_for<Piece...>()) : 0;
}

// By value, here and in Copy: a reference would force the compiler to keep the whole list of pieces
// in memory.
template <typename Container, typename ToPiece>
TotalSize Size(Repetition<Container, ToPiece> repetition) {
  TotalSize size = 0;
  for (const auto& item : repetition.items) size += Size(repetition.toPiece(item));
  return size;
}

// == Copies ==

// Copies text of half to 2 * half bytes by two copies of constant size, which may overlap. Texts on
// phones are short, and a call to memcpy costs more than such copies.
template <std::size_t half>
void CopyOverlapping(char* dest, std::string_view text) {
  std::memcpy(dest, text.data(), half);
  std::memcpy(dest + text.size() - half, text.data() + text.size() - half, half);
}

inline char* Copy(char* dest, std::string_view text) {
  if (text.size() >= 8 && text.size() <= 16) {
    CopyOverlapping<8>(dest, text);
  } else if (text.size() > 16 && text.size() <= 32) {
    CopyOverlapping<16>(dest, text);
  } else if (text.size() > 32 && text.size() <= 64) {
    CopyOverlapping<32>(dest, text);
  } else {
    std::memcpy(dest, text.data(), text.size());
  }
  return dest + text.size();
}

template <std::size_t size>
char* Copy(char* dest, const Literal<size>& literal) {
  std::memcpy(dest, literal.text, size);
  return dest + size;
}

template <typename... Piece, std::size_t... index>
TELEFORM_INLINE inline char* Copy(char* dest, const Group<Piece...>& group,
                                  std::index_sequence<index...> /*all*/) {
  ((dest = Copy(dest, std::get<index + 1>(group.pieces))), ...);
  return dest;
}

template <typename... Piece>
TELEFORM_INLINE inline char* Copy(char* dest, const Group<Piece...>& group) {
  return std::get<0>(group.pieces) ? Copy(dest, group, std::index_sequence_for<Piece...>()) : dest;
}

template <typename Container, typename ToPiece>
char* Copy(char* dest, Repetition<Container, ToPiece> repetition) {
  for (const auto& item : repetition.items) dest = Copy(dest, repetition.toPiece(item));
  return dest;
}

// == Appending ==

// Reallocates `out` with room for `size` more bytes. It at least doubles the capacity, so that
// appending n documents to one string takes linear time. Out of line because it is rarely called.
[[gnu::noinline]] inline void GrowCapacity(std::string& out, TotalSize size) {
  if (size > out.max_size() - out.size()) throw std::length_error("document too long for a string");
  const std::size_t needed = out.size() + static_cast<std::size_t>(size);
  const std::size_t doubled = std::min(out.capacity(), out.max_size() / 2) * 2;
  out.reserve(std::max(needed, doubled));
}

inline void ReserveAdditional(std::string& out, TotalSize size) {
  if (size > out.capacity() - out.size()) GrowCapacity(out, size);
}

// Appends a piece of the given size, for which there must be room.
template <typename Piece>
[[gnu::flatten]] TELEFORM_INLINE inline void Write(std::string& out, TotalSize size,
                                                   const Piece& piece) {
  const std::size_t before = out.size();
  const std::size_t after = before + static_cast<std::size_t>(size);
  const std::size_t capacity = out.capacity();
  // Otherwise compilers add code that allocates. A directory takes 5 to 15 % longer with Clang 14.
#ifdef __clang__
  __builtin_assume(after <= capacity);
#else
  if (after > capacity) __builtin_unreachable();
#endif
#ifdef __cpp_lib_string_resize_and_overwrite
  out.resize_and_overwrite(after, [&](char* text, std::size_t end) TELEFORM_INLINE {
    Copy(text + before, piece);
    return end;
  });
#else
  out.resize(after);
  Copy(out.data() + before, piece);
#endif
}

template <typename... T>
TELEFORM_INLINE inline void Append(std::string& out, const T&... piece) {
  const auto pieces = Pieces(piece...);
  const TotalSize size = Size(pieces);
  ReserveAdditional(out, size);
  Write(out, size, pieces);
}

// Appends a directory. `element` returns the pieces that an entry of the directory's own class
// Entry writes for a name and a telephone. A subclass of the directory may hold entries of another
// class, which are rendered by their virtual Render. It can't report a size beforehand: `out` may
// then grow during rendering, and a failure restores it to its previous size.
template <typename Entry, typename Head, typename Entries, typename Element, typename Tail>
TELEFORM_INLINE inline void AppendDirectory(std::string& out, const Head& head,
                                            const Entries& entries, Element element,
                                            const Tail& tail) {
  const auto own = ForEach(entries, [element](const auto& entry) {
    return element(entry->GetName(), entry->GetTelephone());
  });
  const void* const vtable = VtableOf<Entry>();
  const bool areOwn = std::all_of(entries.begin(), entries.end(), [vtable](const auto& entry) {
    return VtableOf(*entry) == vtable;
  });
  const TotalSize headSize = Size(head);
  const TotalSize entriesSize = Size(own);
  const TotalSize tailSize = Size(tail);
  ReserveAdditional(out, headSize + entriesSize + tailSize);
  const std::size_t before = out.size();
  try {
    Write(out, headSize, head);
    if (areOwn) {
      Write(out, entriesSize, own);
    } else {
      for (const auto& entry : entries) entry->Render(out);
    }
    ReserveAdditional(out, tailSize);
    Write(out, tailSize, tail);
  } catch (...) {
    out.resize(before);
    throw;
  }
}

}  // namespace teleform

#undef TELEFORM_INLINE
