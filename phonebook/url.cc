#include "phonebook/url.h"

#include <teleform/screens/escape.h>
#include <uriparser/Uri.h>

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

namespace phonebook {

namespace {

std::string TextOf(const UriTextRangeA& range) { return {range.first, range.afterLast}; }

// A parsed URL, which refers to the text that it was parsed from.
class URL {
 public:
  explicit URL(const std::string& text)
      : end(text.data() + text.size()),
        isValid(uriParseSingleUriExA(&uri, text.data(), end, nullptr) == URI_SUCCESS) {}
  ~URL() { uriFreeUriMembersA(&uri); }
  URL(const URL&) = delete;
  URL& operator=(const URL&) = delete;

  // Whether a client can send a request to it.
  bool IsHTTP() const {
    if (!isValid || uri.scheme.first == nullptr || uri.hostText.first == uri.hostText.afterLast) {
      return false;
    }
    const std::string scheme = Lowercase(TextOf(uri.scheme));
    const std::string port = TextOf(uri.portText);
    return (scheme == "http" || scheme == "https") && uri.userInfo.first == nullptr &&
           (port.empty() || (port.size() <= 5 && std::stoi(port) <= 65535));
  }

  // The host and port as they stand in the text.
  std::string Authority() const { return {AuthorityBegin(), AuthorityEnd()}; }

  // What follows the authority, up to the query. uriparser's ranges don't tell: an empty segment
  // lies outside the text.
  std::string Path() const { return {AuthorityEnd(), std::find(AuthorityEnd(), end, '?')}; }

  std::vector<std::string> Segments() const {
    std::vector<std::string> segments;
    for (const auto* segment = uri.pathHead; segment != nullptr; segment = segment->next) {
      std::string text = TextOf(segment->text);
      if (text.empty()) continue;
      const char* textEnd = uriUnescapeInPlaceExA(text.data(), URI_FALSE, URI_BR_DONT_TOUCH);
      text.resize(static_cast<std::size_t>(textEnd - text.data()));
      segments.push_back(std::move(text));
    }
    return segments;
  }

  bool HasQueryOrFragment() const {
    return uri.query.first != nullptr || uri.fragment.first != nullptr;
  }

  std::map<std::string, std::string> Params() const {
    std::map<std::string, std::string> params;
    std::string query = TextOf(uri.query);
    // A NUL would end the C strings of the list. This byte is no text either.
    for (auto at = query.find("%00"); at != query.npos; at = query.find("%00", at)) {
      query.replace(at, 3, "%FF");
    }
    UriQueryListA* list = nullptr;
    int count = 0;
    if (uriDissectQueryMallocExA(&list, &count, query.data(), query.data() + query.size(), URI_TRUE,
                                 URI_BR_DONT_TOUCH) != URI_SUCCESS) {
      throw std::bad_alloc();
    }
    const std::unique_ptr<UriQueryListA, decltype(&uriFreeQueryListA)> owner(list,
                                                                             uriFreeQueryListA);
    for (; list != nullptr; list = list->next) {
      params.emplace(list->key, list->value == nullptr ? "" : list->value);
    }
    return params;
  }

 private:
  bool IsBracketed() const {
    return uri.hostData.ip6 != nullptr || uri.hostData.ipFuture.first != nullptr;
  }
  const char* AuthorityBegin() const { return uri.hostText.first - (IsBracketed() ? 1 : 0); }
  const char* AuthorityEnd() const {
    return uri.portText.first != nullptr ? uri.portText.afterLast
                                         : uri.hostText.afterLast + (IsBracketed() ? 1 : 0);
  }
  static std::string Lowercase(std::string text) {
    for (char& character : text) {
      if (character >= 'A' && character <= 'Z') character += 'a' - 'A';
    }
    return text;
  }

  UriUriA uri{};
  const char* end;
  bool isValid;
};

// Percent-encodes what no URL can hold.
std::string Encoded(const std::string& target, bool isAbsolute) {
  constexpr const char* kHexadecimal = "0123456789abcdefABCDEF";
  std::string text = teleform::screens::PercentEncode(
      target, isAbsolute ? "/?:@!$&'()*+,;=%[]" : "/?:@!$&'()*+,;=%");
  for (auto at = text.find('%'); at != text.npos; at = text.find('%', at + 1)) {
    const auto end = text.find_first_not_of(kHexadecimal, at + 1);
    if (std::min(end, text.size()) < at + 3) text.insert(at + 1, "25");
  }
  return text;
}

}  // namespace

std::optional<RequestTarget> ParseRequestTarget(const std::string& target) {
  const bool isAbsolute = target.empty() || target.front() != '/';
  const std::string text = (isAbsolute ? "" : "http://host") + Encoded(target, isAbsolute);
  const URL url(text);
  if (!url.IsHTTP()) return std::nullopt;
  return RequestTarget{isAbsolute ? url.Authority() : "", url.Path(), url.Segments(), url.Params()};
}

bool IsHost(const std::string& host) {
  const std::string text = "http://" + host;
  const URL url(text);
  return url.IsHTTP() && url.Authority() == host;
}

std::optional<std::string> NormalizeBaseURL(const std::string& text) {
  const URL url(text);
  if (!url.IsHTTP() || url.HasQueryOrFragment()) return std::nullopt;
  return text.substr(0, text.find_last_not_of('/') + 1);
}

}  // namespace phonebook
