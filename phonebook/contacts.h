/// @file
/// Contacts and their import format.
#pragma once

#include <istream>
#include <string>
#include <vector>

namespace phonebook {

/// A person or a service with a telephone, as users write it.
struct Contact {
  std::string name;
  std::string telephone;
  std::string department;
};

/// Reads contacts in UTF-8, one per line: name, telephone and department, separated by tabs. Only
/// the department may be empty. Skips empty lines and lines that begin with #. Ignores a byte order
/// mark at the start and carriage returns at the ends of lines.
/// @param source the name of the stream in messages, such as a file name.
/// @throws std::runtime_error when a line is malformed, reading fails or there are no contacts.
std::vector<Contact> ReadContacts(std::istream& contacts, const std::string& source);

/// Reads contacts from the file at `path`.
std::vector<Contact> ReadContacts(const std::string& path);

}  // namespace phonebook
