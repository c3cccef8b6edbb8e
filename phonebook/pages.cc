#include "phonebook/pages.h"

#include <teleform/screens/escape.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <sstream>
#include <system_error>
#include <type_traits>
#include <utility>

#include "phonebook/collation.h"
#include "phonebook/numbers.h"
#include "phonebook/text.h"

namespace phonebook {

namespace {

using teleform::screens::FactsOf;
using teleform::screens::Item;
using teleform::screens::List;
using teleform::screens::Menu;
using teleform::screens::PercentEncode;
using teleform::screens::Person;
using teleform::screens::SoftKey;
using teleform::screens::SoftKeyRole;
using teleform::screens::Text;

constexpr int kMaxSearchCharacters = 64;
constexpr std::size_t kMaxNoticeLines = 100;  // each is an entry on phones of Cisco and Yealink
constexpr const char* kEmptyTitle = Marked("Nobody is in the phone book");
constexpr const char* kNoPosition = Marked("A page begins after or before a contact.");

std::string PageURI(const PageRequest& request, const std::string& page) {
  return HomeURI(request.base, request.maker) + page;
}

const char* Translated(const PageRequest& request, const char* text) {
  return request.options->catalogue.Translate(text);
}

SoftKey HomeKey(const PageRequest& request) {
  return {SoftKeyRole::kHome, HomeURI(request.base, request.maker), Translated(request, "Home")};
}

SoftKey SelectKey(const PageRequest& request) {
  return {SoftKeyRole::kSelect, "", Translated(request, "Select")};
}

std::string ParamOf(const PageRequest& request, const std::string& name) {
  const auto found = request.params.find(name);
  return found == request.params.end() ? "" : found->second;
}

std::optional<long long> ParseId(const std::string& text) {
  long long id = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), id);
  const bool isId = error == std::errc() && end == text.data() + text.size();
  return isId ? std::optional(id) : std::nullopt;
}

std::size_t PageSizeOf(const PageRequest& request) {
  return static_cast<std::size_t>(FactsOf(request.maker).pageSize);
}

// The parameter of a request that tells where its page lies: "after" or "before" a contact or a
// letter.
struct PageParam {
  bool isAfter;
  std::string position;
};
std::optional<PageParam> PageParamOf(const PageRequest& request) {
  for (const char* name : {"after", "before"}) {
    const auto param = request.params.find(name);
    if (param == request.params.end()) continue;
    if (!IsUTF8(param->second) || param->second.find('\0') != std::string::npos)
      throw HTTPError(400, kNoPosition);
    return PageParam{*name == 'a', param->second};
  }
  return std::nullopt;
}

// The position of a contact: its id and as much of its name as its collation key covers. No
// position holds a NUL.
std::string PositionOf(const ListedContact& contact) {
  return std::to_string(contact.id) + "-" +
         TruncateToCharacters(contact.name.c_str(), kMaxKeyCharacters);
}

// @param takesLetter whether the position may also be a letter.
Cursor CursorOf(const PageRequest& request, bool takesLetter = false) {
  const auto param = PageParamOf(request);
  if (!param) return {};
  const auto& [isAfter, position] = *param;
  const auto dash = std::min(position.find('-', 1), position.size());  // -1 is an id
  const auto id = ParseId(position.substr(0, dash));
  if (id && dash < position.size()) {
    return {isAfter, CollationKey(position.substr(dash + 1)), id};
  }
  if (!takesLetter) throw HTTPError(400, kNoPosition);
  const std::string key = PrefixKey(position);
  return {isAfter, isAfter ? EndOfPrefix(key) : key};
}

// Links a page of a list to those before and after it; `uri` leads to the first page. The positions
// of the first and the last entry are empty if there are none.
template <typename Screen>
void LinkPages(Screen& screen, const PageRequest& request, const std::string& uri,
               std::string first, std::string last, const PageNeighbors& neighbors) {
  if (neighbors.end) {
    const std::string end = PositionOf(*neighbors.end);
    if (neighbors.isForward || first.empty()) last = end;
    if (!neighbors.isForward || first.empty()) first = end;
  }
  const std::string prefix = uri + (uri.find('?') == uri.npos ? "?" : "&");
  if (neighbors.hasPrevious) screen.previous = prefix + "before=" + PercentEncode(first);
  if (neighbors.hasNext) screen.next = prefix + "after=" + PercentEncode(last);
  // Where the links are keys with texts, these are in the language.
  const bool isMenu = std::is_same_v<Screen, Menu>;
  if (request.maker != Maker::kPolycom && (request.maker != Maker::kAastra || !isMenu)) return;
  const auto add = [&](SoftKeyRole role, std::string& link, const char* label) {
    if (!link.empty()) screen.keys.push_back({role, std::exchange(link, ""), label});
  };
  add(SoftKeyRole::kPrevious, screen.previous, Translated(request, "Previous"));
  add(SoftKeyRole::kNext, screen.next, Translated(request, "Next"));
}

