// The screens: what every maker gets, and what hostile text becomes.
#include <gtest/gtest.h>
#include <teleform/screens/compose.h>
#include <teleform/screens/escape.h>

#include <map>
#include <string>

namespace teleform::screens {

namespace {

TEST(Escape, MakesAnyBytesWellFormed) {
  const std::map<std::string, std::string> expected = {
      {"", ""},
      {"plain \t\n", "plain \t\n"},
      {"<a href=\"x\">&amp;'", "&lt;a href=&quot;x&quot;&gt;&amp;amp;'"},
      {std::string("\0\x01\x1f\r\x7f\xc2\x80\xc2\x9f", 9), "       "},
      {"\xc2\xa0\xdf\xbf\xe0\xa0\x80\xed\x9f\xbf\xee\x80\x80\xef\xbf\xbd\xf0\x90\x80\x80\xf4\x8f"
       "\xbf\xbf",
       "\xc2\xa0\xdf\xbf\xe0\xa0\x80\xed\x9f\xbf\xee\x80\x80\xef\xbf\xbd\xf0\x90\x80\x80\xf4\x8f"
       "\xbf\xbf"},
      {"\xc1\xbf", "\uFFFD\uFFFD"},
      {"\xe0\x9f\xbf", "\uFFFD\uFFFD\uFFFD"},
      {"\xed\xa0\x80", "\uFFFD\uFFFD\uFFFD"},
      {"\xef\xbf\xbf", "\uFFFD\uFFFD\uFFFD"},
      {"\xf0\x8f\xbf\xbf", "\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"\xf4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
      {"caf\xe9 \xe2\x82", "caf\uFFFD \uFFFD\uFFFD"},
  };
  for (const auto& [text, escaped] : expected) {
    EXPECT_EQ(EscapeXML(text), escaped);
  }
  EXPECT_EQ(PercentEncode("aZ0-._~ +&=?/%ä", "+"), "aZ0-._~%20+%26%3D%3F%2F%25%C3%A4");
  EXPECT_EQ(PercentDecode("%41+%4%zz%", true), "A %4%zz%");
}

}  // namespace

}  // namespace teleform::screens
