/// @file
/// Contacts and the files that hold them.
#pragma once

#include <array>
#include <istream>
#include <string>
#include <vector>

namespace phonebook {

/// A person or a service with a telephone, as users write it.
struct Contact {
  std::string name;
  std::string telephone;
  std::string department;
  /// What identifies the contact in the files of the user; possibly empty.
  std::string key{};
};
using ContactField = std::string Contact::*;

/// A field, and the column that holds it in a file and in the database.
struct Column {
  const char* name;
  ContactField field;
  bool isRequired;  ///< Whether a contact without it is refused.
  bool isSearched;  ///< Whether contacts are found by its words.
  int since;        ///< The first version of the database that has it; 1 if it is required.
};

/// Files, tables, triggers, queries, validation and import are made from these.
inline constexpr std::array kColumns = {
    Column{"name", &Contact::name, true, true, 1},
    Column{"telephone", &Contact::telephone, true, false, 1},
    Column{"department", &Contact::department, false, true, 1},
    Column{"key", &Contact::key, false, false, 4},
};

/// Reads contacts in UTF-8 from one of two formats. A byte order mark at the start and
/// blanks around a field are ignored. Control characters, such as line feeds in quotes, become
/// spaces.
/// - CSV as RFC 4180 describes it, separated by commas, semicolons or tabs. The header names the
///   columns in any order: `name`, `telephone`, and possibly `department` and `key`. Others are
///   ignored.
/// - One contact per line: name, telephone, department and possibly a key, separated by tabs. Empty
///   lines and lines that begin with # are skipped.
/// A name and a telephone must not be empty, and a key not be repeated.
/// @param source the name of the stream in messages, such as a file name.
/// @throws std::runtime_error when reading fails, there are no contacts, or lines are malformed.
/// The message then has a line for each of them, for 1,000 at most.
std::vector<Contact> ReadContacts(std::istream& contacts, const std::string& source);

/// Reads contacts from the file at `path`.
std::vector<Contact> ReadContacts(const std::string& path);

}  // namespace phonebook
