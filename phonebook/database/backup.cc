#include "phonebook/database/backup.h"

#include <soci/sqlite3/soci-sqlite3.h>

#include <memory>
#include <stdexcept>

#include "phonebook/database/connection.h"
#include "phonebook/database/new_file.h"
#include "phonebook/database/unavailable.h"

namespace phonebook {

namespace {

void Copy(DatabaseConnection& source, NewFile& copy, const std::function<void()>& report) {
  constexpr int kPages = 4096;  // in one step, which must not delay the end of the program
  DatabaseConnection target(copy.Path());
  target.Open();
  target.session << "PRAGMA journal_mode = OFF";
  int result = SQLITE_OK;
  const std::unique_ptr<sqlite_api::sqlite3_backup, decltype(&sqlite_api::sqlite3_backup_finish)>
      backup(sqlite_api::sqlite3_backup_init(target.File(), "main", source.File(), "main"),
             &sqlite_api::sqlite3_backup_finish);
  while (result == SQLITE_OK) {
    result = sqlite_api::sqlite3_backup_step(backup.get(), kPages);
    copy.Sync();  // or the last one would take long
    report();
  }
  if (result != SQLITE_DONE) {
    throw DatabaseUnavailable(std::string("the backup: ") + sqlite_api::sqlite3_errstr(result));
  }
}

}  // namespace

void BackUp(const std::string& database, const std::string& file,
            const std::function<void()>& report) {
  if (DialectOf(database).isPostgreSQL) throw std::runtime_error("back up PostgreSQL by pg_dump");
  const auto exists = std::runtime_error(file + " exists");
  if (!IsDatabaseMissing(file)) throw exists;
  DatabaseConnection source(database);
  source.Open();
  // One view of the database: SQLite would begin again whenever another process has written.
  source.session << "BEGIN";
  if (FindSchemaVersion(source.session, source.dialect) == 0) {
    throw std::runtime_error(database + " holds no phone book");
  }
  NewFile copy(file);
  Copy(source, copy, report);
  if (!copy.Publish()) throw exists;
}

}  // namespace phonebook
