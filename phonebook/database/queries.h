/// @file
/// The queries of pages, searches, single contacts and notices. Each takes a bounded number of
/// steps through an index, however many contacts there are, and is prepared once.
#pragma once

#include <soci/soci.h>

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "phonebook/contacts.h"
#include "phonebook/database/schema.h"
#include "phonebook/database/selection.h"

namespace phonebook {

/// Prepared queries of a connection. Every function throws `soci::soci_error` when a query fails.
class Queries {
 public:
  Queries(soci::session& session, const Dialect& dialect);
  ~Queries();
  Queries(const Queries&) = delete;
  Queries& operator=(const Queries&) = delete;

  /// Runs every query, so that it finds nothing: fails when the database lacks what one names, or
  /// the role may not read it.
  void RunAll();

  /// Up to `size` contacts beyond `cursor`, the nearest first, whose collation keys begin with
  /// `prefix`.
  std::vector<ListedContact> ListByName(const std::string& prefix, const Cursor& cursor,
                                        std::size_t size);

  /// The contact next to `cursor`, with its collation key, if there is one.
  std::optional<ListedContact> FindNext(const Cursor& cursor);

  /// Up to `size` contacts beyond `position`, the nearest first, that have all of `words`, which
  /// are prefixes of word keys. There must be one at least, and `Selection::kMaxWords` at most.
  /// Looks at all contacts that have a rare word, but only at the nearest ones where all words are
  /// common.
  SearchResult Search(const std::vector<std::string>& words, const Cursor& position,
                      std::size_t size);

  /// The contact of that id, if there is one, as far as pages show it.
  std::optional<Contact> FindContact(long long id);

  /// The text of the notice, as far as pages show it; empty if there is none.
  std::string FindNotice(const std::string& name);

 private:
  enum Query {
    kByName,
    kPosition,
    kNext,
    kByNameAndWords,
    kLastOfMany,
    kByWord,
    kByWordOfContact,
    kWordCount
  };
  static constexpr std::size_t kQueries = kWordCount + 1;
  class ListQuery;
  class TextQuery;

  std::string SQLOf(Query query, bool isForward) const;
  std::vector<ListedContact> List(Query query, const std::string& prefix,
                                  const std::vector<std::string>& words, const Cursor& cursor,
                                  std::size_t size);
  Cursor Located(Cursor cursor);
  SearchResult SearchByName(const std::string& prefix, const std::vector<std::string>& words,
                            const Cursor& cursor, std::size_t size);
  std::vector<ListedContact> SearchByWord(const std::string& prefix,
                                          const std::vector<std::string>& words,
                                          const Cursor& cursor, std::size_t size);
  const std::string* RarestOf(const std::vector<std::string>& words);

  soci::session& session;
  const Dialect& dialect;
  std::array<std::array<std::unique_ptr<ListQuery>, 2>, kQueries> lists;
  std::unique_ptr<TextQuery> contact, notice;
};

}  // namespace phonebook
