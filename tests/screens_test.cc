// The screens: what each maker's phones get, whatever a screen holds.
#include <gtest/gtest.h>
#include <teleform/screens/compose.h>
#include <teleform/screens/escape.h>
#include <teleform/teleform.h>

#include <algorithm>
#include <functional>
#include <map>
#include <regex>
#include <sstream>
#include <stdexcept>

#include "allocations.h"
#include "documents.h"

namespace teleform::screens {

using std::string_literals::operator""s;

namespace {

// A text from outside and what becomes of it.
struct SampleText {
  std::string text;
  std::string escaped;
  std::string encoded;  // with all bytes of "+*:@" kept
};
const std::vector<SampleText> kSampleTexts = {
    {"", "", ""},
    {"R&D <\"x\">'", "R&amp;D &lt;&quot;x&quot;&gt;'", "R%26D%20%3C%22x%22%3E%27"},
    {"&amp;]]>\t\n", "&amp;amp;]]&gt;\t\n", "%26amp%3B%5D%5D%3E%09%0A"},
    {"sip:+aZ0-._~*@ä%/?=", "sip:+aZ0-._~*@ä%/?=", "sip:+aZ0-._~*@%C3%A4%25%2F%3F%3D"},
    {"\0\x01\x1f\r\x7f\xc2\x80\xc2\x9f"s, "       ", "%00%01%1F%0D%7F%C2%80%C2%9F"},
    // The first and the last character of each length, and those around what is no character.
    {"\xc2\xa0\xdf\xbf\xe0\xa0\x80", "\xc2\xa0\xdf\xbf\xe0\xa0\x80", "%C2%A0%DF%BF%E0%A0%80"},
    {"\xed\x9f\xbf\xee\x80\x80", "\xed\x9f\xbf\xee\x80\x80", "%ED%9F%BF%EE%80%80"},
    {"\xef\xbf\xbd\xf0\x90\x80\x80", "\xef\xbf\xbd\xf0\x90\x80\x80", "%EF%BF%BD%F0%90%80%80"},
    {"\xf4\x8f\xbf\xbf", "\xf4\x8f\xbf\xbf", "%F4%8F%BF%BF"},
    // Overlong, surrogates, forbidden, beyond the last, cut off.
    {"\xc1\xbf\xe0\x9f\xbf", "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD", "%C1%BF%E0%9F%BF"},
    {"\xf0\x8f\xbf\xbf", "\uFFFD\uFFFD\uFFFD\uFFFD", "%F0%8F%BF%BF"},
    {"\xed\xa0\x80\xed\xbf\xbf", "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD", "%ED%A0%80%ED%BF%BF"},
    {"\xef\xbf\xbe\xef\xbf\xbf", "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD", "%EF%BF%BE%EF%BF%BF"},
    {"\xf4\x90\x80\x80\xf5\xff", "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD", "%F4%90%80%80%F5%FF"},
    {"caf\xe9 \xe2\x82", "caf\uFFFD \uFFFD\uFFFD", "caf%E9%20%E2%82"},
};

// Composes for a maker a screen whose texts and URIs are all the same.
using Compose = std::function<Document(Maker)>;
using Keys = std::vector<SoftKey>;
struct SampleScreen {
  const char* name;
  std::function<Compose(const std::string& text, const Keys& keys)> make;
};
template <typename Screen>
SampleScreen Sample(const char* name, Document (*compose)(Maker, const Screen&),
                    Screen (*fill)(const std::string& text, const Keys& keys)) {
  return {name, [=](const auto& text, const auto& keys) {
            return [=, screen = fill(text, keys)](Maker maker) { return compose(maker, screen); };
          }};
}
Menu MenuOf(const std::string& t, const Keys& keys) { return {t, {{t, t}, {t, t}}, keys, t, t}; }
List ListOf(const std::string& t, const Keys& keys) { return {t, {{t, t, t}}, keys, t, t}; }
Text TextOf(const std::string& t, const Keys& keys) { return {t, {t, t}, t, keys}; }
Form FormOf(const std::string& t, const Keys& keys) { return {t, t, t, t, t, keys}; }
Call CallOf(const std::string& t, const Keys& keys) { return {{t, t, t}, keys}; }
Alert AlertOf(const std::string& t, const Keys& keys) { return {TextOf(t, keys), true, t, 30}; }
const std::vector<SampleScreen> kSampleScreens = {
    Sample("menu", ComposeMenu, MenuOf), Sample("list", ComposeList, ListOf),
    Sample("text", ComposeText, TextOf), Sample("form", ComposeForm, FormOf),
    Sample("call", ComposeCall, CallOf), Sample("alert", ComposeAlert, AlertOf)};

// One key for the phone's own action, and one that loads `text`.
Keys SampleKeys(const std::string& text) {
  return {{SoftKeyRole::kSelect}, {SoftKeyRole::kHome, text, text}};
}

// == Documents ==

// What each maker's phones get for each screen, and the parts that these documents share, which may
// depend on whether the texts of the screen are empty. A bar stands for a line feed, a name in
// braces for a part or a text. Nothing stands for no document.
constexpr const char* kDocuments = R"(
menu Aastra:   <AastraIPPhoneTextMenu>|{title}{item}{item}{keys}{pageKeys}</AastraIPPhoneTextMenu>|
menu Cisco:    <{directory}{pages}>|{title}{entry}{entry}{keyEntry}</{directory}>|
menu Polycom:  {head}{link}{link}{keyLink}{pageLinks}{foot}
menu Snom:     <{directory}>|{title}{entry}{entry}{keyItem}{pageItems}</{directory}>|
menu Yealink:  {menu Snom}
list Aastra:   <{directory}{pages}>|{title}{item}{keys}</{directory}>|
list Cisco:    <{directory}{pages}>|{title}{entry}{keyEntry}</{directory}>|
list Polycom:  {head}{person}{keyLink}{pageLinks}{foot}
list Snom:     <{directory}>|{title}{entry}{keyItem}{pageItems}</{directory}>|
list Yealink:  {list Snom}
text Aastra:   <AastraIPPhoneTextScreen>|{title}{lines}{keys}</AastraIPPhoneTextScreen>|
text Cisco:    <{directory}>|{title}{entry}{entry}{keyEntry}</{directory}>|
text Polycom:  {head}{text}<br/>|{text}<br/>|{keyLink}{foot}
text Snom:     <SnomIPPhoneText>|{title}{lines}{keyItem}</SnomIPPhoneText>|
form Aastra:   <AastraIPPhoneInputScreen type = "string">|{title}{formHead}<Parameter>{given}
               </Parameter>|<Default></Default>|{keys}</AastraIPPhoneInputScreen>|
form Cisco:
form Polycom:  {head}{text}</p>|<form action="{given}" method="get"><p><label>{given}
                <input type="text" name="{given}"/></label>
                <input type="submit" value="Submit"/></p></form>|<p>{keyLink}{foot}
form Snom:     <SnomIPPhoneInput>|{title}{formHead}<InputItem>|<DisplayName>{given}</DisplayName>|
               <QueryStringParam>{given}</QueryStringParam>|<DefaultValue></DefaultValue>|
               <InputFlags>a</InputFlags>|</InputItem>|{keyItem}</SnomIPPhoneInput>|
form Yealink:
call Aastra:   <AastraIPPhoneExecute>|<ExecuteItem URI="Dial:{number}"/>|{keys}
               </AastraIPPhoneExecute>|
call Cisco:    <{directory}>|{title}{entry}{keyEntry}</{directory}>|
call Polycom:  {head}{person}{keyLink}{foot}
call Snom:     <{directory}>|{title}{entry}{keyItem}</{directory}>|
call Yealink:  {call Snom}
alert Aastra:  <AastraIPPhoneStatus Beep = "yes">|<Session>{text}</Session>|
               <Message index="1" type="alert" Timeout="30">|{text} {text}</Message>|{keys}
               </AastraIPPhoneStatus>|
alert Cisco:   {text Cisco}
alert Polycom: {text Polycom}
alert Snom:    {text Snom}
alert Yealink: {text Yealink}
title:         <Title>{text}</Title>|
lines:         <Text>{text}|{text}</Text>|
formHead:      <Prompt>{given}</Prompt>|<URL>{given}</URL>|
item:          <MenuItem>|<Prompt>{given}</Prompt>|<URI>{given}</URI>|</MenuItem>|
entry:         <DirectoryEntry>|<Name>{given}</Name>|<Telephone>{given}</Telephone>|
               </DirectoryEntry>|
link:          <a href="{given}">{given}</a><br/>|
head:          <html>|<Title>{text}</Title>|<body>|<p>
foot:          </p>|</body>|</html>|
keys:          <SoftKey index = "1">|<Label>Select</Label>|<URI>SoftKey:Select</URI>|</SoftKey>|
               {homeKey}
)";
constexpr const char* kPartsOfEmptyScreens = R"(
text Yealink:  <YealinkIPPhoneText>|{title}{lines}</YealinkIPPhoneText>|
person:        {link}
)";
constexpr const char* kPartsOfOtherScreens = R"(
text Yealink:  <{directory}>|{title}{entry}{entry}{keyItem}</{directory}>|
person:        <a href="tel:{number}">{given}</a> {text}<br/>|
pages:          previous="{text}" next="{text}"
homeKey:       <SoftKey index = "5">|<Label>{text}</Label>|<URI>{text}</URI>|</SoftKey>|
pageKeys:      <SoftKey index = "2">|<Label>Previous</Label>|<URI>{text}</URI>|</SoftKey>|
               <SoftKey index = "3">|<Label>Next</Label>|<URI>{text}</URI>|</SoftKey>|
