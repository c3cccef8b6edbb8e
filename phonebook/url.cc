#include "phonebook/url.h"

#include <arpa/inet.h>
#include <teleform/screens/escape.h>
#include <uriparser/Uri.h>

#include <algorithm>
#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <boost/beast/core/string.hpp>
#include <utility>

namespace phonebook {

namespace {

using boost::beast::iequals;
using teleform::screens::PercentDecode;
using teleform::screens::PercentEncode;

constexpr const char* kDigits = "0123456789";

std::string TextOf(const UriTextRangeA& range) { return {range.first, range.afterLast}; }

// Whether the digits are empty or a port.
bool IsPort(const std::string& digits) {
  return digits.empty() || (digits.size() <= 5 && std::stoi(digits) <= 65535);
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
    const std::string scheme = TextOf(uri.scheme);
    return (iequals(scheme, "http") || iequals(scheme, "https")) && uri.userInfo.first == nullptr &&
           IsPort(TextOf(uri.portText));
  }

  // The host in one spelling, without the port; empty if it is neither a name nor an address.
  std::string HostName() const {
    if (uri.hostData.ip6 != nullptr) {
      boost::asio::ip::address_v6::bytes_type bytes;
      std::copy_n(uri.hostData.ip6->data, bytes.size(), bytes.begin());
      return "[" + boost::asio::ip::address_v6(bytes).to_string() + "]";
    }
    std::string name = boost::to_lower_copy(TextOf(uri.hostText));
    if (name.back() == '.') name.pop_back();
    return uri.hostData.ipFuture.first == nullptr && IsHostName(name) ? name : "";
  }

  // The host and port as they stand in the text.
  std::string Authority() const { return {AuthorityBegin(), AuthorityEnd()}; }

  // What follows the authority, up to the query. uriparser's ranges don't tell: an empty segment
  // lies outside the text.
  std::string Path() const { return {AuthorityEnd(), std::find(AuthorityEnd(), end, '?')}; }

  std::vector<std::string> Segments() const {
    std::vector<std::string> segments;
    for (const auto* segment = uri.pathHead; segment != nullptr; segment = segment->next) {
      std::string text = PercentDecode(TextOf(segment->text), false);
      if (!text.empty()) segments.push_back(std::move(text));
    }
    return segments;
  }

  bool HasQueryOrFragment() const {
    return uri.query.first != nullptr || uri.fragment.first != nullptr;
  }

  std::map<std::string, std::string> Params() const {
    std::map<std::string, std::string> params;
    const std::string query = TextOf(uri.query);
    for (std::size_t begin = 0, pairEnd = 0; pairEnd < query.size(); begin = pairEnd + 1) {
      pairEnd = std::min(query.find('&', begin), query.size());
      const std::string pair = query.substr(begin, pairEnd - begin);
      const auto equals = std::min(pair.find('='), pair.size());
      params.emplace(PercentDecode(pair.substr(0, equals), true),
                     PercentDecode(pair.substr(std::min(equals + 1, pair.size())), true));
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
  std::string text = PercentEncode(target, isAbsolute ? "/?:@!$&'()*+,;=%[]" : "/?:@!$&'()*+,;=%");
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
  const std::string text = "http://" + host;
  const URL url(text);
  if (!url.IsHTTP() || url.Authority() != host) return std::nullopt;
  std::string name = url.HostName();
  return name.empty() ? std::nullopt : std::optional(std::move(name));
}

std::optional<boost::asio::ip::address> IPAddressOf(const std::string& host) {
  boost::system::error_code error;
  auto address = boost::asio::ip::make_address(host, error);
  if (error) {
    const std::string name = HostNameOf(host).value_or("");
    address =
        boost::asio::ip::make_address(boost::trim_copy_if(name, boost::is_any_of("[]")), error);
  }
  return error ? std::nullopt : std::optional(address);
}

std::optional<std::string> NormalizeBaseURL(const std::string& text) {
  const URL url(text);
  if (!url.IsHTTP() || url.HasQueryOrFragment()) return std::nullopt;
  return text.substr(0, text.find_last_not_of('/') + 1);
}

}  // namespace phonebook
