#include <gtest/gtest.h>

#include "documents.h"

namespace {

TEST(Cisco, Directory) {
  CiscoIPPhoneDirectory directory("Group <1>", 3);
  EXPECT_EQ(Rendered(directory), R"(<CiscoIPPhoneDirectory>
<Title>Group <1></Title>
</CiscoIPPhoneDirectory>
)");

  for (const char* name : {"Carol", "alice", "Bob"}) {
    EXPECT_TRUE(directory.AppendEntry(name, "1&2"));
  }
  EXPECT_FALSE(directory.AppendEntry("Dave", "4"));
  directory.SetPreviousURI("http://server/?page=0&size=3");
  directory.SetNextURI("http://server/?page=2&size=3");
  directory.SortDirectoryItems();
  EXPECT_EQ(Rendered(directory), R"(<CiscoIPPhoneDirectory previous="http://server/?page=0&size=3")"
                                 R"( next="http://server/?page=2&size=3">
<Title>Group <1></Title>
<DirectoryEntry>
<Name>Bob</Name>
<Telephone>1&2</Telephone>
</DirectoryEntry>
<DirectoryEntry>
<Name>Carol</Name>
<Telephone>1&2</Telephone>
</DirectoryEntry>
<DirectoryEntry>
<Name>alice</Name>
<Telephone>1&2</Telephone>
</DirectoryEntry>
</CiscoIPPhoneDirectory>
)");
}

TEST(Polycom, TextScreen) {
  PolycomIPPhoneTextScreen screen("Lunch & <tea>");
  EXPECT_EQ(Rendered(screen), R"(<html>
<Title>Lunch & <tea></Title>
<body>
<p></p>
</body>
</html>
)");

  screen.SetText("forgotten");
  screen.SetText(std::string("<b>Soup</b>\n\0&", 14));
  EXPECT_EQ(Rendered(screen), R"(<html>
<Title>Lunch & <tea></Title>
<body>
<p><b>Soup</b>
)" + std::string("\0&", 2) + R"(</p>
</body>
</html>
)");
}

}  // namespace
