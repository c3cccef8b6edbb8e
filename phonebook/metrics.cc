#include "phonebook/metrics.h"

#include <prometheus/text_serializer.h>

#include <utility>

namespace phonebook {

Metrics::Metrics()
    : requests(prometheus::BuildCounter()
                   .Name("phonebook_requests_total")
                   .Help("Requests answered.")
                   .Register(registry)),
      times(prometheus::BuildHistogram()
                .Name("phonebook_request_seconds")
                .Help("Times from requests to their responses.")
                .Register(registry)
                .Add({}, prometheus::Histogram::BucketBoundaries{.0001, .00025, .0005, .001, .0025,
                                                                 .005, .01, .025, .05, .1, .25, .5,
                                                                 1., 2.5})) {}

void Metrics::Count(const RequestLabels& labels, int status, Clock::duration time) noexcept {
  const std::lock_guard lock(mutex);
  auto& counter = counters[{status, labels.maker.data(), labels.page.data()}];
  if (counter == nullptr) {
    counter = &requests.Add({{"maker", std::string(labels.maker)},
                             {"page", std::string(labels.page)},
                             {"status", std::to_string(status)}});
  }
  counter->Increment();
  times.Observe(std::chrono::duration<double>(time).count());
}

std::string Metrics::Text(const std::vector<Gauge>& gauges) const {
  auto families = registry.Collect();
  for (const auto& gauge : gauges) {
    prometheus::ClientMetric metric;
    metric.gauge.value = gauge.value;
    families.push_back(
        {gauge.name, gauge.help, prometheus::MetricType::Gauge, {std::move(metric)}});
  }
  return prometheus::TextSerializer().Serialize(families);
}

}  // namespace phonebook
