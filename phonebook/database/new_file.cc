#include "phonebook/database/new_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "phonebook/database/unavailable.h"

namespace phonebook {

namespace {

namespace fs = std::filesystem;

constexpr const char* kCompanions[] = {"-journal", "-wal", "-shm"};  // of a file of SQLite

[[noreturn]] void Throw(const std::string& path) {
  throw DatabaseUnavailable(path + ": " + std::strerror(errno));
}

bool Exists(const std::string& path) {
  std::error_code error;
  return fs::exists(path, error);
}

void RemoveWithCompanions(const std::string& path) {
  for (const char* companion : kCompanions) unlink((path + companion).c_str());
  unlink(path.c_str());
}

// Locks a file. Fails when another process has locked it, or has removed it meanwhile.
bool Lock(int descriptor) {
  struct stat status = {};
  return flock(descriptor, LOCK_EX | LOCK_NB) == 0 && fstat(descriptor, &status) == 0 &&
         status.st_nlink > 0;
}

void RemoveUnlocked(const std::string& path) {
  const int descriptor = open(path.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC);
  if (descriptor == -1) return;
  if (Lock(descriptor)) RemoveWithCompanions(path);
  close(descriptor);
}

// The name of a new file, but for eight digits at its end.
std::string PrefixOf(const fs::path& target) {
  return "." + target.filename().string() + ".phonebook-import-";
}

std::string RandomDigits() {
  std::random_device device;
  char text[9];
  std::snprintf(text, sizeof text, "%08x", device());
  return text;
}

void RemoveLeftovers(const fs::path& target) {
  const std::string prefix = PrefixOf(target);
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(target.parent_path(), error)) {
    const std::string name = entry.path().filename().string();
    const bool isOurs = name.size() == prefix.size() + RandomDigits().size() &&
                        name.compare(0, prefix.size(), prefix) == 0 &&
                        name.find_first_not_of("0123456789abcdef", prefix.size()) == name.npos;
    if (isOurs) RemoveUnlocked(entry.path());
  }
}

// Fails with EEXIST when there is a file of that name.
bool Link(const std::string& path, const std::string& target) {
  if (link(path.c_str(), target.c_str()) == 0) return true;
  if (errno != EPERM && errno != EOPNOTSUPP) return false;
  // A file system without links.
  return renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0;
}

void SyncDirectoryOf(const std::string& target) {
  const fs::path directory = fs::absolute(target).parent_path();
  const int descriptor = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor == -1) return;  // one that may only be written
  fsync(descriptor);
  close(descriptor);
}

}  // namespace

bool IsDatabaseMissing(const std::string& path) {
  for (const char* companion : kCompanions) {
    // In this order, as another process may be creating the database.
    if (!Exists(path + companion) || Exists(path)) continue;
    throw std::runtime_error(path + " is missing, but not its " + path + companion +
                             ": restore the one or remove the other");
  }
  if (!Exists(path) && fs::is_symlink(path)) {
    throw std::runtime_error(path + " is a symbolic link to a missing file");
  }
  return !Exists(path);
}

NewFile::NewFile(std::string theTarget) : target(std::move(theTarget)) {
  const fs::path whole = fs::absolute(target);
  RemoveLeftovers(whole);
  while (descriptor == -1) {
    path = whole.parent_path() / (PrefixOf(whole) + RandomDigits());
    descriptor = open(path.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666);
    if (descriptor == -1 && errno != EEXIST) Throw(target);
    if (descriptor == -1 || Lock(descriptor)) continue;
    // Another process takes it for a leftover, or the file system has no locks.
    if (errno != EWOULDBLOCK && Exists(path)) break;
    close(std::exchange(descriptor, -1));
  }
}

NewFile::~NewFile() {
  RemoveWithCompanions(path);
  close(descriptor);
}

void NewFile::Sync() {
  if (fsync(descriptor) != 0) Throw(path);
}

bool NewFile::Publish() {
  for (const char* companion : kCompanions) {
    if (Exists(path + companion)) throw DatabaseUnavailable(path + companion + " is left");
  }
  Sync();
  if (!IsDatabaseMissing(target)) return false;
  if (!Link(path, target)) {
    if (errno == EEXIST) return false;
    Throw(target);
  }
  SyncDirectoryOf(target);
  return true;
}

}  // namespace phonebook
