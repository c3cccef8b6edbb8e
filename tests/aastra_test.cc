#include <gtest/gtest.h>

#include "documents.h"

namespace {

const std::string kNul("before\0behind", 13);

TEST(Aastra, TextScreen) {
  AastraIPPhoneTextScreen screen("Lunch");
  screen.SetAttributes(AttrDestroyOnExit | AttrBeep);
  EXPECT_TRUE(screen.AddSoftKey(3, "Dial", AASTRA_SK_DIAL));
  EXPECT_TRUE(screen.AddSoftKey(1, "Menu", "http://server/menu?a=1&b=2"));
  EXPECT_TRUE(screen.AddSoftKey(3, "", ""));
  screen.SetText(kNul);
  EXPECT_EQ(Rendered(screen), R"(<AastraIPPhoneTextScreen destroyOnExit = "yes" Beep = "yes">
<Title>Lunch</Title>
<Text>before</Text>
<SoftKey index = "3">
<Label>Dial</Label>
<URI>SoftKey:Dial</URI>
</SoftKey>
<SoftKey index = "1">
<Label>Menu</Label>
<URI>http://server/menu?a=1&b=2</URI>
</SoftKey>
<SoftKey index = "3">
<Label></Label>
<URI></URI>
</SoftKey>
</AastraIPPhoneTextScreen>
)");
}

TEST(Aastra, Menu) {
  AastraIPPhoneMenu menu("Main", 2);
  EXPECT_TRUE(menu.AppendItem("News", "http://server/news"));
  EXPECT_TRUE(menu.AppendItem(kNul, "<&\">"));
  menu.SetPreviousURI("http://server/0");
  menu.SetNextURI("http://server/2");
  menu.AddSoftKey(6, "Exit", AASTRA_SK_EXIT);
  EXPECT_EQ(Rendered(menu), std::string(R"(<AastraIPPhoneTextMenu>
<Title>Main</Title>
<MenuItem>
<Prompt>News</Prompt>
<URI>http://server/news</URI>
</MenuItem>
<MenuItem>
<Prompt>)") + kNul + R"(</Prompt>
<URI><&"></URI>
</MenuItem>
<SoftKey index = "6">
<Label>Exit</Label>
<URI>SoftKey:Exit</URI>
</SoftKey>
</AastraIPPhoneTextMenu>
)");
}

TEST(Aastra, Directory) {
  AastraIPPhoneDirectory directory("People", 5);
  EXPECT_TRUE(directory.AppendEntry("Zoë <z>", "tel:+1&2"));
  EXPECT_TRUE(directory.AppendEntry(kNul, kNul));
  directory.SetNextURI("http://server/2");
  directory.SetPreviousURI("http://server/0");
  directory.SetAttributes(AttrDestroyOnExit | AttrBeep);
  directory.AddSoftKey(2, "Send", AASTRA_SK_SUBMIT);
  EXPECT_EQ(Rendered(directory),
            R"(<AastraIPPhoneDirectory previous="http://server/0" next="http://server/2")"
            R"( destroyOnExit = "yes" Beep = "yes">
<Title>People</Title>
<MenuItem>
<Prompt>Zoë <z></Prompt>
<URI>tel:+1&2</URI>
</MenuItem>
<MenuItem>
<Prompt>)" + kNul +
                "</Prompt>\n<URI>" + kNul + R"(</URI>
</MenuItem>
<SoftKey index = "2">
<Label>Send</Label>
<URI>SoftKey:Submit</URI>
</SoftKey>
</AastraIPPhoneDirectory>
)");
}

TEST(Aastra, Input) {
  AastraIPPhoneInput form("Search", "string", false);
  const std::string empty = R"(<AastraIPPhoneInputScreen type = "string">
<Title>Search</Title>
<Prompt></Prompt>
<URL></URL>
<Parameter></Parameter>
<Default></Default>
</AastraIPPhoneInputScreen>
)";
  EXPECT_FALSE(form.SetParams("", "u", "n", "d"));
  EXPECT_FALSE(form.SetParams("p", "", "n", "d"));
  EXPECT_FALSE(form.SetParams("p", "u", "", "d"));
  EXPECT_EQ(Rendered(form), empty);

  EXPECT_TRUE(form.SetParams("Name:", "http://server/find", "name", "Ann"));
  EXPECT_FALSE(form.SetParams("", "u", "n", "d"));
  form.AddSoftKey(4, "<-", AASTRA_SK_BACKSPACE);
  EXPECT_EQ(Rendered(form), R"(<AastraIPPhoneInputScreen type = "string">
<Title>Search</Title>
<Prompt>Name:</Prompt>
<URL>http://server/find</URL>
<Parameter>name</Parameter>
<Default>Ann</Default>
<SoftKey index = "4">
<Label><-</Label>
<URI>SoftKey:BackSpace</URI>
</SoftKey>
</AastraIPPhoneInputScreen>
)");

  AastraIPPhoneInput secret("PIN", "", true);
  EXPECT_TRUE(secret.SetParams("1", "2", "3", "4"));
  EXPECT_TRUE(secret.SetParams(kNul, "b", "c", ""));
  secret.SetAttributes(AttrDestroyOnExit | AttrBeep);
  EXPECT_EQ(Rendered(secret), R"(<AastraIPPhoneInputScreen type = "")"
                              R"( password = "yes" destroyOnExit = "yes" Beep = "yes">
<Title>PIN</Title>
<Prompt>)" + kNul +
                                  R"(</Prompt>
<URL>b</URL>
<Parameter>c</Parameter>
<Default></Default>
</AastraIPPhoneInputScreen>
)");
}

