/// @file
/// The proxies whose word on their clients counts.
#pragma once

#include <boost/asio/ip/address.hpp>
#include <boost/asio/ip/network_v6.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace phonebook {

class TrustedProxies {
 public:
  TrustedProxies() = default;

  /// @param networks IP addresses, or networks such as "10.0.0.0/8".
  /// @throws boost::system::system_error when one is malformed.
  explicit TrustedProxies(const std::vector<std::string>& networks);

  bool Contains(const boost::asio::ip::address& address) const;

  /// The client of a request that came from a proxy: the last address in X-Forwarded-For that is
  /// no trusted proxy; `proxy` if there is none.
  boost::asio::ip::address ClientOf(std::string_view forwardedFor,
                                    const boost::asio::ip::address& proxy) const;

 private:
  std::vector<boost::asio::ip::network_v6> networks;  // of IPv4 the mapped ones
};

}  // namespace phonebook
