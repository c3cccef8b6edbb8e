/// @file
/// The pages of the phone book: what each shows, for a phone of any maker.
#pragma once

#include <teleform/screens/compose.h>

#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "phonebook/catalogue.h"
#include "phonebook/database/store.h"

namespace phonebook {

using teleform::screens::Document;
using teleform::screens::Maker;

constexpr const char* kNoPage = Marked("The phone book has no such page.");

/// A request that is answered by an error page.
class HTTPError : public std::runtime_error {
 public:
  /// @param reason what the page tells the phone's user.
  HTTPError(int theStatus, const std::string& reason) : runtime_error(reason), status(theStatus) {}
  int status;
};

/// What all pages have in common.
struct PageOptions {
  std::string region;  ///< The country of numbers without one, such as "DE"; empty for none.
  Catalogue catalogue{};
};

/// A request for a page.
struct PageRequest {
  Maker maker;
  std::string base;                           ///< What links begin with, such as "http://host".
  std::vector<std::string> path;              ///< The segments behind the maker's.
  std::map<std::string, std::string> params;  ///< The query.
  const PageOptions* options;                 ///< Outlives the request.
};

/// The URI of the maker's home page.
std::string HomeURI(const std::string& base, Maker maker);

/// The document of a page, or how to compose it from the database. The function throws `HTTPError`
/// when there is no such page and `DatabaseUnavailable` when the database fails.
using PageResult = std::variant<Document, std::function<Document(Store&)>>;

/// A page in the list of pages.
struct Page {
  std::string path;   ///< The segment behind the maker's.
  const char* title;  ///< In the preview.
  /// Throws `HTTPError` when a parameter is malformed.
  PageResult (*compose)(const PageRequest&);
  bool takesContact = false;  ///< Whether the id of a contact follows the path.
  bool isSearch = false;      ///< Whether it looks at many contacts.
};
const std::vector<Page>& AllPages();

/// The page at `path`; null if there is none.
const Page* FindPage(const std::vector<std::string>& path);

/// The page that takes the place of another one. Its texts are English, and are translated.
Document ComposeErrorPage(const PageRequest& request, const char* title, const std::string& reason);

}  // namespace phonebook
