#include "phonebook/database/import.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "phonebook/collation.h"
#include "phonebook/database/bulk_statement.h"
#include "phonebook/database/search_index.h"

namespace phonebook {

namespace {

constexpr const char* kNotices =
    "INSERT INTO notices (name, text) VALUES"
    " ('message', 'Lunch today: soup & bread.\nThe canteen is open from 11:30 to 14:00.'),"
    " ('alert', 'Fire drill at noon. Please use the stairs.')";

// An insertion of many rows into a table.
class BulkInsert : public BulkStatement {
 public:
  BulkInsert(soci::session& session, const Dialect& dialect, const std::string& table,
             const std::vector<Field>& fields)
      : BulkStatement(session, dialect, fields, [&](const Rows& rows) {
          std::string names;
          for (const auto& field : fields)
            names += (names.empty() ? "" : ", ") + std::string(field.name);
          return "INSERT INTO " + table + " (" + names + ") " + rows.values;
        }) {}
};

// Calls the reporter after every so many small steps.
class Progress {
 public:
  explicit Progress(const ImportReporter& theReport) : report(theReport) {}
  void Step() {
    constexpr std::size_t kStepsOfReport = 10000;
    if (++steps % kStepsOfReport == 0) Report();
  }
  void Report() { report(done, total); }

  std::size_t done = 0;
  std::size_t total = 1;

 private:
  const ImportReporter& report;
  std::size_t steps = 0;
};

struct Row {
  long long id;
  const Contact* contact;
  std::string collationKey, allKeys;
};

std::vector<Row> MakeRows(const std::vector<Contact>& contacts, Progress& progress) {
  std::vector<Row> rows;
  rows.reserve(contacts.size());
  for (const auto& contact : contacts) {
    rows.push_back({0, &contact, CollationKey(contact.name), AllKeys(contact)});
    progress.Step();
  }
  return rows;
}

// Search keys and the rows that they belong to, in the order of their index.
using SearchKeyRows = std::vector<std::pair<std::string, std::size_t>>;
SearchKeyRows SortedSearchKeys(const std::vector<Row>& rows, Progress& progress) {
  SearchKeyRows keys;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (auto& key : SearchKeys(rows[i].allKeys, rows[i].collationKey)) {
      keys.emplace_back(std::move(key), i);
    }
    progress.Step();
  }
  std::sort(keys.begin(), keys.end(), [&](const auto& a, const auto& b) {
    progress.Step();
    return a < b;
  });
  return keys;
}

void InsertContacts(BulkInsert& insert, const std::vector<Row>& rows, Progress& progress) {
  std::vector<std::string_view> values;
  for (const auto& row : rows) {
    const std::string id = std::to_string(row.id);
    values.assign(1, id);
    for (const auto& column : kColumns) values.emplace_back(row.contact->*column.field);
    values.insert(values.end(), {row.collationKey, row.allKeys, "1"});
    insert.Add(values);
    ++progress.done;
    progress.Step();
  }
  insert.Flush();
}

void InsertSearchKeys(BulkInsert& insert, const std::vector<Row>& rows, const SearchKeyRows& keys,
                      Progress& progress) {
  for (const auto& [key, i] : keys) {
    insert.Add({key, rows[i].collationKey, std::to_string(rows[i].id), rows[i].allKeys});
    ++progress.done;
    progress.Step();
  }
  insert.Flush();
}

void InsertRows(soci::session& session, const Dialect& dialect, const std::vector<Row>& rows,
                Progress& progress) {
  const SearchKeyRows keys = SortedSearchKeys(rows, progress);
  progress.total = rows.size() + keys.size();

  std::vector<BulkStatement::Field> fields = {{"id", "BIGINT"}};
  for (const auto& column : kColumns) fields.push_back({column.name, "TEXT"});
  for (const char* key : {"collation_key", "all_keys"}) fields.push_back({key, "TEXT"});
  fields.push_back({"is_indexed", "BOOLEAN"});
  BulkInsert intoContacts(session, dialect, "contacts", fields);
  InsertContacts(intoContacts, rows, progress);

  BulkInsert intoSearchKeys(
      session, dialect, "search_keys",
      {{"key", "TEXT"}, {"collation_key", "TEXT"}, {"contact", "BIGINT"}, {"all_keys", "TEXT"}});
  InsertSearchKeys(intoSearchKeys, rows, keys, progress);
}

}  // namespace

void InsertIndexed(soci::session& session, const Dialect& dialect,
                   const std::vector<Contact>& contacts, const std::vector<long long>& ids,
                   const ImportReporter& report) {
  Progress progress(report);
  std::vector<Row> rows = MakeRows(contacts, progress);
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i].id = ids[i];
  std::sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) { return a.id < b.id; });
  InsertRows(session, dialect, rows, progress);
}

void Import(soci::session& session, const Dialect& dialect, const std::vector<Contact>& contacts,
            const ImportReporter& report) {
  Progress progress(report);
  CreateTables(session, dialect);
  std::vector<Row> rows = MakeRows(contacts, progress);
  std::stable_sort(rows.begin(), rows.end(), [&](const Row& a, const Row& b) {
    progress.Step();
    return a.collationKey < b.collationKey;
  });
  long long id = 0;
  for (auto& row : rows) row.id = ++id;
  InsertRows(session, dialect, rows, progress);
  CreateTriggersAndIndexes(session, dialect, [&] { progress.Report(); });
  for (const auto& sql : dialect.afterImport) {
    session << sql;
    progress.Report();
  }
  if (!contacts.empty()) session << kNotices;
}

}  // namespace phonebook
