/// @file
/// The pages of the phone book.
#pragma once

#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "phonebook/screens.h"
#include "phonebook/store.h"

namespace phonebook {

constexpr const char* kNoPage = "The phone book has no such page.";

/// A request that is answered by `status`. What it tells is for the phone's user.
class Refusal : public std::runtime_error {
 public:
  Refusal(int theStatus, const std::string& reason) : runtime_error(reason), status(theStatus) {}
  int status;
};

/// A phone asks for a page.
struct Visit {
  Maker maker;
  std::string server;                         ///< "http://" and the host, before all paths.
  std::vector<std::string> path;              ///< The page, and what follows it.
  std::map<std::string, std::string> params;  ///< The query.
};

/// A page that needs to be told nothing, or a sample of one that does.
struct PageName {
  std::string title;
  std::string path;  ///< What follows the maker's path.
};
std::vector<PageName> PageNames();

/// Whether there is such a page, as a `Visit` names it.
bool IsPage(const std::vector<std::string>& path);

/// The document of a page, or how to compose it with what the database tells, which throws
/// `Refusal` when the page can't be shown, or `Unavailable`.
using Finding = std::variant<Document, std::function<Document(Store&)>>;

/// The page that a phone asks for.
/// @throws Refusal when there is none, or it is asked for wrongly.
Finding Find(const Visit& visit);

/// What a phone shows instead of the page that was asked for.
Document Apology(Maker maker, const std::string& server, const std::string& title,
                 const std::string& reason);

}  // namespace phonebook
