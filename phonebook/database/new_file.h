/// @file
/// A file that appears under its name only when it is whole.
#pragma once

#include <string>

namespace phonebook {

/// Whether there is no database under `path`.
/// @throws std::runtime_error when there is none, but a link to it, or a journal or log of one,
/// which SQLite would apply to the next.
bool IsDatabaseMissing(const std::string& path);

/// A file beside its future place, locked while this lives and removed unless it is published.
class NewFile {
 public:
  /// Creates an empty file, and removes those of processes that have died.
  /// @throws DatabaseUnavailable when it can't be created.
  explicit NewFile(std::string target);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  /// Where to write the file.
  const std::string& Path() const { return path; }

  /// Waits until what has been written of the file is on the disk.
  void Sync();

  /// Gives the closed file its name, unless another has it already: that one stays.
  /// @return whether the file got its name.
  /// @throws DatabaseUnavailable when there is an error.
  bool Publish();

 private:
  std::string target, path;
  int descriptor = -1;
};

}  // namespace phonebook
