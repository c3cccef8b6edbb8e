#include "phonebook/metrics.h"

#include <prometheus/metric_family.h>
#include <prometheus/text_serializer.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace phonebook {

namespace {

using prometheus::ClientMetric;
using prometheus::MetricFamily;
using prometheus::MetricType;

std::vector<std::string> WithOthers(std::vector<std::string> names) {
  names.emplace_back("other");
  return names;
}

}  // namespace

Metrics::Metrics(std::vector<std::string> theMakers, std::vector<std::string> thePages)
    : makers(WithOthers(std::move(theMakers))),
      pages(WithOthers(std::move(thePages))),
      requests(makers.size() * pages.size() * kStatuses.size()) {}

void Metrics::Count(const RequestLabels& labels, int status, Clock::duration time) noexcept {
  const std::size_t maker = std::min(labels.maker, makers.size() - 1);
  const std::size_t page = std::min(labels.page, pages.size() - 1);
  const auto* const found = std::find(kStatuses.begin(), kStatuses.end(), status);
  const auto index = static_cast<std::size_t>(std::distance(kStatuses.begin(), found));
  const std::size_t at = (maker * pages.size() + page) * kStatuses.size() + index;
  if (index < kStatuses.size()) requests[at].fetch_add(1, std::memory_order_relaxed);
  const double seconds = std::chrono::duration<double>(time).count();
  const auto* const bound = std::lower_bound(kBounds.begin(), kBounds.end(), seconds);
  times[static_cast<std::size_t>(std::distance(kBounds.begin(), bound))].fetch_add(
      1, std::memory_order_relaxed);
  nanoseconds.fetch_add(static_cast<std::uint64_t>(std::chrono::nanoseconds(time).count()),
                        std::memory_order_relaxed);
}

std::string Metrics::Text(const std::vector<Gauge>& gauges) const {
  MetricFamily counts{"phonebook_requests_total", "Requests answered.", MetricType::Counter, {}};
  for (std::size_t i = 0; i < requests.size(); ++i) {
    ClientMetric metric;
    metric.counter.value = static_cast<double>(requests[i]);
    if (metric.counter.value == 0) continue;
    const std::size_t page = i / kStatuses.size();
    metric.label = {{"maker", makers[page / pages.size()]},
                    {"page", pages[page % pages.size()]},
                    {"status", std::to_string(kStatuses[i % kStatuses.size()])}};
    counts.metric.push_back(std::move(metric));
  }
  MetricFamily durations{"phonebook_request_seconds", "Times from requests to their responses.",
                         MetricType::Histogram, std::vector<ClientMetric>(1)};
  auto& histogram = durations.metric.front().histogram;
  for (std::size_t i = 0; i < times.size(); ++i) {
    histogram.sample_count += times[i];
    if (i < kBounds.size()) histogram.bucket.push_back({histogram.sample_count, kBounds[i]});
  }
  histogram.sample_sum = static_cast<double>(nanoseconds) / std::nano::den;
  std::vector<MetricFamily> families = {std::move(counts), std::move(durations)};
  for (const auto& gauge : gauges) {
    ClientMetric metric;
    metric.gauge.value = gauge.value;
    families.push_back({gauge.name, gauge.help, MetricType::Gauge, {std::move(metric)}});
  }
  return prometheus::TextSerializer().Serialize(families);
}

}  // namespace phonebook
