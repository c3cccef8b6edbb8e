#include "phonebook/database/store.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <exception>
#include <future>
#include <regex>
#include <utility>

#include "phonebook/database/connection.h"
#include "phonebook/database/new_file.h"
#include "phonebook/database/queries.h"
#include "phonebook/database/schema.h"
#include "phonebook/database/search_index.h"

namespace phonebook {

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kSampleNotices =
    "INSERT INTO notices (name, text) VALUES"
    " ('message', 'Lunch today: soup & bread.\nThe canteen is open from 11:30 to 14:00.'),"
    " ('alert', 'Fire drill at noon. Please use the stairs.')";

// Refuses what is neither a path nor a URI of PostgreSQL, without repeating what may be a password.
void ExpectPath(const std::string& database) {
  const std::regex others("^$|^[A-Za-z0-9+.-]+://|password=");
  if (!std::regex_search(database, others)) return;
  throw std::runtime_error(
      "the database must be the path of a file, or a URI that begins with postgresql://");
}

void Upgrade(DatabaseConnection& connection, int version) {
  try {
    UpgradeSchema(connection.session, connection.dialect, version);
  } catch (const soci::soci_error& error) {
    if (IsDamaged(error)) throw;
    throw std::runtime_error("the database has version " + std::to_string(version) +
                             " and can't be upgraded to version " + std::to_string(kSchemaVersion) +
                             ": " + MessageOf(error));
  }
}

// Tries all statements: a database may have the version, and yet not all of its columns. Those of
// the indexer are only prepared, as a database is served, too, to a role that may not write.
void Validate(DatabaseConnection& connection) {
  ValidateTriggersAndIndexes(connection.session, connection.dialect);
  try {
    Queries(connection.session, connection.dialect).RunAll();
    SearchIndexer(connection.session, connection.dialect);
  } catch (const soci::soci_error& error) {
    if (IsDamaged(error)) throw;
    throw std::runtime_error("the database is not a phone book of version " +
                             std::to_string(kSchemaVersion) + ": " + MessageOf(error));
  }
}

// Begins to write, unless `report` stops a wait for others that write.
void AwaitTransaction(std::optional<Transaction>& transaction, DatabaseConnection& connection,
                      const ImportReporter& report) {
  while (!transaction) {
    try {
      transaction.emplace(connection.session, connection.dialect);
    } catch (const soci::soci_error& error) {
      if (!IsLocked(error)) throw;
      report(0, 1);
    }
  }
}

Differences CreateOrUpgrade(DatabaseConnection& connection, const std::vector<Contact>& contacts,
                            ImportMode mode, const ImportReporter& report) {
  soci::session& session = connection.session;
  const Dialect& dialect = connection.dialect;
  std::optional<Transaction> transaction;
  AwaitTransaction(transaction, connection, report);
  if (!dialect.lockSchema.empty()) session << dialect.lockSchema;
  const int version = FindSchemaVersion(session, dialect);  // others may have been faster
  Differences differences;
  if (version == 0) {
    CreateTables(session, dialect);
  } else if (version < kSchemaVersion) {
    Upgrade(connection, version);
  }
  if (version == 0 || mode != ImportMode::kUnlessItExists) {
    differences = Import(session, dialect, contacts, mode, report);
  }
  if (version == 0) {
    for (const auto& index : dialect.indexes) {
      session << index.sql;
      report(contacts.size(), contacts.size());
    }
    if (mode == ImportMode::kUnlessItExists) session << kSampleNotices;
  }
  Validate(connection);
  transaction->Commit();
  if (version == 0) {
    for (const auto& sql : dialect.afterCreation) session << sql;
  }
  return differences;
}

}  // namespace

// What there is while the database is open.
struct Store::Opened {
  Opened(const std::string& path, std::string theIdentity)
      : identity(std::move(theIdentity)),
        connection(path),
        queries(connection.session, connection.dialect) {}
  ~Opened() { connection.Abandon(); }
  Opened(const Opened&) = delete;
  Opened& operator=(const Opened&) = delete;

  const std::string identity;
  Clock::time_point seen = Clock::now();  // when the database had this identity
  DatabaseConnection connection;
  Queries queries;
  std::optional<SearchIndexer> indexer;
};

Store::Store(std::string theDatabase)
    : database(std::move(theDatabase)), dialect(DialectOf(database)) {}

Store::~Store() = default;

template <typename Result>
Result Store::Run(const std::function<Result(Opened&)>& query) {
  isInterrupted = false;
  return RunUnlessInterrupted(query);
}

