/// @file
/// Requests and responses, as far as the phone book needs them.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace phonebook {

/// A request; of a malformed one possibly the address alone.
struct Request {
  std::string method;
  std::string target;  ///< As it came.
  std::string host;    ///< The Host field if it is well-formed.
  std::string userAgent;
  std::string address;          ///< The client's.
  std::string client;           ///< The address, or the network (/64) of an IPv6 address.
  const char* scheme = "http";  ///< Of the client's URL.
  bool isCrossSite = false;     ///< Whether a page of another site made a browser send it.
};

struct Response {
  int status = 200;
  std::string type;
  std::string body;
  std::vector<std::pair<std::string, std::string>> fields{};  ///< Further header fields.
};

/// Takes the response to a request, once.
using ResponseCallback = std::function<void(Response)>;

}  // namespace phonebook
