/// @file
/// The command line and the configuration file.
#pragma once

#include <optional>
#include <string>

#include "phonebook/server.h"

namespace phonebook {

struct Options {
  enum class Command { kServe, kImport, kBackUp };

  Command command = Command::kServe;
  ServerOptions server;
  std::string database = "phonebook.db";
  std::string admin = "127.0.0.1:9480";  ///< Address and port; empty for none.
  std::string language = "en";
  std::string contacts;   ///< For a new database; empty for the samples.
  std::string file;       ///< To import, or of the backup.
  bool isForced = false;  ///< Whether an import may remove most contacts.
};

/// Parses the command line, and the configuration file for what it doesn't tell.
/// @return the exit status if the program ends: an option is malformed, or asks for help.
std::optional<int> ParseOptions(int argc, char** argv, Options& options);

}  // namespace phonebook
