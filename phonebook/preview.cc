#include "phonebook/preview.h"

#include <teleform/screens/makers.h>

#include <nlohmann/json.hpp>
#include <utility>

#include "phonebook/assets.h"
#include "phonebook/pages.h"

namespace phonebook {

namespace {

Response MakeResponse(const std::string& type, std::string body) {
  return {200,
          type,
          std::move(body),
          {{"Cache-Control", "no-cache"},
           {"X-Content-Type-Options", "nosniff"},
           {"Content-Security-Policy",
            "default-src 'self'; img-src data:; base-uri 'none'; frame-ancestors 'none'"}}};
}

// The makers and pages that the preview offers.
std::string Choices() {
  nlohmann::json choices = {{"makers", nlohmann::json::array()},
                            {"pages", nlohmann::json::array()}};
  for (const auto& facts : teleform::screens::AllMakers()) {
    choices["makers"].push_back({{"name", facts.name}, {"path", facts.slug}});
  }
  for (const auto& page : AllPages()) {
    choices["pages"].push_back(
        {{"title", page.title}, {"path", page.path + (page.takesContact ? "/1" : "")}});
  }
  return choices.dump();
}

}  // namespace

std::map<std::string, Response> MakePreview() {
  std::map<std::string, Response> responses;
  for (const auto& asset : kPreviewAssets) {
    responses.emplace(asset.path, MakeResponse(asset.type, asset.content));
  }
  responses.emplace("/preview/choices.json", MakeResponse("application/json", Choices()));
  return responses;
}

}  // namespace phonebook
