#include "phonebook/database/queries.h"

#include <algorithm>
#include <map>
#include <utility>

#include "phonebook/collation.h"
#include "phonebook/database/connection.h"

namespace phonebook {

namespace {

// A search first looks at some contacts in their order: where many are found, that is enough.
constexpr int kGlance = 5000;

constexpr long long kBeforeAll = 0;  // the ids of contacts

// From a position on, forwards or backwards.
std::string Beyond(bool isForward, const std::string& collationKey, const std::string& id) {
  return "(" + collationKey + ", " + id + ")" + (isForward ? " > " : " < ") +
         "(:collation_key, :id)";
}
std::string Ordered(bool isForward, const std::string& collationKey, const std::string& id) {
  const std::string direction = isForward ? "" : " DESC";
  return " ORDER BY " + collationKey + direction + ", " + id + direction;
}

// Two lists in the order of the names, or the other way round, as one.
std::vector<ListedContact> Merged(const std::vector<ListedContact>& some,
                                  const std::vector<ListedContact>& others, bool isForward) {
  std::map<std::pair<std::string, long long>, const ListedContact*> merged;
  for (const auto* list : {&some, &others}) {
    for (const auto& row : *list) merged[{CollationKey(row.name), row.id}] = &row;
  }
  std::vector<ListedContact> rows;
  rows.reserve(merged.size());
  for (const auto& [position, row] : merged) rows.push_back(*row);
  if (!isForward) std::reverse(rows.begin(), rows.end());
  return rows;
}

}  // namespace

// A prepared query for a list of contacts.
class Queries::ListQuery {
 public:
  ListQuery(soci::session& session, const std::string& sql) : statement(session) {
    statement.exchange(soci::into(row.id));
    statement.exchange(soci::into(row.name));
    statement.exchange(soci::into(row.telephone));
    const auto use = [&](auto& value, const std::string& name) {
      if (sql.find(":" + name) != sql.npos) statement.exchange(soci::use(value, name));
    };
    use(from, "from");
    use(to, "to");
    use(collationKey, "collation_key");
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
    id = cursor.id;
    for (std::size_t i = 0; i < words.size(); ++i) {
      words[i] = i < theWords.size() ? kWordMark + theWords[i] : "";
    }
    limit = static_cast<int>(size);
    std::vector<ListedContact> rows;
    statement.execute();
    constexpr std::size_t kPage = 32;
    rows.reserve(std::min(size, kPage));
    while (statement.fetch()) rows.push_back(std::move(row));
    return rows;
  }

 private:
  soci::statement statement;
  ListedContact row;
  std::string from, to, collationKey;
  std::array<std::string, Selection::kMaxWords> words;
  long long id = 0;
  int limit = 0;
};

class Queries::ContactQuery {
 public:
  explicit ContactQuery(soci::session& session) : statement(session) {
    for (const auto& column : kColumns) statement.exchange(soci::into(row.*column.field));
    statement.exchange(soci::use(id));
    Prepare(statement, "SELECT " + ColumnNames() + " FROM contacts WHERE id = :id");
  }

  std::optional<Contact> Run(long long theId) {
    id = theId;
    std::optional<Contact> found;
    statement.execute();
    while (statement.fetch()) found = row;  // to the end, where SQLite unlocks what it read
    return found;
  }

 private:
  long long id = 0;
  Contact row;
  soci::statement statement;
};

class Queries::NoticeQuery {
 public:
  explicit NoticeQuery(soci::session& session) : statement(session) {
    statement.exchange(soci::into(text));
    statement.exchange(soci::use(name));
    Prepare(statement, "SELECT text FROM notices WHERE name = :name");
  }

  std::optional<std::string> Run(const std::string& theName) {
    name = theName;
    std::optional<std::string> found;
    statement.execute();
    while (statement.fetch()) found = text;
    return found;
  }