template <typename Result>
Result Store::RunUnlessInterrupted(const std::function<Result(Opened&)>& query) {
  return DisconnectOnFailure<Result>([&] {
    const bool wasConnected = IsConnected();
    if (!wasConnected) Connect(database);
    try {
      return query(*opened);
    } catch (const soci::soci_error&) {
      if (!wasConnected || isInterrupted || opened->connection.session.is_connected()) throw;
    }
    Connect(database);  // to a server that was restarted since the last query
    return query(*opened);
  });
}

template <typename Result, typename Use>
Result Store::DisconnectOnFailure(const Use& use) try {
  return use();
} catch (const soci::soci_error& error) {
  Disconnect();
  throw DatabaseUnavailable((dialect.isPostgreSQL ? "" : database + ": ") + MessageOf(error));
} catch (...) {
  Disconnect();
  throw;
}

Differences Store::CreateOrOpen(const std::vector<Contact>& contacts, const ImportReporter& report,
                                ImportMode mode) {
  try {
    std::optional<Differences> created;
    if (!dialect.isPostgreSQL) {
      ExpectPath(database);
      if (IsDatabaseMissing(database)) created = ImportIntoNewFile(contacts, mode, report);
    }
    if (created) mode = ImportMode::kUnlessItExists;
    const auto differences = OpenOrUpgrade(contacts, mode, report);
    return created.value_or(differences);
  } catch (const std::exception&) {
    report(0, 1);
    if (isInterrupted) throw DatabaseUnavailable("the database takes too long to answer");
    throw;
  }
}

// Nothing is under the name of the database before it is whole and closed: a half one would be
// opened by others, and its journal would be applied to the next file of that name.
// Returns nothing when another process was faster.
std::optional<Differences> Store::ImportIntoNewFile(const std::vector<Contact>& contacts,
                                                    ImportMode mode, const ImportReporter& report) {
  NewFile file(database);
  const auto differences = DisconnectOnFailure<Differences>([&] {
    Connect(file.Path());
    opened->connection.session << "PRAGMA journal_mode = MEMORY";  // nobody else reads the file
    return CreateOrUpgrade(opened->connection, contacts, mode, report);
  });
  Disconnect();
  report(1, 1);
  return file.Publish() ? std::optional(differences) : std::nullopt;
}

Differences Store::OpenOrUpgrade(const std::vector<Contact>& contacts, ImportMode mode,
                                 const ImportReporter& report) {
  // Nobody else ends a wait of the first connection.
  std::future<void> watchdog;
  std::promise<void> isOpening;  // ready once it is destroyed
  watchdog = std::async(std::launch::async, [this, end = isOpening.get_future()] {
    constexpr std::chrono::seconds kTimeout(10);
    if (end.wait_for(kTimeout) == std::future_status::timeout) Interrupt();
  });
  return RunUnlessInterrupted<Differences>([&](Opened& store) {
    DatabaseConnection& connection = store.connection;
    const int version = FindSchemaVersion(connection.session, connection.dialect);
    if (version == kSchemaVersion && mode == ImportMode::kUnlessItExists) {
      Validate(connection);
      return Differences();
    }
    isOpening = {};
    return CreateOrUpgrade(connection, contacts, mode, report);
  });
}

ContactPage Store::ListContacts(const Selection& selection, const Cursor& cursor,
                                std::size_t size) {
  const std::size_t oneMore = size + 1;  // which tells whether there are others beyond
  auto [rows, end] = Run<SearchResult>([&](Opened& store) -> SearchResult {
    if (!selection.words.empty()) return store.queries.Search(selection.words, cursor, oneMore);
    return {store.queries.ListByName(selection.prefix, cursor, oneMore), {}};
  });
  const bool hasMore = rows.size() > size || end;
  if (!cursor.isForward && !hasMore) return ListContacts(selection, {}, size);  // first and full
  if (rows.size() > size) rows.resize(size);
  if (!cursor.isForward) std::reverse(rows.begin(), rows.end());
  const bool hasPrevious = !cursor.isForward || !cursor.collationKey.empty();
  const bool hasNext = !cursor.isForward || hasMore;
  return {{hasPrevious, hasNext, std::move(end), cursor.isForward}, std::move(rows)};
}

