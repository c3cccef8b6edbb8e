/// @file
/// The sample contacts, read from a file.
#pragma once

#include <istream>
#include <string>
#include <string_view>
#include <vector>

struct Contact {
  std::string name;
  std::string telephone;
  std::string department;
};

/// Reads contacts in UTF-8, one a line: name, telephone and department, with a tab between them.
/// Empty lines and lines that begin with # are skipped. A department may be empty, the others not.
/// A byte-order mark before them and carriage returns at the ends of lines are not part of them.
/// @param source what errors call the stream, such as the name of its file.
/// @throws std::runtime_error when a line is not a contact, reading fails or there is none.
std::vector<Contact> ReadContacts(std::istream& contacts, const std::string& source);

/// The same from the file at `path`.
std::vector<Contact> ReadContacts(const std::string& path);

/// What a phone dials for `telephone`: a number without the blanks, brackets, points, dashes and
/// slashes that make it readable. What is not a number, such as a SIP address, stays as it is.
std::string Dialled(std::string_view telephone);
