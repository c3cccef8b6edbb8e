// How text is appended. A Render says what it writes as one list of pieces, in the order in which
// the phone reads them:
//
//   Append(out,
//          Line("<Greeting", When(isLoud, " Loud=\"yes\""), ">"),
//          Line("<Name>", name, "</Name>"),
//          Each(friends, [](const auto& one) { return Line("<Friend>", one, "</Friend>"); }),
//          Line("</Greeting>"));
//
// The list serves twice. First the sizes of all pieces are added up and room is made in the
// caller's string, the only step that can fail; then the pieces are copied. That way a rendering is
// one allocation at most, runs at nearly the speed of copying memory, and is all or nothing.
//
// Pieces:    what a list can hold.
// Sizes:     how many bytes a piece has.
// Copies:    how it gets where there is room for it.
// Appending: room for the whole list, then the copies.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

// Forced, because a literal's bytes, its size and a condition are known only where the list stands:
// left to themselves, compilers pass them to the copying through memory, at half the speed.
#define TELEFORM_INLINE __attribute__((always_inline))

namespace teleform {

// == Pieces ==
//
// A piece is text or is made of pieces, and only refers to its text. Text is a std::string, a
// std::string_view, or an array of characters: that is taken for a literal, whose last character is
// not written.

// A literal keeps its size in its type: copies of known size need no call.
template <std::size_t size>
struct Literal {
  Literal(const char* literal) : text(literal) {}
  const char* text;
};

template <typename... Piece>
struct Group {
  bool isWanted;
  std::tuple<Piece...> pieces;
};

template <typename List, typename Element>
struct Elements {
  const List& list;
  Element element;
};

// What a list keeps of what it is given.
template <typename T>
struct PieceFor {
  using Type =
      std::conditional_t<std::is_convertible_v<const T&, std::string_view>, std::string_view, T>;
};
template <std::size_t size>
struct PieceFor<char[size]> {
  using Type = Literal<size - 1>;
};
template <typename T>
using PieceOf = typename PieceFor<T>::Type;

// Pieces that are wanted only under a condition, such as an attribute.
template <typename... T>
Group<PieceOf<T>...> When(bool condition, const T&... piece) {
  return {condition, {piece...}};
}

// Pieces in a row.
template <typename... T>
Group<PieceOf<T>...> Pieces(const T&... piece) {
  return When(true, piece...);
}

// Pieces in a row, and a line feed.
template <typename... T>
auto Line(const T&... piece) {
  return Pieces(piece..., "\n");
}

// For each item of a list the piece that `element` makes of it.
template <typename List, typename Element>
Elements<List, Element> Each(const List& list, Element element) {
  return {list, element};
}

// What the phone is to see of a text that a NUL ends.
inline std::string_view UpToNul(const std::string& text) { return text.c_str(); }

// == Sizes ==

// A sum of sizes. A document may say one text several times, so that a std::size_t of 32 bits could
// wrap; this one can't.
using TotalSize = std::uint64_t;

inline TotalSize Size(std::string_view text) { return text.size(); }

template <std::size_t size>
constexpr TotalSize Size(const Literal<size>& /*literal*/) {
  return size;
}

template <typename... Piece, std::size_t... index>
TELEFORM_INLINE inline TotalSize Size(const Group<Piece...>& group,
                                      std::index_sequence<index...> /*all*/) {
  return (Size(std::get<index>(group.pieces)) + ...);
}

template <typename... Piece>
TELEFORM_INLINE inline TotalSize Size(const Group<Piece...>& group) {
  return group.isWanted ? Size(group, std::index_sequence_for<Piece...>()) : 0;
}

// By value, here and below: a reference would make the compiler keep the whole list of pieces, of
// which the elements are a part, in memory.
template <typename List, typename Element>
TotalSize Size(Elements<List, Element> elements) {
  TotalSize size = 0;
  for (const auto& item : elements.list) size += Size(elements.element(item));
  return size;
}

// == Copies ==

// Nearly all texts that phones show are so short that a call costs more than the copying: two
// copies of known size, which overlap where the text is shorter than both, take their place.
template <std::size_t half>
void CopyHalves(char* to, std::string_view text) {
  std::memcpy(to, text.data(), half);
  std::memcpy(to + text.size() - half, text.data() + text.size() - half, half);
}

inline char* Copy(char* to, std::string_view text) {
  if (text.size() >= 8 && text.size() <= 16) {
    CopyHalves<8>(to, text);
  } else if (text.size() > 16 && text.size() <= 32) {
    CopyHalves<16>(to, text);
  } else {
    text.copy(to, text.size());
  }
  return to + text.size();
}

template <std::size_t size>
char* Copy(char* to, const Literal<size>& literal) {
  std::memcpy(to, literal.text, size);
  return to + size;
}

template <typename... Piece, std::size_t... index>
TELEFORM_INLINE inline char* Copy(char* to, const Group<Piece...>& group,
                                  std::index_sequence<index...> /*all*/) {
  ((to = Copy(to, std::get<index>(group.pieces))), ...);
  return to;
}

template <typename... Piece>
TELEFORM_INLINE inline char* Copy(char* to, const Group<Piece...>& group) {
  return group.isWanted ? Copy(to, group, std::index_sequence_for<Piece...>()) : to;
}

template <typename List, typename Element>
char* Copy(char* to, Elements<List, Element> elements) {
  for (const auto& item : elements.list) to = Copy(to, elements.element(item));
  return to;
}

// == Appending ==

// Lets `out` grow by `size` bytes at least. Growing at least by doubling keeps the appending of
// thousands of documents to one string linear. Kept out of line, because it is rarely needed.
[[gnu::noinline]] inline void Grow(std::string& out, TotalSize size) {
  if (size > out.max_size() - out.size()) throw std::length_error("document too long for a string");
  const std::size_t needed = out.size() + static_cast<std::size_t>(size);
  const std::size_t doubled = std::min(out.capacity(), out.max_size() / 2) * 2;
  out.reserve(std::max(needed, doubled));
}

inline void MakeRoom(std::string& out, TotalSize size) {
  if (size > out.capacity() - out.size()) Grow(out, size);
}

// Copies a piece of this size behind what `out` holds, which takes nothing if there is room for it.
template <typename Piece>
[[gnu::flatten]] TELEFORM_INLINE inline void Write(std::string& out, TotalSize size,
                                                   const Piece& piece) {
  const std::size_t before = out.size();
  const std::size_t after = before + static_cast<std::size_t>(size);
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
  MakeRoom(out, size);
  Write(out, size, pieces);
}

// Appends a directory, whose entries must write themselves, by their virtual Render, but can't tell
// how much that will be. `element` does: it gives the pieces that an entry of this directory's
// class writes for a name and a telephone. Where a caller has derived from the directory and put in
// entries of another class, these may take more room than there is: then `out` grows while they
// write, and if that fails what has been written is taken back.
template <typename Head, typename Entries, typename Element, typename Tail>
TELEFORM_INLINE inline void AppendDirectory(std::string& out, const Head& head,
                                            const Entries& entries, Element element,
                                            const Tail& tail) {
  const auto pieces = [&](const auto& entry) {
    return element(entry->GetName(), entry->GetTelephone());
  };
  const TotalSize headSize = Size(head);
  const TotalSize tailSize = Size(tail);
  MakeRoom(out, headSize + Size(Each(entries, pieces)) + tailSize);
  const std::size_t before = out.size();
  try {
    Write(out, headSize, head);
    for (const auto& entry : entries) entry->Render(out);
    Write(out, tailSize, tail);
  } catch (...) {
    out.resize(before);
    throw;
  }
}

}  // namespace teleform

#undef TELEFORM_INLINE
