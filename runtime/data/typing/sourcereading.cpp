#include "runtime/data/typing/sourcereading.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <string_view>
#include <utility>

#include <fmt/format.h>

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

/// The decimals of the shortest text that reads back as the value, where they are more than `decimals`.
int WithDecimalsOf(double value, int decimals) {
  const double power = kPowersOfTen[decimals];
  if (decimals == kMostDecimals || std::nearbyint(value * power) / power == value) return decimals;
  NumberReading reading;
  ReadNumberText(ShortestText(value), reading);
  return std::clamp(reading.decimals, decimals, kMostDecimals);
}

/// Takes the file's numbers as they are.
class NumberColumn {
 public:
  NumberColumn(const SourceColumn& column, FieldType type, bool inferred, std::int64_t blockRows)
      : fColumn(blockRows), fMustBeWhole(type == FieldType::Integer && column.type == FieldType::Number) {
    fFacts.header = column.name;
    fFacts.type = type;
    fFacts.inferred = inferred;
  }

  void Append(const double* values, std::size_t count) {
    if (fFacts.type == FieldType::Number)
      for (std::size_t i = 0; i < count; ++i)
        if (std::isfinite(values[i])) fFacts.decimals = WithDecimalsOf(values[i], fFacts.decimals);
    for (std::size_t i = 0; i < count; ++i) fFacts.blankCells += std::isnan(values[i]) ? 1 : 0;
    if (fMustBeWhole && !std::all_of(values, values + count, [](double v) { return std::trunc(v) == v || v != v; }))
      return AppendWhole(values, count);
    fColumn.Append(values, count);
  }

  TypedColumn Finish() {
    fFacts.rows = fColumn.rows();
    fFacts.values = fColumn.facts();
    return {fColumn.Finish(), std::move(fFacts)};
  }

 private:
  void AppendWhole(const double* values, std::size_t count) {
    std::vector<double> whole(values, values + count);
    for (std::size_t i = 0; i < count; ++i) {
      if (std::isnan(whole[i]) || std::trunc(whole[i]) == whole[i]) continue;
      if (fFacts.unreadable.size() < ColumnFacts::kCellsKept)
        fFacts.unreadable.push_back(
            {fColumn.rows() + static_cast<std::int64_t>(i) + 1, 0, std::string(), ShortestText(whole[i])});
      ++fFacts.unreadableCells;
      whole[i] = std::numeric_limits<double>::quiet_NaN();
    }
    fColumn.Append(whole.data(), count);
  }

  NumericColumnBuilder fColumn;
  ColumnFacts fFacts;
  bool fMustBeWhole;
};

/// Whether the file's own numbers serve for a declared type.
bool NumbersServe(FieldType ofFile, FieldType declared) {
  if (ofFile == declared) return true;
  if (declared == FieldType::Number) return ofFile == FieldType::Integer;
  return declared == FieldType::Integer && ofFile == FieldType::Number;
}

class TypingSink : public ColumnSink {
 public:
  TypingSink(const std::vector<SourceColumn>& columns, const std::vector<ColumnPlan>& plans)
      : fRows(columns.size(), 0) {
    const std::int64_t blockRows = RowsPerBlock(columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const bool inferred = plans[i].dialect.type == FieldType::Inferred;
      const FieldType type = inferred ? columns[i].type : plans[i].dialect.type;
      fNumbers.emplace_back();
      fTexts.emplace_back();
      if (type != FieldType::String && NumbersServe(columns[i].type, type))
        fNumbers.back() = std::make_unique<NumberColumn>(columns[i], type, inferred, blockRows);
      else if (inferred)
        fTexts.back() = MakeTextTyper(columns[i].name, blockRows);
      else
        fTexts.back() = MakeColumnTyper(plans[i], columns[i].name, blockRows);
    }
  }

  std::vector<bool> AsText() const {
    std::vector<bool> asText;
    for (const auto& typer : fTexts) asText.push_back(typer != nullptr);
    return asText;
  }

  void Numbers(std::size_t column, const double* values, std::size_t count) override {
    fNumbers[column]->Append(values, count);
  }

  void Texts(std::size_t column, const std::string_view* texts, std::size_t count) override {
    CellBlock block;
    fCells.clear();
    for (std::uint32_t cell = 0; cell < count; ++cell) fCells.push_back({cell, Cell::kOwnText});
    block.cells = fCells.data();
    block.ownTexts = texts;
    block.columns = 1;
    block.stride = 1;
    block.rows = count;
    block.firstRow = fRows[column];
    fRows[column] += static_cast<std::int64_t>(count);
    fTexts[column]->Append(block, 0);
  }

  std::vector<TypedColumn> Finish() {
    std::vector<TypedColumn> columns;
    for (std::size_t i = 0; i < fNumbers.size(); ++i)
      columns.push_back(fNumbers[i] ? fNumbers[i]->Finish() : fTexts[i]->Finish());
    return columns;
  }

 private:
  // Of each column one of the two.
  std::vector<std::unique_ptr<NumberColumn>> fNumbers;
  std::vector<std::unique_ptr<ColumnTyper>> fTexts;
  std::vector<std::int64_t> fRows;
  std::vector<Cell> fCells;
};

}  // namespace

TypedTable ReadSource(TableSource& table, const std::vector<ColumnPlan>& plans, const std::string& source, bool strict,
                      std::vector<Note>& notes) {
  if (table.rowCount() > kMostCases)
    throw DataError(fmt::format("{}: the data has {} cases, and more than {} cannot be worked with; split the file",
                                source, table.rowCount(), kMostCases));
  TypingSink sink(table.columns(), plans);
  table.Read(sink.AsText(), sink);
  TypedTable read;
  read.columns = sink.Finish();
  read.rows = table.rowCount();
  std::vector<const ColumnFacts*> facts;
  for (const TypedColumn& column : read.columns) facts.push_back(&column.facts);
  ReportUnreadableCells(source, facts, strict, notes);
  return read;
}

}  // namespace runtime::data
