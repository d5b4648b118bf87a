#include "runtime/data/typing/columntyper.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/typing/inference.h"
#include "runtime/data/typing/missingentries.h"
#include "runtime/data/typing/quotedcell.h"
#include "runtime/data/typing/valuereader.h"

namespace runtime::data {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

bool IsBlank(std::string_view text) { return text.find_first_not_of(' ') == std::string_view::npos; }

/// The values of a block before they are stored; one for all columns that a thread reads.
double* BlockBuffer(std::size_t rows) {
  thread_local std::vector<double> buffer;
  if (buffer.size() < rows) buffer.resize(rows);
  return buffer.data();
}

class TextTyper : public ColumnTyper {
 public:
  TextTyper(std::string header, bool inferred, std::int64_t blockRows) : fColumn(blockRows) {
    fFacts.header = std::move(header);
    fFacts.type = FieldType::String;
    fFacts.inferred = inferred;
  }

  void AppendBlankCells(std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i) fColumn.Append({});
    fFacts.blankCells += count;
  }

  void Append(const CellBlock& block, std::size_t column) override {
    for (std::size_t row = 0; row < block.rows; ++row) {
      const std::string_view text = block.Text(row, column);
      if (IsBlank(text)) ++fFacts.blankCells;
      fColumn.Append(text);
    }
  }

  TypedColumn Finish() override {
    fFacts.rows = fColumn.rows();
    fFacts.longestValue = fColumn.longestText();
    return {fColumn.Finish(), std::move(fFacts)};
  }

 private:
  StringColumnBuilder fColumn;
  ColumnFacts fFacts;
};

/// Of a declared numeric type.
class ValueTyper : public ColumnTyper {
 public:
  ValueTyper(const ColumnPlan& plan, std::string header, std::int64_t blockRows)
      : fReader(plan.dialect), fMissing(plan.missing, plan.dialect), fColumn(blockRows) {
    if (!fReader.problem().empty()) throw DataError(fmt::format("{}: {}", plan.place, fReader.problem()));
    fMissingFirst = fMissing.MustComeFirst(fReader);
    fFacts.header = std::move(header);
    fFacts.type = plan.dialect.type;
  }

  void Append(const CellBlock& block, std::size_t column) override {
    if (fMissingFirst || !fReader.isPlain())
      AppendWith(block, column, [this](std::string_view text, NumberReading& reading) {
        return !fMissingFirst && fReader.Read(text, reading);
      });
    else if (fReader.type() == FieldType::Integer)
      AppendWith(block, column,
                 [](std::string_view text, NumberReading& reading) { return ReadIntegerText(text, reading); });
    else
      AppendWith(block, column,
                 [](std::string_view text, NumberReading& reading) { return ReadNumberText(text, reading); });
  }

  TypedColumn Finish() override {
    fFacts.rows = fColumn.rows();
    fFacts.values = fColumn.facts();
    return {fColumn.Finish(), std::move(fFacts)};
  }

 private:
  /// `read` may refuse what the type allows; then the cell is looked at in full.
  template <typename Read>
  void AppendWith(const CellBlock& block, std::size_t column, Read read) {
    double* const values = BlockBuffer(block.rows);
    const Cell* cell = block.cells + column;
    const bool wholeNumbers = fReader.type() == FieldType::Integer;
    NumberReading reading;
    for (std::size_t row = 0; row < block.rows; ++row, cell += block.stride) {
      const std::string_view text = block.Text(*cell);
      if (!text.empty() && read(text, reading)) {
        values[row] = reading.value;
        fFacts.decimals = std::max(fFacts.decimals, reading.decimals);
        if (wholeNumbers && !reading.isExact) ++fFacts.roundedCells;
      } else {
        values[row] = ReadInFull(text, block, row);
      }
    }
    fColumn.Append(values, block.rows);
  }