 private:
  std::string name, text;
  soci::statement statement;
};

Queries::Queries(soci::session& theSession, const Dialect& theDialect)
    : session(theSession), dialect(theDialect) {}

Queries::~Queries() = default;

void Queries::RunAll() {
  const std::string afterAll = EndOfPrefix("");
  for (const Query query : {kByName, kByNameAndWords, kNearest, kByWord, kWordCount}) {
    for (const bool isForward : {false, true}) List(query, afterAll, {}, {isForward}, 1);
  }
  FindContact(kBeforeAll);
  FindNotice("");
}

Queries::ListQuery& Queries::Prepared(Query query, bool isForward) {
  auto& list = lists[query][isForward ? 1 : 0];
  if (!list) list = std::make_unique<ListQuery>(session, SQLOf(query, isForward));
  return *list;
}

Queries::ContactQuery& Queries::PreparedContactQuery() {
  if (!contact) contact = std::make_unique<ContactQuery>(session);
  return *contact;
}

Queries::NoticeQuery& Queries::PreparedNoticeQuery() {
  if (!notice) notice = std::make_unique<NoticeQuery>(session);
  return *notice;
}

std::string Queries::SQLOf(Query query, bool isForward) const {
  std::string hasWords;
  for (std::size_t i = 0; i < Selection::kMaxWords; ++i) {
    hasWords += " AND " + dialect.position + "(all_keys, :word" + std::to_string(i) + ") > 0";
  }
  const std::string select = "SELECT id, name, telephone FROM ";
  const std::string beyond = Beyond(isForward, "collation_key", "id");
  const std::string ordered = Ordered(isForward, "collation_key", "id");
  const std::string hasPrefix =
      isForward ? " AND collation_key < :to" : " AND collation_key >= :from";
  const std::string ofSearchKeys = " FROM search_keys WHERE key >= :from AND key < :to";
  switch (query) {
    case kByName:  // whose collation keys have the prefix, whatever their words
      return select + "contacts WHERE " + beyond + hasPrefix + ordered + " LIMIT :limit";
    case kByNameAndWords:  // and that have the words
      return select + "contacts WHERE " + beyond + hasPrefix + hasWords + ordered + " LIMIT :limit";
    case kNearest:  // those among the nearest ones that have the words
      return select + "(SELECT * FROM contacts WHERE " + beyond + ordered + " LIMIT " +
             std::to_string(kGlance) + ") c WHERE TRUE" + hasWords + ordered + " LIMIT :limit";
    case kByWord:  // that have the words, and a search key with the prefix
      return select + "(SELECT DISTINCT collation_key AS place, contact" + ofSearchKeys + " AND " +
             Beyond(isForward, "collation_key", "contact") + hasWords +
             Ordered(isForward, "collation_key", "contact") + " LIMIT :limit) w" +
             " JOIN contacts ON id = contact AND collation_key = place" +
             Ordered(isForward, "place", "id");
    case kWordCount:  // the number of search keys with the prefix, in place of an id
      return "SELECT count(*), '', '' FROM (SELECT 1" + ofSearchKeys + " LIMIT :limit) w";
  }
  return "";
}

std::vector<ListedContact> Queries::List(Query query, const std::string& prefix,
                                         const std::vector<std::string>& words,
                                         const Cursor& cursor, std::size_t size) {
  // The begin of the prefix or the cursor, whichever is further: an index can begin with one.
  Cursor begin = cursor;
  if (query == kByName || query == kByNameAndWords) {
    const std::string bound = cursor.isForward ? prefix : EndOfPrefix(prefix);
    if ((bound > cursor.collationKey) == cursor.isForward) {
      begin = {cursor.isForward, bound, kBeforeAll};
    }
  }
  return Prepared(query, cursor.isForward).Run(prefix, words, begin, size);
}

std::vector<ListedContact> Queries::ListByName(const std::string& prefix, const Cursor& cursor,
                                               std::size_t size) {
  return List(kByName, prefix, {}, cursor, size);
}

std::vector<ListedContact> Queries::Search(const std::vector<std::string>& words,
                                           const Cursor& cursor, std::size_t size) {
  auto found = List(kNearest, "", words, cursor, size);
  if (found.size() == size) return found;
  const std::string& rarest = RarestOf(words);
  return Merged(List(kByNameAndWords, rarest, words, cursor, size),
                List(kByWord, rarest, words, cursor, size), cursor.isForward);
}

// The word with the fewest search keys.
const std::string& Queries::RarestOf(const std::vector<std::string>& words) {
  constexpr std::size_t kMany = 10000;  // beyond which counting would take its time, too
  const auto rarity = [&](const std::string& word) {
    const long long count =
        words.size() == 1 ? 0 : List(kWordCount, word, {}, {}, kMany).front().id;
    return std::pair(-count, word.size());
  };
  std::map<std::pair<long long, std::size_t>, const std::string*> byRarity;
  for (const auto& word : words) byRarity[rarity(word)] = &word;
  return *byRarity.rbegin()->second;
}

std::optional<Contact> Queries::FindContact(long long id) { return PreparedContactQuery().Run(id); }

std::optional<std::string> Queries::FindNotice(const std::string& name) {
  return PreparedNoticeQuery().Run(name);
}

}  // namespace phonebook
