// The appending of pieces, in the fallback for standard libraries without resize_and_overwrite. The
// other tests cover the version with it, where it is available.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#undef __cpp_lib_string_resize_and_overwrite
#include <teleform/core/pieces.h>

namespace {

using namespace teleform;

TEST(Append, WritesPiecesInOrder) {
  const std::string text = "text";
  const std::string numbers = "123";
  std::string out = "kept ";
  Append(
      out, "<a", When(true, " b=\"", text, "\""), When(false, " c=\"", text, "\""),
      Line(">", std::string_view(text).substr(1), "</a>"),
      ForEach(numbers, [](const char& digit) { return Pieces(std::string_view(&digit, 1), ";"); }),
      "");
  EXPECT_EQ(out, "kept <a b=\"text\">ext</a>\n1;2;3;");
}

TEST(Append, CopiesTextsOfEveryLength) {
  std::string text;
  for (int length = 0; length < 100; ++length) {
    std::string out;
    Append(out, "<", text, ">");
    EXPECT_EQ(out, "<" + text + ">");
    text += static_cast<char>('0' + length % 75);
  }
}

TEST(Size, DoesNotWrap) {
  const std::string_view huge("", std::size_t{3} << 30);  // the bytes are not read
  EXPECT_EQ(Size(Pieces("<", huge, When(true, huge))), 1 + (TotalSize{6} << 30));
}

TEST(ReserveAdditional, RefusesMoreThanAStringCanHold) {
  std::string out = "kept";
  for (const TotalSize tooMuch :
       {TotalSize{out.max_size()} - 3, TotalSize{out.max_size()} + 1, ~TotalSize{0}}) {
    EXPECT_THROW(ReserveAdditional(out, tooMuch), std::length_error);
  }
  EXPECT_EQ(out, "kept");
  const std::size_t capacity = out.capacity();
  ReserveAdditional(out, capacity - out.size());
  EXPECT_EQ(out.capacity(), capacity);
  ReserveAdditional(out, capacity - out.size() + 1);
  EXPECT_GE(out.capacity(), 2 * capacity);
  ReserveAdditional(out, 1000);
  EXPECT_GE(out.capacity(), 1000 + out.size());
  EXPECT_EQ(out, "kept");
}

}  // namespace
