/// @file
/// Counters of requests, in the format of Prometheus.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace phonebook {

/// Which counters a request belongs to.
struct RequestLabels {
  static constexpr std::size_t kOther = static_cast<std::size_t>(-1);
  std::size_t maker = kOther;  ///< In the list of makers.
  std::size_t page = kOther;   ///< In the list of pages.
};

/// Counts requests without a lock. Callable from any thread.
class Metrics {
 public:
  using Clock = std::chrono::steady_clock;

  /// A value of the moment.
  struct Gauge {
    const char* name;
    const char* help;
    double value;
  };

  Metrics(std::vector<std::string> makers, std::vector<std::string> pages);

  /// Counts a response that took `time`.
  void Count(const RequestLabels& labels, int status, Clock::duration time) noexcept;

  /// All counters and `gauges` as a text.
  std::string Text(const std::vector<Gauge>& gauges) const;

 private:
  static constexpr std::array kStatuses = {200, 400, 403, 404, 405, 408, 413,
                                           414, 421, 431, 500, 501, 503};
  static constexpr std::array kBounds = {.0001, .00025, .0005, .001, .0025, .005, .01,
                                         .025,  .05,    .1,    .25,  .5,    1.,   2.5};
  using Counter = std::atomic<std::uint64_t>;

  std::vector<std::string> makers, pages;  // with one for others at the end
  std::vector<Counter> requests;           // by maker, page and status
  std::array<Counter, kBounds.size() + 1> times{};
  Counter nanoseconds{0};
};

}  // namespace phonebook
