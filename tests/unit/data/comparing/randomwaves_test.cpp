// Random waves: nothing differs from itself, and the order of the two changes nothing but the roles.
#include <algorithm>
#include <cstddef>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "runtime/data/comparing/comparetables.h"
#include "runtime/data/comparing/distribution.h"
#include "tests/unit/data/comparing/wave.h"

namespace runtime::data {
namespace {

constexpr int kWaves = 2000;

class RandomWaves {
 public:
  explicit RandomWaves(unsigned seed) : fRandom(seed) {}

  /// Few names, labels and values, so that two waves have much in common.
  ComparedTable Wave() {
    ComparedTable table;
    table.isDictionaryAlone = Sometimes();
    if (Sometimes()) table.label = Word(2);
    if (Sometimes()) table.documents = Word(2);
    if (Sometimes()) table.attributes = {{"a" + Word(2), Word(2)}};
    std::vector<std::string> names;
    for (int i = 0; i < 12; ++i)
      if (Sometimes()) names.push_back((Sometimes() ? "v" : "V") + std::to_string(i));
    std::shuffle(names.begin(), names.end(), fRandom);
    if (Sometimes() && names.size() > 1) std::sort(names.begin(), names.end());
    for (const std::string& name : names) table.variables.push_back(Variable(name));
    if (!names.empty() && Sometimes()) table.weight = names.front();
    for (const char* set : {"$s", "$t"})
      if (Sometimes()) table.sets.push_back(Set(set, names));
    return table;
  }

  Distribution Shares() {
    Distribution distribution;
    distribution.isScale = Sometimes();
    distribution.missing = Number(3);
    if (distribution.isScale) {
      distribution.valid = 1 + Number(20);
      const int mean = Number(5);
      distribution.mean = Figure{static_cast<double>(mean), std::to_string(mean)};
      distribution.deviation = Figure{static_cast<double>(Number(3)), ""};
      return distribution;
    }
    for (int value = 0; value < 4; ++value) {
      if (Sometimes()) continue;
      distribution.values.push_back({std::to_string(value), "", 1.0 + Number(9)});
      distribution.valid += distribution.values.back().weight;
    }
    return distribution;
  }

 private:
  int Number(int most) { return std::uniform_int_distribution<int>(0, most)(fRandom); }
  bool Sometimes() { return Number(1) == 1; }
  std::string Word(int most) { return std::string(1, static_cast<char>('a' + Number(most))); }

  ComparedVariable Variable(const std::string& name) {
    ComparedVariable variable = test::Numeric(name);
    if (Sometimes()) variable.label = "label " + Word(25);
    if (Number(5) == 0) variable.type = ComparedType::String;
    if (Number(5) == 0) variable.type.reset();
    if (Number(5) == 0) variable.format.reset();
    if (Number(5) == 0) variable.level = "scale";
    if (Number(5) == 0) variable.role.reset();
    for (int value = 0; value < 5; ++value)
      if (Sometimes()) variable.labels.push_back({std::to_string(value), Word(5)});
    for (const char* missing : {"-8", "-9", "LO..-10"})
      if (Sometimes()) variable.missing.emplace_back(missing);
    std::sort(variable.missing.begin(), variable.missing.end());
    for (const char* attribute : {"x", "y"})
      if (Sometimes()) variable.attributes.emplace_back(attribute, Word(2));
    return variable;
  }

  ComparedSet Set(const std::string& name, const std::vector<std::string>& names) {
    ComparedSet set;
    set.name = name;
    if (Sometimes()) set.label = Word(2);
    set.isDichotomy = Sometimes();
    if (set.isDichotomy) set.countedValue = std::to_string(Number(1));
    for (const std::string& member : names)
      if (Sometimes()) set.variables.push_back(member);
    return set;
  }