keyEntry:      {entry}
keyLink:       {link}
pageLinks:     <a href="{text}">Previous</a><br/>|<a href="{text}">Next</a><br/>|
keyItem:       <SoftKeyItem>|<Name>CANCEL</Name>|<URL>{text}</URL>|</SoftKeyItem>|
pageItems:     <SoftKeyItem>|<Name>LEFT</Name>|<URL>{text}</URL>|</SoftKeyItem>|
               <SoftKeyItem>|<Name>RIGHT</Name>|<URL>{text}</URL>|</SoftKeyItem>|
)";

using Fields = std::map<std::string, std::string>;

// Adds the rows of a table, whose second column begins at a fixed place and may go on below.
void AddRows(Fields& fields, const std::string& table) {
  constexpr std::size_t kSecondColumn = 15;
  std::istringstream lines(table);
  std::string name;
  for (std::string line; std::getline(lines, line);) {
    const auto colon = line.find(':');
    if (!line.empty() && line.front() != ' ') name = line.substr(0, colon);
    if (line.size() > kSecondColumn) fields[name] += line.substr(kSecondColumn);
  }
}

std::string ExpectedDocument(const std::string& screen, const MakerFacts& maker,
                             const SampleText& sample) {
  const bool isEmpty = sample.text.empty();
  Fields parts = {{"directory", std::string(maker.name) + "IPPhoneDirectory"}};
  for (const char* const text : {"text", "given", "number"}) parts[text] = "{"s + text + "}";
  AddRows(parts, kDocuments);
  AddRows(parts, isEmpty ? kPartsOfEmptyScreens : kPartsOfOtherScreens);
  std::string document = parts[screen + " " + std::string(maker.name)];
  for (int depth = 0; depth < 4; ++depth) document = FillTemplate(document, parts);
  std::replace(document.begin(), document.end(), '|', '\n');
  return FillTemplate(document, {{"text", sample.escaped},
                                 {"given", isEmpty ? "-" : sample.escaped},
                                 {"number", sample.encoded}});
}

