#include "phonebook/trusted_proxies.h"

#include <algorithm>
#include <boost/algorithm/string/trim.hpp>
#include <boost/asio/ip/network_v4.hpp>

#include "phonebook/url.h"

namespace phonebook {

namespace {

namespace ip = boost::asio::ip;

ip::address_v6 Mapped(const ip::address& address) {
  return address.is_v6() ? address.to_v6() : ip::make_address_v6(ip::v4_mapped, address.to_v4());
}

ip::network_v6 ParseNetwork(const std::string& text) {
  constexpr unsigned short kMappedBits = 96;
  if (text.find('/') == text.npos) return {Mapped(ip::make_address(text)), 128};
  if (text.find(':') != text.npos) return ip::make_network_v6(text).canonical();
  const auto network = ip::make_network_v4(text).canonical();
  return {Mapped(network.address()),
          static_cast<unsigned short>(network.prefix_length() + kMappedBits)};
}

}  // namespace

TrustedProxies::TrustedProxies(const std::vector<std::string>& texts) {
  for (const auto& text : texts) networks.push_back(ParseNetwork(text));
}

bool TrustedProxies::Contains(const ip::address& address) const {
  return std::any_of(networks.begin(), networks.end(), [&](const ip::network_v6& network) {
    return ip::network_v6(Mapped(address), network.prefix_length()).canonical() == network;
  });
}

ip::address TrustedProxies::ClientOf(std::string_view forwardedFor,
                                     const ip::address& proxy) const {
  while (!forwardedFor.empty()) {
    const auto comma = forwardedFor.rfind(',');  // npos + 1 is 0
    const auto address =
        IPAddressOf(boost::algorithm::trim_copy(std::string(forwardedFor.substr(comma + 1))));
    if (!address) break;
    if (!Contains(*address)) return *address;
    forwardedFor = forwardedFor.substr(0, comma == forwardedFor.npos ? 0 : comma);
  }
  return proxy;
}

}  // namespace phonebook
