#include "phonebook/database/schema.h"

#include <algorithm>
#include <stdexcept>

namespace phonebook {

namespace {

constexpr int NewestColumn() {
  int newest = 0;
  for (const auto& column : kColumns) newest = std::max(newest, column.since);
  return newest;
}
static_assert(NewestColumn() <= kSchemaVersion, "a new column makes a new version");

std::string Definition(const Column& column) {
  const std::string name = column.name;
  return name + (column.isRequired ? " TEXT NOT NULL CHECK (" + name + " <> '')"
                                   : " TEXT NOT NULL DEFAULT ''");
}

// The columns whose change makes the keys of a contact outdated.
std::string IndexedColumns() {
  std::string names = "id";
  for (const auto& column : kColumns) {
    if (column.isSearched) names += std::string(", ") + column.name;
  }
  return names;
}

const std::vector<std::string> kRenames = {
    "ALTER TABLE contacts RENAME COLUMN sort_key TO collation_key",
    "ALTER TABLE contacts RENAME COLUMN words TO all_keys",
    "ALTER TABLE words RENAME TO search_keys",
    "ALTER TABLE search_keys RENAME COLUMN word TO key",
    "ALTER TABLE search_keys RENAME COLUMN sort_key TO collation_key",
    "ALTER TABLE search_keys RENAME COLUMN words TO all_keys",
    "ALTER TABLE removed RENAME TO removed_contacts",
    "ALTER TABLE removed_contacts RENAME COLUMN sort_key TO collation_key",
    "ALTER TABLE removed_contacts RENAME COLUMN words TO all_keys"};

const std::vector<SchemaObject> kIndexes = {
    {"contacts_by_name", "CREATE INDEX contacts_by_name ON contacts (collation_key, id)"},
    {"contacts_to_index",
     "CREATE INDEX contacts_to_index ON contacts (id) WHERE is_indexed = FALSE"}};

std::vector<SchemaObject> SQLiteTriggers() {
  return {{"contacts_changed", "CREATE TRIGGER contacts_changed AFTER UPDATE OF " +
                                   IndexedColumns() + R"( ON contacts BEGIN
             UPDATE contacts SET is_indexed = FALSE WHERE id = NEW.id;
           END)"},
          {"contacts_added", R"(
           CREATE TRIGGER contacts_added AFTER INSERT ON contacts WHEN NEW.is_indexed <> FALSE
           BEGIN
             UPDATE contacts SET is_indexed = FALSE WHERE id = NEW.id;
           END)"},
          {"contacts_removed", R"(
           CREATE TRIGGER contacts_removed AFTER DELETE ON contacts WHEN OLD.all_keys IS NOT NULL
           BEGIN
             INSERT INTO removed_contacts (contact, collation_key, all_keys)
               VALUES (OLD.id, OLD.collation_key, OLD.all_keys);
           END)"},
          {"contacts_moved", R"(
           CREATE TRIGGER contacts_moved BEFORE UPDATE OF id ON contacts BEGIN
             INSERT INTO removed_contacts (contact, collation_key, all_keys)
               SELECT id, collation_key, all_keys FROM contacts
                 WHERE id IN (OLD.id, NEW.id) AND all_keys IS NOT NULL;
           END)"},
          // INSERT OR REPLACE removes a contact without calling contacts_removed.
          {"contacts_replaced", R"(
           CREATE TRIGGER contacts_replaced BEFORE INSERT ON contacts BEGIN
             INSERT INTO removed_contacts (contact, collation_key, all_keys)
               SELECT id, collation_key, all_keys FROM contacts
                 WHERE id = NEW.id AND all_keys IS NOT NULL;
           END)"}};
}

Dialect MakeSQLite() {
  Dialect sqlite;
  sqlite.position = "instr";
  sqlite.begin = "BEGIN IMMEDIATE";
  sqlite.idType = "INTEGER PRIMARY KEY";
  sqlite.keyType = "TEXT";
  sqlite.contactType = "INTEGER";
  sqlite.searchKeysEnd = ", PRIMARY KEY (key, collation_key, contact)) WITHOUT ROWID";
  // A key has characters up to U+00FF, and JSON has escapes for the mark.
  sqlite.wordKeys =
      R"(json_each('[' || replace(json_quote(replace(substr(all_keys, 2), char(1), char(256))),
                                  char(256), '","') || ']') w)";
  const std::string count = "SELECT count(*) FROM sqlite_master WHERE name = :name AND type = ";
  sqlite.countTables = count + "'table'";
  sqlite.countTriggers = count + "'trigger' AND tbl_name = 'contacts'";
  sqlite.countIndexes = count + "'index' AND tbl_name = 'contacts'";
  sqlite.renames = kRenames;
  sqlite.triggers = SQLiteTriggers();
  sqlite.indexes = kIndexes;
  sqlite.beforeImport = {"PRAGMA cache_size = -262144"};  // KiB; BEGIN IMMEDIATE has locked
  for (const auto& trigger : sqlite.triggers) {
    sqlite.beforeImport.push_back("DROP TRIGGER " + trigger.name);
    sqlite.afterImport.push_back(trigger.sql);
  }
  // Readers need fewer locks: they answer a third more requests.
  sqlite.afterCreation = {"PRAGMA journal_mode = WAL"};
  return sqlite;
}

