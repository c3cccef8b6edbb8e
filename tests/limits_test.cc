// Very large documents: a million entries and very long strings.
#include <gtest/gtest.h>

#include "documents.h"

namespace {

TEST(Limits, MillionEntries) {
  constexpr int kEntries = 1000000;
  CiscoIPPhoneDirectory directory("", kEntries);
  for (int i = 0; i < kEntries; ++i) {
    ASSERT_TRUE(directory.AppendEntry(std::to_string(1000000 + i * 7919LL % kEntries), "1"));
  }
  EXPECT_FALSE(directory.AppendEntry("one more", "1"));
  directory.SortDirectoryItems();
  const std::string out = RenderToString(directory);
  std::size_t at = 0;
  for (int i = 0; i < kEntries; ++i) {
    at = out.find("<Name>", at) + 6;
    ASSERT_EQ(out.compare(at, 8, std::to_string(1000000 + i) + "<"), 0) << i;
  }
  EXPECT_EQ(out.find("<Name>", at), out.npos);
}

TEST(Limits, VeryLongStrings) {
  const std::string title(64 << 20, 't');
  const std::string text(64 << 20, 'x');
  PolycomIPPhoneTextScreen screen(title);
  screen.SetText(text);
  EXPECT_EQ(RenderToString(screen), "<html>\n<Title>" + title + "</Title>\n<body>\n<p>" + text +
                                        "</p>\n</body>\n</html>\n");
  SnomIPPhoneDirectory directory("", 0);
  for (const char* end : {"b", "", "a"})
    directory.AppendEntry(title + end, end[0] == 0 ? "0" : end);
  directory.SortDirectoryItems();
  const std::string out = RenderToString(directory);
  EXPECT_LT(out.find("<Telephone>0<"), out.find("<Telephone>a<"));
  EXPECT_LT(out.find("<Telephone>a<"), out.find("<Telephone>b<"));
}

}  // namespace
