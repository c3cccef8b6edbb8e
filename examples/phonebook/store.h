/// @file
/// The contacts in their database.
#pragma once

#include <soci/connection-pool.h>
#include <soci/session.h>
#include <soci/statement.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "contacts.h"

namespace phonebook {

/// A contact and the number under which the database has it.
struct StoredContact {
  long long id;
  Contact contact;
};

/// Some of the rows that a question finds.
template <typename Row>
struct Page {
  std::vector<Row> rows;
  bool isLast = true;  ///< Whether no rows come after these.
};

/// Which of the pages, and how many rows a page has; both are at least 1.
struct PageNumber {
  int number;
  int size;
};

/// The database can't be asked now. What it tells is for the log.
class Unavailable : public std::runtime_error {
 public:
  using runtime_error::runtime_error;
};

/// The tables `contacts` and `notices` in SQLite or PostgreSQL. The database is asked anew each
/// time, so that any number of servers can share it. All operations may be called from any thread;
/// each throws `Unavailable` when the database does not answer in time.
///
/// Names are sorted and searched in an index of their first 100 characters in lower case, by their
/// bytes. PostgreSQL turns all letters that its locale knows into lower case, SQLite only A to Z.
class Store {
 public:
  /// @param database the path of an SQLite file, or a URI that begins with "postgresql://" or
  /// "postgres://".
  /// @param connections how many questions the database may be asked at the same time.
  Store(std::string database, std::size_t connections);

  /// Makes the tables, and the file, if there are none, and fills them with `contacts` and with
  /// sample notices. Many servers may do so at the same time.
  void Prepare(const std::vector<Contact>& contacts);

  /// All contacts, by name.
  Page<StoredContact> All(PageNumber page);

  /// The contacts whose names begin with `beginning`, which must be UTF-8, in any case.
  Page<StoredContact> Search(const std::string& beginning, PageNumber page);

  /// The letters, in lower case, with which names begin.
  Page<std::string> Initials(PageNumber page);

  /// The contact of that number, if there is one.
  std::optional<StoredContact> Find(long long id);

  /// The text of the notice `name`, or an empty text.
  std::string Notice(const std::string& name);

 private:
  void Ask(const std::function<void(soci::session&)>& question);
  void Open(soci::session& session) const;
  std::string Identity() const;

  template <typename Row>
  Page<Row> Ask(const std::string& select, PageNumber page,
                const std::function<void(soci::statement&, Row&)>& bind);

  std::string database;
  bool isPostgreSQL;
  soci::connection_pool pool;
  std::vector<std::string> opened;  // the identity of the database when each connection was opened
};

}  // namespace phonebook
