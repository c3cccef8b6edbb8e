#include "phonebook/database/queries.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>
#include <tuple>
#include <utility>

#include "phonebook/collation.h"
#include "phonebook/database/connection.h"
#include "phonebook/text.h"

namespace phonebook {

namespace {

// What a search looks at. A statement over so many rows takes some milliseconds.
constexpr int kMaxContacts = 3000;      // in the order of their names
constexpr std::size_t kMaxKeys = 5000;  // search keys, of all words of a search together

constexpr long long kBeforeAll = std::numeric_limits<long long>::min();  // the ids of contacts

// From a position on, forwards or backwards.
std::string Beyond(bool isForward, const std::string& columns, const std::string& position,
                   bool isInclusive = false) {
  return "(" + columns + ")" + (isForward ? " >" : " <") + (isInclusive ? "= (" : " (") + position +
         ", :id)";
}
std::string Ordered(bool isForward, const std::string& collationKey, const std::string& id) {
  const std::string direction = isForward ? "" : " DESC";
  return " ORDER BY " + collationKey + direction + ", " + id + direction;
}

// A column as far as pages show it. SQLite makes NULL of an empty blob.
std::string Shown(const std::string& column, int characters = kMaxShownCharacters) {
  return "COALESCE(substr(" + column + ", 1, " + std::to_string(characters) + "), '')";
}

// Calls substr for long texts alone: for all, PostgreSQL takes a fifteenth longer for a page.
std::string CutIfLong(const std::string& column) {
  return "CASE WHEN octet_length(" + column + ") > " + std::to_string(kMaxShownCharacters) +
         " THEN " + Shown(column) + " ELSE " + column + " END";
}

// Cuts what the database takes for one character, as malformed UTF-8 may be of any length.
void Cut(std::string& text, int characters = kMaxShownCharacters) {
  if (text.size() > static_cast<std::size_t>(characters)) {
    text = TruncateToCharacters(text, characters);
  }
}

bool IsNearer(const ListedContact& a, const ListedContact& b, bool isForward) {
  return isForward ? std::tie(a.collationKey, a.id) < std::tie(b.collationKey, b.id)
                   : std::tie(b.collationKey, b.id) < std::tie(a.collationKey, a.id);
}

// Two lists, the nearest first, as one.
std::vector<ListedContact> Merged(const std::vector<ListedContact>& some,
                                  const std::vector<ListedContact>& others, bool isForward) {
  std::vector<ListedContact> merged;
  merged.reserve(some.size() + others.size());
  std::set_union(some.begin(), some.end(), others.begin(), others.end(), std::back_inserter(merged),
                 [&](const auto& a, const auto& b) { return IsNearer(a, b, isForward); });
  return merged;
}

}  // namespace

// A prepared query for a list of contacts.
class Queries::ListQuery {
 public:
  ListQuery(soci::session& session, const std::string& sql, bool hasKey) : statement(session) {
    statement.exchange(soci::into(row.id));
    statement.exchange(soci::into(row.name));
    statement.exchange(soci::into(row.telephone));
    if (hasKey) statement.exchange(soci::into(row.collationKey));
    const auto use = [&](auto& value, const std::string& name) {
      if (sql.find(":" + name) != sql.npos) statement.exchange(soci::use(value, name));
    };
    use(from, "from");
    use(to, "to");
    use(collationKey, "collation_key");
    use(farther, "farther");
    use(id, "id");
    for (std::size_t i = 0; i < words.size(); ++i) use(words[i], "word" + std::to_string(i));
    use(limit, "limit");
    Prepare(statement, sql);
  }

  // The contacts beyond `cursor` that have all of `theWords`, and of which one word key, or the
  // collation key, begins with `prefix`.
  std::vector<ListedContact> Run(const std::string& prefix,
                                 const std::vector<std::string>& theWords, const Cursor& cursor,
                                 std::size_t size) {
    from = prefix;
    to = EndOfPrefix(prefix);
    collationKey = cursor.collationKey;
    farther = cursor.isForward ? std::max(from, collationKey) : std::min(to, collationKey);
    id = cursor.id.value_or(kBeforeAll);
    for (std::size_t i = 0; i < words.size(); ++i) {
      words[i] = i < theWords.size() ? kWordMark + theWords[i] : "";
    }
    limit = static_cast<int>(size);
    std::vector<ListedContact> rows;
    statement.execute();
    constexpr std::size_t kPage = 32;
    rows.reserve(std::min(size, kPage));
    while (statement.fetch()) {
      Cut(row.name);
      Cut(row.telephone);
      rows.push_back(std::move(row));
    }
    return rows;
  }

