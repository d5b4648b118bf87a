// The groups of a question as the database tells them: texts with their number of cases and their weight.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <gmpxx.h>

namespace runtime::data {

/// Groups count from 0 in the order in which they were met first. Weights are whole multiples of a unit that who fills
/// the groups knows; without weights none is kept.
class RawGroups {
 public:
  explicit RawGroups(bool weighted = false) : fWeighted(weighted) {}
  RawGroups(RawGroups&&) = default;  // a copy's map would look into the texts of the original
  RawGroups& operator=(RawGroups&&) = default;

  /// The group of a text, or of NULL; entered when it is new.
  std::size_t Enter(std::optional<std::string_view> text);
  /// The group of a text or of NULL, if it is there.
  std::optional<std::size_t> Find(std::optional<std::string_view> text) const;
  void AddCases(std::size_t group, std::int64_t cases) { fCases[group] += cases; }
  void AddWeight(std::size_t group, const mpz_class& weight) { fWeights[group] += weight; }

  std::size_t size() const { return fTexts.size(); }
  bool weighted() const { return fWeighted; }
  bool isNull(std::size_t group) const { return fNull == group; }
  /// Empty for NULL.
  const std::string& text(std::size_t group) const { return fTexts[group]; }
  std::int64_t cases(std::size_t group) const { return fCases[group]; }
  const mpz_class& weight(std::size_t group) const { return fWeights[group]; }
  std::int64_t allCases() const;

 private:
  bool fWeighted;
  std::deque<std::string> fTexts;  // the keys of the map look into them
  std::unordered_map<std::string_view, std::size_t> fGroupOfText;
  std::optional<std::size_t> fNull;
  std::vector<std::int64_t> fCases;
  std::vector<mpz_class> fWeights;
};

}  // namespace runtime::data
