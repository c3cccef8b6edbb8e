/// @file
/// A web server that bounds what a request may cost.
#pragma once

#include <httplib.h>

#include <chrono>
#include <cstddef>

namespace phonebook {

/// httplib's server, with bounds on what the distribution's version leaves open: how large a
/// request may be in all, headers included, and how long it may take to arrive. What exceeds them
/// is answered by 400, and the connection ends. The other settings of httplib's server hold as they
/// do there.
class BoundedServer : public httplib::Server {
 public:
  BoundedServer(std::size_t theLargestRequest, std::chrono::milliseconds theLongestArrival)
      : largestRequest(theLargestRequest), longestArrival(theLongestArrival) {}

 private:
  bool process_and_close_socket(socket_t socket) override;

  std::size_t largestRequest;
  std::chrono::milliseconds longestArrival;
};

}  // namespace phonebook
