#include "phonebook/metrics.h"

#include <prometheus/text_serializer.h>

#include <algorithm>
#include <utility>

namespace phonebook {

namespace {

constexpr std::size_t kFirstStatus = 200;
constexpr std::size_t kStatusCount = 304;  // up to 503

}  // namespace

Metrics::Metrics(std::vector<std::string> theMakers, std::vector<std::string> thePages)
    : makers(std::move(theMakers)),
      pages(std::move(thePages)),
      requests(prometheus::BuildCounter()
                   .Name("phonebook_requests_total")
                   .Help("Requests answered.")
                   .Register(registry)),
      times(prometheus::BuildHistogram()
                .Name("phonebook_request_seconds")
                .Help("Times from requests to their responses.")
                .Register(registry)
                .Add({}, prometheus::Histogram::BucketBoundaries{.0001, .00025, .0005, .001, .0025,
                                                                 .005, .01, .025, .05, .1, .25, .5,
                                                                 1., 2.5})),
      counters(makers.size() * pages.size() * kStatusCount) {}

void Metrics::Count(const RequestLabels& labels, int status, Clock::duration time) noexcept {
  const std::size_t maker = std::min(labels.maker, makers.size() - 1);
  const std::size_t page = std::min(labels.page, pages.size() - 1);
  const std::size_t index = static_cast<std::size_t>(status) - kFirstStatus;
  auto& counter = counters[(maker * pages.size() + page) * kStatusCount + index];
  if (counter == nullptr) {
    counter = &requests.Add(
        {{"maker", makers[maker]}, {"page", pages[page]}, {"status", std::to_string(status)}});
  }
  counter.load()->Increment();
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
