#include "phonebook/database/bulk_statement.h"

#include <soci/postgresql/soci-postgresql.h>

#include "phonebook/database/connection.h"
#include "phonebook/database/unavailable.h"

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

void AppendColumn(std::string_view text, std::string& line) {
  constexpr std::string_view kSpecial = "\t\n\r\\", kLetters = "tnr\\";
  for (const char character : text) {
    const auto special = kSpecial.find(character);
    if (special != kSpecial.npos) line += '\\';
    line += special == kSpecial.npos ? character : kLetters[special];
  }
}

void Expect(ExecStatusType expected, PGconn* connection, PGresult* result) {
  const bool isExpected = PQresultStatus(result) == expected;
  PQclear(result);
  if (isExpected) return;
  const std::string message = PQerrorMessage(connection);
  throw DatabaseUnavailable(message.substr(0, message.find('\n')));
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
          sqlOf(isByArrays ? Rows{select, table, "IN (" + select + ")"}
                           : Rows{"VALUES (" + parameters + ")", "(SELECT " + columns + ") AS r",
                                  "= (" + parameters + ")"}));
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

BulkInsert::BulkInsert(soci::session& session, const Dialect& dialect, const std::string& table,
                       const std::vector<BulkStatement::Field>& fields) {
  std::string into;
  for (const auto& field : fields) into += (into.empty() ? " (" : ", ") + std::string(field.name);
  into = table + into + ")";
  if (dialect.isPostgreSQL) {
    connection = static_cast<soci::postgresql_session_backend*>(session.get_backend())->conn_;
    copy = "COPY " + into + " FROM STDIN";
  } else {
    statement.emplace(session, dialect, fields,
                      [&](const auto& rows) { return "INSERT INTO " + into + " " + rows.values; });
  }
}

void BulkInsert::Add(const std::vector<std::string_view>& row) {
  if (statement) return statement->Add(row);
  constexpr std::size_t kMaxSize = 1 << 20;
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (i > 0) lines += '\t';
    AppendColumn(row[i], lines);
  }
  lines += '\n';
  if (lines.size() > kMaxSize) Flush();
}

void BulkInsert::Flush() {
  if (statement) return statement->Flush();
  if (lines.empty()) return;
  Expect(PGRES_COPY_IN, connection, PQexec(connection, copy.c_str()));
  PQputCopyData(connection, lines.data(), static_cast<int>(lines.size()));
  PQputCopyEnd(connection, nullptr);
  Expect(PGRES_COMMAND_OK, connection, PQgetResult(connection));
  PQclear(PQgetResult(connection));  // none, which ends the command
  lines.clear();
}

}  // namespace phonebook
