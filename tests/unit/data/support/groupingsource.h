// A source of groups that counts the cases of another dataset by itself, naively.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "runtime/data/builder.h"
#include "runtime/data/store/groupeddataset.h"
#include "tests/unit/data/support/storedcells.h"

namespace runtime::data::test {

/// An exact sum of doubles, none negative: a bit for every power of two.
class SumOfWeights {
 public:
  void Add(double weight) {
    int exponent = 0;
    auto significand = static_cast<std::uint64_t>(std::ldexp(std::frexp(weight, &exponent), 53));
    for (int place = exponent - 53; significand != 0; significand >>= 1, ++place)
      if ((significand & 1) != 0) AddPowerOfTwo(place);
  }

  /// Doubles whose exact sum it is, the largest first; none for 0.
  std::vector<double> Parts() const {
    std::vector<double> parts;
    int place = kHighest;
    for (; place > kHighestOfDouble; --place)
      if (HasBit(place)) parts.insert(parts.end(), std::size_t{1} << (place - kHighestOfDouble), 0x1p1023);
    while (place >= kLowest) {
      if (!HasBit(place)) {
        --place;
        continue;
      }
      double part = 0.0;
      for (const int end = std::max(place - 53, kLowest - 1); place > end; --place)
        if (HasBit(place)) part += std::ldexp(1.0, place);
      parts.push_back(part);
    }
    return parts;
  }

  /// The nearest double; NaN beyond the largest one.
  double Nearest() const {
    const std::vector<double> parts = Parts();
    if (parts.empty()) return 0.0;
    double second = parts.size() > 1 ? parts[1] : 0.0;
    int unused = 0;
    // What is behind the second part decides where that is half of the first one's last bit.
    if (parts.size() > 2 && std::frexp(second, &unused) == 0.5) second = std::nextafter(second, 2.0 * second);
    const double nearest = parts[0] + second;
    return std::isfinite(nearest) ? nearest : std::numeric_limits<double>::quiet_NaN();
  }

 private:
  static constexpr int kLowest = -1074;
  static constexpr int kHighestOfDouble = 1023;
  static constexpr int kHighest = kHighestOfDouble + 30;

  bool HasBit(int place) const { return fBits[static_cast<std::size_t>(place - kLowest)]; }
  void AddPowerOfTwo(int place) {
    while (HasBit(place)) fBits[static_cast<std::size_t>(place++ - kLowest)] = false;
    fBits[static_cast<std::size_t>(place - kLowest)] = true;
  }

  std::vector<bool> fBits = std::vector<bool>(kHighest - kLowest + 1);
};

struct GroupingOptions {
  std::int64_t mostGroups = 0;  // rows of a list that is given at first, the cases' own excepted; 0: all
  std::int64_t blockRows = 0;   // of the stored columns; 0: all rows in one
  bool tableOfEach = false;     // every column is stored by itself
  bool shuffles = false;        // the groups of one variable come in another order than its values
  bool splits = false;          // every second group that stands for several cases takes two rows at least
  bool givesMoments = false;    // where the sums can be formed without rounding
};

/// Counts a dataset's cases. No list has more rows than there are cases.
class GroupingSource : public GroupSource {
 public:
  explicit GroupingSource(const std::shared_ptr<const Dataset>& cases, GroupingOptions options = {})
      : fDictionary(cases->dictionary()), fOptions(options), fColumns(cases->dictionary().variables.size()) {
    const std::unique_ptr<CaseCursor> cursor = cases->NewCursor();
    while (cursor->Next()) {
      const auto row = static_cast<std::size_t>(cursor->row - cursor->chunkBegin);
      for (std::size_t i = 0; i < fColumns.size(); ++i)
        fColumns[i].push_back(CellAt(cursor->Column(static_cast<int>(i)), row));
      fIsWeighted = cursor->Weights() != nullptr;
      fWeights.push_back(fIsWeighted ? cursor->Weights()[row] : 1.0);
    }
  }

  std::vector<CountedGroups> Count(const std::vector<CountingRequest>& requests) override {
    ++counts;
    std::vector<CountedGroups> answers;
    for (const CountingRequest& request : requests) {
      std::vector<Row> rows = RowsOf(request);
      const auto most = static_cast<std::size_t>(fOptions.mostGroups);
      const bool isComplete = most == 0 || rows.size() <= most || request.variables.empty();
      if (!isComplete) rows.resize(most);
      answers.push_back(Stored(request, rows, isComplete));
    }
    return answers;
  }