LetterPage Store::ListLetters(const Cursor& cursor, std::size_t size) {
  constexpr int kMaxOthers = 50;  // names or characters that are no letters, one query each
  auto page = Run<LetterPage>([&](Opened& store) {
    LetterPage found{{!cursor.collationKey.empty(), false, {}, cursor.isForward}, {}};
    int others = 0;
    for (Cursor at = cursor;;) {
      // A step through the index: the first name at or beyond the last letter.
      auto next = store.queries.FindNext(at);
      if (!next) break;
      found.hasNext = found.letters.size() == size || others == kMaxOthers;
      if (found.hasNext) break;
      Letter letter = LetterOf(next->name, next->collationKey);
      at = {cursor.isForward, cursor.isForward ? EndOfPrefix(letter.key) : letter.key};
      found.end.reset();
      if (!letter.label.empty()) {
        found.letters.push_back(std::move(letter));
      } else if (++others == kMaxOthers) {
        found.end = std::move(next);
      }
    }
    return found;
  });
  if (!page.hasNext) page.end.reset();
  if (cursor.isForward) return page;
  if (page.letters.empty() && !page.end) return ListLetters({}, size);
  std::reverse(page.letters.begin(), page.letters.end());
  std::swap(page.hasPrevious, page.hasNext);
  return page;
}

std::optional<Contact> Store::FindContact(long long id) {
  return Run<std::optional<Contact>>([&](Opened& store) { return store.queries.FindContact(id); });
}

std::string Store::FindNotice(const std::string& name) {
  return Run<std::string>([&](Opened& store) { return store.queries.FindNotice(name); });
}

ContactCounts Store::CountContacts() {
  return Run<ContactCounts>([](Opened& store) {
    ContactCounts counts;
    store.connection.session << "SELECT count(*) FROM contacts", soci::into(counts.all);
    store.connection.session << "SELECT count(*) FROM contacts WHERE is_indexed = FALSE",
        soci::into(counts.pending);
    return counts;
  });
}

bool Store::IndexPending() {
  constexpr std::chrono::seconds kLimit(1);  // however far away the database is
  std::string failure;
  const bool hasMore = Run<bool>([&](Opened& store) {
    auto& indexer = store.indexer;
    try {
      if (!indexer && !store.connection.IsWritable()) {
        failure = "the database is read-only for this ";
        failure += dialect.isPostgreSQL ? "role" : "user";
        return false;
      }
      if (!indexer) indexer.emplace(store.connection.session, store.connection.dialect);
      return indexer->IndexPending(kLimit);
    } catch (const soci::soci_error& error) {
      if (!IsLocked(error) && !IsFull(error)) throw;
      indexer.reset();
      // The connection stays: the last one to close would remove files that reading takes, and for
      // which there may be no room later.
      failure = MessageOf(error);
      return false;
    }
  });
  if (!failure.empty()) throw DatabaseUnavailable(failure);
  return hasMore;
}

void Store::Interrupt() noexcept {
  isInterrupted = true;  // before the lock: either this sees the connection, or Connect sees this
  const std::lock_guard lock(mutex);
  if (opened != nullptr) opened->connection.Interrupt();
}

void Store::Connect(const std::string& path) {
  Disconnect();
  auto connecting = std::make_unique<Opened>(path, Identity(path));
  {
    const std::lock_guard lock(mutex);
    opened = std::move(connecting);
  }
  if (isInterrupted) throw DatabaseUnavailable("the connection to the database is interrupted");
  opened->connection.Open();
}

void Store::Disconnect() {
  std::unique_ptr<Opened> ended;  // without the lock, for which Interrupt would wait
  const std::lock_guard lock(mutex);
  ended = std::exchange(opened, nullptr);
}

// Whether there is a connection to what is the database now, or was a moment ago.
bool Store::IsConnected() {
  constexpr std::chrono::milliseconds kMoment(100);
  if (opened == nullptr) return false;
  const auto now = Clock::now();
  if (now - opened->seen < kMoment) return true;
  opened->seen = now;
  return opened->identity == Identity(database);
}

// An SQLite connection goes on reading a file that was removed or replaced, and would create one
// that is missing.
std::string Store::Identity(const std::string& path) const {
  if (dialect.isPostgreSQL) return database;
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) {
    throw DatabaseUnavailable(path + ": " + std::strerror(errno));
  }
  std::string identity = std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
  // SQLite doesn't look for changes in a file that it can't write, nor for a log that is new.
  if (access(path.c_str(), W_OK) != 0) {
    identity += ":" + std::to_string(status.st_mtime) + (HasLog(path) ? ":wal" : "");
  }
  return identity;
}

}  // namespace phonebook
