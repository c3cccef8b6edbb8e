/// @file
/// URLs of requests and options, parsed by uriparser.
#pragma once

#include <boost/asio/ip/address.hpp>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace phonebook {

/// What a request asks for.
struct RequestTarget {
  std::string host;                           ///< With the port; empty but in absolute form.
  std::string path;                           ///< Not decoded.
  std::vector<std::string> segments;          ///< Those of the path, decoded, but for empty ones.
  std::map<std::string, std::string> params;  ///< The query, decoded; of equal names the first.
};

/// Parses a request target in origin form ("/path?query") or absolute form ("http://host/path").
/// Characters that a URL can't hold are taken as if they were percent-encoded: not every phone
/// encodes what its user types.
/// @return nothing when the target has another form or is malformed.
std::optional<RequestTarget> ParseRequestTarget(const std::string& target);

/// The name in a Host field: a host name or IP address, without the port, in lowercase and in one
/// spelling.
/// @return nothing when `host` is malformed.
std::optional<std::string> HostNameOf(const std::string& host);

/// The IP address in a host, without the port: "192.0.2.1:80", "[::1]:80" or "::1".
/// @return nothing when `host` is no IP address.
std::optional<boost::asio::ip::address> IPAddressOf(const std::string& host);

/// The URL of a server without slashes at its end, so that paths can follow.
/// @return nothing unless it is an HTTP(S) URL of a host and possibly a path.
std::optional<std::string> NormalizeBaseURL(const std::string& url);

}  // namespace phonebook
