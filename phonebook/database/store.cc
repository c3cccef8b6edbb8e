#include "phonebook/database/store.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <exception>
#include <filesystem>
#include <utility>

#include "phonebook/database/connection.h"
#include "phonebook/database/import.h"
#include "phonebook/database/queries.h"
#include "phonebook/database/schema.h"
#include "phonebook/database/search_index.h"

namespace phonebook {

namespace {

using Clock = std::chrono::steady_clock;

class Stopped {};

// Whether there was none.
bool CreateFile(const std::string& path) {
  const int created = open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
  if (created == -1 && errno != EEXIST) {
    throw DatabaseUnavailable(path + ": " + std::strerror(errno));
  }
  if (created != -1) close(created);
  return created != -1;
}

void Upgrade(DatabaseConnection& connection, int version) {
  try {
    UpgradeSchema(connection.session, connection.dialect, version);
  } catch (const soci::soci_error& error) {
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

void CreateOrUpgrade(DatabaseConnection& connection, const std::vector<Contact>& contacts,
                     const ImportReporter& report) {
  soci::session& session = connection.session;
  const Dialect& dialect = connection.dialect;
  std::optional<Transaction> transaction;
  AwaitTransaction(transaction, connection, report);
  if (!dialect.lockSchema.empty()) session << dialect.lockSchema;
  const int version = FindSchemaVersion(session, dialect);  // others may have been faster
  if (version == 0) {
    Import(session, dialect, contacts, report);
  } else if (version < kSchemaVersion) {
    Upgrade(connection, version);
  }
  Validate(connection);
  transaction->Commit();
  if (version > 0) return;
  for (const auto& sql : dialect.afterCommit) session << sql;
}

}  // namespace

// What there is while the database is open.
struct Store::Opened {
  Opened(const std::string& database, std::string theIdentity)
      : identity(std::move(theIdentity)),
        connection(database),
        queries(connection.session, connection.dialect) {}

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
  try {
    const bool wasConnected = IsConnected();
    if (!wasConnected) Connect();
    try {
      return query(*opened);
    } catch (const soci::soci_error&) {
      if (!wasConnected || isInterrupted || opened->connection.session.is_connected()) throw;
    }
    Connect();  // to a server that was restarted since the last query
    return query(*opened);
  } catch (const soci::soci_error& error) {
    Disconnect();
    throw DatabaseUnavailable(MessageOf(error));
  } catch (...) {
    Disconnect();
    throw;
  }
}

bool Store::CreateOrOpen(const std::vector<Contact>& contacts, const ImportProgress& progress) {
  const bool isNewFile = !dialect.isPostgreSQL && CreateFile(database);
  const ImportReporter report = [&](std::size_t done, std::size_t total) {
    if (!progress(done, total)) throw Stopped();
  };
  bool isDone = false;
  std::exception_ptr failure;
  try {
    isDone = Run<bool>([&](Opened& store) {
      DatabaseConnection& connection = store.connection;
      if (FindSchemaVersion(connection.session, connection.dialect) == kSchemaVersion) {
        Validate(connection);
      } else {
        CreateOrUpgrade(connection, contacts, report);
      }
      return true;
    });
  } catch (const Stopped&) {
  } catch (const std::exception&) {
    failure = std::current_exception();
  }
  if (isNewFile && !isDone) std::filesystem::remove(database);
  if (failure != nullptr && progress(0, 1)) std::rethrow_exception(failure);
  return isDone;
}

ContactPage Store::ListContacts(const Selection& selection, const Cursor& cursor,
                                std::size_t size) {
  const std::size_t oneMore = size + 1;  // which tells whether there are others beyond
  auto rows = Run<std::vector<ListedContact>>([&](Opened& store) {
    return selection.words.empty() ? store.queries.ListByName(selection.prefix, cursor, oneMore)
                                   : store.queries.Search(selection.words, cursor, oneMore);
  });
  const bool hasMore = rows.size() > size;
  if (hasMore) rows.resize(size);
  if (cursor.isForward) return {std::move(rows), !cursor.collationKey.empty(), hasMore};
  if (!hasMore) return ListContacts(selection, {}, size);  // the first page, and full
  std::reverse(rows.begin(), rows.end());
  return {std::move(rows), true, true};
}

LetterPage Store::ListLetters(const Cursor& cursor, std::size_t size) {
  return Run<LetterPage>([&](Opened& store) {
    LetterPage found;
    found.hasPrevious = !cursor.collationKey.empty();
    for (std::string key = cursor.collationKey;;) {
      // A step through the index: the first name at or beyond the last letter.
      const auto names = store.queries.ListByName("", {cursor.isForward, key, 0}, 1);
      if (names.empty()) break;
      found.hasNext = found.letters.size() == size;
      if (found.hasNext) break;
      Letter letter = LetterOf(names.front().name);
      key = cursor.isForward ? EndOfPrefix(letter.key) : letter.key;
      if (!letter.label.empty()) found.letters.push_back(std::move(letter));
    }
    if (!cursor.isForward) {
      std::reverse(found.letters.begin(), found.letters.end());
      std::swap(found.hasPrevious, found.hasNext);
    }
    return found;
  });
}

std::optional<Contact> Store::FindContact(long long id) {
  return Run<std::optional<Contact>>([&](Opened& store) { return store.queries.FindContact(id); });
}

std::string Store::FindNotice(const std::string& name) {
  return Run<std::string>(
      [&](Opened& store) { return store.queries.FindNotice(name).value_or(""); });
}

bool Store::IndexPending() {
  constexpr std::chrono::seconds kLimit(1);  // however far away the database is
  return Run<bool>([&](Opened& store) {
    auto& indexer = store.indexer;
    if (!indexer) indexer.emplace(store.connection.session, store.connection.dialect);
    return indexer->IndexPending(kLimit);
  });
}

void Store::Interrupt() noexcept {
  const std::unique_lock lock(mutex, std::try_to_lock);
  if (!lock || opened == nullptr) return;
  isInterrupted = true;
  opened->connection.Interrupt();
}

void Store::Connect() {
  std::string identity = Identity();
  const std::lock_guard lock(mutex);
  opened = nullptr;
  opened = std::make_unique<Opened>(database, std::move(identity));
}

void Store::Disconnect() {
  const std::lock_guard lock(mutex);
  opened = nullptr;
}

// Whether there is a connection to what is the database now, or was a moment ago.
bool Store::IsConnected() {
  constexpr std::chrono::milliseconds kMoment(100);
  if (opened == nullptr) return false;
  const auto now = Clock::now();
  if (now - opened->seen < kMoment) return true;
  opened->seen = now;
  return opened->identity == Identity();
}

// An SQLite connection goes on reading a file that was removed or replaced, and would create one
// that is missing.
std::string Store::Identity() const {
  if (dialect.isPostgreSQL) return database;
  struct stat status {};
  if (stat(database.c_str(), &status) != 0) {
    throw DatabaseUnavailable(database + ": " + std::strerror(errno));
  }
  std::string identity = std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
  // SQLite doesn't look for changes in a file that it can't write.
  if (access(database.c_str(), W_OK) != 0) identity += ":" + std::to_string(status.st_mtime);
  return identity;
}

}  // namespace phonebook
