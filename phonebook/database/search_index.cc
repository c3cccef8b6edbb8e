#include "phonebook/database/search_index.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <utility>

#include "phonebook/collation.h"
#include "phonebook/database/connection.h"

namespace phonebook {

namespace {

constexpr std::size_t kMaxPending = 500;  // in one transaction

std::string Pending(const std::string& columns, const std::string& from, std::size_t size) {
  return "SELECT id, " + columns + " FROM " + from + " ORDER BY id LIMIT " + std::to_string(size);
}
std::string PendingChanged(std::size_t size) {
  std::string columns = "id, COALESCE(collation_key, ''), COALESCE(all_keys, '')";
  for (const auto& column : kColumns) {  // as far as it counts; an empty blob makes NULL
    columns += ", COALESCE(substr(" + std::string(column.name) + ", 1, " +
               std::to_string(kMaxKeyCharacters) + "), '')";
  }
  return Pending(columns, "contacts WHERE is_indexed = FALSE", size);
}
std::string PendingRemoved(std::size_t size) {
  std::string columns = "COALESCE(contact, 0), COALESCE(collation_key, ''), COALESCE(all_keys, '')";
  for (std::size_t i = 0; i < kColumns.size(); ++i) columns += ", ''";
  return Pending(columns, "removed_contacts", size);
}

constexpr BulkStatement::Field kId = {"id", "BIGINT"};
constexpr BulkStatement::Field kContact = {"contact", "BIGINT"};
constexpr BulkStatement::Field kKey = {"key", "TEXT"};
constexpr BulkStatement::Field kCollationKey = {"collation_key", "TEXT"};
constexpr BulkStatement::Field kAllKeys = {"all_keys", "TEXT"};

using Rows = BulkStatement::Rows;

std::string DeleteKeysSQL(const Rows& rows) {
  return "DELETE FROM search_keys WHERE (key, collation_key, contact) " + rows.isAmong;
}
std::string InsertKeysSQL(const Rows& rows) {
  return "INSERT INTO search_keys " + rows.values +
         " ON CONFLICT (key, collation_key, contact) DO UPDATE SET all_keys = excluded.all_keys";
}
std::string MarkIndexedSQL(const Rows& rows) {
  return "UPDATE contacts SET collation_key = r.collation_key, all_keys = r.all_keys,"
         " is_indexed = TRUE FROM " +
         rows.table + " WHERE contacts.id = r.id";
}
std::string MarkPendingSQL(const Rows& rows) {
  return "UPDATE contacts SET is_indexed = FALSE WHERE (id) " + rows.isAmong;
}
std::string DeleteRemovedSQL(const Rows& rows) {
  return "DELETE FROM removed_contacts WHERE (id) " + rows.isAmong;
}

// Those of `allKeys` with which the collation key doesn't begin: an index on it finds the others.
std::vector<std::string> SearchKeys(const std::string& allKeys, const std::string& collationKey) {
  constexpr std::size_t kMaxKeys = 2000;  // more than a contact has; other programs may write any
  std::vector<std::string> keys;
  for (std::size_t begin = 0; begin < allKeys.size() && keys.size() < kMaxKeys;) {
    const std::size_t end = std::min(allKeys.find(kWordMark, begin + 1), allKeys.size());
    std::string key = allKeys.substr(begin + 1, end - begin - 1);
    if (collationKey.compare(0, key.size(), key) != 0) keys.push_back(std::move(key));
    begin = end;
  }
  return keys;
}

}  // namespace

std::string AllKeys(const Contact& contact) {
  std::set<std::string> keys;
  for (const auto& column : kColumns) {
    if (column.isSearched) keys.merge(WordKeys(contact.*column.field));
  }
  std::string allKeys;
  for (const auto& key : keys) allKeys += kWordMark + key;
  return allKeys;
}

SearchIndexer::PendingQuery::PendingQuery(soci::session& session, const std::string& sql)
    : statement(session) {
  statement.exchange(soci::into(row.id));
  statement.exchange(soci::into(row.contact));
  statement.exchange(soci::into(row.collationKey));
  statement.exchange(soci::into(row.allKeys));
  for (const auto& column : kColumns) statement.exchange(soci::into(row.text.*column.field));
  Prepare(statement, sql);
}

std::vector<PendingContact> SearchIndexer::PendingQuery::Run() {
  std::vector<PendingContact> rows;
  statement.execute();
  while (statement.fetch()) rows.push_back(row);
  return rows;
}

SearchIndexer::SearchIndexer(soci::session& theSession, const Dialect& theDialect)
    : session(theSession),
      dialect(theDialect),
      findRemoved(session, PendingRemoved(1)),
      findChanged(session, PendingChanged(1)),
      lockRemoved(session, PendingRemoved(kMaxPending) + dialect.lockRows),
      lockChanged(session, PendingChanged(kMaxPending) + dialect.lockRows),
      deleteKeys(session, dialect, {kKey, kCollationKey, kContact}, DeleteKeysSQL),
      insertKeys(session, dialect, {kKey, kCollationKey, kContact, kAllKeys}, InsertKeysSQL),
      markIndexed(session, dialect, {kId, kCollationKey, kAllKeys}, MarkIndexedSQL),
      markPending(session, dialect, {kId}, MarkPendingSQL),
      deleteRemoved(session, dialect, {kId}, DeleteRemovedSQL) {}

bool SearchIndexer::IndexPending(std::chrono::milliseconds limit) {
  if (findRemoved.Run().empty() && findChanged.Run().empty()) return false;
  const auto end = Clock::now() + limit;
  Transaction transaction(session, dialect);
  // Locks the table before rows: an import, which has locked it, would wait for these rows.
  session << "UPDATE contacts SET is_indexed = FALSE WHERE FALSE";
  // Removed contacts first: others may reuse their ids.
  const bool hasMoreRemoved = ForEach(lockRemoved, &SearchIndexer::Remove, end);
  const bool hasMoreChanged = ForEach(lockChanged, &SearchIndexer::Index, end);
  transaction.Commit();
  return hasMoreRemoved || hasMoreChanged;
}

bool SearchIndexer::ForEach(PendingQuery& pending,
                            void (SearchIndexer::*work)(const PendingContact&),
                            Clock::time_point end) {
  constexpr std::size_t kMaxKeys = 1000;  // between two looks at the clock
  const auto rows = pending.Run();
  bool isInTime = true;
  for (auto row = rows.begin(); row != rows.end() && isInTime; ++row) {
    (this->*work)(*row);
    if (deleteKeys.Size() + insertKeys.Size() >= kMaxKeys) Flush();
    isInTime = Clock::now() <= end;
  }
  Flush();
  return !isInTime || rows.size() == kMaxPending;
}

void SearchIndexer::Remove(const PendingContact& removed) {
  // A contact that reuses the id, and may have some of the keys.
  markPending.Add({std::to_string(removed.contact)});
  DeleteKeys(removed);
  deleteRemoved.Add({std::to_string(removed.id)});
}

void SearchIndexer::Index(const PendingContact& changed) {
  DeleteKeys(changed);
  const std::string id = std::to_string(changed.id);
  const std::string collationKey = CollationKey(changed.text.name);
  const std::string allKeys = AllKeys(changed.text);
  markIndexed.Add({id, collationKey, allKeys});
  for (const auto& key : SearchKeys(allKeys, collationKey)) {
    insertKeys.Add({key, collationKey, id, allKeys});
  }
}

void SearchIndexer::DeleteKeys(const PendingContact& old) {
  for (const auto& key : SearchKeys(old.allKeys, old.collationKey)) {
    deleteKeys.Add({key, old.collationKey, std::to_string(old.contact)});
  }
}

// A contact may have the same key before and after: old keys go first.
void SearchIndexer::Flush() {
  for (auto* statement : {&markPending, &deleteKeys, &deleteRemoved, &markIndexed, &insertKeys}) {
    statement->Flush();
  }
}

}  // namespace phonebook