  std::mt19937 fRandom;
};

ChangeKind Mirrored(ChangeKind kind) {
  switch (kind) {
    case ChangeKind::SetAdded:
      return ChangeKind::SetRemoved;
    case ChangeKind::SetRemoved:
      return ChangeKind::SetAdded;
    case ChangeKind::AttributeAdded:
      return ChangeKind::AttributeRemoved;
    case ChangeKind::AttributeRemoved:
      return ChangeKind::AttributeAdded;
    case ChangeKind::ValueLabelAdded:
      return ChangeKind::ValueLabelRemoved;
    case ChangeKind::ValueLabelRemoved:
      return ChangeKind::ValueLabelAdded;
    case ChangeKind::MissingAdded:
      return ChangeKind::MissingRemoved;
    case ChangeKind::MissingRemoved:
      return ChangeKind::MissingAdded;
    default:
      return kind;
  }
}

using Told = std::multiset<std::tuple<std::string, std::string, std::string, std::string>>;

void Add(const std::string& before, const std::string& after, const std::vector<Change>& changes, bool mirror,
         Told& told) {
  const std::string& first = mirror ? after : before;
  const std::string& second = mirror ? before : after;
  told.emplace(first, second, "", "");
  for (Change change : changes) {
    if (mirror) {
      change.kind = Mirrored(change.kind);
      std::swap(change.before, change.after);
      std::swap(change.numberBefore, change.numberAfter);
    }
    const auto number = [](const std::optional<double>& value) { return value ? std::to_string(*value) : ""; };
    told.emplace(first, second, test::InWords(change),
                 number(change.numberBefore) + " " + number(change.numberAfter) + " " + std::to_string(change.size));
  }
}

/// What a comparison tells, in no order; with `mirror` as if the old wave had been the new one.
Told All(const Comparison& comparison, bool mirror) {
  Told told;
  Add("", "", comparison.file, mirror, told);
  for (const VariableComparison& variable : comparison.variables)
    Add(variable.before, variable.after, variable.changes, mirror, told);
  for (const VariableComparison& variable : comparison.variables)
    if (variable.renamed)
      told.emplace(mirror ? variable.after : variable.before, mirror ? variable.before : variable.after, "renamed",
                   std::to_string(variable.renamed->score));
  return told;
}

Distributions DistributionsOf(const ComparedTable& table, RandomWaves& waves) {
  Distributions distributions;
  for (const ComparedVariable& variable : table.variables) distributions.emplace(variable.name, waves.Shares());
  return distributions;
}

TEST(RandomWaves, differInNothingFromThemselves) {
  RandomWaves waves(1);
  for (int i = 0; i < kWaves; ++i) {
    const ComparedTable wave = waves.Wave();
    Comparison comparison = CompareTables(wave, wave);
    const Distributions distributions = DistributionsOf(wave, waves);
    CompareDistributions(distributions, distributions, {0.0, 0.0, 0.0}, comparison);
    ASSERT_FALSE(comparison.differs()) << "wave " << i;
    ASSERT_EQ(comparison.variables.size(), wave.variables.size());
  }
}

TEST(RandomWaves, differAlikeTheOtherWayRound) {
  RandomWaves waves(2);
  std::set<ChangeKind> met;
  std::size_t renamed = 0;
  for (int i = 0; i < kWaves; ++i) {
    const ComparedTable a = waves.Wave();
    const ComparedTable b = waves.Wave();
    const Comparison there = CompareTables(a, b);
    ASSERT_EQ(All(there, false), All(CompareTables(b, a), true)) << "waves " << i;
    for (const Change& change : there.file) met.insert(change.kind);
    for (const VariableComparison& variable : there.variables) {
      for (const Change& change : variable.changes) met.insert(change.kind);
      if (variable.renamed) ++renamed;
    }
  }
  EXPECT_EQ(met.size(), kChangeKinds - 3) << "every kind but the three of distributions is met";
  EXPECT_GT(renamed, 0U);
}

TEST(RandomWaves, moveAlikeTheOtherWayRound) {
  RandomWaves waves(3);
  std::set<ChangeKind> met;
  for (int i = 0; i < kWaves; ++i) {
    const ComparedTable table = test::Wave({test::Numeric("a"), test::Numeric("b"), test::Numeric("c")});
    const Distributions a = DistributionsOf(table, waves);
    const Distributions b = DistributionsOf(table, waves);
    Comparison there = CompareTables(table, table);
    Comparison back = there;
    CompareDistributions(a, b, {}, there);
    CompareDistributions(b, a, {}, back);
    ASSERT_EQ(All(there, false), All(back, true)) << "waves " << i;
    for (const VariableComparison& variable : there.variables)
      for (const Change& change : variable.changes) met.insert(change.kind);
  }
  EXPECT_EQ(met.size(), 3U);
}

}  // namespace
}  // namespace runtime::data
