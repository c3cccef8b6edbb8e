/// @file
/// The index of contacts: collation keys, by which they are listed, and search keys, by which they
/// are found, kept up to date whoever writes contacts.
///
/// A contact is *pending* from when another program writes or deletes it until it is indexed, or
/// its search keys are deleted.
#pragma once

#include <soci/soci.h>

#include <chrono>
#include <string>
#include <vector>

#include "phonebook/contacts.h"
#include "phonebook/database/bulk_statement.h"
#include "phonebook/database/schema.h"

namespace phonebook {

/// The word keys of all searched columns, each after a `kWordMark`.
std::string AllKeys(const Contact& contact);

/// A row of `contacts` that another program has written, or of `removed_contacts`.
struct PendingContact {
  long long id = 0;       ///< Of the row.
  long long contact = 0;  ///< The id of the contact.
  Contact text{};         ///< Empty for a deleted contact.
  std::string collationKey{}, allKeys{};
};

/// Indexes pending contacts, by statements that are prepared once.
class SearchIndexer {
 public:
  SearchIndexer(soci::session& session, const Dialect& dialect);

  /// Indexes pending contacts in one transaction, some hundred at most, and begins none after
  /// `limit`.
  /// @return whether more of them are pending.
  bool IndexPending(std::chrono::milliseconds limit);

 private:
  using Clock = std::chrono::steady_clock;

  // A prepared query for pending contacts.
  class PendingQuery {
   public:
    PendingQuery(soci::session& session, const std::string& sql);
    std::vector<PendingContact> Run();

   private:
    PendingContact row;
    soci::statement statement;
  };

  void Remove(const PendingContact& removed);
  void Index(const PendingContact& changed);
  bool ForEach(PendingQuery& pending, void (SearchIndexer::*work)(const PendingContact&),
               Clock::time_point end);
  void DeleteKeys(const PendingContact& old);
  void Flush();

  soci::session& session;
  const Dialect& dialect;
  PendingQuery findRemoved, findChanged, lockRemoved, lockChanged;
  BulkStatement deleteKeys, insertKeys, markIndexed, markPending, deleteRemoved;
};

}  // namespace phonebook
