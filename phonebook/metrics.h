/// @file
/// Counters of requests, in the format of Prometheus.
#pragma once

#include <prometheus/counter.h>
#include <prometheus/family.h>
#include <prometheus/histogram.h>
#include <prometheus/registry.h>

#include <chrono>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace phonebook {

/// The counter that a request belongs to. Both names are among a few, and outlive the metrics.
struct RequestLabels {
  std::string_view maker = "other";
  std::string_view page = "other";
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

  Metrics();

  /// Counts a response that took `time`.
  void Count(const RequestLabels& labels, int status, Clock::duration time) noexcept;

  /// All counters and `gauges` as a text.
  std::string Text(const std::vector<Gauge>& gauges) const;

 private:
  prometheus::Registry registry;
  prometheus::Family<prometheus::Counter>& requests;
  prometheus::Histogram& times;
  std::mutex mutex;  // of the counters
  // By status and where the names are, as finding one in the family takes as long as a page.
  std::map<std::tuple<int, const char*, const char*>, prometheus::Counter*> counters;
};

}  // namespace phonebook
