#include "runtime/data/source/sql/rawgroups.h"

#include <numeric>

namespace runtime::data {

std::size_t RawGroups::Enter(std::optional<std::string_view> text) {
  if (const std::optional<std::size_t> known = Find(text)) return *known;
  const std::size_t group = fTexts.size();
  fTexts.emplace_back(text.value_or(std::string_view()));
  if (text)
    fGroupOfText.emplace(fTexts.back(), group);
  else
    fNull = group;
  fCases.push_back(0);
  if (fWeighted) fWeights.emplace_back(0);
  return group;
}

std::optional<std::size_t> RawGroups::Find(std::optional<std::string_view> text) const {
  if (!text) return fNull;
  const auto found = fGroupOfText.find(*text);
  return found == fGroupOfText.end() ? std::nullopt : std::optional<std::size_t>(found->second);
}

std::int64_t RawGroups::allCases() const { return std::accumulate(fCases.begin(), fCases.end(), std::int64_t{0}); }

}  // namespace runtime::data
