#include "phonebook/contacts.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include "phonebook/text.h"

namespace phonebook {

std::vector<Contact> ReadContacts(std::istream& contacts, const std::string& source) {
  std::vector<Contact> read;
  std::string line;
  const auto fail = [&source](int number, const char* reason) {
    throw std::runtime_error(source + ":" + std::to_string(number) + ": " + reason);
  };
  for (int number = 1; std::getline(contacts, line); ++number) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (number == 1 && line.rfind(kByteOrderMark, 0) == 0) line.erase(0, kByteOrderMark.size());
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty() || line.front() == '#') continue;
    if (!IsUTF8(line)) fail(number, "this is not UTF-8");
    if (line.find('\0') != line.npos) fail(number, "there is a NUL");
    const auto first = line.find('\t');
    const auto second = line.find('\t', first + 1);
    const bool hasThreeFields =
        first != line.npos && second != line.npos && line.find('\t', second + 1) == line.npos;
    if (!hasThreeFields || first == 0 || second == first + 1) {
      fail(number, "expected a name, a telephone and a department with tabs between");
    }
    read.push_back({line.substr(0, first), line.substr(first + 1, second - first - 1),
                    line.substr(second + 1)});
  }
  if (contacts.bad()) throw std::runtime_error(source + ": " + std::strerror(errno));
  if (read.empty()) throw std::runtime_error(source + ": no contacts in it");
  return read;
}

std::vector<Contact> ReadContacts(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error(path + ": " + std::strerror(errno));
  return ReadContacts(file, path);
}

}  // namespace phonebook
