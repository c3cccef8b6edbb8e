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

constexpr std::size_t kStepsOfReport = 10000;

// Called for each small step.
using Step = std::function<void()>;

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

std::vector<StoredContact> ReadStored(soci::session& session, const Step& step) {
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
    step();
  }
  return rows;
}

// In the order of their names, in which a page reads them.
std::vector<Row> MakeRows(std::vector<Contact> contacts, const Step& step) {
  std::vector<Row> rows;
  rows.reserve(contacts.size());
  for (auto& contact : contacts) {
    rows.push_back({{}, CollationKey(contact.name), AllKeys(contact)});
    rows.back().contact = std::move(contact);
    step();
  }
  std::stable_sort(rows.begin(), rows.end(), [&](const Row& a, const Row& b) {
    step();
    return a.collationKey < b.collationKey;
  });
  return rows;
}

// Matches contacts for which `identity` is the same, and not empty.
using Identity = std::string (*)(const Contact&);
void MatchBy(Identity identity, bool withKeys, std::vector<StoredContact>& stored,
             std::vector<Row>& rows, const Step& step) {
  std::multimap<std::string, StoredContact*> others;
  for (auto& one : stored) {
    const bool isCandidate = !one.isMatched && (withKeys || one.contact.key.empty());
    if (isCandidate) others.emplace(identity(one.contact), &one);
    step();
  }
  others.erase("");
  if (others.empty()) return;
  for (auto& row : rows) {
    step();
    if (row.stored != nullptr) continue;
    const auto found = others.find(identity(row.contact));
    if (found == others.end()) continue;
    row.stored = found->second;
    row.stored->isMatched = true;
    others.erase(found);
  }
}

void Match(std::vector<StoredContact>& stored, std::vector<Row>& rows, const Step& step) {
  const bool haveKeys = std::any_of(rows.begin(), rows.end(),
                                    [](const Row& row) { return !row.contact.key.empty(); });
  MatchBy([](const Contact& c) { return c.key; }, true, stored, rows, step);
  // What two contacts have in common that are the same; the first ones count most.
  constexpr Identity kIdentities[] = {
      [](const Contact& c) { return c.name + '\0' + c.telephone + '\0' + c.department; },
      [](const Contact& c) { return c.name + '\0' + c.telephone; },
      [](const Contact& c) { return c.name + '\0' + c.department; },
      [](const Contact& c) { return c.name; },
  };
  // Where contacts have keys, a stored one with another key is somebody else.
  for (const Identity identity : kIdentities) MatchBy(identity, !haveKeys, stored, rows, step);
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
    const bool isChanged = std::any_of(kColumns.begin(), kColumns.end(), [&](const auto& column) {
      return row.contact.*column.field != row.stored->contact.*column.field;
    });
    if (isChanged) ++differences.changed;
    row.isWritten = isChanged || row.stored->hashOfKeys != HashOf(row.collationKey + row.allKeys);
  }
  differences.removed = stored.size() + differences.added - rows.size();
  return differences;
}

void WriteContacts(soci::session& session, const Dialect& dialect,
                   const std::vector<StoredContact>& stored, const std::vector<Row>& rows,
                   const ImportReporter& report) {
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
  BulkStatement insert(session, dialect, fields,
                       [](const Rows& added) { return "INSERT INTO contacts " + added.values; });

  for (const auto& one : stored) {
    if (!one.isMatched) remove.Add({std::to_string(one.id)});
  }
  std::size_t done = 0;
  for (const auto& row : rows) {
    // The search keys take as long.
    if (++done % kStepsOfReport == 0) report(done, 2 * rows.size());
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

// All anew: in the order of the index this takes less time than to find those of some contacts.
void WriteSearchKeys(soci::session& session, const Dialect& dialect) {
  for (const char* table : {"search_keys", "removed_contacts"}) session << "DELETE FROM " << table;
  session << "INSERT INTO search_keys (key, collation_key, contact, all_keys)"
             " SELECT w.value, collation_key, contacts.id, all_keys FROM contacts, "
          << dialect.wordKeys
          << " WHERE substr(collation_key, 1, length(w.value)) <> w.value"
             " ORDER BY w.value, collation_key, contacts.id";
}

}  // namespace

Differences Import(soci::session& session, const Dialect& dialect, std::vector<Contact> contacts,
                   ImportMode mode, const ImportReporter& report) {
  std::size_t steps = 0;
  const Step step = [&] {
    if (++steps % kStepsOfReport == 0) report(0, 1);
  };
  for (const auto& sql : dialect.beforeImport) session << sql;
  auto stored = ReadStored(session, step);
  auto rows = MakeRows(std::move(contacts), step);
  Match(stored, rows, step);
  const Differences differences = Compare(stored, rows);
  if (mode != ImportMode::kForce && differences.removed > stored.size() / 2) {
    throw std::runtime_error("this would remove " + std::to_string(differences.removed) + " of " +
                             std::to_string(stored.size()) + " contacts; --force does it");
  }
  WriteContacts(session, dialect, stored, rows, report);
  const bool isAnyWritten =
      std::any_of(rows.begin(), rows.end(), [](auto& r) { return r.isWritten; });
  if (isAnyWritten || differences.removed > 0) WriteSearchKeys(session, dialect);
  for (const auto& sql : dialect.afterImport) {
    session << sql;
    report(2 * rows.size(), 2 * rows.size());
  }
  return differences;
}

}  // namespace phonebook
