#include "phonebook/database/backup.h"

#include <soci/sqlite3/soci-sqlite3.h>

#include <stdexcept>

#include "phonebook/database/connection.h"
#include "phonebook/database/new_file.h"
#include "phonebook/database/unavailable.h"

namespace phonebook {

namespace {

sqlite_api::sqlite3* FileOf(DatabaseConnection& connection) {
  return static_cast<soci::sqlite3_session_backend*>(connection.session.get_backend())->conn_;
}

}  // namespace

void BackUp(const std::string& database, const std::string& file) {
  if (DialectOf(database).isPostgreSQL) throw std::runtime_error("back up PostgreSQL by pg_dump");
  if (!IsDatabaseMissing(file)) throw std::runtime_error(file + " exists");
  DatabaseConnection source(database);
  source.Open();
  NewFile copy(file);
  {
    DatabaseConnection target(copy.Path());
    target.Open();
    auto* const backup =
        sqlite_api::sqlite3_backup_init(FileOf(target), "main", FileOf(source), "main");
    constexpr int kAllPages = -1;
    sqlite_api::sqlite3_backup_step(backup, kAllPages);
    if (sqlite_api::sqlite3_backup_finish(backup) != SQLITE_OK) {
      throw DatabaseUnavailable(file + ": " + sqlite_api::sqlite3_errmsg(FileOf(target)));
    }
  }
  copy.Publish();
}

}  // namespace phonebook
