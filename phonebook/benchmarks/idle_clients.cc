// Holds connections to a server until the program is killed: idle ones, and slow ones that send a
// request byte by byte and reconnect when the server closes the connection.
//
// Usage: idle_clients PORT IDLE SLOW    prints "connected" when all idle connections are open
#include <algorithm>
#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <list>
#include <string_view>
#include <thread>

namespace {

using boost::asio::ip::tcp;

struct SlowClient {
  tcp::socket socket;
  std::size_t sent = 0;
};

void SendByte(SlowClient& client, const tcp::endpoint& server) {
  constexpr std::string_view kRequest = "GET /snom/directory HTTP/1.1\r\nX: xxxxxxxxxxxxxxxxxx";
  boost::system::error_code error;
  client.socket.send(boost::asio::buffer(&kRequest[client.sent], 1), 0, error);
  client.sent = std::min(client.sent + 1, kRequest.size() - 1);
  if (!error) return;
  client = {tcp::socket(client.socket.get_executor())};
  client.socket.connect(server, error);
}

}  // namespace

int main(int argc, char** argv) try {
  constexpr std::chrono::milliseconds kPause(200);
  if (argc != 4) return EXIT_FAILURE;
  boost::asio::io_context context(1);
  const tcp::endpoint server(boost::asio::ip::address_v4::loopback(),
                             static_cast<unsigned short>(std::atoi(argv[1])));
  std::list<tcp::socket> idle;
  for (int i = 0; i < std::atoi(argv[2]); ++i) idle.emplace_back(context).connect(server);
  std::list<SlowClient> slow;
  for (int i = 0; i < std::atoi(argv[3]); ++i) slow.push_back({tcp::socket(context)});
  std::cout << "connected\n" << std::flush;
  for (;; std::this_thread::sleep_for(kPause)) {
    for (auto& client : slow) SendByte(client, server);
  }
} catch (const std::exception& error) {
  std::cerr << error.what() << "\n";
  return EXIT_FAILURE;
}
