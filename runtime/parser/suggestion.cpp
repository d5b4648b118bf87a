#include "runtime/parser/suggestion.h"

#include <algorithm>
#include <cstddef>
#include <limits>

#include "runtime/parser/characters.h"

namespace runtime::parser {

namespace {

constexpr std::size_t kShortestAbbreviation = 2;

/// Optimal string alignment distance: insertions, deletions, substitutions and swaps of neighbours, no part edited
/// twice. Source: R. Lowrance and R. A. Wagner, "An Extension of the String-to-String Correction Problem", J. ACM 22
/// (1975) 177-183, in its restricted form.
std::size_t EditDistance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> beforePrevious(b.size() + 1);
  std::vector<std::size_t> previous(b.size() + 1);
  std::vector<std::size_t> current(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) previous[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    current[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t change = a[i - 1] == b[j - 1] ? 0 : 1;
      current[j] = std::min({previous[j] + 1, current[j - 1] + 1, previous[j - 1] + change});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        current[j] = std::min(current[j], beforePrevious[j - 2] + 1);
      }
    }
    std::swap(beforePrevious, previous);
    std::swap(previous, current);
  }
  return previous[b.size()];
}

}  // namespace

std::string NearestKeyword(std::string_view word, const std::vector<std::string>& keywords) {
  std::size_t longest = 0;
  for (const std::string& keyword : keywords) longest = std::max(longest, keyword.size());
  // One edit in three letters: what is twice as long as every keyword is near none, and need not be looked at.
  if (word.empty() || word.size() > 2 * longest) return {};

  const std::string upper = UpperCase(word);
  std::string nearest;
  std::size_t nearestDistance = std::numeric_limits<std::size_t>::max();
  for (const std::string& keyword : keywords) {
    const std::string upperKeyword = UpperCase(keyword);
    std::size_t distance = EditDistance(upper, upperKeyword);
    const std::size_t bound = std::max<std::size_t>(1, std::max(upper.size(), upperKeyword.size()) / 3);
    const bool abbreviation = upper.size() >= kShortestAbbreviation && upperKeyword.starts_with(upper);
    if (abbreviation) distance = std::min<std::size_t>(distance, 1);
    if (distance > bound || distance >= upper.size() || distance >= nearestDistance) continue;
    nearest = keyword;
    nearestDistance = distance;
  }
  return nearest;
}

}  // namespace runtime::parser
