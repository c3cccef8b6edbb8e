#include "phonebook/bounded_server.h"

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <functional>
#include <string>

namespace phonebook {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

bool IsReady(int socket, short event, Clock::time_point until) {
  const auto left = std::chrono::ceil<milliseconds>(until - Clock::now());
  pollfd descriptor{socket, event, 0};
  return poll(&descriptor, 1, static_cast<int>(std::max(left.count(), milliseconds::rep{0}))) > 0;
}

class Connection : public httplib::Stream {
 public:
  Connection(int theSocket, milliseconds theWriteTimeout)
      : descriptor(theSocket), writeTimeout(theWriteTimeout) {}

  // Waits for the first byte of a request, and returns whether it came.
  bool Await(milliseconds timeout, const std::function<bool()>& isStopping) {
    constexpr milliseconds kGlance(100);
    const auto until = Clock::now() + timeout;
    while (begin == end && !IsReady(descriptor, POLLIN, std::min(until, Clock::now() + kGlance))) {
      if (Clock::now() >= until || isStopping()) return false;
    }
    return true;
  }

  // From now on as many bytes may be read, until then.
  void Bound(std::size_t bytes, Clock::time_point until) {
    bytesLeft = bytes;
    deadline = until;
  }

  // Lets the last answer arrive: closing with bytes unread would take it back.
  void Finish() {
    constexpr milliseconds kLinger(500);
    const auto until = Clock::now() + kLinger;
    shutdown(descriptor, SHUT_WR);
    while (IsReady(descriptor, POLLIN, until) &&
           recv(descriptor, buffer.data(), buffer.size(), 0) > 0) {
    }
  }

  bool is_readable() const override {
    return bytesLeft > 0 && (begin < end || IsReady(descriptor, POLLIN, deadline));
  }
  bool is_writable() const override {
    return IsReady(descriptor, POLLOUT, Clock::now() + writeTimeout);
  }
  ssize_t read(char* to, std::size_t size) override {
    if (!is_readable()) return -1;
    if (begin == end) {
      const ssize_t received = recv(descriptor, buffer.data(), buffer.size(), 0);
      if (received <= 0) return received;
      begin = 0;
      end = static_cast<std::size_t>(received);
    }
    const std::size_t taken = std::min({size, end - begin, bytesLeft});
    std::memcpy(to, buffer.data() + begin, taken);
    begin += taken;
    bytesLeft -= taken;
    return static_cast<ssize_t>(taken);
  }
  ssize_t write(const char* from, std::size_t size) override {
    return is_writable() ? send(descriptor, from, size, MSG_NOSIGNAL) : -1;
  }
  void get_remote_ip_and_port(std::string& ip, int& port) const override {
    Describe(getpeername, ip, port);
  }
  void get_local_ip_and_port(std::string& ip, int& port) const override {
    Describe(getsockname, ip, port);
  }
  socket_t socket() const override { return descriptor; }

 private:
  void Describe(int (*name)(int, sockaddr*, socklen_t*), std::string& ip, int& port) const {
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    std::array<char, NI_MAXHOST> host{};
    std::array<char, NI_MAXSERV> service{};
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (name(descriptor, generic, &size) != 0 ||
        getnameinfo(generic, size, host.data(), host.size(), service.data(), service.size(),
                    NI_NUMERICHOST | NI_NUMERICSERV) != 0) {
      return;
    }
    ip = host.data();
    port = std::atoi(service.data());
  }

  int descriptor;
  milliseconds writeTimeout;
  std::size_t bytesLeft = 0;
  Clock::time_point deadline;
  std::array<char, 4096> buffer;  // from begin to end there is what was received and not yet read
  std::size_t begin = 0;
  std::size_t end = 0;
};

}  // namespace

bool BoundedServer::process_and_close_socket(socket_t socket) {
  const auto isStopping = [this] { return svr_sock_ == INVALID_SOCKET; };
  Connection connection(socket, std::chrono::seconds(write_timeout_sec_));
  auto left = keep_alive_max_count_;
  bool isKept = true;
  do {  // once also when stopping, so that what has arrived is answered
    isKept = connection.Await(std::chrono::seconds(keep_alive_timeout_sec_), isStopping);
    if (!isKept) break;
    connection.Bound(largestRequest, Clock::now() + longestArrival);
    bool isClosed = false;
    isKept = process_request(connection, left == 1 || isStopping(), isClosed, nullptr) && !isClosed;
  } while (isKept && --left > 0 && !isStopping());
  connection.Finish();
  close(socket);
  return isKept;
}

}  // namespace phonebook
