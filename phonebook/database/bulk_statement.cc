#include "phonebook/database/bulk_statement.h"

#include "phonebook/database/connection.h"

namespace phonebook {

namespace {

constexpr std::size_t kMaxRows = 2000;  // of an array

void AppendElement(std::string_view text, std::string& array) {
  array += array.empty() ? "{\"" : ",\"";
  for (const char character : text) {
    if (character == '"' || character == '\\') array += '\\';
    array += character;
  }
  array += '"';
}

}  // namespace

BulkStatement::BulkStatement(soci::session& session, const Dialect& dialect,
                             const std::vector<Field>& fields,
                             const std::function<std::string(const Rows&)>& sqlOf)
    : isByArrays(dialect.isPostgreSQL), values(fields.size()), statement(session) {
  std::string names, parameters, columns, arrays;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const std::string separator = i == 0 ? "" : ", ", name = fields[i].name;
    const std::string parameter = ":row_" + name;
    names += separator + name;
    parameters += separator + parameter;
    columns += separator + parameter + " AS " + name;
    arrays += separator + "CAST(" + parameter + " AS " + fields[i].type + "[])";
    statement.exchange(soci::use(values[i], parameter.substr(1)));
  }
  const std::string table = "unnest(" + arrays + ") AS r (" + names + ")";
  const std::string select = "SELECT * FROM " + table;
  Prepare(statement,
          sqlOf(isByArrays ? Rows{"(" + names + ") " + select, table, "IN (" + select + ")"}
                           : Rows{"(" + names + ") VALUES (" + parameters + ")",
                                  "(SELECT " + columns + ") AS r", "= (" + parameters + ")"}));
}

void BulkStatement::Add(const std::vector<std::string_view>& row) {
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (isByArrays) {
      AppendElement(row[i], values[i]);
    } else {
      values[i] = row[i];
    }
  }
  if (++size == (isByArrays ? kMaxRows : 1)) Flush();
}

void BulkStatement::Flush() {
  if (size == 0) return;
  for (auto& value : values) {
    if (isByArrays) value += '}';
  }
  statement.execute(true);
  for (auto& value : values) value.clear();
  size = 0;
}

}  // namespace phonebook
