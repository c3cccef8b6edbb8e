/// @file
/// Statements that write many rows.
#pragma once

#include <soci/soci.h>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "phonebook/database/schema.h"

namespace phonebook {

/// A statement that SQLite runs row by row, and PostgreSQL, where each run is a round trip, on
/// arrays of many rows.
class BulkStatement {
 public:
  struct Field {
    const char* name;
    const char* type;
  };

  /// How a statement names its rows.
  struct Rows {
    std::string values;   ///< As INSERT takes them, behind the names of the fields.
    std::string table;    ///< As FROM takes them: the table `r`.
    std::string isAmong;  ///< Behind columns in parentheses: whether they are a row.
  };

  /// @param sqlOf returns the statement.
  BulkStatement(soci::session& session, const Dialect& dialect, const std::vector<Field>& fields,
                const std::function<std::string(const Rows&)>& sqlOf);

  /// Adds a row, in the order of the fields. It may be written at once, or by `Flush`.
  void Add(const std::vector<std::string_view>& row);

  /// The number of rows that wait for `Flush`.
  std::size_t Size() const { return size; }

  void Flush();

 private:
  const bool isByArrays;
  std::size_t size = 0;
  std::vector<std::string> values;
  soci::statement statement;
};

}  // namespace phonebook
