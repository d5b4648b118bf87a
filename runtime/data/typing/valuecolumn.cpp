#include "runtime/data/typing/valuecolumn.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/typing/numericpiece.h"

namespace runtime::data {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Zeros before a number of which it is not the only digit. No such cell is of the common form, so that all are seen
/// here.
bool IsZeroPadded(std::string_view text) {
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
  return text.size() > 1 && text[0] == '0' && text[1] >= '0' && text[1] <= '9';
}

class ValuePiece : public NumericPiece {
 public:
  explicit ValuePiece(const ValueColumn::Rules& rules) : fRules(rules) { fFacts.type = rules.reader.type(); }

  void Append(const CellBlock& block, std::size_t column) override {
    const auto readInFull = [&](std::string_view text, std::size_t row) { return ReadInFull(text, block, row); };
    const BlankCells blanks = fRules.missing.holdsEmptyText() ? BlankCells::Missing : BlankCells::ReadInFull;
    if (fRules.missingFirst || !fRules.reader.isPlain())
      AppendInFull(block, column, readInFull);
    else if (fRules.reader.type() == FieldType::Integer)
      AppendWholeNumbers(block, column, blanks, readInFull);
    else
      AppendNumbers(block, column, blanks, readInFull);
  }

 private:
  double ReadInFull(std::string_view text, const CellBlock& block, std::size_t row) {
    if (IsBlank(text)) {
      ++fFacts.blankCells;
      if (fRules.missing.holdsEmptyText()) return kNaN;
    }
    NumberReading reading;
    if (!fRules.missingFirst && fRules.reader.Read(text, reading)) return Accept(reading, text);
    if (const MissingEntries::Entry* entry = fRules.missing.Find(text)) {
      if (!entry->code) return kNaN;
      fFacts.decimals = std::max(fFacts.decimals, entry->decimals);
      return *entry->code;
    }
    if (fRules.missingFirst && fRules.reader.Read(text, reading)) return Accept(reading, text);
    if (fFacts.unreadable.size() < ColumnFacts::kCellsKept)
      fFacts.unreadable.push_back({block.firstRow + static_cast<std::int64_t>(row) + 1,
                                   block.lines ? block.lines[row] + 1 : 0, std::string(block.source),
                                   std::string(text)});
    ++fFacts.unreadableCells;
    return kNaN;
  }

  double Accept(const NumberReading& reading, std::string_view text) {
    fFacts.decimals = std::max(fFacts.decimals, reading.decimals);
    if (fRules.reader.isPlain() && IsZeroPadded(Trimmed(text)) && fFacts.zeroPaddedCells++ == 0)
      fFacts.firstZeroPadded = text;
    if (fRules.reader.type() == FieldType::Integer && !reading.isExact) ++fFacts.roundedCells;
    return reading.value;
  }

  const ValueColumn::Rules& fRules;
};

}  // namespace

ValueColumn::ValueColumn(const ColumnPlan& plan, std::string header)
    : fRules{ValueReader(plan.dialect), MissingEntries(plan.missing, plan.dialect)} {
  if (!fRules.reader.problem().empty()) throw DataError(fmt::format("{}: {}", plan.place, fRules.reader.problem()));
  fRules.missingFirst = fRules.missing.MustComeFirst(fRules.reader);
  fFacts.header = std::move(header);
  fFacts.type = plan.dialect.type;
}

std::unique_ptr<ColumnPiece> ValueColumn::NewPiece() const { return std::make_unique<ValuePiece>(fRules); }

void ValueColumn::Join(const ColumnPiece& piece, PiecePlace place, std::byte*) {
  fFacts.Join(static_cast<const ValuePiece&>(piece).facts(), place.rows, place.lines);
}

}  // namespace runtime::data
