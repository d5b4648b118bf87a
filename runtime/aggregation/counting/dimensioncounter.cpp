#include "runtime/aggregation/counting/dimensioncounter.h"

#include <charconv>
#include <stdexcept>

#include "runtime/aggregation/counting/categorysetcounter.h"
#include "runtime/aggregation/counting/dichotomysetcounter.h"
#include "runtime/aggregation/counting/variablecounter.h"

namespace runtime::aggregation {

DimensionCounter::~DimensionCounter() = default;

void DimensionCounter::ResizeSlots(std::size_t slots) {
  if (slots <= fMarks.size()) return;
  fNotMet += slots - fMarks.size();
  fMarks.resize(slots, kNotMet);
  fSums.Resize(slots);
}

void DimensionCounter::FindInBlock(const std::uint32_t* slots, std::size_t count, const ChunkWeights& weights,
                                   std::size_t first, std::vector<FirstAppearance>& found) {
  if (!hasNotMet()) return;
  const std::uint8_t* marks = fMarks.data();
  for (std::size_t i = 0; i < count; ++i) {
    if (marks[slots[i]] != kNotMet || !weights.IsPositive(first + i)) continue;
    MarkMet(slots[i]);
    found.push_back({first + i, slots[i]});
  }
}

void DimensionCounter::AddCases(std::uint8_t* responded, std::size_t count, const ChunkWeights& weights,
                                std::size_t first) {
  for (std::size_t i = 0; i < count; ++i) responded[i] ^= 1;
  const std::uint8_t* const silent = responded;
  const std::uint32_t slot = kNoResponseSlot;
  fSums.AddHits(&slot, &silent, 1, count, weights, first);
  fSums.AddRows(kAllCasesSlot, count, weights, first);
}

int DimensionCounter::MarkCountedValues() {
  int values = 0;
  for (std::size_t slot = 0; slot < fMarks.size(); ++slot) {
    if (fMarks[slot] == kNoValue || fSums.IsZero(slot)) continue;
    MarkMet(static_cast<std::uint32_t>(slot));
    ++values;
  }
  return values;
}

std::unique_ptr<DimensionCounter> MakeDimensionCounter(const AggregationVariable& dimension,
                                                       const MAVO_DataSource& source) {
  for (const int variable : dimension.variables())
    if (variable < 0 || variable >= static_cast<int>(source.ColumnCount()))
      throw std::out_of_range("dimension " + dimension.name() + ": no variable with index " + std::to_string(variable) +
                              " in the dictionary");
  switch (dimension.kind()) {
    case AggregationVariable::Kind::CategorySet:
      return std::make_unique<CategorySetCounter>(dimension.variables(), source);
    case AggregationVariable::Kind::DichotomySet:
      return std::make_unique<DichotomySetCounter>(dynamic_cast<const AggregationMDSet&>(dimension), source);
    case AggregationVariable::Kind::Variable:
      break;
  }
  const int variable = dimension.variables().front();
  return std::make_unique<VariableCounter>(variable, source.GetVariable(variable), dimension.categories());
}

std::string ShortestText(double number) {
  char buffer[32];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, number);
  return std::string(buffer, end);
}

}  // namespace runtime::aggregation