// The first page may be empty, the others not.
void ExpectContent(const PageRequest& request, bool hasContent) {
  if (!hasContent && PageParamOf(request)) {
    throw HTTPError(404, Marked("There is no page beyond the last one."));
  }
}

// Titles and links a page of contacts; `uri` leads to its first page.
template <typename Screen>
void FrameContacts(Screen& screen, const PageRequest& request, const ContactPage& page,
                   const std::string& uri) {
  const auto& contacts = page.contacts;
  ExpectContent(request, !contacts.empty() || page.end);
  if (page.hasPrevious && !contacts.empty()) {
    screen.title += Translated(request, ", from ") + contacts.front().name;
  }
  LinkPages(screen, request, uri, contacts.empty() ? "" : PositionOf(contacts.front()),
            contacts.empty() ? "" : PositionOf(contacts.back()), page);
}

PageResult Home(const PageRequest& request) {
  return ComposeMenu(request.maker,
                     {Translated(request, "Phone book"),
                      {{Translated(request, "Directory"), PageURI(request, "directory")},
                       {Translated(request, "Search"), PageURI(request, "search")},
                       {Translated(request, "Message of the day"), PageURI(request, "message")},
                       {Translated(request, "Alert"), PageURI(request, "status")}},
                      {SelectKey(request), {SoftKeyRole::kExit, "", Translated(request, "Exit")}}});
}

PageResult Directory(const PageRequest& request) {
  return [request, cursor = CursorOf(request)](Store& store) {
    ContactPage page = store.ListContacts({}, cursor, PageSizeOf(request));
    List list{Translated(request, page.contacts.empty() ? kEmptyTitle : Marked("Directory")),
              {},
              {HomeKey(request),
               {SoftKeyRole::kDial, "", Translated(request, "Dial")},
               {SoftKeyRole::kSearch, PageURI(request, "search"), Translated(request, "Search")}}};
    FrameContacts(list, request, page, PageURI(request, "directory"));
    list.people.reserve(page.contacts.size());
    for (auto& contact : page.contacts) {
      std::string dialed = DialString(contact.telephone, request.options->region);
      list.people.push_back(
          {std::move(contact.name), std::move(dialed), std::move(contact.telephone)});
    }
    return ComposeList(request.maker, list);
  };
}

// A menu of what a search found, each contact of which leads to its page.
// @param param that of the search, with its value.
PageResult FoundContacts(const PageRequest& request, const std::string& param,
                         const std::string& value, const Selection& selection) {
  const std::string title = Translated(request, "Search") + (": " + value);
  const std::string uri = PageURI(request, "search?") + param + "=" + PercentEncode(value);
  return [request, title, uri, selection, cursor = CursorOf(request)](Store& store) {
    ContactPage page = store.ListContacts(selection, cursor, PageSizeOf(request));
    Menu menu{title, {}, {HomeKey(request), SelectKey(request)}};
    FrameContacts(menu, request, page, uri);
    menu.items.reserve(page.contacts.size());
    for (auto& contact : page.contacts) {
      menu.items.push_back(
          {std::move(contact.name), PageURI(request, "contact/" + std::to_string(contact.id))});
    }
    if (page.end || menu.items.empty()) {
      const char* const advice = page.end ? Marked("There may be more. Add a letter to the search?")
                                          : Marked("Nobody found. Search again?");
      menu.items.push_back({Translated(request, advice), PageURI(request, "search")});
    }
    return ComposeMenu(request.maker, menu);
  };
}

// A menu of letters, for phones without forms.
PageResult Letters(const PageRequest& request) {
  return [request, cursor = CursorOf(request, true)](Store& store) {
    const std::string uri = PageURI(request, "search");
    const LetterPage page = store.ListLetters(cursor, PageSizeOf(request));
    const auto& letters = page.letters;
    const bool hasContent = !letters.empty() || page.end;
    ExpectContent(request, hasContent);
    Menu menu{Translated(request, hasContent ? Marked("Search") : kEmptyTitle),
              {},
              {HomeKey(request), SelectKey(request)}};
    for (const auto& letter : letters) {
      menu.items.push_back({letter.label, uri + "?letter=" + PercentEncode(letter.label)});
    }
    LinkPages(menu, request, uri, letters.empty() ? "" : letters.front().label,
              letters.empty() ? "" : letters.back().label, page);
    if (page.end) {
      menu.items.push_back(
          {Translated(request, "More letters"), page.isForward ? menu.next : menu.previous});
    }
    return ComposeMenu(request.maker, menu);
  };
}

PageResult SearchForm(const PageRequest& request) {
  auto form =
      ComposeForm(request.maker,
                  {Translated(request, "Search"),
                   Translated(request, "The beginnings of some words are enough."),
                   Translated(request, "Name or department:"),
                   PageURI(request, "search"),
                   "name",
                   {{SoftKeyRole::kSubmit, "", Translated(request, "Search")}, HomeKey(request)}});
  return form != nullptr ? PageResult(std::move(form)) : Letters(request);
}

