#include "contents.h"

#include <array>
#include <random>

namespace {

constexpr std::array kFirstNames = {
    "Ada",       "Adele",     "Agnes",     "Alexander", "Alexandra", "Ali",    "Amira",
    "Anna",      "Anton",     "Astrid",    "Barbara",   "Benjamin",  "Bernd",  "Carla",
    "Charlotte", "Christian", "Christina", "Chidi",     "Clara",     "David",  "Deniz",
    "Elena",     "Elif",      "Emil",      "Emma",      "Erik",      "Eva",    "Fatima",
    "Felix",     "Florian",   "Franziska", "Frida",     "Georg",     "Greta",  "Hannah",
    "Hans",      "Haruto",    "Helena",    "Ines",      "Ingrid",    "Jan",    "Johanna",
    "Jonas",     "Julia",     "Karl",      "Katharina", "Lars",      "Laura",  "Lena",
    "Leon",      "Linus",     "Luca",      "Magdalena", "Maria",     "Martin", "Mateo"};
constexpr std::array kLastNames = {
    "Adebayo",   "Albrecht",  "Andersson", "Bauer",    "Becker",   "Bergmann",   "Bianchi",
    "Brandt",    "Braun",     "Carlsen",   "Chen",     "Dietrich", "Dubois",     "Eriksson",
    "Fernandez", "Fischer",   "Garcia",    "Hansen",   "Hartmann", "Hoffmann",   "Huber",
    "Ivanova",   "Jansen",    "Johansson", "Kaiser",   "Keller",   "Koch",       "Kowalczyk",
    "Krause",    "Lehmann",   "Maier",     "Marković", "Meyer",    "Müller",     "Neumann",
    "Nguyen",    "Novak",     "Okonkwo",   "Petrov",   "Richter",  "Rossi",      "Schmidt",
    "Schmitz",   "Schneider", "Schröder",  "Schulz",   "Schulze",  "Sørensen",   "Tanaka",
    "Vogel",     "Wagner",    "Weber",     "Werner",   "Yılmaz",   "Zimmermann", "Ziegler"};

}  // namespace

std::vector<Person> MakePeople(std::size_t count) {
  std::mt19937 random(20240229);
  std::vector<Person> people;
  people.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    std::string name = kLastNames[random() % kLastNames.size()];
    name += ", ";
    name += kFirstNames[random() % kFirstNames.size()];
    std::string telephone = "+49305550";
    telephone += std::to_string(1000 + random() % 9000);
    people.push_back({name, telephone});
  }
  return people;
}

Menu MakeMenu(std::size_t items) {
  Menu menu;
  for (std::size_t i = 1; i <= items; ++i) {
    const std::string number = std::to_string(i);
    menu.items.push_back(
        {"Department " + number, "http://phonebook.example/aastra/department/" + number});
  }
  return menu;
}
