/// @file
/// What a database throws that can't be used.
#pragma once

#include <stdexcept>

namespace phonebook {

/// The database doesn't answer, or can't be used; the message is for the log.
class DatabaseUnavailable : public std::runtime_error {
 public:
  using runtime_error::runtime_error;
};

}  // namespace phonebook
