#include "runtime/data/source/numbercolumn.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "runtime/data/typing/numbertext.h"

namespace runtime::data {

namespace {

constexpr int kMostDecimals = 16;
constexpr double kPowersOfTen[kMostDecimals + 1] = {1e0, 1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7, 1e8,
                                                    1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16};

std::string ShortestText(double value) {
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, value).ptr;
  return {text, end};
}

/// Whether the value is a whole number over the power of ten, rounded, or has no decimals at all. False says nothing.
bool HasNoMoreDecimals(double value, double power) {
  // Adding and taking away 1.5 * 2^52 rounds what is below 2^51 to the nearest whole number, without a call.
  constexpr double kRounding = 6755399441055744.0;
  constexpr double kMostRounded = 2251799813685248.0;
  constexpr double kFirstWithoutFraction = 4503599627370496.0;
  const double scaled = value * power;
  const double whole = scaled + kRounding - kRounding;
  const bool isWholeOverPower = whole / power == value && std::abs(scaled) < kMostRounded;
  return isWholeOverPower || !(std::abs(value) < kFirstWithoutFraction);
}

/// How many of the values at the front have no more decimals, as far as that is quickly seen.
std::size_t CountWithoutMoreDecimals(const double* values, std::size_t count, double power) {
  constexpr std::size_t kAtOnce = 64;
  std::size_t at = 0;
  for (; at + kAtOnce <= count; at += kAtOnce) {
    int quick = 0;
    for (std::size_t i = 0; i < kAtOnce; ++i) quick += HasNoMoreDecimals(values[at + i], power) ? 1 : 0;
    if (quick != static_cast<int>(kAtOnce)) break;
  }
  while (at < count && HasNoMoreDecimals(values[at], power)) ++at;
  return at;
}

}  // namespace

int WithDecimalsOf(const double* values, std::size_t count, int decimals) {
  for (std::size_t at = 0; decimals < kMostDecimals; ++at) {
    at += CountWithoutMoreDecimals(values + at, count - at, kPowersOfTen[decimals]);
    if (at == count) break;
    NumberReading reading;
    ReadNumberText(ShortestText(values[at]), reading);
    decimals = std::clamp(reading.decimals, decimals, kMostDecimals);
  }
  return decimals;
}

NumberColumn::NumberColumn(const SourceColumn& column, FieldType type, bool inferred)
    : fMustBeWhole(type == FieldType::Integer && column.type == FieldType::Number) {
  fFacts.header = column.name;
  fFacts.type = type;
  fFacts.inferred = inferred;
}

void NumberColumn::Append(const std::int8_t* values, std::size_t count) {
  fFacts.blankCells += std::count(values, values + count, kInt8SystemMissing);
  fPart.AppendBytes(values, count);
  fFacts.rows += static_cast<std::int64_t>(count);
}

void NumberColumn::Append(const std::int32_t* values, std::size_t count) {
  fFacts.blankCells += std::count(values, values + count, NumericPart::kNoInteger);
  fPart.AppendIntegers(values, count);
  fFacts.rows += static_cast<std::int64_t>(count);
}

void NumberColumn::Append(const double* values, std::size_t count) {
  if (fFacts.type == FieldType::Number) fFacts.decimals = WithDecimalsOf(values, count, fFacts.decimals);
  fFacts.blankCells += std::count_if(values, values + count, [](double value) { return value != value; });
  if (fMustBeWhole && !std::all_of(values, values + count, [](double v) { return std::trunc(v) == v || v != v; }))
    AppendWhole(values, count);
  else
    fPart.AppendDoubles(values, count);
  fFacts.rows += static_cast<std::int64_t>(count);
}

void NumberColumn::WrittenDecimals(int decimals) {
  if (fFacts.type == FieldType::Number) fFacts.decimals = std::clamp(decimals, fFacts.decimals, kMostDecimals);
}

void NumberColumn::Unreadable(std::string_view text) {
  --fFacts.blankCells;
  ++fFacts.unreadableCells;
  if (fFacts.unreadable.size() < ColumnFacts::kCellsKept) fFacts.unreadable.push_back({0, 0, {}, std::string(text)});
}

void NumberColumn::AppendWhole(const double* values, std::size_t count) {
  std::vector<double> whole(values, values + count);
  for (std::size_t i = 0; i < count; ++i) {
    if (std::isnan(whole[i]) || std::trunc(whole[i]) == whole[i]) continue;
    if (fFacts.unreadable.size() < ColumnFacts::kCellsKept)
      fFacts.unreadable.push_back(
          {fFacts.rows + static_cast<std::int64_t>(i) + 1, 0, std::string(), ShortestText(whole[i])});
    ++fFacts.unreadableCells;
    whole[i] = std::numeric_limits<double>::quiet_NaN();
  }
  fPart.AppendDoubles(whole.data(), count);
}

void NumberColumn::EndPart() {
  fPart.AddFactsTo(fFacts.values);
  fPart.Clear();
}

}  // namespace runtime::data
