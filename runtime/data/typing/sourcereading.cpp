#include "runtime/data/typing/sourcereading.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/store/numericpart.h"
#include "runtime/data/typing/numbertext.h"
#include "runtime/data/typing/unreadablecells.h"

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
  NumberColumn(const SourceColumn& column, FieldType type, bool inferred)
      : fMustBeWhole(type == FieldType::Integer && column.type == FieldType::Number) {
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
      AppendWhole(values, count);
    else
      fPart.AppendDoubles(values, count);
    fFacts.rows += static_cast<std::int64_t>(count);
  }

  const NumericPart& part() const { return fPart; }
  void EndPart() {
    fPart.AddFactsTo(fFacts.values);
    fPart.Clear();
  }
  ColumnFacts Finish() { return std::move(fFacts); }

 private:
  void AppendWhole(const double* values, std::size_t count) {
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

  NumericPart fPart;  // of the group that is being filled
  ColumnFacts fFacts;
  bool fMustBeWhole;
};

/// Whether the file's own numbers serve for a declared type.
bool NumbersServe(FieldType ofFile, FieldType declared) {
  if (ofFile == declared) return true;
  if (declared == FieldType::Number) return ofFile == FieldType::Integer;
  return declared == FieldType::Integer && ofFile == FieldType::Number;
}

constexpr std::size_t kMostRowsOfGroup = 65'536;
constexpr std::size_t kFewestRowsOfGroup = 256;
constexpr std::size_t kCellsOfGroup = std::size_t{4} * 1024 * 1024;

class TypingSink : public ColumnSink {
 public:
  TypingSink(const std::vector<SourceColumn>& columns, const std::vector<ColumnPlan>& plans,
             const std::shared_ptr<ColumnMemory>& memory)
      : fGroups(std::make_shared<RowGroups>(memory)),
        fRowsOfGroup(std::clamp(kCellsOfGroup / columns.size(), kFewestRowsOfGroup, kMostRowsOfGroup)) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const bool inferred = plans[i].dialect.type == FieldType::Inferred;
      const FieldType type = inferred ? columns[i].type : plans[i].dialect.type;
      Column& column = fColumns.emplace_back();
      if (type != FieldType::String && NumbersServe(columns[i].type, type)) {
        column.numbers = std::make_unique<NumberColumn>(columns[i], type, inferred);
        continue;
      }
      column.typer = inferred ? MakeTextTyper(columns[i].name) : MakeColumnTyper(plans[i], columns[i].name);
      column.piece = column.typer->NewPiece();
    }
  }

  std::vector<bool> AsText() const {
    std::vector<bool> asText;
    for (const Column& column : fColumns) asText.push_back(column.typer != nullptr);
    return asText;
  }

  void Numbers(std::size_t column, const double* values, std::size_t count) override {
    fColumns[column].numbers->Append(values, count);
  }

  void Texts(std::size_t column, const std::string_view* texts, std::size_t count) override {
    fCells.clear();
    for (std::uint32_t cell = 0; cell < count; ++cell) fCells.push_back({cell, Cell::kOwnText});
    CellBlock block;
    block.cells = fCells.data();
    block.ownTexts = texts;
    block.columns = 1;
    block.stride = 1;
    block.rows = count;
    block.firstRow = static_cast<std::int64_t>(fRowsInGroup);
    fColumns[column].piece->Append(block, 0);
  }

  void EndRows(std::size_t count) override {
    fRowsInGroup += count;
    if (fRowsInGroup >= fRowsOfGroup) CloseGroup();
  }

  std::vector<TypedColumn> Finish() {
    CloseGroup();
    std::vector<TypedColumn> columns;
    for (std::size_t i = 0; i < fColumns.size(); ++i) {
      const Column& column = fColumns[i];
      columns.push_back({{fGroups, i, column.typer ? column.typer->strings() : nullptr},
                         column.typer ? column.typer->Finish() : column.numbers->Finish()});
    }
    return columns;
  }

 private:
  /// Of each column either its numbers or its typer and the piece that is being filled.
  struct Column {
    std::unique_ptr<NumberColumn> numbers;
    std::unique_ptr<ColumnTyper> typer;
    std::unique_ptr<ColumnPiece> piece;
  };

  void CloseGroup() {
    RowGroup group(fRowsInGroup);
    for (const Column& column : fColumns) {
      if (column.piece) column.piece->End();
      group.AddColumn(column.piece ? column.piece->storage() : column.numbers->part().storage());
    }
    group.Allocate();
    for (std::size_t i = 0; i < fColumns.size() && fRowsInGroup > 0; ++i) {
      Column& column = fColumns[i];
      const std::byte* const cells = column.piece ? column.piece->cells() : column.numbers->part().cells();
      const ColumnStorage storage = column.piece ? column.piece->storage() : column.numbers->part().storage();
      std::memcpy(group.Cells(i), cells, fRowsInGroup * BytesPerCell(storage));
      if (column.piece) {
        column.typer->Join(*column.piece, {fGroups->rows(), 0}, group.Cells(i));
        column.piece->Clear();
      } else {
        column.numbers->EndPart();
      }
    }
    fGroups->Append(std::move(group));
    fRowsInGroup = 0;
  }

  std::vector<Column> fColumns;
  std::shared_ptr<RowGroups> fGroups;
  std::size_t fRowsOfGroup;
  std::size_t fRowsInGroup = 0;
  std::vector<Cell> fCells;
};

}  // namespace

TypedTable ReadSource(TableSource& table, const std::vector<ColumnPlan>& plans, const std::string& source,
                      const ReadingOptions& options, std::vector<Note>& notes) {
  if (table.rowCount() > kMostCases)
    throw DataError(fmt::format("{}: the data has {} cases, and more than {} cannot be worked with; split the file",
                                source, table.rowCount(), kMostCases));
  TypingSink sink(table.columns(), plans, options.memory);
  table.Read(sink.AsText(), sink);
  TypedTable read;
  read.columns = sink.Finish();
  read.rows = table.rowCount();
  std::vector<const ColumnFacts*> facts;
  for (const TypedColumn& column : read.columns) facts.push_back(&column.facts);
  ReportUnreadableCells(source, facts, options.strict, notes);
  return read;
}

}  // namespace runtime::data