 private:
  soci::statement statement;
  ListedContact row;
  std::string from, to, collationKey;
  std::string farther;  // where those with the prefix begin, as an index begins at one key
  std::array<std::string, Selection::kMaxWords> words;
  long long id = 0;
  int limit = 0;
};

// A prepared query for some texts of one row.
class Queries::TextQuery {
 public:
  // @param ofRow what follows the columns, with the parameter `:row`.
  TextQuery(soci::session& session, const std::vector<std::string>& columns,
            const std::string& ofRow, int theMaxCharacters)
      : maxCharacters(theMaxCharacters), texts(columns.size()), statement(session) {
    std::string shown;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      statement.exchange(soci::into(texts[i]));
      shown += (i == 0 ? "" : ", ") + Shown(columns[i], maxCharacters);
    }
    statement.exchange(soci::use(row));
    Prepare(statement, "SELECT " + shown + ofRow);
  }

  // The texts of the row; none if there is no such row.
  std::vector<std::string> Run(const std::string& theRow) {
    row = theRow;
    std::vector<std::string> found;
    statement.execute();
    while (statement.fetch()) found = texts;  // to the end, where SQLite unlocks what it read
    for (auto& text : found) Cut(text, maxCharacters);
    return found;
  }

 private:
  const int maxCharacters;
  std::string row;
  std::vector<std::string> texts;
  soci::statement statement;
};

Queries::Queries(soci::session& theSession, const Dialect& theDialect)
    : session(theSession), dialect(theDialect) {}

Queries::~Queries() = default;

void Queries::RunAll() {
  const std::string afterAll = EndOfPrefix("");
  for (const Query query : {kByName, kPosition, kNext, kByNameAndWords, kLastOfMany, kByWord,
                            kByWordOfContact, kWordCount}) {
    for (const bool isForward : {false, true}) List(query, afterAll, {}, {isForward}, 1);
  }
  FindContact(kBeforeAll);
  FindNotice("");
}

std::string Queries::SQLOf(Query query, bool isForward) const {
  std::string hasWords;
  for (std::size_t i = 0; i < Selection::kMaxWords; ++i) {
    hasWords += " AND " + dialect.position + "(all_keys, :word" + std::to_string(i) + ") > 0";
  }
  const std::string ordered = Ordered(isForward, "collation_key", "id");
  const std::string ofContacts =
      " FROM contacts WHERE " +
      Beyond(isForward, "collation_key, id", ":farther", query == kByName) +
      (isForward ? " AND collation_key < :to" : " AND collation_key >= :from") + ordered;
  const std::string ofSearchKeys = " FROM search_keys WHERE key >= :from AND key < :to";
  const std::string shown = Shown("name") + ", " + Shown("telephone");
  const std::string many = std::to_string(kMaxContacts);
  switch (query) {
    case kByName:  // whose collation keys have the prefix, and the one at the position
      // SQLite would load a whole text to cut it, and takes a sixth longer for a page then.
      return "SELECT id, " +
             (dialect.isPostgreSQL ? CutIfLong("name") + ", " + CutIfLong("telephone")
                                   : "name, telephone") +
             ofContacts + " LIMIT :limit";
    case kPosition:  // where a contact is
      return "SELECT id, '', '', collation_key FROM contacts"
             " WHERE id = :id AND collation_key IS NOT NULL";
    case kNext:
      return "SELECT id, " + shown + ", collation_key" + ofContacts + " LIMIT :limit";
    case kByNameAndWords:  // those among the nearest ones of kByName that have the words
      return "SELECT id, " + shown +
             ", collation_key FROM (SELECT id, name, telephone, collation_key, all_keys" +
             ofContacts + " LIMIT " + many + ") c WHERE TRUE" + hasWords + ordered +
             " LIMIT :limit";
    case kLastOfMany:  // the last one that kByNameAndWords looks at, if there are so many
      return "SELECT id, " + shown + ", collation_key FROM contacts WHERE id = (SELECT id" +
             ofContacts + " LIMIT 1 OFFSET " + std::to_string(kMaxContacts - 1) + ")";
    case kByWord:  // that have the words, and a search key with the prefix; removed ones are empty
    case kByWordOfContact:  // the same without those, which costs a look at each contact
      return "SELECT contact, " + shown +
             ", place FROM (SELECT DISTINCT collation_key AS place, contact" + ofSearchKeys +
             " AND " + Beyond(isForward, "collation_key, contact", ":collation_key") + hasWords +
             (query == kByWord ? ""
                               : " AND EXISTS (SELECT 1 FROM contacts c WHERE c.id = contact"
                                 " AND c.collation_key = search_keys.collation_key)") +
             Ordered(isForward, "collation_key", "contact") + " LIMIT :limit) w" +
             " LEFT JOIN contacts ON id = contact AND collation_key = place" +
             Ordered(isForward, "place", "contact");
    case kWordCount:  // the number of search keys with the prefix, in place of an id
      return "SELECT count(*), '', '' FROM (SELECT 1" + ofSearchKeys + " LIMIT :limit) w";
  }
  return "";
}

std::vector<ListedContact> Queries::List(Query query, const std::string& prefix,
                                         const std::vector<std::string>& words,
                                         const Cursor& cursor, std::size_t size) {
  auto& list = lists[query][cursor.isForward ? 1 : 0];
  const bool hasKey = query != kByName && query != kWordCount;
  if (!list) list = std::make_unique<ListQuery>(session, SQLOf(query, cursor.isForward), hasKey);
  return list->Run(prefix, words, cursor, size);
}