  double ReadInFull(std::string_view text, const CellBlock& block, std::size_t row) {
    if (IsBlank(text)) {
      ++fFacts.blankCells;
      if (fMissing.holdsEmptyText()) return kNaN;
    }
    NumberReading reading;
    if (!fMissingFirst && fReader.Read(text, reading)) return Accept(reading);
    if (const MissingEntries::Entry* entry = fMissing.Find(text)) {
      if (!entry->code) return kNaN;
      fFacts.decimals = std::max(fFacts.decimals, entry->decimals);
      return *entry->code;
    }
    if (fMissingFirst && fReader.Read(text, reading)) return Accept(reading);
    if (fFacts.unreadable.size() < ColumnFacts::kCellsKept)
      fFacts.unreadable.push_back({block.firstRow + static_cast<std::int64_t>(row) + 1,
                                   block.lines ? block.lines[row] : 0, std::string(block.source), std::string(text)});
    ++fFacts.unreadableCells;
    return kNaN;
  }

  double Accept(const NumberReading& reading) {
    fFacts.decimals = std::max(fFacts.decimals, reading.decimals);
    if (fReader.type() == FieldType::Integer && !reading.isExact) ++fFacts.roundedCells;
    return reading.value;
  }

  ValueReader fReader;
  MissingEntries fMissing;
  bool fMissingFirst = false;
  NumericColumnBuilder fColumn;
  ColumnFacts fFacts;
};

/// Of a type that follows from the cells: the first cell that decides gives a supposition, which an integer column may
/// still widen to numbers. Any other cell that does not fit makes the column a string: its texts are appended when all
/// cells before this block were blank, else the column has to be read once more.
class InferringTyper : public ColumnTyper {
 public:
  InferringTyper(const ColumnPlan& plan, std::string header, std::int64_t blockRows)
      : fMissing(plan.missing, plan.dialect), fBlockRows(blockRows), fColumn(blockRows) {
    fFacts.header = std::move(header);
    fFacts.type = FieldType::Inferred;
    fFacts.inferred = true;
  }

  void Append(const CellBlock& block, std::size_t column) override {
    if (fGivenUp) return;
    if (fText) return fText->Append(block, column);
    const bool onlyBlanksBefore = fOnlyBlanks;
    double* const values = BlockBuffer(block.rows);
    for (std::size_t row = 0; row < block.rows; ++row) {
      const std::string_view text = block.Text(row, column);
      NumberReading reading;
      if (fDecided && !fMissingFirst && !text.empty() && ReadAsInferred(fFacts.type, text, reading)) {
        values[row] = reading.value;
        fFacts.decimals = std::max(fFacts.decimals, reading.decimals);
        continue;
      }
      const std::optional<double> value = ReadInFull(text);
      if (!value) return BecomeText(block, column, onlyBlanksBefore);
      values[row] = *value;
    }
    fColumn.Append(values, block.rows);
  }

  bool NeedsSecondReading() const override {
    if (fText) return false;
    return fGivenUp || (!fDecided && !fOnlyBlanks && !fOnlyCodes);
  }

  TypedColumn Finish() override {
    if (!fText && !fDecided && fOnlyBlanks) {
      // No cell says that these are numbers: they stay what they are, empty texts.
      fText = std::make_unique<TextTyper>(std::move(fFacts.header), true, fBlockRows);
      fText->AppendBlankCells(fColumn.rows());
    }
    if (fText) return fText->Finish();
    fFacts.values = fColumn.facts();
    if (!fDecided) fFacts.type = fFacts.values.allIntegers() ? FieldType::Integer : FieldType::Number;
    fFacts.rows = fColumn.rows();
    return {fColumn.Finish(), std::move(fFacts)};
  }

 private:
  /// The value of a cell, NaN when it is system-missing; nothing when it makes the column a string.
  std::optional<double> ReadInFull(std::string_view text) {
    if (IsBlank(text)) {
      ++fFacts.blankCells;
      return kNaN;
    }
    fOnlyBlanks = false;
    // A missing entry decides nothing.
    if (const MissingEntries::Entry* entry = fMissing.Find(text)) {
      if (!entry->code) {
        fOnlyCodes = false;
        return kNaN;
      }
      fFacts.decimals = std::max(fFacts.decimals, entry->decimals);
      return *entry->code;
    }
    text = Trimmed(text);
    if (!fDecided) {
      const FieldType type = InferredTypeOf(text);
      if (type == FieldType::String) return std::nullopt;
      Suppose(type);
    }
    NumberReading reading;
    if (!ReadAsInferred(fFacts.type, text, reading)) {
      if (fFacts.type != FieldType::Integer || !ReadAsInferred(FieldType::Number, text, reading)) return std::nullopt;
      Suppose(FieldType::Number);
    }
    fFacts.decimals = std::max(fFacts.decimals, reading.decimals);
    return reading.value;
  }

