// Holds connections to a server until the program is killed: idle ones, and slow ones that send a
// request byte by byte and reconnect when the server closes the connection.
//
// Usage: idle_clients PORT IDLE SLOW    prints "connected" when all idle connections are open
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <boost/asio/buffer.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <list>
#include <string_view>

namespace {

using boost::asio::ip::tcp;
using boost::system::error_code;

class SlowClient {
 public:
  SlowClient(boost::asio::io_context& context, tcp::endpoint theServer)
      : server(std::move(theServer)), socket(context), timer(context) {
    Connect();
  }

 private:
  void Connect() {
    error_code ignored;
    socket.close(ignored);
    sent = 0;
    socket.async_connect(server, [this](error_code) { SendByte(); });
  }
  void SendByte() {
    constexpr std::string_view kRequest = "GET /snom/directory HTTP/1.1\r\nX: xxxxxxxxxxxxxxxxxx";
    constexpr std::chrono::milliseconds kPause(200);
    error_code error;
    socket.send(boost::asio::buffer(&kRequest[sent], 1), 0, error);
    sent = std::min(sent + 1, kRequest.size() - 1);
    timer.expires_after(kPause);
    timer.async_wait([this, error](error_code) {
      if (error) {
        Connect();
      } else {
        SendByte();
      }
    });
  }

  tcp::endpoint server;
  tcp::socket socket;
  boost::asio::steady_timer timer;
  std::size_t sent = 0;
};

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 4) return EXIT_FAILURE;
  rlimit files{};
  getrlimit(RLIMIT_NOFILE, &files);
  files.rlim_cur = files.rlim_max;
  setrlimit(RLIMIT_NOFILE, &files);
  boost::asio::io_context context(1);
  const tcp::endpoint server(boost::asio::ip::address_v4::loopback(),
                             static_cast<unsigned short>(std::atoi(argv[1])));
  std::list<tcp::socket> idle;
  for (int i = 0; i < std::atoi(argv[2]); ++i) idle.emplace_back(context).connect(server);
  std::list<SlowClient> slow;
  for (int i = 0; i < std::atoi(argv[3]); ++i) slow.emplace_back(context, server);
  const auto keepRunning = boost::asio::make_work_guard(context);
  std::cout << "connected\n" << std::flush;
  context.run();
} catch (const std::exception& error) {
  std::cerr << error.what() << "\n";
  return EXIT_FAILURE;
}
