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

std::string Pending(const std::string& columns, const std::string& from) {
  return "SELECT id, " + columns + " FROM " + from + " ORDER BY id LIMIT " +
         std::to_string(kMaxPending);
}
std::string PendingChanged() {
  std::string columns = "id, COALESCE(collation_key, ''), COALESCE(all_keys, '')";
  for (const auto& column : kColumns) {  // as far as it counts; an empty blob makes NULL
    columns += ", COALESCE(substr(" + std::string(column.name) + ", 1, " +
               std::to_string(kMaxKeyCharacters) + "), '')";
  }
  return Pending(columns, "contacts WHERE is_indexed = FALSE");
}
std::string PendingRemoved() {
  std::string columns = "COALESCE(contact, 0), COALESCE(collation_key, ''), COALESCE(all_keys, '')";
  for (std::size_t i = 0; i < kColumns.size(); ++i) columns += ", ''";
  return Pending(columns, "removed_contacts");
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
      findRemoved(session, PendingRemoved()),
      findChanged(session, PendingChanged()),
      lockRemoved(session, PendingRemoved() + dialect.lockRows),
      lockChanged(session, PendingChanged() + dialect.lockRows),
      deleteKey((session.prepare << "DELETE FROM search_keys WHERE key = :key"
                                    " AND collation_key = :collation_key AND contact = :contact",
                 soci::use(key), soci::use(row.collationKey), soci::use(row.contact))),
      insertKey((session.prepare << "INSERT INTO search_keys"
                                    " (key, collation_key, contact, all_keys)"
                                    " VALUES (:key, :collation_key, :contact, :all_keys)"
                                    " ON CONFLICT (key, collation_key, contact)"
                                    " DO UPDATE SET all_keys = excluded.all_keys",
                 soci::use(key), soci::use(row.collationKey), soci::use(row.contact),
                 soci::use(row.allKeys))),
      markIndexed((session.prepare << "UPDATE contacts SET collation_key = :collation_key,"
                                      " all_keys = :all_keys, is_indexed = TRUE WHERE id = :id",
                   soci::use(row.collationKey), soci::use(row.allKeys), soci::use(row.id))),
      markPending((session.prepare << "UPDATE contacts SET is_indexed = FALSE WHERE id = :contact",
                   soci::use(row.contact))),
      deleteRemoved(
          (session.prepare << "DELETE FROM removed_contacts WHERE id = :id", soci::use(row.id))) {}

bool SearchIndexer::IndexPending(std::chrono::milliseconds limit) {
  if (findRemoved.Run().empty() && findChanged.Run().empty()) return false;
  const auto end = Clock::now() + limit;
  Transaction transaction(session, dialect);
  // Removed contacts first: others may reuse their ids.
  const bool hasMoreRemoved = ForEach(lockRemoved, &SearchIndexer::Remove, end);
  const bool hasMoreChanged = ForEach(lockChanged, &SearchIndexer::Index, end);
  transaction.Commit();
  return hasMoreRemoved || hasMoreChanged;
}

bool SearchIndexer::ForEach(PendingQuery& pending,
                            void (SearchIndexer::*work)(const PendingContact&),
                            Clock::time_point end) {
  const auto rows = pending.Run();
  for (const auto& pendingRow : rows) {
    if (Clock::now() > end) return true;
    (this->*work)(pendingRow);
  }
  return rows.size() == kMaxPending;
}

void SearchIndexer::Remove(const PendingContact& removed) {
  row = removed;
  markPending.execute(true);  // a contact that reuses the id, and may have some of the keys
  ForSearchKeys(deleteKey);
  deleteRemoved.execute(true);
}

void SearchIndexer::Index(const PendingContact& changed) {
  row = changed;
  ForSearchKeys(deleteKey);
  row.collationKey = CollationKey(row.text.name);
  row.allKeys = AllKeys(row.text);
  markIndexed.execute(true);
  ForSearchKeys(insertKey);
}

void SearchIndexer::ForSearchKeys(soci::statement& statement) {
  for (auto& searchKey : SearchKeys(row.allKeys, row.collationKey)) {
    key = std::move(searchKey);
    statement.execute(true);
  }
}

}  // namespace phonebook