  CountedGroups CountAll(const CountingRequest& request) override {
    askedForAll.push_back(request);
    return Stored(request, RowsOf(request), true);
  }

  std::vector<double> WeightsBetween(const CountingRequest& request, const std::vector<double>& edges) override {
    const int variable = request.variables.front();
    const MissingRule& missing = fDictionary.variables[static_cast<std::size_t>(variable)]->missing;
    std::vector<SumOfWeights> sums(edges.size() - 1);
    for (std::size_t i = 0; i < fWeights.size(); ++i) {
      const double value = CellOf(variable, i).number;
      if (std::isnan(value) || missing.holds(value)) continue;
      const auto above = std::upper_bound(edges.begin() + 1, edges.end() - 1, value);
      sums[static_cast<std::size_t>(above - edges.begin()) - 1].Add(fWeights[i]);
    }
    std::vector<double> nearest;
    for (const SumOfWeights& sum : sums) nearest.push_back(sum.Nearest());
    return nearest;
  }

  int counts = 0;
  std::vector<CountingRequest> askedForAll;

 private:
  struct Cell {
    bool isText = false;
    double number = 0.0;
    std::string text;

    bool operator<(const Cell& other) const {
      return std::pair(std::bit_cast<std::uint64_t>(number), text) <
             std::pair(std::bit_cast<std::uint64_t>(other.number), other.text);
    }
  };
  struct Group {
    std::size_t firstCase = 0;
    std::size_t cases = 0;
    SumOfWeights weight;
    std::vector<double> weights;  // those of its cases, above 0
  };
  struct Row {
    std::size_t ofCase;  // one with the row's values
    double weight;
  };

  static Cell CellAt(const ColumnView& view, std::size_t row) {
    switch (view.storage) {
      case ColumnStorage::StringCode:
        return {true, 0.0, std::string(view.strings->Text(static_cast<const std::uint32_t*>(view.cells)[row]))};
      case ColumnStorage::Int8:
        return {false, NumberOf<std::int8_t>(view, row), {}};
      case ColumnStorage::Int16:
        return {false, NumberOf<std::int16_t>(view, row), {}};
      case ColumnStorage::Int32:
        return {false, NumberOf<std::int32_t>(view, row), {}};
      case ColumnStorage::Float64:
        break;
    }
    return {false, static_cast<const double*>(view.cells)[row], {}};
  }

  const Cell& CellOf(int variable, std::size_t ofCase) const {
    return fColumns[static_cast<std::size_t>(variable)][ofCase];
  }

  /// In order of first appearance.
  std::vector<Group> GroupsOf(const CountingRequest& request) const {
    std::vector<Group> groups;
    std::map<std::vector<Cell>, std::size_t> places;
    for (std::size_t i = 0; i < fWeights.size(); ++i) {
      std::vector<Cell> key;
      for (const int variable : request.variables) key.push_back(CellOf(variable, i));
      const auto [place, isNew] = places.emplace(std::move(key), groups.size());
      if (isNew) groups.push_back({i, 0, {}, {}});
      Group& group = groups[place->second];
      ++group.cases;
      group.weight.Add(fWeights[i]);
      if (fWeights[i] > 0.0) group.weights.push_back(fWeights[i]);
    }
    return groups;
  }

  std::vector<Row> RowsOf(const CountingRequest& request) const {
    std::vector<Group> groups = GroupsOf(request);
    // The groups of several variables keep their order: the first values of a set come one case after the other.
    if (fOptions.shuffles && request.variables.size() == 1) {
      std::mt19937 random(static_cast<unsigned>(request.variables.front()));
      std::shuffle(groups.begin(), groups.end(), random);
    }
    std::vector<Row> rows;
    std::vector<Row> further;
    for (std::size_t i = 0; i < groups.size(); ++i) {
      const Group& group = groups[i];
      std::vector<double> parts = group.weight.Parts();
      if (parts.empty()) parts.push_back(0.0);
      if (fOptions.splits && i % 2 == 0 && parts.size() == 1 && group.cases > 1) {
        const double half = std::ldexp(parts.front(), -1);
        parts =
            half + half == parts.front() ? std::vector<double>{half, half} : std::vector<double>{parts.front(), 0.0};
      }
      if (parts.size() > group.cases) parts = group.weights;
      rows.push_back({group.firstCase, parts.front()});
      for (std::size_t part = 1; part < parts.size(); ++part) further.push_back({group.firstCase, parts[part]});
    }
    rows.insert(rows.end(), further.begin(), further.end());
    return rows;
  }