PageResult Search(const PageRequest& request) {
  const std::string name = ParamOf(request, "name");
  const std::string letter = ParamOf(request, "letter");
  if (!IsPlainText(name) || !IsPlainText(letter)) {
    throw HTTPError(400, Marked("The search is no text in UTF-8."));
  }
  if (CountCharacters(name) > kMaxSearchCharacters ||
      CountCharacters(letter) > kMaxSearchCharacters) {
    throw HTTPError(400, Marked("A search has 64 characters at most."));
  }
  if (!letter.empty()) {
    return FoundContacts(request, "letter", letter, {PrefixKey(letter), {}});
  }
  if (name.empty()) return SearchForm(request);
  const auto words = TypedWordKeys(name);
  if (words.size() > Selection::kMaxWords) {
    throw HTTPError(400, Marked("A search has six words at most."));
  }
  Selection selection{"", {words.begin(), words.end()}};
  if (words.empty()) selection.prefix = EndOfPrefix("");  // punctuation alone matches nobody
  return FoundContacts(request, "name", name, selection);
}

// A page of the contact whose id is the last segment of the path.
template <Document (*compose)(const PageRequest&, long long id, const Contact&)>
PageResult ContactPageOf(const PageRequest& request) {
  constexpr const char* kNotFound = Marked("This contact is not in the phone book.");
  const auto id = request.path.size() == 2 ? ParseId(request.path[1]) : std::nullopt;
  if (!id) throw HTTPError(404, kNotFound);
  return [request, id = *id](Store& store) {
    const auto contact = store.FindContact(id);
    if (!contact) throw HTTPError(404, kNotFound);
    return compose(request, id, *contact);
  };
}

Document ComposeCard(const PageRequest& request, long long id, const Contact& contact) {
  return ComposeText(
      request.maker,
      {contact.name,
       {contact.telephone,
        contact.department.empty() ? Translated(request, "No department") : contact.department},
       DialString(contact.telephone, request.options->region),
       {{SoftKeyRole::kDial, PageURI(request, "dial/" + std::to_string(id)),
         Translated(request, "Dial")},
        HomeKey(request)}});
}

Document ComposeDial(const PageRequest& request, long long /*id*/, const Contact& contact) {
  return ComposeCall(
      request.maker,
      {{contact.name, DialString(contact.telephone, request.options->region), contact.telephone},
       {HomeKey(request)}});
}

Text NoticeText(const PageRequest& request, const char* title, const std::string& notice) {
  Text text{
      Translated(request, title), {}, HomeURI(request.base, request.maker), {HomeKey(request)}};
  std::istringstream stream(notice);
  for (std::string line; text.lines.size() < kMaxNoticeLines && std::getline(stream, line);) {
    text.lines.push_back(line);
  }
  if (notice.empty()) text.lines.emplace_back(Translated(request, "Nothing today."));
  return text;
}

PageResult Message(const PageRequest& request) {
  return [request](Store& store) {
    return ComposeText(request.maker, NoticeText(request, Marked("Message of the day"),
                                                 store.FindNotice("message")));
  };
}

PageResult Alert(const PageRequest& request) {
  return [request](Store& store) {
    const std::string alert = store.FindNotice("alert");
    return ComposeAlert(request.maker,
                        {NoticeText(request, Marked("Alert"), alert), !alert.empty(), "phonebook"});
  };
}

}  // namespace

const std::vector<Page>& AllPages() {
  static const std::vector<Page> pages = {{"", "Home", Home},
                                          {"directory", "Directory", Directory},
                                          {"search", "Search", Search, false, true},
                                          {"contact", "Contact", ContactPageOf<ComposeCard>, true},
                                          {"dial", "Dial", ContactPageOf<ComposeDial>, true},
                                          {"message", "Message", Message},
                                          {"status", "Alert", Alert}};
  return pages;
}

const Page* FindPage(const std::vector<std::string>& path) {
  const auto& pages = AllPages();
  const auto found = std::find_if(pages.begin(), pages.end(), [&](const Page& page) {
    return path.empty() ? page.path.empty()
                        : path.front() == page.path && path.size() <= (page.takesContact ? 2 : 1);
  });
  return found == pages.end() ? nullptr : &*found;
}

std::string HomeURI(const std::string& base, Maker maker) {
  return base + "/" + std::string(FactsOf(maker).slug) + "/";
}

Document ComposeErrorPage(const PageRequest& request, const char* title,
                          const std::string& reason) {
  return ComposeText(request.maker, {Translated(request, title),
                                     {Translated(request, reason.c_str())},
                                     HomeURI(request.base, request.maker),
                                     {HomeKey(request)}});
}

}  // namespace phonebook
