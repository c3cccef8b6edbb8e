// Serves a menu, a directory, a search and a text to the phones of all makers: first_server [PORT]
#include <httplib.h>
#include <teleform/screens/compose.h>
#include <teleform/screens/escape.h>

#include <iostream>

using namespace teleform::screens;

const std::vector<Person> kPeople = {{"Ann", "1001"}, {"Anna", "1002"},  {"Bob & Co.", "1003"},
                                     {"Dan", "1004"}, {"Hanna", "1005"}, {"Zoë", "1006"}};
constexpr std::size_t kPageSize = 2;  // so that six people fill pages; phones show eight or more

Document MakeForm(Maker maker, const std::string& home, const httplib::Request& /*request*/) {
  return ComposeForm(maker, {"Search", "", "Name:", home + "people", "name"});
}

Document MakeMenu(Maker maker, const std::string& home, const httplib::Request& request) {
  Menu menu{"Menu", {{"People", home + "people"}, {"News", home + "news"}}};
  if (MakeForm(maker, home, request)) menu.items.push_back({"Search", home + "find"});
  return ComposeMenu(maker, menu);
}

Document MakeNews(Maker maker, const std::string& home, const httplib::Request& /*request*/) {
  return ComposeText(maker, {"News", {"Lunch: soup & bread"}, home, {{SoftKeyRole::kHome, home}}});
}

Document MakePeople(Maker maker, const std::string& home, const httplib::Request& request) {
  const std::string name = request.get_param_value("name");
  const std::string uri = home + "people?name=" + PercentEncode(name) + "&at=";
  std::size_t found = 0, first = std::strtoul(request.get_param_value("at").c_str(), nullptr, 10);
  List list{"People", {}, {{SoftKeyRole::kHome, home}}};
  for (const auto& person : kPeople) {
    if (person.name.find(name) == std::string::npos || ++found <= first) continue;
    if (list.people.size() < kPageSize) list.people.push_back(person);
  }
  if (first >= kPageSize) list.previous = uri + std::to_string(first - kPageSize);
  if (first + list.people.size() < found) list.next = uri + std::to_string(first + kPageSize);
  return ComposeList(maker, list);
}

int main(int argc, char** argv) {
  httplib::Server server;
  for (const auto& [path, view] : {std::pair{"/", &MakeMenu}, std::pair{"/people", &MakePeople},
                                   std::pair{"/news", &MakeNews}, std::pair{"/find", &MakeForm}}) {
    server.Get(path, [make = view](const httplib::Request& request, httplib::Response& response) {
      const auto maker = MakerOfUserAgent(request.get_header_value("User-Agent"));
      const std::string home = "http://" + request.get_header_value("Host") + "/";
      const Document page = make(maker.value_or(Maker::kPolycom), home, request);  // browsers: HTML
      if (page == nullptr) {
        response.set_redirect("/");
        return;
      }
      page->Render(response.body);
      response.set_header("Content-Type", page->GetContentType() + "; charset=utf-8");
    });
  }
  const std::string port = argc > 1 ? argv[1] : "8080";
  const auto number = static_cast<std::uint16_t>(std::atoi(port.c_str()));  // 0 takes any free port
  if (std::to_string(number) == port && server.listen("0.0.0.0", number)) return 0;
  std::cerr << "first_server: can't listen on port " << port << "\n";
  return 1;
}
