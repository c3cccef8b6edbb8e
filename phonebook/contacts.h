/// @file
/// Contacts, read from a file.
#pragma once

#include <istream>
#include <string>
#include <string_view>
#include <vector>

namespace phonebook {

struct Contact {
  std::string name;
  std::string telephone;
  std::string department;
};

/// Reads contacts in UTF-8, one a line: name, telephone and department, separated by tabs. Empty
/// lines and lines that begin with # are skipped. Only a department may be empty. A byte order mark
/// at the start and carriage returns at the ends of lines are ignored.
/// @param source the name of the stream in messages, such as a file name.
/// @throws std::runtime_error when a line is malformed, reading fails or there are no contacts.
std::vector<Contact> ReadContacts(std::istream& contacts, const std::string& source);

/// The same from the file at `path`.
std::vector<Contact> ReadContacts(const std::string& path);

/// What a phone dials: a telephone number without its blanks, brackets, points, dashes and slashes;
/// anything else, such as a SIP address, as it is.
std::string DialString(std::string_view telephone);

}  // namespace phonebook
