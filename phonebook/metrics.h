/// @file
/// Counters of requests, in the format of Prometheus.
#pragma once

#include <prometheus/counter.h>
#include <prometheus/family.h>
#include <prometheus/histogram.h>
#include <prometheus/registry.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace phonebook {

/// Which counters a request belongs to.
struct RequestLabels {
  static constexpr std::size_t kOther = static_cast<std::size_t>(-1);
  std::size_t maker = kOther;  ///< In the list of makers.
  std::size_t page = kOther;   ///< In the list of pages.
};

/// Counts requests. Callable from any thread.
class Metrics {
 public:
  using Clock = std::chrono::steady_clock;

  /// A value of the moment.
  struct Gauge {
    const char* name;
    const char* help;
    double value;
  };

  /// The last names are those of all others.
  Metrics(std::vector<std::string> makers, std::vector<std::string> pages);

  /// Counts a response that took `time`.
  void Count(const RequestLabels& labels, int status, Clock::duration time) noexcept;

  /// All counters and `gauges` as a text.
  std::string Text(const std::vector<Gauge>& gauges) const;

 private:
  std::vector<std::string> makers, pages;
  prometheus::Registry registry;
  prometheus::Family<prometheus::Counter>& requests;
  prometheus::Histogram& times;
  // By maker, page and status, once they have counted: finding one in the family takes as long as
  // a page.
  std::vector<std::atomic<prometheus::Counter*>> counters;
};

}  // namespace phonebook
