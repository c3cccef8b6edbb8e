#include "phonebook/url.h"

#include <arpa/inet.h>
#include <teleform/screens/escape.h>
#include <uriparser/Uri.h>

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

namespace phonebook {

namespace {

constexpr const char* kDigits = "0123456789";

std::string TextOf(const UriTextRangeA& range) { return {range.first, range.afterLast}; }

std::string Lowercase(std::string text) {
  for (char& character : text) {
    if (character >= 'A' && character <= 'Z') character += 'a' - 'A';
  }
  return text;
}

// Whether the rest of `host` is nothing or a colon and possibly a port.
bool IsPort(const std::string& host, std::size_t at) {
  if (at == host.size()) return true;
  const std::string port = host.substr(at + 1);
  return host[at] == ':' && port.find_first_not_of(kDigits) == port.npos && port.size() <= 5 &&
         (port.empty() || std::stoi(port) <= 65535);
}

// Whether a lowercase text is a host name as DNS defines it, or an IPv4 address.
bool IsHostName(const std::string& name) {
  constexpr std::size_t kMaxName = 253;
  constexpr std::size_t kMaxLabel = 63;
  std::size_t begin = 0;
  for (std::size_t end = 0; end < name.size(); begin = end + 1) {
    end = std::min(name.find('.', begin), name.size());
    const std::size_t size = end - begin;
    if (size == 0 || size > kMaxLabel || name[begin] == '-' || name[end - 1] == '-') return false;
  }
  if (begin != name.size() + 1 || name.size() > kMaxName ||
      name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-.") != name.npos) {
    return false;
  }
  const std::size_t last = name.rfind('.') + 1;  // 0 if there is no dot
  in_addr address{};
  return name.find_first_not_of(kDigits, last) != name.npos ||
         inet_pton(AF_INET, name.c_str(), &address) == 1;
}

std::optional<std::string> NormalizeIPv6(const std::string& text) {
  in6_addr address{};
  char normalized[INET6_ADDRSTRLEN];
  if (text.find('\0') != text.npos || inet_pton(AF_INET6, text.c_str(), &address) != 1 ||
      inet_ntop(AF_INET6, &address, normalized, sizeof normalized) == nullptr) {
    return std::nullopt;
  }
  return "[" + std::string(normalized) + "]";
}

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
  if (!url.IsHTTP() || (isAbsolute && !HostNameOf(url.Authority()))) return std::nullopt;
  return RequestTarget{isAbsolute ? url.Authority() : "", url.Path(), url.Segments(), url.Params()};
}

std::optional<std::string> HostNameOf(const std::string& host) {
  const std::size_t end =
      std::min(host.size(), !host.empty() && host.front() == '[' ? host.find(']') : host.find(':'));
  if (end < host.size() && host[end] == ']') {
    return IsPort(host, end + 1) ? NormalizeIPv6(host.substr(1, end - 1)) : std::nullopt;
  }
  std::string name = Lowercase(host.substr(0, end));
  if (!name.empty() && name.back() == '.') name.pop_back();
  return IsPort(host, end) && IsHostName(name) ? std::optional(name) : std::nullopt;
}

std::optional<boost::asio::ip::address> IPAddressOf(const std::string& host) {
  boost::system::error_code error;
  auto address = boost::asio::ip::make_address(host, error);
  if (error) {
    const std::string name = HostNameOf(host).value_or("");
    const bool isBracketed = !name.empty() && name.front() == '[';
    address =
        boost::asio::ip::make_address(isBracketed ? name.substr(1, name.size() - 2) : name, error);
  }
  return error ? std::nullopt : std::optional(address);
}

std::optional<std::string> NormalizeBaseURL(const std::string& text) {
  const URL url(text);
  if (!url.IsHTTP() || url.HasQueryOrFragment()) return std::nullopt;
  return text.substr(0, text.find_last_not_of('/') + 1);
}

}  // namespace phonebook