  void Suppose(FieldType type) {
    fDecided = true;
    fFacts.type = type;
    FieldDialect dialect;
    dialect.type = type;
    fMissingFirst = fMissing.MustComeFirst(ValueReader(dialect));
  }

  void BecomeText(const CellBlock& block, std::size_t column, bool onlyBlanksBefore) {
    if (onlyBlanksBefore) {
      fText = std::make_unique<TextTyper>(std::move(fFacts.header), true, fBlockRows);
      fText->AppendBlankCells(fColumn.rows());
      fText->Append(block, column);
    } else {
      fGivenUp = true;
    }
    fColumn = NumericColumnBuilder(fBlockRows);
  }

  MissingEntries fMissing;
  std::int64_t fBlockRows;
  NumericColumnBuilder fColumn;
  ColumnFacts fFacts;
  bool fDecided = false;
  bool fMissingFirst = false;  // a missing entry could be taken for a value
  bool fOnlyBlanks = true;
  bool fOnlyCodes = true;  // every cell that is not blank is a missing entry that reads as a number
  bool fGivenUp = false;
  std::unique_ptr<TextTyper> fText;
};

/// What did not read, and where.
std::string DescribeUnreadable(const std::string& source, const ColumnFacts& facts) {
  const UnreadableCell& cell = facts.unreadable.front();
  std::string place = cell.source.empty() ? source : cell.source;
  if (cell.line > 0) place += fmt::format(":{}", cell.line);
  return fmt::format("{}: column {}, row {}: {} does not read as {}", place, QuotedCell(facts.header), cell.row,
                     QuotedCell(cell.text), TypeInWords(facts.type));
}

}  // namespace

std::unique_ptr<ColumnTyper> MakeColumnTyper(const ColumnPlan& plan, std::string header, std::int64_t blockRows) {
  switch (plan.dialect.type) {
    case FieldType::String:
      return std::make_unique<TextTyper>(std::move(header), false, blockRows);
    case FieldType::Inferred:
      return std::make_unique<InferringTyper>(plan, std::move(header), blockRows);
    default:
      return std::make_unique<ValueTyper>(plan, std::move(header), blockRows);
  }
}

std::unique_ptr<ColumnTyper> MakeTextTyper(std::string header, std::int64_t blockRows) {
  return std::make_unique<TextTyper>(std::move(header), true, blockRows);
}

void ReportUnreadableCells(const std::string& source, const std::vector<const ColumnFacts*>& columns, bool strict,
                           std::vector<Note>& notes) {
  const ColumnFacts* first = nullptr;
  for (const ColumnFacts* column : columns)
    if (!column->unreadable.empty() && (!first || column->unreadable.front().row < first->unreadable.front().row))
      first = column;
  if (strict && first) throw DataError(DescribeUnreadable(source, *first));
  for (const ColumnFacts* column : columns) {
    if (column->unreadableCells == 1)
      notes.push_back({false, DescribeUnreadable(source, *column) + "; the cell is system-missing"});
    if (column->unreadableCells > 1)
      notes.push_back({false, fmt::format("{}; it is one of {} such cells of the column, all system-missing",
                                          DescribeUnreadable(source, *column), column->unreadableCells)});
    if (column->roundedCells > 0)
      notes.push_back(
          {false, fmt::format("{}: column {}: {} whole numbers beyond 2^53 had to be rounded; a field of type "
                              "string keeps them exactly",
                              source, QuotedCell(column->header), column->roundedCells)});
  }
}

}  // namespace runtime::data