TEST(Screens, BecomeTheNearestDocumentOfEachMakerWhateverTheyHold) {
  for (const auto& sample : kSampleTexts) {
    for (const auto& screen : kSampleScreens) {
      for (const auto& maker : AllMakers()) {
        SCOPED_TRACE(screen.name + " for "s + std::string(maker.name) + ": " + sample.text);
        const auto document = screen.make(sample.text, SampleKeys(sample.text))(maker.maker);
        EXPECT_EQ(document == nullptr ? "" : RenderToString(*document),
                  ExpectedDocument(screen.name, maker, sample));
      }
    }
  }
}

TEST(Screens, HaveOptionalParts) {
  const auto expectPart = [](const Document& document, const char* part) {
    EXPECT_NE(RenderToString(*document).find(part), std::string::npos) << RenderToString(*document);
  };
  expectPart(ComposeList(Maker::kPolycom, {"", {{"Ann", "1"}}}), "<a href=\"tel:1\">Ann</a><br/>");
  expectPart(ComposeList(Maker::kPolycom, {"", {{"Bob", "", "away"}}}), "Bob</a> away<br/>");
  expectPart(ComposeForm(Maker::kPolycom, {"", "", "", "", "", {{SoftKeyRole::kSubmit, "", "Go"}}}),
             "<input type=\"submit\" value=\"Go\"/>");
  expectPart(ComposeAlert(Maker::kAastra, {{"", {"Lunch"}}, false}),
             "<AastraIPPhoneStatus>\n<Session></Session>\n<Message index=\"1\">\nLunch</Message>");
}

