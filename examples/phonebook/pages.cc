#include "phonebook/pages.h"

#include <algorithm>
#include <optional>
#include <sstream>
#include <utility>

#include "phonebook/names.h"
#include "text.h"

namespace phonebook {

namespace {

constexpr std::size_t kLongestSearch = 64;
constexpr const char* kEmptyTitle = "Nobody is in the phone book";

std::string HomeOf(const std::string& server, Maker maker) {
  return server + "/" + std::string(FactsOf(maker).path) + "/";
}

std::string AddressOf(const Visit& visit, const std::string& page) {
  return HomeOf(visit.server, visit.maker) + page;
}

std::string AddressOf(const Visit& visit, const std::string& page, long long id) {
  return AddressOf(visit, page + "/" + std::to_string(id));
}

SoftKey HomeKey(const Visit& visit) { return {Key::kHome, AddressOf(visit, "")}; }

std::string Param(const Visit& visit, const std::string& name) {
  const auto found = visit.params.find(name);
  return found == visit.params.end() ? "" : found->second;
}

// A number of up to 18 digits, or -1.
long long Number(const std::string& text) {
  const bool isNumber =
      !text.empty() && text.size() <= 18 && text.find_first_not_of("0123456789") == text.npos;
  return isNumber ? std::stoll(text) : -1;
}

std::size_t SizeOf(const Visit& visit) {
  return static_cast<std::size_t>(FactsOf(visit.maker).pageSize);
}

// A page is named by the contact after or before which it begins: the number and as much of the
// name as counts. So it stays the same when other contacts come and go.
std::string PlaceOf(const Listed& contact) {
  return std::to_string(contact.id) + "-" + FirstCharacters(contact.name, kLongestText);
}

// Which of the two a visit names, if any, and the contact or the letter there.
struct Edge {
  bool isAfter;
  std::string place;
};
std::optional<Edge> EdgeOf(const Visit& visit) {
  if (visit.params.count("after") > 0) return Edge{true, Param(visit, "after")};
  if (visit.params.count("before") > 0) return Edge{false, Param(visit, "before")};
  return std::nullopt;
}

Cursor CursorOf(const Visit& visit) {
  const auto edge = EdgeOf(visit);
  if (!edge) return {};
  const auto dash = std::min(edge->place.find('-'), edge->place.size());
  const long long id = Number(edge->place.substr(0, dash));
  if (id < 0 || dash + 1 >= edge->place.size()) {
    throw Refusal(400, "A page begins after or before a contact.");
  }
  return {edge->isAfter, SortKey(edge->place.substr(dash + 1)), id};
}

// Links a list that is reached by `address` with the pages before and after it.
void Link(List& list, const std::string& address, const std::string& first, const std::string& last,
          bool hasBefore, bool hasAfter) {
  const std::string other = address + (address.find('?') == address.npos ? "?" : "&");
  if (hasBefore) list.previous = other + "before=" + PercentEncoded(first);
  if (hasAfter) list.next = other + "after=" + PercentEncoded(last);
}

// Nothing beside a place is nothing to show; without one, the phone book may be empty.
void CheckIsThere(const Visit& visit, bool hasItems) {
  if (!hasItems && EdgeOf(visit)) throw Refusal(404, "There is no page beyond the last one.");
}

// A list of contacts, each made an item by `item`.
template <typename MakeItem>
List ListOf(const Visit& visit, const std::string& title, Page page, const std::string& address,
            MakeItem item) {
  List list{title, {}, {HomeKey(visit)}};
  CheckIsThere(visit, !page.contacts.empty());
  if (page.contacts.empty()) return list;
  const auto& first = page.contacts.front();
  if (page.hasBefore) list.title += ", from " + first.name;
  Link(list, address, PlaceOf(first), PlaceOf(page.contacts.back()), page.hasBefore, page.hasAfter);
  list.items.reserve(page.contacts.size());
  for (auto& contact : page.contacts) list.items.push_back(item(std::move(contact)));
  return list;
}

Finding Home(const Visit& visit) {
  return ComposeMenu(visit.maker, {"Phone book",
                                   {{"Directory", AddressOf(visit, "directory")},
                                    {"Search", AddressOf(visit, "search")},
                                    {"Message of the day", AddressOf(visit, "message")},
                                    {"Alert", AddressOf(visit, "status")}},
                                   {{Key::kSelect, ""}, {Key::kExit, ""}}});
}

Finding Directory(const Visit& visit) {
  return [visit, cursor = CursorOf(visit)](Store& store) {
    List list = ListOf(visit, "Directory", store.List({}, cursor, SizeOf(visit)),
                       AddressOf(visit, "directory"), [](Listed contact) {
                         std::string dialled = Dialled(contact.telephone);
                         return Item{std::move(contact.name), "", std::move(dialled),
                                     std::move(contact.telephone)};
                       });
    if (list.items.empty()) list.title = kEmptyTitle;
    list.keys.push_back({Key::kDial, ""});
    list.keys.push_back({Key::kSearch, AddressOf(visit, "search")});
    return ComposeDirectory(visit.maker, list);
  };
}

// The contacts of a selection, each of which leads to its page.
Finding Contacts(const Visit& visit, const std::string& title, const std::string& address,
                 const Selection& selection) {
  return [visit, title, address, selection, cursor = CursorOf(visit)](Store& store) {
    List list = ListOf(
        visit, title, store.List(selection, cursor, SizeOf(visit)), address, [&](Listed contact) {
          return Item{std::move(contact.name), AddressOf(visit, "contact", contact.id)};
        });
    if (list.items.empty()) {
      list.items.push_back({"Nobody found. Search again?", AddressOf(visit, "search")});
    }
    list.keys.push_back({Key::kSelect, ""});
    return ComposeMenu(visit.maker, list);
  };
}

// Phones without forms choose among the letters with which names begin.
Finding ChooseLetter(const Visit& visit) {
  Cursor cursor;
  if (const auto edge = EdgeOf(visit)) {
    const std::string key = BeginningKey(edge->place);
    cursor = {edge->isAfter, edge->isAfter ? EndOf(key) : key, 0};
  }
  return [visit, cursor](Store& store) {
    const std::string search = AddressOf(visit, "search");
    const auto found = store.ListLetters(cursor, SizeOf(visit));
    CheckIsThere(visit, !found.letters.empty());
    List list{
        found.letters.empty() ? kEmptyTitle : "Search", {}, {HomeKey(visit), {Key::kSelect, ""}}};
    for (const auto& letter : found.letters) {
      list.items.push_back({letter.label, search + "?letter=" + PercentEncoded(letter.label)});
    }
    if (!found.letters.empty()) {
      Link(list, search, found.letters.front().label, found.letters.back().label, found.hasBefore,
           found.hasAfter);
    }
    return ComposeMenu(visit.maker, list);
  };
}

Finding Search(const Visit& visit) {
  const std::string name = Param(visit, "name");
  const std::string letter = Param(visit, "letter");
  const std::string search = AddressOf(visit, "search");
  if (!IsPlainText(name) || !IsPlainText(letter)) {
    throw Refusal(400, "The search is no text in UTF-8.");
  }
  if (CountCharacters(name) > kLongestSearch || CountCharacters(letter) > kLongestSearch) {
    throw Refusal(400, "A search has 64 characters at most.");
  }
  if (!letter.empty()) {
    return Contacts(visit, "Search: " + letter, search + "?letter=" + PercentEncoded(letter),
                    {BeginningKey(letter), {}});
  }
  if (name.empty()) {
    auto form = ComposeForm(visit.maker, {"Search",
                                          "The beginnings of some words are enough.",
                                          "Name or department:",
                                          search,
                                          "name",
                                          {{Key::kSubmit, ""}, HomeKey(visit)}});
    return form != nullptr ? Finding(std::move(form)) : ChooseLetter(visit);
  }
  const auto words = WordKeys(name);
  if (words.size() > Selection::kMostWords) {
    throw Refusal(400, "A search has six words at most.");
  }
  Selection selection{"", {words.begin(), words.end()}};
  if (words.empty()) selection.beginning = EndOf("");  // nobody has a name of signs alone
  return Contacts(visit, "Search: " + name, search + "?name=" + PercentEncoded(name), selection);
}

// Something that is composed of the contact whose number follows the path.
Finding OfContact(const Visit& visit,
                  Document (*compose)(const Visit&, long long id, const Contact&)) {
  const long long id = visit.path.size() == 2 ? Number(visit.path[1]) : -1;
  const char* const reason = "This contact is not in the phone book.";
  if (id < 0) throw Refusal(404, reason);
  return [=](Store& store) {
    const auto contact = store.Find(id);
    if (!contact) throw Refusal(404, reason);
    return compose(visit, id, *contact);
  };
}

Finding Card(const Visit& visit) {
  return OfContact(visit, [](const Visit& asked, long long id, const Contact& contact) {
    return ComposeText(
        asked.maker,
        {contact.name,
         {contact.telephone, contact.department.empty() ? "No department" : contact.department},
         Dialled(contact.telephone),
         {{Key::kDial, AddressOf(asked, "dial", id)}, HomeKey(asked)}});
  });
}

Finding Dial(const Visit& visit) {
  return OfContact(visit, [](const Visit& asked, long long, const Contact& contact) {
    return ComposeCall(asked.maker,
                       {contact.name, "", Dialled(contact.telephone), contact.telephone},
                       {HomeKey(asked)});
  });
}

// Something that is composed of the lines of a notice, or of one that says that there are none.
Finding OfNotice(const Visit& visit, const std::string& name, const std::string& title,
                 Document (*compose)(Maker, const Text&, bool hasText)) {
  return [=](Store& store) {
    Text text{title, {}, AddressOf(visit, ""), {HomeKey(visit)}};
    std::istringstream notice(store.Notice(name));
    for (std::string line; std::getline(notice, line);) text.lines.push_back(line);
    const bool hasText = !text.lines.empty();
    if (!hasText) text.lines.emplace_back("Nothing today.");
    return compose(visit.maker, text, hasText);
  };
}

Finding Message(const Visit& visit) {
  return OfNotice(visit, "message", "Message of the day",
                  [](Maker maker, const Text& text, bool) { return ComposeText(maker, text); });
}

Finding Alert(const Visit& visit) { return OfNotice(visit, "alert", "Alert", ComposeAlert); }

struct PageFacts {
  const char* path;
  const char* title;
  bool hasContact;  // whose number follows the path
  Finding (*find)(const Visit&);
};
constexpr PageFacts kPages[] = {
    {"", "Home", false, Home},           {"directory", "Directory", false, Directory},
    {"search", "Search", false, Search}, {"contact", "Contact", true, Card},
    {"dial", "Dial", true, Dial},        {"message", "Message", false, Message},
    {"status", "Alert", false, Alert},
};

const PageFacts* PageAt(const std::vector<std::string>& path) {
  for (const auto& page : kPages) {
    const bool isNamed = path.empty() ? *page.path == '\0' : path.front() == page.path;
    if (isNamed && path.size() <= (page.hasContact ? 2 : 1)) return &page;
  }
  return nullptr;
}

}  // namespace

std::vector<PageName> PageNames() {
  std::vector<PageName> names;
  for (const auto& page : kPages) {
    names.push_back({page.title, std::string(page.path) + (page.hasContact ? "/1" : "")});
  }
  return names;
}

bool IsPage(const std::vector<std::string>& path) { return PageAt(path) != nullptr; }

Finding Find(const Visit& visit) {
  const PageFacts* page = PageAt(visit.path);
  if (page == nullptr) throw Refusal(404, kNoPage);
  return page->find(visit);
}

Document Apology(Maker maker, const std::string& server, const std::string& title,
                 const std::string& reason) {
  const std::string home = HomeOf(server, maker);
  return ComposeText(maker, {title, {reason}, home, {{Key::kHome, home}}});
}

}  // namespace phonebook
