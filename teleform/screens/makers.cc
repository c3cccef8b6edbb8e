#include <teleform/screens/makers.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace teleform::screens {

namespace {

// The table of the makers. -Werror=switch refuses it when it lacks one of them.
consteval MakerFacts FactsFor(Maker maker) {
  switch (maker) {
    case Maker::kAastra:
      return {maker, "Aastra", "aastra", 15, true};
    case Maker::kCisco:
      return {maker, "Cisco", "cisco", 30, true};
    case Maker::kPolycom:
      return {maker, "Polycom", "polycom", 8, false};
    case Maker::kSnom:
      return {maker, "Snom", "snom", 20, false};
    case Maker::kYealink:
      return {maker, "Yealink", "yealink", 20, false};
  }
  return {};
}

consteval std::size_t CountMakers() {
  std::size_t count = 0;
  while (!FactsFor(static_cast<Maker>(count)).name.empty()) ++count;
  return count;
}

consteval std::array<MakerFacts, CountMakers()> MakeTable() {
  std::array<MakerFacts, CountMakers()> table{};
  for (std::size_t i = 0; i < table.size(); ++i) table[i] = FactsFor(static_cast<Maker>(i));
  return table;
}

constexpr auto kMakers = MakeTable();

char LowerCase(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                              : character;
}

}  // namespace

MakerRange AllMakers() noexcept { return {kMakers.data(), kMakers.data() + kMakers.size()}; }

const MakerFacts& FactsOf(Maker maker) {
  const auto index = static_cast<std::size_t>(maker);
  if (index >= kMakers.size()) throw std::invalid_argument("no such maker");
  return kMakers[index];
}

std::optional<Maker> MakerOfSlug(std::string_view slug) noexcept {
  for (const auto& facts : kMakers) {
    if (facts.slug == slug) return facts.maker;
  }
  return std::nullopt;
}

std::optional<Maker> MakerOfUserAgent(std::string_view userAgent) noexcept {
  for (const auto& facts : kMakers) {
    const auto* const found =
        std::search(userAgent.begin(),
                    userAgent.end(),
                    facts.slug.begin(),
                    facts.slug.end(),
                    [](char character, char lower) { return LowerCase(character) == lower; });
    if (found != userAgent.end()) return facts.maker;
  }
  return std::nullopt;
}

}  // namespace teleform::screens
