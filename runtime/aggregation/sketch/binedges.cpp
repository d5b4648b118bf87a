#include "runtime/aggregation/sketch/binedges.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>
#include <system_error>

namespace runtime::aggregation {

namespace {

using Limits = std::numeric_limits<double>;

// So large a multiple of a width is still several doubles away from the next one.
constexpr double kLargestMultiple = 1e14;
// Of this magnitude a half more or less is still exact.
constexpr double kLargestCentred = 2251799813685248.0;  // 2^51

/// mantissa x 10^exponent; the mantissa is 1, 2 or 5.
struct NiceWidth {
  int mantissa;
  int exponent;

  NiceWidth Wider() const {
    if (mantissa == 5) return {1, exponent + 1};
    return {mantissa == 1 ? 2 : 5, exponent};
  }
  NiceWidth Narrower() const {
    if (mantissa == 1) return {5, exponent - 1};
    return {mantissa == 5 ? 2 : 1, exponent};
  }
};

/// The nearest double to factor x width; the largest one, or 0, where that is out of range.
double Multiple(const NiceWidth& width, std::int64_t factor) {
  const std::string text = std::to_string(factor * width.mantissa) + "e" + std::to_string(width.exponent);
  double value = 0.0;
  const std::from_chars_result read = std::from_chars(text.data(), text.data() + text.size(), value);
  if (read.ec != std::errc::result_out_of_range) return value;
  if (width.exponent < 0) return 0.0;
  return factor < 0 ? Limits::lowest() : Limits::max();
}

NiceWidth NearestNice(double width) {
  char text[32];
  const char* const end = std::to_chars(text, text + sizeof text, width, std::chars_format::scientific).ptr;
  const char* const e = std::find(static_cast<const char*>(text), end, 'e');
  double mantissa = 0.0;
  int exponent = 0;
  std::from_chars(text, e, mantissa);
  // from_chars does not read the plus sign.
  std::from_chars(e[1] == '+' ? e + 2 : e + 1, end, exponent);
  if (mantissa < 1.5) return {1, exponent};
  if (mantissa < 3.0) return {2, exponent};
  if (mantissa < 7.0) return {5, exponent};
  return {1, exponent + 1};
}

/// Edges as multiples of a width.
struct EdgeRange {
  std::int64_t first;
  std::int64_t last;

  std::int64_t bins() const { return last - first; }
};

/// Null where the width is too narrow for the doubles there.
std::optional<EdgeRange> RangeOf(const NiceWidth& width, double lowest, double highest) {
  const double unit = Multiple(width, 1);
  if (!(std::max(std::abs(lowest), std::abs(highest)) / unit < kLargestMultiple)) return std::nullopt;
  EdgeRange range{};
  range.first = static_cast<std::int64_t>(std::floor(lowest / unit));
  while (Multiple(width, range.first) > lowest) --range.first;
  while (Multiple(width, range.first + 1) <= lowest) ++range.first;
  range.last = std::max(range.first + 1, static_cast<std::int64_t>(std::ceil(highest / unit)));
  while (Multiple(width, range.last) < highest) ++range.last;
  while (range.last - 1 > range.first && Multiple(width, range.last - 1) >= highest) --range.last;
  return range;
}

double RuleWidth(const BinBasis& basis) {
  // In halves, because the whole may be beyond the largest double.
  const double halfOfQuartiles = basis.upperQuartile / 2.0 - basis.lowerQuartile / 2.0;
  if (halfOfQuartiles > 0.0) return 4.0 * halfOfQuartiles / std::cbrt(basis.weight);
  const double classes = basis.weight > 1.0 ? std::ceil(std::log2(basis.weight)) + 1.0 : 1.0;
  return basis.highest / classes - basis.lowest / classes;
}

}  // namespace

std::vector<double> BinEdges(const BinBasis& basis) {
  // Much narrower than the narrowest width that can be taken, no search is needed.
  const double narrowest = basis.highest / (2 * kMostBins) - basis.lowest / (2 * kMostBins);
  const double wished = std::max({RuleWidth(basis), narrowest, Limits::denorm_min()});
  NiceWidth width = NearestNice(std::min(wished, Limits::max()));
  std::optional<EdgeRange> range = RangeOf(width, basis.lowest, basis.highest);
  while (!range || range->bins() > kMostBins) {
    width = width.Wider();
    range = RangeOf(width, basis.lowest, basis.highest);
  }
  while (range->bins() < kFewestBins) {
    const std::optional<EdgeRange> finer = RangeOf(width.Narrower(), basis.lowest, basis.highest);
    if (!finer) break;
    width = width.Narrower();
    range = finer;
  }
  std::vector<double> edges;
  for (std::int64_t edge = range->first; edge <= range->last; ++edge) edges.push_back(Multiple(width, edge));
  return edges;
}

std::vector<double> WholeNumberEdges(double lowest, double highest) {
  std::vector<double> edges;
  const bool areWhole = std::floor(lowest) == lowest && std::floor(highest) == highest;
  const bool areCentred = lowest >= -kLargestCentred && highest <= kLargestCentred;
  if (!areWhole || !areCentred || highest - lowest >= kMostBins) return edges;
  for (double edge = lowest - 0.5; edge <= highest + 0.5; edge += 1.0) edges.push_back(edge);
  return edges;
}

}  // namespace runtime::aggregation
