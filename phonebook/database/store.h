/// @file
/// The contacts and notices in their database.
///
/// Terms: a *collation key* is a text whose byte order is the order of the names; a *word key* is
/// that of one word of a name or department, without accents and case. *Indexing* a contact means
/// to store its keys.
#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "phonebook/collation.h"
#include "phonebook/contacts.h"
#include "phonebook/database/import.h"
#include "phonebook/database/selection.h"
#include "phonebook/database/unavailable.h"

namespace phonebook {

/// Whether there are pages before and after a page.
struct PageNeighbors {
  bool hasPrevious = false;
  bool hasNext = false;
  /// The contact up to which a search has looked that stopped before the page was full: the next
  /// page begins there, or the previous one ends there.
  std::optional<ListedContact> end{};
  bool isForward = true;  ///< Whether `end` is after the page.
};

/// A page of contacts.
struct ContactPage : PageNeighbors {
  std::vector<ListedContact> contacts;
};

/// A page of the letters with which names begin.
struct LetterPage : PageNeighbors {
  std::vector<Letter> letters;
};

struct ContactCounts {
  long long all = 0;
  long long pending = 0;  ///< That are not indexed.
};

/// A connection to a phone book in SQLite or PostgreSQL, opened by the first query and again after
/// it was lost. Any number of stores and of programs that write contacts by SQL can share a
/// database. A store must not be used by two threads at once, except for `Interrupt`. Every
/// function throws `DatabaseUnavailable` when a query fails.
class Store {
 public:
  /// Opens nothing yet.
  /// @param database the path of an SQLite file, or a URI that begins with "postgresql://" or
  /// "postgres://".
  explicit Store(std::string database);
  ~Store();

  /// Opens the database. A new one is created and filled with `contacts` and, unless `mode` says
  /// that they are imported, sample notices; one of an earlier version is upgraded. Any number of
  /// processes may do so at the same time. A failed or stopped call leaves the database as it was;
  /// a file appears under its name only when it is whole. To stop it, let `report` throw and call
  /// `Interrupt`.
  /// @throws std::runtime_error when the database has other tables or a newer version, when a file
  /// is missing, but not its journal, or when an import would remove too many contacts.
  Differences CreateOrOpen(const std::vector<Contact>& contacts, const ImportReporter& report,
                           ImportMode mode = ImportMode::kUnlessItExists);

  /// Up to `size` contacts of `selection` beyond `cursor`, in the order of their names. None is
  /// missing between the first and the last page, but a search for common words may look only at
  /// some thousand contacts for a page and stop before it is full.
  ContactPage ListContacts(const Selection& selection, const Cursor& cursor, std::size_t size);

  /// Up to `size` letters beyond `cursor`; fewer where many names begin with no letter.
  LetterPage ListLetters(const Cursor& cursor, std::size_t size);

  /// The contact of that id, if there is one, as far as pages show it.
  std::optional<Contact> FindContact(long long id);

  /// The text of the notice `name`, as far as pages show it; empty if there is none.
  std::string FindNotice(const std::string& name);

  /// How many contacts there are. Takes some tenths of a second for a million.
  ContactCounts CountContacts();

  /// Indexes some of the contacts that other programs have written.
  /// @throws DatabaseUnavailable also when the database is read-only for this program; the message
  /// is then the same each time.
  /// @return whether more of them are pending.
  bool IndexPending();

  /// Makes the query of another thread fail. Callable from any thread; never waits.
  void Interrupt() noexcept;

 private:
  struct Opened;

  template <typename Result>
  Result Run(const std::function<Result(Opened&)>& query);
  template <typename Result>
  Result RunUnlessInterrupted(const std::function<Result(Opened&)>& query);
  template <typename Result, typename Use>
  Result DisconnectOnFailure(const Use& use);
  std::optional<Differences> ImportIntoNewFile(const std::vector<Contact>& contacts,
                                               ImportMode mode, const ImportReporter& report);
  Differences OpenOrUpgrade(const std::vector<Contact>& contacts, ImportMode mode,
                            const ImportReporter& report);
  void Connect(const std::string& path);
  void Disconnect();
  bool IsConnected();
  std::string Identity(const std::string& path) const;

  std::string database;
  const Dialect& dialect;
  std::mutex mutex;  // of the pointer, against Interrupt
  std::unique_ptr<Opened> opened;
  std::atomic<bool> isInterrupted = false;
};

}  // namespace phonebook