// A contact at the position counts where it is now, wherever indexing has moved it meanwhile.
Cursor Queries::Located(Cursor cursor) {
  if (!cursor.id) return cursor;
  auto found = List(kPosition, "", {}, cursor, 1);
  if (!found.empty()) cursor.collationKey = std::move(found.front().collationKey);
  return cursor;
}

// Most often the contact at the position comes first, and needs no query of its own.
std::vector<ListedContact> Queries::ListByName(const std::string& prefix, const Cursor& cursor,
                                               std::size_t size) {
  if (!cursor.id) return List(kByName, prefix, {}, cursor, size);
  const auto isAtPosition = [&](const auto& found) {
    return !found.empty() && found.front().id == cursor.id;
  };
  auto found = List(kByName, prefix, {}, cursor, size + 1);
  if (!isAtPosition(found)) found = List(kByName, prefix, {}, Located(cursor), size + 1);
  if (isAtPosition(found)) found.erase(found.begin());
  if (found.size() > size) found.pop_back();
  return found;
}

std::optional<ListedContact> Queries::FindNext(const Cursor& cursor) {
  auto found = List(kNext, "", {}, Located(cursor), 1);
  return found.empty() ? std::nullopt : std::optional(std::move(found.front()));
}

SearchResult Queries::Search(const std::vector<std::string>& words, const Cursor& position,
                             std::size_t size) {
  const Cursor cursor = Located(position);
  // Where many are found among the nearest ones, that is enough.
  SearchResult found = SearchByName("", words, cursor, size);
  if (!found.end) return found;
  const std::string* const rarest = RarestOf(words);
  if (rarest == nullptr) return found;
  SearchResult byName = SearchByName(*rarest, words, cursor, size);
  found.contacts =
      Merged(byName.contacts, SearchByWord(*rarest, words, cursor, size), cursor.isForward);
  found.end = std::move(byName.end);
  if (found.end) {  // beyond which those by name are missing
    const auto isKnown = [&](const auto& other) {
      return !IsNearer(*found.end, other, cursor.isForward);
    };
    found.contacts.erase(
        std::partition_point(found.contacts.begin(), found.contacts.end(), isKnown),
        found.contacts.end());
  }
  if (found.contacts.size() >= size) {
    found.contacts.resize(size);
    found.end.reset();
  }
  return found;
}

// Looks at the nearest contacts whose collation keys begin with `prefix`.
SearchResult Queries::SearchByName(const std::string& prefix, const std::vector<std::string>& words,
                                   const Cursor& cursor, std::size_t size) {
  SearchResult found{List(kByNameAndWords, prefix, words, cursor, size), {}};
  if (found.contacts.size() == size) return found;
  auto last = List(kLastOfMany, prefix, {}, cursor, 1);
  if (!last.empty()) found.end = std::move(last.front());
  return found;
}

// Looks at all contacts that have a search key with the prefix. The search keys of a removed
// contact stay until it is indexed, and must not take the places of others.
std::vector<ListedContact> Queries::SearchByWord(const std::string& prefix,
                                                 const std::vector<std::string>& words,
                                                 const Cursor& cursor, std::size_t size) {
  auto found = List(kByWord, prefix, words, cursor, size);
  const bool hasRemoved = std::any_of(found.begin(), found.end(),
                                      [](const auto& one) { return one.telephone.empty(); });
  return hasRemoved ? List(kByWordOfContact, prefix, words, cursor, size) : found;
}

// The word with the fewest search keys; null if all have many.
const std::string* Queries::RarestOf(const std::vector<std::string>& words) {
  const std::size_t many = kMaxKeys / words.size();
  std::map<std::pair<long long, std::size_t>, const std::string*> byRarity;
  for (const auto& word : words) {
    const long long count = List(kWordCount, word, {}, {}, many).front().id;
    if (count < static_cast<long long>(many)) byRarity[{-count, word.size()}] = &word;
  }
  return byRarity.empty() ? nullptr : byRarity.rbegin()->second;
}

std::optional<Contact> Queries::FindContact(long long id) {
  if (!contact) {
    std::vector<std::string> columns;
    columns.reserve(kColumns.size());
    for (const auto& column : kColumns) columns.emplace_back(column.name);
    contact = std::make_unique<TextQuery>(session, columns, " FROM contacts WHERE id = :row",
                                          kMaxShownCharacters);
  }
  const auto texts = contact->Run(std::to_string(id));
  if (texts.empty()) return std::nullopt;
  Contact found;
  for (std::size_t i = 0; i < texts.size(); ++i) found.*kColumns[i].field = texts[i];
  return found;
}

std::string Queries::FindNotice(const std::string& name) {
  if (!notice) {
    notice = std::make_unique<TextQuery>(session, std::vector<std::string>{"text"},
                                         " FROM notices WHERE name = :row", kMaxNoticeCharacters);
  }
  const auto texts = notice->Run(name);
  return texts.empty() ? "" : texts.front();
}

}  // namespace phonebook