std::vector<SchemaObject> PostgreSQLTriggers() {
  // Roles that may write contacts need no rights on the other tables.
  const std::string asOwner =
      " RETURNS trigger LANGUAGE plpgsql SECURITY DEFINER SET search_path FROM CURRENT AS ";
  return {{"contacts_changed", R"(
           CREATE OR REPLACE FUNCTION contacts_changed() RETURNS trigger LANGUAGE plpgsql AS
             'BEGIN IF NEW.is_indexed THEN NEW.is_indexed = FALSE; END IF; RETURN NEW; END';
           CREATE TRIGGER contacts_changed BEFORE INSERT OR UPDATE OF )" +
                                   IndexedColumns() + R"( ON contacts
             FOR EACH ROW EXECUTE FUNCTION contacts_changed())"},
          {"contacts_removed", "CREATE OR REPLACE FUNCTION contacts_removed()" + asOwner + R"(
             'BEGIN
                INSERT INTO removed_contacts (contact, collation_key, all_keys)
                  VALUES (OLD.id, OLD.collation_key, OLD.all_keys);
                RETURN NULL;
              END';
           CREATE TRIGGER contacts_removed AFTER DELETE OR UPDATE OF id ON contacts
             FOR EACH ROW WHEN (OLD.all_keys IS NOT NULL) EXECUTE FUNCTION contacts_removed())"},
          {"contacts_truncated", "CREATE OR REPLACE FUNCTION contacts_truncated()" + asOwner + R"(
             'BEGIN TRUNCATE search_keys, removed_contacts; RETURN NULL; END';
           CREATE TRIGGER contacts_truncated AFTER TRUNCATE ON contacts
             EXECUTE FUNCTION contacts_truncated())"}};
}

Dialect MakePostgreSQL() {
  Dialect postgresql;
  postgresql.isPostgreSQL = true;
  postgresql.position = "strpos";
  postgresql.begin = "BEGIN";
  // An import by another server may take longer than a query.
  postgresql.lockSchema = "SET LOCAL statement_timeout = 0; SELECT pg_advisory_xact_lock(740031)";
  postgresql.lockRows = " FOR UPDATE SKIP LOCKED";
  postgresql.lockTimeout = "SET LOCAL lock_timeout = 5000";
  postgresql.idType = "BIGINT GENERATED BY DEFAULT AS IDENTITY PRIMARY KEY";
  postgresql.keyType = "TEXT COLLATE \"C\"";
  postgresql.contactType = "BIGINT";
  postgresql.searchKeysEnd = ")";
  postgresql.wordKeys = "unnest(string_to_array(substr(all_keys, 2), chr(1))) w (value)";
  postgresql.onContacts = " ON contacts";
  postgresql.countTables =
      "SELECT count(*) FROM pg_tables WHERE schemaname = current_schema() AND tablename = :name";
  postgresql.countTriggers =
      "SELECT count(*) FROM pg_trigger WHERE tgrelid = to_regclass('contacts')"
      " AND tgenabled IN ('O', 'A') AND tgname = :name";
  postgresql.countIndexes =
      "SELECT count(*) FROM pg_index JOIN pg_class ON pg_class.oid = indexrelid"
      " WHERE indrelid IN (to_regclass('contacts'), to_regclass('search_keys'))"
      " AND indisvalid AND relname = :name";
  postgresql.isWritable =
      "SELECT CAST(current_setting('transaction_read_only') = 'off'"
      " AND has_any_column_privilege('contacts', 'UPDATE')"
      " AND has_table_privilege('search_keys', 'INSERT')"
      " AND has_any_column_privilege('search_keys', 'UPDATE')"
      " AND has_table_privilege('search_keys', 'DELETE')"
      " AND has_table_privilege('removed_contacts', 'DELETE')"
      " AND has_any_column_privilege('removed_contacts', 'UPDATE') AS INTEGER)";
  postgresql.grants = {"GRANT SELECT ON schema_version TO PUBLIC"};
  postgresql.renames = kRenames;
  postgresql.renames.emplace_back("ALTER INDEX words_by_word RENAME TO search_keys_by_key");
  postgresql.triggers = PostgreSQLTriggers();
  postgresql.indexes = kIndexes;
  postgresql.indexes.push_back(
      {"search_keys_by_key",
       "CREATE UNIQUE INDEX search_keys_by_key ON search_keys (key, collation_key, contact)"
       " INCLUDE (all_keys)"});
  postgresql.beforeImport = {"LOCK TABLE contacts IN SHARE ROW EXCLUSIVE MODE"};
  postgresql.afterImport = {// beyond, no id is left for others
                            R"(SELECT setval(pg_get_serial_sequence('contacts', 'id'),
                       (SELECT COALESCE(max(id), 0) + 1 FROM contacts
                          WHERE id BETWEEN 0 AND 4611686018427387904), FALSE))",
                            "ANALYZE contacts", "ANALYZE search_keys"};
  for (const auto& trigger : postgresql.triggers) {
    postgresql.beforeImport.push_back("ALTER TABLE contacts DISABLE TRIGGER " + trigger.name);
    postgresql.afterImport.push_back("ALTER TABLE contacts ENABLE TRIGGER " + trigger.name);
  }
  return postgresql;
}

