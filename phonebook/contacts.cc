#include "phonebook/contacts.h"

#include <csv.h>

#include <algorithm>
#include <boost/algorithm/string/predicate.hpp>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <new>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "phonebook/text.h"

namespace phonebook {

namespace {

using Fields = std::vector<std::string>;

// The field of a column; null for other columns.
ContactField FieldNamed(std::string name) {
  if (name.size() > 1 && name.front() == '"') name = name.substr(1, name.size() - 2);
  for (const auto& column : kColumns) {
    if (boost::iequals(name, column.name)) return column.field;
  }
  return nullptr;
}

// Reads either format line by line, by libcsv, which knows no line numbers.
class Reader {
 public:
  static constexpr char kNoQuote = '\x01';  // as there must be one

  // @param separator none for lines with tabs, without a header and quotes.
  Reader(std::string theSource, std::optional<char> separator)
      : source(std::move(theSource)), isCSV(separator) {
    if (csv_init(&parser, isCSV ? CSV_STRICT | CSV_STRICT_FINI : 0) != 0) throw std::bad_alloc();
    csv_set_delim(&parser, static_cast<unsigned char>(separator.value_or('\t')));
    if (isCSV) return;
    csv_set_quote(&parser, kNoQuote);
    for (const auto& column : kColumns) columns.push_back(column.field);
  }
  ~Reader() { csv_free(&parser); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  // @return false when nothing that follows can be parsed.
  bool ReadLine(std::string line) {
    constexpr int kNoRow = 0;
    ++number;
    if (parser.pstate == kNoRow) first = number;
    if (!isCSV && line.front() == '#') return true;
    if (!isCSV) std::replace(line.begin(), line.end(), kNoQuote, ' ');
    if (csv_parse(&parser, line.data(), line.size(), &AddField, &AddRow, this) != line.size()) {
      AddFault(first, "a quote is neither doubled nor around a field");
      hasEnded = true;
    }
    return !hasEnded;
  }

  // @throws std::runtime_error when there were faults.
  std::vector<Contact> End() {
    if (!hasEnded && csv_fini(&parser, &AddField, &AddRow, this) != 0) {
      AddFault(first, "a quote is never closed");
    }
    if (faultCount > kMaxFaults) {
      faults += "\n" + source + ": " + std::to_string(faultCount - kMaxFaults) +
                " more lines are malformed";
    }
    if (faultCount > 0) throw std::runtime_error(faults);
    if (contacts.empty()) throw std::runtime_error(source + ": no contacts in it");
    return std::move(contacts);
  }

 private:
  static void AddField(void* text, std::size_t size, void* self) {
    static_cast<Reader*>(self)->row.emplace_back(static_cast<const char*>(text), size);
  }
  static void AddRow(int /*end*/, void* self) { static_cast<Reader*>(self)->AddRow(); }

  void AddRow() {
    Fields fields = std::exchange(row, {});
    if (columns.empty()) return ReadHeader(fields);
    if (!isCSV && (fields.size() < columns.size() - 1 || fields.size() > columns.size())) {
      return AddFault(first, "expected a name, a telephone and a department with tabs between");
    }
    if (isCSV && fields.size() != columns.size()) {
      return AddFault(first, "expected " + std::to_string(columns.size()) +
                                 " fields as in the header, not " + std::to_string(fields.size()));
    }
    Contact contact;
    for (std::size_t i = 0; i < fields.size(); ++i) {
      if (columns[i] == nullptr) continue;
      for (char& byte : fields[i]) {
        if (byte > 0 && byte < ' ') byte = ' ';
      }
      contact.*columns[i] = std::move(fields[i]);
    }
    for (const auto& column : kColumns) {
      const std::string& text = contact.*column.field;
      if (!IsUTF8(text)) return AddFault(first, "this is not UTF-8");
      if (text.find('\0') != text.npos) return AddFault(first, "there is a NUL");
      if (column.isRequired && text.empty()) {
        return AddFault(first, "the " + std::string(column.name) + " is empty");
      }
    }
    if (!contact.key.empty()) {
      const auto [other, isNew] = lines.emplace(contact.key, first);
      if (!isNew)
        return AddFault(first, "the key is that of line " + std::to_string(other->second));
    }
    contacts.push_back(std::move(contact));
  }

  void AddFault(int line, const std::string& reason) {
    if (++faultCount > kMaxFaults) return;
    faults += (faults.empty() ? "" : "\n") + source + ":" + std::to_string(line) + ": " + reason;
  }

  void ReadHeader(const Fields& fields) {
    for (const auto& field : fields) columns.push_back(FieldNamed(field));
    for (const auto& [name, field, isRequired, isSearched, since] : kColumns) {
      const auto count = std::count(columns.begin(), columns.end(), field);
      if (count > 1) AddFault(first, "the column " + std::string(name) + " is repeated");
      if (count == 0 && isRequired) {
        AddFault(first, "the header lacks the column " + std::string(name));
      }
      hasEnded = hasEnded || count > 1 || (count == 0 && isRequired);
    }
  }

  static constexpr int kMaxFaults = 1000;  // more than a person reads

  std::string source, faults;
  int faultCount = 0;
  std::vector<Contact> contacts;
  std::unordered_map<std::string, int> lines;  // by key
  bool isCSV;
  csv_parser parser{};
  Fields row;
  std::vector<ContactField> columns;  // null for those that are ignored
  bool hasEnded = false;              // by a fault, beyond which nothing can be read
  int number = 0, first = 1;          // of the line, and of the first one of the row
};

// The separator of CSV with this header; none of a line of the other format, which has tabs and no
// header.
std::optional<char> SeparatorOf(const std::string& header) {
  char separator = ',';
  for (const char other : {';', '\t'}) {
    if (std::count(header.begin(), header.end(), other) >
        std::count(header.begin(), header.end(), separator)) {
      separator = other;
    }
  }
  bool isHeader = separator != '\t';
  std::istringstream names(header.substr(0, header.find('\r')));
  for (std::string name; std::getline(names, name, '\t');) isHeader |= FieldNamed(name) != nullptr;
  return header.empty() || header.front() == '#' || !isHeader ? std::nullopt
                                                              : std::optional(separator);
}

}  // namespace

std::vector<Contact> ReadContacts(std::istream& contacts, const std::string& source) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  std::string line;
  std::getline(contacts, line);
  if (line.rfind(kByteOrderMark, 0) == 0) line.erase(0, kByteOrderMark.size());
  Reader reader(source, SeparatorOf(line));
  while (reader.ReadLine(line + "\n") && std::getline(contacts, line)) {
  }
  if (contacts.bad()) throw std::runtime_error(source + ": " + std::strerror(errno));
  return reader.End();
}

std::vector<Contact> ReadContacts(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error(path + ": " + std::strerror(errno));
  return ReadContacts(file, path);
}

}  // namespace phonebook