TEST(Aastra, Execute) {
  AastraIPPhoneExecute execute(std::string("Dial:1&2\"\0hidden", 16));
  execute.SetAttributes(AttrDestroyOnExit | AttrBeep);
  execute.AddSoftKey(5, "Change", AASTRA_SK_CHANGEMODE);
  EXPECT_EQ(Rendered(execute), R"(<AastraIPPhoneExecute destroyOnExit = "yes" Beep = "yes">
<ExecuteItem URI="Dial:1&2""/>
<SoftKey index = "5">
<Label>Change</Label>
<URI>SoftKey:ChangeMode</URI>
</SoftKey>
</AastraIPPhoneExecute>
)");
}

TEST(Aastra, Status) {
  AastraIPPhoneStatus status;
  EXPECT_EQ(Rendered(status), R"(<AastraIPPhoneStatus>
<Session></Session>
<Message index="0">
</Message>
</AastraIPPhoneStatus>
)");

  struct {
    IPPhoneStatusXML::MsgType type;
    int index;
    int timeout;
    const char* written;
  } const kMessages[] = {
      {IPPhoneStatusXML::MsgTypeNormal, 3, 10, R"(index="3")"},
      {IPPhoneStatusXML::MsgTypeAlert, 3, 10, R"(index="3" type="alert" Timeout="10")"},
      {IPPhoneStatusXML::MsgTypeAlert, -1, 1, R"(index="-1" type="alert" Timeout="1")"},
      {IPPhoneStatusXML::MsgTypeAlert, 0, 0, R"(index="0" type="alert")"},
      {IPPhoneStatusXML::MsgTypeAlert, -2147483647 - 1, -5, R"(index="-2147483648" type="alert")"},
      {static_cast<IPPhoneStatusXML::MsgType>(2), 7, 9, R"(index="7")"},
      {static_cast<IPPhoneStatusXML::MsgType>(-1), 7, 9, R"(index="7")"},
      {IPPhoneStatusXML::MsgTypeAlert, 1, 2147483647,
       R"(index="1" type="alert" Timeout="2147483647")"},
  };
  for (const auto& message : kMessages) {
    status.SetMessage(kNul, "2 < 3", message.index, message.type, message.timeout);
    EXPECT_EQ(Rendered(status), "<AastraIPPhoneStatus>\n<Session>" + kNul +
                                    "</Session>\n<Message " + message.written +
                                    ">\n2 < 3</Message>\n</AastraIPPhoneStatus>\n");
  }

  status.SetMessage("", kNul, 1, IPPhoneStatusXML::MsgTypeNormal, 0);
  status.SetAttributes(AttrDestroyOnExit | AttrBeep);
  status.AddSoftKey(1, "Dot", AASTRA_SK_DOT);
  EXPECT_EQ(Rendered(status), R"(<AastraIPPhoneStatus Beep = "yes">
<Session></Session>
<Message index="1">
)" + kNul + R"(</Message>
<SoftKey index = "1">
<Label>Dot</Label>
<URI>SoftKey:Dot</URI>
</SoftKey>
</AastraIPPhoneStatus>
)");
}

TEST(Aastra, SoftKeys) {
  const std::vector<std::string> actions = {"Select",    "Exit",      "Dial", "Submit",
                                            "BackSpace", "NextSpace", "Dot",  "ChangeMode"};
  AastraIPPhoneExecute execute("");
  std::string expected = "<AastraIPPhoneExecute>\n<ExecuteItem URI=\"\"/>\n";
  for (int command = -1; command <= 8; ++command) {
    const int index = command == -1 ? 1 : command % 6 + 1;
    EXPECT_TRUE(execute.AddSoftKey(index, "<&\">", static_cast<AastraSoftKeyCommands>(command)));
    const bool known = command >= 0 && command < 8;
    expected += "<SoftKey index = \"" + std::to_string(index) + "\">\n<Label><&\"></Label>\n<URI>" +
                "SoftKey:" + actions[known ? static_cast<std::size_t>(command) : 0] +
                "</URI>\n</SoftKey>\n";
  }
  for (const int index : {-2147483647 - 1, -1, 0, 7, 2147483647}) {
    EXPECT_FALSE(execute.AddSoftKey(index, "label", AASTRA_SK_EXIT)) << index;
    EXPECT_FALSE(execute.AddSoftKey(index, "label", "uri")) << index;
  }
  EXPECT_TRUE(execute.AddSoftKey(2, nullptr, nullptr));
  expected += "<SoftKey index = \"2\">\n<Label></Label>\n<URI></URI>\n</SoftKey>\n";
  EXPECT_EQ(Rendered(execute), expected + "</AastraIPPhoneExecute>\n");
}

// A key is a value: what a caller gets of one renders by itself.
struct KeysInSight : AastraIPPhone {
  using AastraIPPhone::softKeys;
};

TEST(Aastra, ItemsEntriesAndKeysRenderByThemselves) {
  KeysInSight holder;
  holder.AddSoftKey(6, "One", "uri:1");
  holder.AddSoftKey(1, "Two", "uri:2");
  AastraSoftKey key(holder.softKeys[0]);
  std::string out = "kept ";
  AastraIPPhoneMenuItem("p", "u").Render(out);
  AastraIPPhoneDirectoryEntry("n", "t").Render(out);
  key.Render(out);
  EXPECT_EQ(out, R"(kept <MenuItem>
<Prompt>p</Prompt>
<URI>u</URI>
</MenuItem>
<MenuItem>
<Prompt>n</Prompt>
<URI>t</URI>
</MenuItem>
<SoftKey index = "6">
<Label>One</Label>
<URI>uri:1</URI>
</SoftKey>
)");
  key = holder.softKeys[1];
  EXPECT_EQ(key.GetLabel(), "Two");
  key = AastraSoftKey(holder.softKeys[0]);
  EXPECT_EQ(key.GetURI(), "uri:1");
}

}  // namespace