int Count(soci::session& session, const std::string& sql, const std::string& name) {
  int count = 0;
  session << sql, soci::use(name, "name"), soci::into(count);
  return count;
}

void CreateVersion(soci::session& session, const Dialect& dialect) {
  session << "CREATE TABLE schema_version (version INTEGER NOT NULL)";
  session << "INSERT INTO schema_version (version) VALUES (" << kSchemaVersion << ")";
  for (const auto& grant : dialect.grants) session << grant;
}

}  // namespace

const Dialect& DialectOf(const std::string& database) {
  static const Dialect sqlite = MakeSQLite();
  static const Dialect postgresql = MakePostgreSQL();
  const bool isPostgreSQL =
      database.rfind("postgresql://", 0) == 0 || database.rfind("postgres://", 0) == 0;
  return isPostgreSQL ? postgresql : sqlite;
}

int FindSchemaVersion(soci::session& session, const Dialect& dialect) {
  if (Count(session, dialect.countTables, "contacts") == 0) return 0;
  if (Count(session, dialect.countTables, "schema_version") == 0) return 1;
  long long version = 0;
  session << "SELECT COALESCE(max(version), 0) FROM schema_version", soci::into(version);
  if (version < 1) throw std::runtime_error("the table schema_version of the database is empty");
  if (version > kSchemaVersion) {
    throw std::runtime_error("the database has the newer version " + std::to_string(version) +
                             "; this program reads versions up to " +
                             std::to_string(kSchemaVersion));
  }
  return static_cast<int>(version);
}

void CreateTables(soci::session& session, const Dialect& dialect) {
  const std::string key = " " + dialect.keyType;
  std::string columns;
  for (const auto& column : kColumns) columns += Definition(column) + ", ";
  session << "CREATE TABLE contacts (id " << dialect.idType << ", " << columns << "collation_key"
          << key << ", all_keys" << key << ", is_indexed BOOLEAN NOT NULL DEFAULT FALSE)";
  session << "CREATE TABLE search_keys (key" << key << ", collation_key" << key << ", contact "
          << dialect.contactType << ", all_keys" << key << dialect.searchKeysEnd;
  session << "CREATE TABLE removed_contacts (id " << dialect.idType << ", contact "
          << dialect.contactType << ", collation_key" << key << ", all_keys" << key << ")";
  session << "CREATE TABLE notices (name TEXT PRIMARY KEY, text TEXT NOT NULL)";
  for (const auto& trigger : dialect.triggers) session << trigger.sql;
  CreateVersion(session, dialect);
}

void UpgradeSchema(soci::session& session, const Dialect& dialect, int from) {
  if (!dialect.lockTimeout.empty()) session << dialect.lockTimeout;
  if (from == 1) {
    for (const char* table : {"words", "removed", "notices"}) {
      if (Count(session, dialect.countTables, table) > 0) continue;
      throw std::runtime_error("the database has other tables than a phone book: there is no " +
                               std::string(table));
    }
  }
  for (const auto& trigger : dialect.triggers) {
    session << "DROP TRIGGER IF EXISTS " << trigger.name << dialect.onContacts;
  }
  if (from == 1) {
    for (const auto& rename : dialect.renames) session << rename;
    session << "UPDATE contacts SET is_indexed = FALSE WHERE is_indexed = TRUE";  // by other keys
    CreateVersion(session, dialect);
  } else {
    session << "UPDATE contacts SET is_indexed = FALSE WHERE all_keys IS NULL";  // never indexed
  }
  for (const auto& column : kColumns) {
    if (column.since > from) session << "ALTER TABLE contacts ADD COLUMN " << Definition(column);
  }
  for (const auto& trigger : dialect.triggers) session << trigger.sql;
  session << "UPDATE schema_version SET version = " << kSchemaVersion;
}

void ValidateTriggersAndIndexes(soci::session& session, const Dialect& dialect) {
  const auto validate = [&](const char* kind, const std::string& count,
                            const std::vector<SchemaObject>& objects) {
    for (const auto& object : objects) {
      if (Count(session, count, object.name) > 0) continue;
      throw std::runtime_error("the database lacks the " + std::string(kind) + " " + object.name);
    }
  };
  validate("trigger", dialect.countTriggers, dialect.triggers);
  validate("index", dialect.countIndexes, dialect.indexes);
}

}  // namespace phonebook
