#include "runtime/output/render/columnwidths.h"

#include <algorithm>
#include <numeric>

namespace runtime::output {
namespace {

int Sum(const std::vector<int>& widths) { return std::accumulate(widths.begin(), widths.end(), 0); }

// The widths for the highest level from 0 to `highest` whose widths fit; `widthsAt` does not fall with the level, and
// level 0 is taken even where it does not fit.
template <typename WidthsAt>
std::vector<int> HighestFitting(int highest, int available, WidthsAt widthsAt) {
  int low = 0;
  while (low < highest) {
    const int level = low + (highest - low + 1) / 2;
    if (Sum(widthsAt(level)) <= available) {
      low = level;
    } else {
      highest = level - 1;
    }
  }
  return widthsAt(low);
}

}  // namespace

void ColumnNeed::Include(const ColumnNeed& content) {
  least = std::max(least, content.least);
  comfortable = std::max(comfortable, content.comfortable);
  natural = std::max(natural, content.natural);
}

std::optional<std::vector<int>> ShareWidth(const std::vector<ColumnNeed>& needs, int available, Comfort comfort) {
  const auto lower = [comfort](const ColumnNeed& need) {
    return comfort == Comfort::Comfortable ? need.comfortable : need.least;
  };
  const auto widthsAt = [&](int level) {
    std::vector<int> widths;
    widths.reserve(needs.size());
    for (const ColumnNeed& need : needs) widths.push_back(std::clamp(level, lower(need), need.natural));
    return widths;
  };
  if (Sum(widthsAt(0)) > available) return std::nullopt;
  std::vector<int> widths = HighestFitting(available, available, widthsAt);
  int left = available - Sum(widths);
  for (std::size_t i = 0; i < widths.size() && left > 0; ++i) {
    if (widths[i] == needs[i].natural) continue;
    ++widths[i];
    --left;
  }
  return widths;
}

std::vector<int> SqueezeWidth(const std::vector<ColumnNeed>& needs, int available) {
  const auto narrowed = [](const ColumnNeed& need, int level) { return std::min(need.least, std::max(level, 2)); };
  int widest = 2;
  for (const ColumnNeed& need : needs) widest = std::max(widest, need.least);
  const auto textsAt = [&](int level) {
    std::vector<int> widths;
    for (const ColumnNeed& need : needs) widths.push_back(need.numeric ? need.least : narrowed(need, level));
    return widths;
  };
  std::vector<int> widths = HighestFitting(widest, available, textsAt);
  if (Sum(widths) <= available) return widths;
  return HighestFitting(widest, available, [&](int level) {
    std::vector<int> all;
    for (const ColumnNeed& need : needs) all.push_back(narrowed(need, level));
    return all;
  });
}

}  // namespace runtime::output