TEST(Screens, RefuseWhatIsOutsideTheEnumerations) {
  for (const auto& screen : kSampleScreens) {
    for (const int maker : {-1, static_cast<int>(AllMakers().size())}) {
      EXPECT_THROW(screen.make("", {})(static_cast<Maker>(maker)), std::invalid_argument);
    }
    for (const auto& facts : AllMakers()) {
      if (screen.make("", {})(facts.maker) == nullptr) continue;
      for (const int role : {-1, static_cast<int>(SoftKeyRole::kExit) + 1}) {
        const SoftKey key = {static_cast<SoftKeyRole>(role), "", "label"};
        EXPECT_THROW(screen.make("", {key})(facts.maker), std::invalid_argument)
            << screen.name << " for " << facts.name;
      }
    }
  }
}

// == Soft keys ==

// The texts of the document's soft keys, separated by spaces.
std::string KeysOf(IPPhoneXML& document) {
  const std::string text = RenderToString(document);
  const auto begin = std::min(text.find("<SoftKey"), text.rfind("</"));
  const std::regex markup("(<SoftKey index = \"|<[^>]*>|\">|\n)+");
  const std::string keys =
      std::regex_replace(text.substr(begin, text.rfind("</") - begin), markup, " ");
  return keys.empty() ? "" : keys.substr(1, keys.size() - 2);
}

TEST(SoftKeysOfScreens, HaveAPlaceOrANameForEachRole) {
  const struct {
    SoftKeyRole role;
    std::string place, ownAction, name;
  } rows[] = {
      {SoftKeyRole::kSelect, "1 Select", "1 Select SoftKey:Select", "F_MINIBROWSER_SELECT"},
      {SoftKeyRole::kDial, "1 Dial", "1 Dial SoftKey:Dial", "F_MINIBROWSER_DIAL"},
      {SoftKeyRole::kSubmit, "1 Submit", "1 Submit SoftKey:Submit", "ENTER"},
      {SoftKeyRole::kPrevious, "2 Previous", "", "LEFT"},
      {SoftKeyRole::kNext, "3 Next", "", "RIGHT"},
      {SoftKeyRole::kSearch, "4 Search", "", "F_MINIBROWSER_SEARCH"},
      {SoftKeyRole::kHome, "5 Home", "", "CANCEL"},
      {SoftKeyRole::kExit, "6 Exit", "6 Exit SoftKey:Exit", "F_MINIBROWSER_EXIT"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.place);
    const auto keyOf = [&](IPPhoneXML&& document, const char* uri) {
      const bool isAdded = AddSoftKey(document, row.role, uri);
      EXPECT_EQ(isAdded, !KeysOf(document).empty());
      return KeysOf(document);
    };
    EXPECT_EQ(keyOf(AastraIPPhoneTextScreen(""), ""), row.ownAction);
    EXPECT_EQ(keyOf(AastraIPPhoneTextScreen(""), "uri"), row.place + " uri");
    EXPECT_EQ(keyOf(SnomIPPhoneTextScreen(""), ""), "");
    EXPECT_EQ(keyOf(SnomIPPhoneTextScreen(""), "uri"), row.name + " uri");
    EXPECT_EQ(keyOf(YealinkIPPhoneDirectory("", 0), ""), "");
    EXPECT_EQ(keyOf(YealinkIPPhoneDirectory("", 0), "uri"), row.name + " uri");
  }
}

TEST(SoftKeysOfScreens, LeaveTheDocumentAsItIsWhenRefused) {
  AastraIPPhoneTextScreen full("");
  for (int i = 0; i < 6; ++i) EXPECT_TRUE(AddSoftKey(full, SoftKeyRole::kNext, "uri", "a"));
  // The role's place, then the free ones.
  EXPECT_EQ(KeysOf(full), "3 a uri 1 a uri 2 a uri 4 a uri 5 a uri 6 a uri");
  SnomIPPhoneTextScreen snom("");
  YealinkIPPhoneDirectory yealink("", 0);
  for (const auto role : {SoftKeyRole::kHome, SoftKeyRole::kNext}) {
    EXPECT_TRUE(AddSoftKey(snom, role, "uri"));
    EXPECT_TRUE(AddSoftKey(yealink, role, "uri"));
  }
  CiscoIPPhoneDirectory cisco("", 0);
  for (IPPhoneXML* const document :
       std::initializer_list<IPPhoneXML*>{&full, &snom, &yealink, &cisco}) {
    const std::string before = RenderToString(*document);
    EXPECT_FALSE(AddSoftKey(*document, SoftKeyRole::kHome, "other"));
    EXPECT_THROW(AddSoftKey(*document, static_cast<SoftKeyRole>(8), "u"), std::invalid_argument);
    EXPECT_EQ(RenderToString(*document), before);
  }
  EXPECT_THROW(LabelOf(static_cast<SoftKeyRole>(-1)), std::invalid_argument);
}

