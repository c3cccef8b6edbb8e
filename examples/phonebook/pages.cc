#include "phonebook/pages.h"

#include <sstream>

#include "text.h"

namespace phonebook {

namespace {

constexpr std::size_t kLongestSearch = 64;
constexpr long long kLastPage = 1'000'000;

std::string HomeOf(const std::string& server, Maker maker) {
  return server + "/" + std::string(FactsOf(maker).path) + "/";
}

std::string AddressOf(const Visit& visit, const std::string& page) {
  return HomeOf(visit.server, visit.maker) + page;
}

std::string AddressOf(const Visit& visit, const std::string& page, long long id) {
  return AddressOf(visit, page + "/" + std::to_string(id));
}

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

PageNumber PageOf(const Visit& visit) {
  const long long number = visit.params.count("page") == 0 ? 1 : Number(Param(visit, "page"));
  if (number < 1 || number > kLastPage) throw Refusal(400, "A page is a number from 1 on.");
  return {static_cast<int>(number), FactsOf(visit.maker).pageSize};
}

// A list with the title and the neighbours of a page that is reached by `page?query`.
template <typename Row>
List ListOf(const Visit& visit, const std::string& title, const Page<Row>& found, PageNumber page,
            const std::string& address) {
  if (found.rows.empty() && page.number > 1) {
    throw Refusal(404, "There is no page " + std::to_string(page.number) + ".");
  }
  const std::string other = address + (address.find('?') == address.npos ? "?" : "&") + "page=";
  List list{title, {}, {{Key::kHome, AddressOf(visit, "")}}};
  if (page.number > 1) {
    list.title += ", page " + std::to_string(page.number);
    list.previous = other + std::to_string(page.number - 1);
  }
  if (!found.isLast) list.next = other + std::to_string(page.number + 1);
  return list;
}

StoredContact ContactOf(const Visit& visit, Store& store) {
  const long long id = visit.path.size() == 2 ? Number(visit.path[1]) : -1;
  auto contact = id < 0 ? std::nullopt : store.Find(id);
  if (!contact) throw Refusal(404, "This contact is not in the phone book.");
  return *contact;
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  if (lines.empty()) lines.emplace_back("Nothing today.");
  return lines;
}

Document Home(const Visit& visit, Store&) {
  return ComposeMenu(visit.maker, {"Phone book",
                                   {{"Directory", AddressOf(visit, "directory")},
                                    {"Search", AddressOf(visit, "search")},
                                    {"Message of the day", AddressOf(visit, "message")},
                                    {"Alert", AddressOf(visit, "status")}},
                                   {{Key::kSelect, ""}, {Key::kExit, ""}}});
}

Document Directory(const Visit& visit, Store& store) {
  const PageNumber page = PageOf(visit);
  const auto found = store.All(page);
  List list = ListOf(visit, "Directory", found, page, AddressOf(visit, "directory"));
  for (const auto& [id, contact] : found.rows) {
    list.items.push_back({contact.name, "", Dialled(contact.telephone)});
  }
  list.keys.push_back({Key::kDial, ""});
  list.keys.push_back({Key::kSearch, AddressOf(visit, "search")});
  return ComposeDirectory(visit.maker, list);
}

// Phones without forms choose among the letters with which names begin.
Document Letters(const Visit& visit, Store& store) {
  const PageNumber page = PageOf(visit);
  const auto found = store.Initials(page);
  const std::string search = AddressOf(visit, "search");
  List list = ListOf(visit, "Search", found, page, search);
  for (const auto& initial : found.rows) {
    if (!IsPlainText(initial)) continue;  // a search for it is refused
    list.items.push_back({initial, search + "?name=" + PercentEncoded(initial)});
  }
  return ComposeMenu(visit.maker, list);
}

Document Search(const Visit& visit, Store& store) {
  const std::string name = Param(visit, "name");
  const std::string search = AddressOf(visit, "search");
  if (name.empty()) {
    auto form =
        ComposeForm(visit.maker, {"Search",
                                  "Name begins with:",
                                  search,
                                  "name",
                                  {{Key::kSubmit, ""}, {Key::kHome, AddressOf(visit, "")}}});
    return form != nullptr ? std::move(form) : Letters(visit, store);
  }
  if (!IsPlainText(name)) throw Refusal(400, "The search is no text in UTF-8.");
  if (CountCharacters(name) > kLongestSearch) {
    throw Refusal(400, "A search has 64 characters at most.");
  }
  const PageNumber page = PageOf(visit);
  const auto found = store.Search(name, page);
  List list =
      ListOf(visit, "Search: " + name, found, page, search + "?name=" + PercentEncoded(name));
  if (found.rows.empty()) {
    list.items.push_back({"Nobody found. Search again?", search});
  }
  for (const auto& [id, contact] : found.rows) {
    list.items.push_back({contact.name, AddressOf(visit, "contact", id)});
  }
  list.keys.push_back({Key::kSelect, ""});
  return ComposeMenu(visit.maker, list);
}

Document Card(const Visit& visit, Store& store) {
  const auto [id, contact] = ContactOf(visit, store);
  return ComposeText(
      visit.maker,
      {contact.name,
       {contact.telephone, contact.department.empty() ? "No department" : contact.department},
       Dialled(contact.telephone),
       {{Key::kDial, AddressOf(visit, "dial", id)}, {Key::kHome, AddressOf(visit, "")}}});
}

Document Dial(const Visit& visit, Store& store) {
  const Contact contact = ContactOf(visit, store).contact;
  return ComposeCall(visit.maker, {contact.name, "", Dialled(contact.telephone)});
}

Document Message(const Visit& visit, Store& store) {
  return ComposeText(visit.maker, {"Message of the day",
                                   Lines(store.Notice("message")),
                                   AddressOf(visit, ""),
                                   {{Key::kHome, AddressOf(visit, "")}}});
}

Document Alert(const Visit& visit, Store& store) {
  return ComposeAlert(visit.maker, {"Alert",
                                    Lines(store.Notice("alert")),
                                    AddressOf(visit, ""),
                                    {{Key::kHome, AddressOf(visit, "")}}});
}

struct PageFacts {
  const char* path;
  const char* title;
  bool hasContact;  // whose number follows the path
  Document (*compose)(const Visit&, Store&);
};
constexpr PageFacts kPages[] = {
    {"", "Home", false, Home},           {"directory", "Directory", false, Directory},
    {"search", "Search", false, Search}, {"contact", "Contact", true, Card},
    {"dial", "Dial", true, Dial},        {"message", "Message", false, Message},
    {"status", "Alert", false, Alert},
};

const PageFacts* FactsOf(const std::vector<std::string>& path) {
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

bool IsPage(const std::vector<std::string>& path) { return FactsOf(path) != nullptr; }

Document Answer(const Visit& visit, Store& store) {
  const PageFacts* page = FactsOf(visit.path);
  if (page == nullptr) throw Refusal(404, kNoPage);
  return page->compose(visit, store);
}

Document Apology(Maker maker, const std::string& server, const std::string& title,
                 const std::string& reason) {
  const std::string home = HomeOf(server, maker);
  return ComposeText(maker, {title, {reason}, home, {{Key::kHome, home}}});
}

}  // namespace phonebook
