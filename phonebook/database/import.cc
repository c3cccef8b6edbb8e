#include "phonebook/database/import.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "phonebook/collation.h"
#include "phonebook/database/bulk_statement.h"
#include "phonebook/database/connection.h"
#include "phonebook/database/search_index.h"

namespace phonebook {

namespace {

// Calls the reporter after every so many small steps.
class Progress {
 public:
  explicit Progress(const ImportReporter& theReport) : report(theReport) {}
  void Step() {
    constexpr std::size_t kStepsOfReport = 10000;
    if (++steps % kStepsOfReport == 0) report(done, total);
  }

  std::size_t done = 0;
  std::size_t total = 1;

 private:
  const ImportReporter& report;
  std::size_t steps = 0;
};

struct StoredContact {
  long long id = 0;
  Contact contact;
  std::size_t hashOfKeys = 0;  // of its index
  bool isMatched = false;
};

// A contact as it will be.
struct Row {
  Contact contact;
  std::string collationKey, allKeys;
  StoredContact* stored = nullptr;
  long long id = 0;
  bool isWritten = true;
};

std::size_t HashOf(const std::string& keys) { return std::hash<std::string>()(keys); }

bool HasOtherText(const Row& row) {
  return std::any_of(kColumns.begin(), kColumns.end(), [&](const Column& column) {
    return row.contact.*column.field != row.stored->contact.*column.field;
  });
}

std::vector<StoredContact> ReadStored(soci::session& session, Progress& progress) {
  StoredContact row;
  std::string keys, columns;
  soci::statement statement(session);
  statement.exchange(soci::into(row.id));
  statement.exchange(soci::into(keys));
  for (const auto& column : kColumns) {
    statement.exchange(soci::into(row.contact.*column.field));
    columns += ", COALESCE(" + std::string(column.name) + ", '')";
  }
  Prepare(
      statement,
      "SELECT id, COALESCE(CASE WHEN is_indexed = TRUE THEN collation_key || all_keys END, '')" +
          columns + " FROM contacts ORDER BY id");
  std::vector<StoredContact> rows;
  statement.execute();
  while (statement.fetch()) {
    row.hashOfKeys = HashOf(keys);
    rows.push_back(row);
    progress.Step();
  }
  return rows;
}

// In the order of their names, in which a page reads them.
std::vector<Row> MakeRows(std::vector<Contact> contacts, Progress& progress) {
  std::vector<Row> rows;
  rows.reserve(contacts.size());
  for (auto& contact : contacts) {
    rows.push_back({{}, CollationKey(contact.name), AllKeys(contact)});
    rows.back().contact = std::move(contact);
    progress.Step();
  }
  std::stable_sort(rows.begin(), rows.end(), [&](const Row& a, const Row& b) {
    progress.Step();
    return a.collationKey < b.collationKey;
  });
  return rows;
}

// Matches contacts for which `identity` is the same, and not empty.
using Identity = std::string (*)(const Contact&);
void MatchBy(Identity identity, bool withKeys, std::vector<StoredContact>& stored,
             std::vector<Row>& rows, Progress& progress) {
  std::multimap<std::string, StoredContact*> others;
  for (auto& one : stored) {
    const bool isCandidate = !one.isMatched && (withKeys || one.contact.key.empty());
    if (isCandidate) others.emplace(identity(one.contact), &one);
    progress.Step();
  }
  others.erase("");
  if (others.empty()) return;
  for (auto& row : rows) {
    progress.Step();
    if (row.stored != nullptr) continue;
    const auto found = others.find(identity(row.contact));
    if (found == others.end()) continue;
    row.stored = found->second;
    row.stored->isMatched = true;
    others.erase(found);
  }
}

void Match(std::vector<StoredContact>& stored, std::vector<Row>& rows, Progress& progress) {
  const bool haveKeys = std::any_of(rows.begin(), rows.end(),
                                    [](const Row& row) { return !row.contact.key.empty(); });
  MatchBy([](const Contact& c) { return c.key; }, true, stored, rows, progress);
  // What two contacts have in common that are the same; the first ones count most.
  constexpr Identity kIdentities[] = {
      [](const Contact& c) { return c.name + '\0' + c.telephone + '\0' + c.department; },
      [](const Contact& c) { return c.name + '\0' + c.telephone; },
      [](const Contact& c) { return c.name + '\0' + c.department; },
      [](const Contact& c) { return c.name; },
  };
  // Where contacts have keys, a stored one with another key is somebody else.
  for (const Identity identity : kIdentities) MatchBy(identity, !haveKeys, stored, rows, progress);
  std::unordered_set<long long> used;
  for (const auto& one : stored) used.insert(one.id);
  auto last = static_cast<long long>(stored.size());
  for (auto& row : rows) {
    if (row.stored == nullptr) {
      do row.id = ++last;
      while (used.count(row.id) > 0);
    } else {
      row.id = row.stored->id;
      if (!haveKeys) row.contact.key = row.stored->contact.key;
    }
  }
}

Differences Compare(const std::vector<StoredContact>& stored, std::vector<Row>& rows) {
  Differences differences;
  for (auto& row : rows) {
    if (row.stored == nullptr) {
      ++differences.added;
      continue;
    }
    const bool isChanged = HasOtherText(row);
    if (isChanged) ++differences.changed;
    row.isWritten = isChanged || row.stored->hashOfKeys != HashOf(row.collationKey + row.allKeys);
  }
  differences.removed = stored.size() + differences.added - rows.size();
  return differences;
}

void WriteContacts(soci::session& session, const Dialect& dialect,
                   const std::vector<StoredContact>& stored, const std::vector<Row>& rows,
                   Progress& progress) {
  using Rows = BulkStatement::Rows;
  std::vector<BulkStatement::Field> fields = {{"id", "BIGINT"}};
  BulkStatement remove(session, dialect, fields, [](const Rows& removed) {
    return "DELETE FROM contacts WHERE (id) " + removed.isAmong;
  });
  std::string changes = "is_indexed = TRUE";
  const auto addField = [&](const char* name) {
    changes += std::string(", ") + name + " = r." + name;
    fields.push_back({name, "TEXT"});
  };
  for (const auto& column : kColumns) addField(column.name);
  addField("collation_key");
  addField("all_keys");
  BulkStatement update(session, dialect, fields, [&](const Rows& changed) {
    return "UPDATE contacts SET " + changes + " FROM " + changed.table +
           " WHERE contacts.id = r.id";
  });
  fields.push_back({"is_indexed", "BOOLEAN"});
  BulkInsert insert(session, dialect, "contacts", fields);

  for (const auto& one : stored) {
    if (!one.isMatched) remove.Add({std::to_string(one.id)});
  }
  for (const auto& row : rows) {
    ++progress.done;
    progress.Step();
    if (!row.isWritten) continue;
    const std::string id = std::to_string(row.id);
    std::vector<std::string_view> values = {id};
    for (const auto& column : kColumns) values.emplace_back(row.contact.*column.field);
    values.insert(values.end(), {row.collationKey, row.allKeys});
    if (row.stored != nullptr) {
      update.Add(values);
      continue;
    }
    values.emplace_back("1");
    insert.Add(values);
  }
  remove.Flush();
  update.Flush();
  insert.Flush();
}

// Search keys and the rows that they belong to, in the order of their index.
using SearchKeyRows = std::vector<std::pair<std::string, const Row*>>;
SearchKeyRows SortedSearchKeys(const std::vector<Row>& rows, Progress& progress) {
  SearchKeyRows keys;
  for (const auto& row : rows) {
    for (auto& key : SearchKeys(row.allKeys, row.collationKey)) {
      keys.emplace_back(std::move(key), &row);
    }
    progress.Step();
  }
  std::sort(keys.begin(), keys.end(), [&](const auto& a, const auto& b) {
    progress.Step();
    return a < b;
  });
  return keys;
}

// All anew: in the order of the index this takes less time than to find those of some contacts.
void WriteSearchKeys(soci::session& session, const Dialect& dialect, const SearchKeyRows& keys,
                     Progress& progress) {
  for (const char* table : {"search_keys", "removed_contacts"}) session << "DELETE FROM " << table;
  BulkInsert insert(
      session, dialect, "search_keys",
      {{"key", "TEXT"}, {"collation_key", "TEXT"}, {"contact", "BIGINT"}, {"all_keys", "TEXT"}});
  for (const auto& [key, row] : keys) {
    insert.Add({key, row->collationKey, std::to_string(row->id), row->allKeys});
    ++progress.done;
    progress.Step();
  }
  insert.Flush();
}

}  // namespace

Differences Import(soci::session& session, const Dialect& dialect, std::vector<Contact> contacts,
                   ImportMode mode, const ImportReporter& report) {
  Progress progress(report);
  for (const auto& sql : dialect.beforeImport) session << sql;
  auto stored = ReadStored(session, progress);
  auto rows = MakeRows(std::move(contacts), progress);
  Match(stored, rows, progress);
  const Differences differences = Compare(stored, rows);
  if (mode != ImportMode::kForce && differences.removed > stored.size() / 2) {
    throw std::runtime_error("this would remove " + std::to_string(differences.removed) + " of " +
                             std::to_string(stored.size()) + " contacts; --force does it");
  }
  const auto keys = SortedSearchKeys(rows, progress);
  progress.total = rows.size() + keys.size();
  WriteContacts(session, dialect, stored, rows, progress);
  const bool isAnyWritten =
      std::any_of(rows.begin(), rows.end(), [](auto& r) { return r.isWritten; });
  if (isAnyWritten || differences.removed > 0) WriteSearchKeys(session, dialect, keys, progress);
  for (const auto& sql : dialect.afterImport) {
    session << sql;
    report(progress.done, progress.total);
  }
  return differences;
}

}  // namespace phonebook
