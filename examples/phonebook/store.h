/// @file
/// The contacts in their database.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "contacts.h"
#include "phonebook/names.h"

namespace phonebook {

/// What a list tells of a contact, and the number under which the database has it.
struct Listed {
  long long id = 0;
  std::string name;
  std::string telephone;
};

/// Some of all contacts.
struct Selection {
  std::string beginning;           ///< With which their sort keys begin.
  std::vector<std::string> words;  ///< Keys; each of them begins one of their words.
  static constexpr std::size_t kMostWords = 6;
};

/// A place among the contacts in their order, and the direction to go from there. It stays the same
/// while contacts come and go.
struct Cursor {
  bool isForward = true;
  std::string sortKey{};
  long long id = 0;
};

struct Page {
  std::vector<Listed> contacts;
  bool hasBefore = false;  ///< Whether there are contacts before these, and after.
  bool hasAfter = false;
};

/// Some of the letters with which names begin.
struct Letters {
  std::vector<Letter> letters;
  bool hasBefore = false;
  bool hasAfter = false;
};

/// The database can't be asked now. What it tells is for the log.
class Unavailable : public std::runtime_error {
 public:
  using runtime_error::runtime_error;
};

/// How far reading in has come, and whether it is to go on.
using Progress = std::function<bool(std::size_t done, std::size_t all)>;

/// A connection to the tables `contacts` and `notices` in SQLite or PostgreSQL, opened when it is
/// first asked and again whenever it is lost. Any number of stores, also of other servers, and of
/// programs that write contacts with plain SQL can share a database. One store must not be used by
/// two threads at once, but for `Interrupt`. All questions throw `Unavailable` when the database
/// doesn't answer.
class Store {
 public:
  /// @param database the path of an SQLite file, or a URI that begins with "postgresql://" or
  /// "postgres://".
  explicit Store(std::string database);
  ~Store();

  /// Makes the tables, and the file, if there are none, and fills them with `contacts` and with
  /// sample notices. Many servers may do so at the same time. What fails, or is stopped by
  /// `progress`, leaves the database as it was.
  /// @throws std::runtime_error when there are such tables, but of another shape.
  /// @return false when it was stopped.
  bool Prepare(const std::vector<Contact>& contacts, const Progress& progress);

  /// Up to `size` contacts of a selection from `cursor` on, in the order of the names.
  Page List(const Selection& selection, const Cursor& cursor, std::size_t size);

  /// Up to `size` letters from `cursor` on.
  Letters ListLetters(const Cursor& cursor, std::size_t size);

  /// The contact of that number, if there is one.
  std::optional<Contact> Find(long long id);

  /// The text of the notice `name`, or an empty text.
  std::string Notice(const std::string& name);

  /// Sorts in some contacts that other programs have written.
  /// @return whether there may be more of them.
  bool Refresh();

  /// Makes a question that another thread is asking fail. May be called from any thread, and waits
  /// for nothing.
  void Interrupt() noexcept;

 private:
  class Connection;

  template <typename Answer>
  Answer Ask(const std::function<Answer(Connection&)>& question);
  void Connect();
  void Disconnect();
  bool IsConnected();
  std::string Identity() const;

  std::string database;
  bool isPostgreSQL;
  std::mutex mutex;  // held while the connection is made or ended
  std::unique_ptr<Connection> connection;
  std::atomic<bool> isInterrupted = false;
};

}  // namespace phonebook