  CountedGroups Stored(const CountingRequest& request, const std::vector<Row>& rows, bool isComplete) const {
    CountedGroups counted;
    counted.rows = static_cast<std::int64_t>(rows.size());
    counted.isComplete = isComplete;
    for (const Row& row : rows) counted.weights.push_back(row.weight);
    if (!fIsWeighted && std::all_of(rows.begin(), rows.end(), [](const Row& row) { return row.weight == 1.0; }))
      counted.weights.clear();
    std::vector<DatasetBuilder> builders(fOptions.tableOfEach ? request.variables.size() : 1);
    for (std::size_t i = 0; i < request.variables.size(); ++i) {
      const int variable = request.variables[i];
      const std::string name = "v" + std::to_string(i);
      std::vector<double> numbers;
      std::vector<std::string> texts;
      for (const Row& row : rows) {
        numbers.push_back(CellOf(variable, row.ofCase).number);
        texts.push_back(CellOf(variable, row.ofCase).text);
      }
      DatasetBuilder& builder = builders[fOptions.tableOfEach ? i : 0];
      if (fDictionary.variables[static_cast<std::size_t>(variable)]->width > 0)
        builder.AddString(name, std::move(texts));
      else
        builder.AddNumeric(name, std::move(numbers));
    }
    for (DatasetBuilder& builder : builders) {
      builder.BlockRows(fOptions.blockRows);
      const std::shared_ptr<const Dataset> stored = builder.Build();
      const auto& columns = dynamic_cast<const ColumnarDataset&>(*stored);
      for (std::size_t i = 0; i < stored->dictionary().variables.size(); ++i)
        counted.columns.push_back(columns.column(static_cast<int>(i)));
    }
    if (fOptions.givesMoments && request.kind == CountingRequest::Kind::Scale) AddMoments(request, counted);
    return counted;
  }

  /// The product where it is exact.
  static std::optional<double> Product(double a, double b) {
    const double product = a * b;
    if (!std::isfinite(product) || std::fma(a, b, -product) != 0.0) return std::nullopt;
    if (a != 0.0 && b != 0.0 && std::abs(product) < 0x1p-900) return std::nullopt;
    return product;
  }

  void AddMoments(const CountingRequest& request, CountedGroups& counted) const {
    const int variable = request.variables.front();
    const VariableRecord& record = *fDictionary.variables[static_cast<std::size_t>(variable)];
    if (record.width > 0) return;
    for (std::size_t i = 0; i < fWeights.size(); ++i) {
      const double value = CellOf(variable, i).number;
      if (std::isnan(value) || record.missing.holds(value) || !(fWeights[i] > 0.0)) continue;
      const std::optional<double> sum = Product(fWeights[i], value);
      const std::optional<double> square = sum ? Product(*sum, value) : std::nullopt;
      if (!square) return;
      const bool isFirst = counted.valueSums.empty();
      counted.lowest = isFirst ? value : std::min(counted.lowest, value);
      counted.highest = isFirst ? value : std::max(counted.highest, value);
      counted.areWhole = (isFirst || counted.areWhole) && std::floor(value) == value;
      counted.valueSums.push_back(*sum);
      counted.squareSums.push_back(*square);
    }
    counted.hasMoments = true;
  }

  Dictionary fDictionary;
  GroupingOptions fOptions;
  bool fIsWeighted = false;
  std::vector<std::vector<Cell>> fColumns;  // by variable
  std::vector<double> fWeights;
};

/// The dataset as its groups.
inline std::shared_ptr<const Dataset> Grouped(const std::shared_ptr<const Dataset>& cases, GroupingOptions options = {},
                                              std::int64_t chunkRows = 0) {
  return std::make_shared<GroupedDataset>(cases->dictionary(), std::make_shared<GroupingSource>(cases, options),
                                          cases->caseCount(), chunkRows);
}

}  // namespace runtime::data::test
