/// @file
/// The shape of the database in the SQL of SQLite and of PostgreSQL: columns, tables, triggers,
/// indexes and version.
///
/// Tables:
/// - `contacts`: what users and other programs write, and the keys by which contacts are listed and
///   found: `collation_key`, and `all_keys`, which are the word keys of all searched columns, each
///   after a `kWordMark`. `is_indexed` tells whether the keys are those of the present text.
/// - `search_keys`: a row for each word key of a contact, but for one with which its collation key
///   begins.
/// - `removed_contacts`: the keys of contacts that were deleted, whose search keys are still there.
/// - `notices`: texts by name.
/// - `schema_version`: one row, the version of this shape.
#pragma once

#include <soci/soci.h>

#include <string>
#include <vector>

#include "phonebook/contacts.h"

namespace phonebook {

/// The version that this program creates and reads. The shape without a version is version 1.
constexpr int kSchemaVersion = 4;

/// A trigger or an index, and how it is created.
struct SchemaObject {
  std::string name;
  std::string sql;
};

/// What the two databases write differently.
struct Dialect {
  bool isPostgreSQL = false;
  std::string position;     ///< The function that finds a text in another.
  std::string begin;        ///< Begins a transaction that writes.
  std::string lockSchema;   ///< Keeps others from creating or upgrading in a transaction.
  std::string lockRows;     ///< Appended to a SELECT, locks its rows without waiting.
  std::string lockTimeout;  ///< Bounds the wait of an upgrade for other clients.
  std::string idType, keyType, contactType;  ///< Of columns.
  std::string searchKeysEnd;                 ///< Of the definition of the table.
  std::string wordKeys;                      ///< Those of a contact: the table `w (value)`.
  std::string isWritable;                    ///< Whether the role may index; 0 or 1.
  std::string onContacts;                    ///< Behind the name of a trigger to drop.
  /// @name How many there are of `:name`
  /// @{
  std::string countTables, countTriggers, countIndexes;
  /// @}
  std::vector<std::string> grants;         ///< What other roles may do.
  std::vector<std::string> renames;        ///< Specific to an upgrade from version 1.
  std::vector<SchemaObject> triggers;      ///< On `contacts`.
  std::vector<SchemaObject> indexes;       ///< Created after an import, which is faster.
  std::vector<std::string> beforeImport;   ///< Keeps others from writing; ends own triggers.
  std::vector<std::string> afterImport;    ///< In its transaction, restores the triggers.
  std::vector<std::string> afterCreation;  ///< Once it is committed.
};

/// The dialect of a database as `Store` takes it.
const Dialect& DialectOf(const std::string& database);

/// @return 0 when there is no phone book.
/// @throws std::runtime_error when the version is newer than `kSchemaVersion`, or can't be told.
int FindSchemaVersion(soci::session& session, const Dialect& dialect);

/// Creates the tables and triggers, without indexes.
void CreateTables(soci::session& session, const Dialect& dialect);

/// Upgrades a database of the version `from` to `kSchemaVersion`, in a transaction of the caller.
/// @throws std::runtime_error when the database has other tables than that version.
void UpgradeSchema(soci::session& session, const Dialect& dialect, int from);

/// @throws std::runtime_error when a trigger or an index is missing.
void ValidateTriggersAndIndexes(soci::session& session, const Dialect& dialect);

}  // namespace phonebook