TEST(SoftKeysOfScreens, AreAddedToEveryDocumentThatWritesThem) {
  for (const auto& documentClass : kDocumentClasses) {
    const auto document = documentClass.make({"", 1, "", false});
    const std::string text = documentClass.documentTemplate;
    const bool writesKeys = text.find("{keys}") != text.npos;
    EXPECT_EQ(HasSoftKeys(*document), writesKeys) << documentClass.name;
    EXPECT_EQ(AddSoftKey(*document, SoftKeyRole::kHome, "uri"), writesKeys) << documentClass.name;
  }
}

// == Escaping ==

TEST(Escape, TakesAnyBytes) {
  for (const auto& [text, escaped, encoded] : kSampleTexts) {
    EXPECT_EQ(EscapeXML(text), escaped);
    EXPECT_EQ(PercentEncode(text, "+*:@"), encoded);
    EXPECT_EQ(PercentDecode(encoded, false), text);
  }
  EXPECT_EQ(PercentEncode("+ "), "%2B%20");
}

TEST(Escape, DecodesWhatIsEncodedAndNothingElse) {
  const std::map<std::string, std::string> rows = {{"%41%4a%4A%2541", "AJJ%41"},
                                                   {"%4", "%4"},
                                                   {"%4%zz%", "%4%zz%"},
                                                   {"%+1%-1% 1%0x", "%+1%-1% 1%0x"},
                                                   {"a+b%2B", "a+b+"}};
  for (const auto& [text, decoded] : rows) EXPECT_EQ(PercentDecode(text, false), decoded);
  EXPECT_EQ(PercentDecode("a+b%2B", true), "a b+");
}

// == Makers ==

TEST(Makers, AreFoundBySlugAndUserAgent) {
  ASSERT_EQ(AllMakers().size(), 5U);
  for (const auto& facts : AllMakers()) {
    EXPECT_EQ(&FactsOf(facts.maker), &facts);
    EXPECT_EQ(MakerOfSlug(facts.slug), facts.maker);
    EXPECT_EQ(MakerOfSlug(facts.name), std::nullopt);  // a slug is in lower case
    EXPECT_EQ(MakerOfUserAgent("\0\xff/"s + std::string(facts.name) + "-300"), facts.maker);
    EXPECT_EQ(facts.writesPages, facts.maker == Maker::kAastra || facts.maker == Maker::kCisco);
  }
  EXPECT_EQ(MakerOfSlug(""), std::nullopt);
  EXPECT_EQ(MakerOfUserAgent(""), std::nullopt);
  EXPECT_EQ(MakerOfUserAgent("[Cisc0 cisc"), std::nullopt);
  EXPECT_EQ(MakerOfUserAgent("yealink, sNoM"), Maker::kSnom);
}

// == Memory ==

const std::string kLong(100, '&');

TEST(Memory, RunsOutWithoutATrace) {
  for (const auto& screen : kSampleScreens) {
    const Compose compose = screen.make(kLong, SampleKeys(kLong));
    for (const auto& maker : AllMakers()) {
      EXPECT_GT(FailEachAllocation([&] { compose(maker.maker); }), 0U);
    }
  }
  EXPECT_GT(FailEachAllocation([] { EscapeXML(kLong); }), 0U);
  EXPECT_GT(FailEachAllocation([] { PercentEncode(kLong); }), 0U);
  EXPECT_GT(FailEachAllocation([] { PercentDecode(kLong, false); }), 0U);
  AastraIPPhoneTextScreen aastra("");
  SnomIPPhoneTextScreen snom("");
  YealinkIPPhoneDirectory yealink("", 0);
  for (IPPhoneXML* const document : std::initializer_list<IPPhoneXML*>{&aastra, &snom, &yealink}) {
    AddSoftKey(*document, SoftKeyRole::kNext, kLong);
    const std::string before = RenderToString(*document);
    bool isAdded = false;
    const auto add = [&] { isAdded = AddSoftKey(*document, SoftKeyRole::kHome, kLong, kLong); };
    const auto expectUnchanged = [&] { EXPECT_EQ(RenderToString(*document), before); };
    EXPECT_GT(FailEachAllocation(add, expectUnchanged), 0U);
    EXPECT_TRUE(isAdded);
  }
}

}  // namespace

}  // namespace teleform::screens
