#include "phonebook/database/replacement.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace phonebook {

namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// What two contacts have in common that are the same; the first ones count most.
using Identity = std::string (*)(const Contact&);
constexpr std::array<Identity, 4> kIdentities = {
    [](const Contact& c) { return c.name + '\0' + c.telephone + '\0' + c.department; },
    [](const Contact& c) { return c.name + '\0' + c.telephone; },
    [](const Contact& c) { return c.name + '\0' + c.department; },
    [](const Contact& c) { return c.name; },
};

bool AreEqual(const Contact& a, const Contact& b) {
  return std::all_of(kColumns.begin(), kColumns.end(),
                     [&](const Column& column) { return a.*column.field == b.*column.field; });
}

class Matcher {
 public:
  Matcher(const std::vector<StoredContact>& theStored, const std::vector<Contact>& theContacts)
      : stored(theStored),
        contacts(theContacts),
        matches(contacts.size(), kNone),
        isMatched(stored.size()) {}

  // Matches contacts for which `identity` is the same, in their order. An empty one matches
  // nothing.
  // @param withKeys whether stored contacts with a key count.
  void MatchBy(Identity identity, bool withKeys) {
    if (matched == std::min(stored.size(), contacts.size())) return;
    std::unordered_map<std::string, std::size_t> heads;  // of lists of equal contacts
    std::vector<std::size_t> next(contacts.size(), kNone);
    for (std::size_t i = contacts.size(); i-- > 0;) {
      if (matches[i] != kNone) continue;
      const auto [head, isNew] = heads.emplace(identity(contacts[i]), i);
      if (!isNew) next[i] = std::exchange(head->second, i);
    }
    heads.erase("");
    for (std::size_t i = 0; !heads.empty() && i < stored.size(); ++i) {
      if (isMatched[i] || (!withKeys && !stored[i].contact.key.empty())) continue;
      const auto head = heads.find(identity(stored[i].contact));
      if (head == heads.end()) continue;
      matches[head->second] = i;
      isMatched[i] = true;
      ++matched;
      head->second = next[head->second];
      if (head->second == kNone) heads.erase(head);
    }
  }

  const std::vector<std::size_t>& Matches() const { return matches; }

 private:
  const std::vector<StoredContact>& stored;
  const std::vector<Contact>& contacts;
  std::vector<std::size_t> matches;  // by contact
  std::vector<bool> isMatched;       // by stored contact
  std::size_t matched = 0;
};

std::vector<StoredContact> ReadStored(soci::session& session) {
  StoredContact row;
  soci::statement statement(session);
  statement.exchange(soci::into(row.id));
  std::string columns;
  for (const auto& column : kColumns) {
    statement.exchange(soci::into(row.contact.*column.field));
    columns += ", COALESCE(" + std::string(column.name) + ", '')";
  }
  Prepare(statement, "SELECT id" + columns + " FROM contacts ORDER BY id");
  std::vector<StoredContact> rows;
  statement.execute();
  while (statement.fetch()) rows.push_back(row);
  return rows;
}

// Ids of their own for contacts that have none yet.
void GiveIds(const std::vector<StoredContact>& stored, const std::vector<std::size_t>& matches,
             std::vector<long long>& ids) {
  std::unordered_set<long long> used;
  for (const auto& row : stored) used.insert(row.id);
  auto last = static_cast<long long>(stored.size());
  for (const std::size_t match : matches) {
    if (match == kNone) {
      do ++last;
      while (used.count(last) > 0);
    }
    ids.push_back(match == kNone ? last : stored[match].id);
  }
}

}  // namespace

Differences Match(const std::vector<StoredContact>& stored, std::vector<Contact>& contacts,
                  std::vector<long long>& ids) {
  const bool haveKeys = std::any_of(contacts.begin(), contacts.end(),
                                    [](const Contact& contact) { return !contact.key.empty(); });
  Matcher matcher(stored, contacts);
  matcher.MatchBy([](const Contact& contact) { return contact.key; }, true);
  // Where contacts have keys, a stored one with another key is somebody else.
  for (const Identity identity : kIdentities) matcher.MatchBy(identity, !haveKeys);
  Differences differences;
  for (std::size_t i = 0; i < contacts.size(); ++i) {
    const std::size_t match = matcher.Matches()[i];
    if (match == kNone) {
      ++differences.added;
      continue;
    }
    if (!haveKeys) contacts[i].key = stored[match].contact.key;
    if (!AreEqual(contacts[i], stored[match].contact)) ++differences.changed;
  }
  differences.removed = stored.size() - (contacts.size() - differences.added);
  GiveIds(stored, matcher.Matches(), ids);
  return differences;
}

Differences Replace(DatabaseConnection& connection, std::vector<Contact> contacts, bool isForced,
                    const ImportReporter& report) {
  soci::session& session = connection.session;
  const Dialect& dialect = connection.dialect;
  Transaction transaction(session, dialect);
  if (!dialect.lockSchema.empty()) session << dialect.lockSchema;
  session << dialect.lockContacts;
  const auto stored = ReadStored(session);
  std::vector<long long> ids;
  const Differences differences = Match(stored, contacts, ids);
  if (!isForced && differences.removed > stored.size() / 2) {
    throw std::runtime_error("this would remove " + std::to_string(differences.removed) + " of " +
                             std::to_string(stored.size()) + " contacts; --force does it");
  }
  if (differences.AreNone()) return differences;
  for (const auto& sql : dialect.beforeReplacement) session << sql;
  for (const char* table : {"contacts", "search_keys", "removed_contacts"}) {
    session << "DELETE FROM " << table;
    report(0, 1);
  }
  InsertIndexed(session, dialect, contacts, ids, report);
  for (const auto& sql : dialect.afterReplacement) session << sql;
  for (const auto& sql : dialect.afterImport) session << sql;
  transaction.Commit();
  return differences;
}

}  // namespace phonebook
