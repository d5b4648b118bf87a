#include "runtime/data/typing/inferredcolumn.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "runtime/data/typing/inference.h"
#include "runtime/data/typing/numericpiece.h"
#include "runtime/data/typing/textcolumn.h"
#include "runtime/data/typing/valuereader.h"

namespace runtime::data {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class InferringPiece : public NumericPiece {
 public:
  InferringPiece(const MissingEntries& missing, FieldType guess) : fMissing(missing), fGuess(guess) { Begin(); }

  void Append(const CellBlock& block, std::size_t column) override {
    if (fGaveUp) return;
    std::int64_t rowsBefore = block.firstRow;
    const auto readInFull = [&](std::string_view text, std::size_t row) {
      return ReadInFull(text, rowsBefore + static_cast<std::int64_t>(row));
    };
    CellBlock rest = block;
    // Until a cell has decided, each one is looked at in full.
    while (!fSupposition.isDecided() && rest.rows > 0 && !fGaveUp) {
      const double value = ReadInFull(rest.Text(0, column), rowsBefore++);
      if (fGaveUp) return;
      fValues.AppendDoubles(&value, 1);
      rest.cells += rest.stride;
      --rest.rows;
    }
    if (rest.rows == 0 || fGaveUp) return;
    if (!fMissingFirst && fSupposition.type == FieldType::Integer)
      AppendWholeNumbers(rest, column, BlankCells::Missing, readInFull);
    else if (!fMissingFirst && fSupposition.type == FieldType::Number)
      AppendNumbers(rest, column, BlankCells::Missing, readInFull);
    else
      AppendInFull(rest, column, readInFull);
  }

  void End() override {
    if (fGaveUp) {
      fValues.Clear();
      return;
    }
    NumericPiece::End();
  }

  void Clear() override {
    NumericPiece::Clear();
    Begin();
  }

  const TypeSupposition& supposition() const { return fSupposition; }
  /// Of the first rows, which are read again: the cell for which they are no whole numbers.
  void HandFractionTo(ColumnFacts& facts) const {
    facts.firstFractionRow = fFacts.firstFractionRow;
    facts.firstFraction = fFacts.firstFraction;
  }

 private:
  void Begin() {
    fSupposition = {};
    fGaveUp = false;
    fMissingFirst = false;
    if (fGuess != FieldType::Inferred) Suppose(fGuess);
  }

  /// The value of a cell, NaN when it is system-missing or makes the column a string. `row` counts from 0.
  double ReadInFull(std::string_view text, std::int64_t row) {
    NumberReading reading;
    if (fSupposition.isDecided() && !fMissingFirst && ReadAsInferred(fSupposition.type, text, reading)) {
      fFacts.decimals = std::max(fFacts.decimals, reading.decimals);
      return reading.value;
    }
    if (IsBlank(text)) {
      ++fFacts.blankCells;
      return kNaN;
    }
    fSupposition.onlyBlanks = false;
    // A missing entry decides nothing.
    if (const MissingEntries::Entry* entry = fMissing.Find(text)) {
      if (!entry->code) {
        fSupposition.onlyCodes = false;
        return kNaN;
      }
      fFacts.decimals = std::max(fFacts.decimals, entry->decimals);
      return *entry->code;
    }
    text = Trimmed(text);
    if (!fSupposition.isDecided()) {
      const FieldType type = InferredTypeOf(text);
      if (type == FieldType::String) return GiveUp();
      if (type == FieldType::Number) NoteFraction(text, row);
      Suppose(type);
    }
    if (!ReadAsInferred(fSupposition.type, text, reading)) {
      if (fSupposition.type != FieldType::Integer || !ReadAsInferred(FieldType::Number, text, reading)) return GiveUp();
      NoteFraction(text, row);
      Suppose(FieldType::Number);
    }
    fFacts.decimals = std::max(fFacts.decimals, reading.decimals);
    return reading.value;
  }

  void NoteFraction(std::string_view text, std::int64_t row) {
    fFacts.firstFractionRow = row + 1;
    fFacts.firstFraction = text;
  }

  double GiveUp() {
    fGaveUp = true;
    fSupposition.isText = true;
    return kNaN;
  }

  void Suppose(FieldType type) {
    fSupposition.type = type;
    FieldDialect dialect;
    dialect.type = type;
    fMissingFirst = fMissing.MustComeFirst(ValueReader(dialect));
  }

  const MissingEntries& fMissing;
  const FieldType fGuess;
  TypeSupposition fSupposition;
  bool fMissingFirst = false;  // a missing entry could be taken for a value
};

}  // namespace

void TypeSupposition::Join(const TypeSupposition& next) {
  onlyBlanks = onlyBlanks && next.onlyBlanks;
  onlyCodes = onlyCodes && next.onlyCodes;
  isText = isText || next.isText;
  if (!isDecided()) {
    type = next.type;
    return;
  }
  if (!next.isDecided() || next.type == type) return;
  const auto isNumeric = [](FieldType one) { return one == FieldType::Integer || one == FieldType::Number; };
  if (isNumeric(type) && isNumeric(next.type))
    type = FieldType::Number;
  else
    isText = true;
}

InferredColumn::InferredColumn(const ColumnPlan& plan, std::string header) : fMissing(plan.missing, plan.dialect) {
  fFacts.header = std::move(header);
  fFacts.inferred = true;
}

InferredColumn::~InferredColumn() = default;

void InferredColumn::LookAt(const CellBlock& block, std::size_t column) {
  InferringPiece piece(fMissing, FieldType::Inferred);
  piece.Append(block, column);
  fGuess = piece.supposition().type;
  piece.HandFractionTo(fFacts);
  if (piece.supposition().isText) fText = std::make_unique<TextColumn>(std::move(fFacts.header), true);
}

std::unique_ptr<ColumnPiece> InferredColumn::NewPiece() const {
  if (fText) return fText->NewPiece();
  return std::make_unique<InferringPiece>(fMissing, fGuess);
}

void InferredColumn::Join(const ColumnPiece& piece, PiecePlace place, std::byte* cells) {
  if (fText) return fText->Join(piece, place, cells);
  const auto& part = static_cast<const InferringPiece&>(piece);
  fSupposition.Join(part.supposition());
  fFacts.Join(part.facts(), place.rows, place.lines);
}

bool InferredColumn::NeedsSecondReading() const {
  if (fText) return false;
  if (fSupposition.isText) return true;
  return !fSupposition.isDecided() && !fSupposition.onlyBlanks && !fSupposition.onlyCodes;
}

bool InferredColumn::isBlankText() const {
  // No cell says that these are numbers: they stay what they are, empty texts.
  return !fText && !fSupposition.isText && !fSupposition.isDecided() && fSupposition.onlyBlanks;
}

std::shared_ptr<const StringTable> InferredColumn::strings() const { return fText ? fText->strings() : nullptr; }

ColumnFacts InferredColumn::Finish() {
  if (fText) return fText->Finish();
  if (isBlankText()) {
    fFacts.type = FieldType::String;
    return std::move(fFacts);
  }
  fFacts.type = fSupposition.type;
  if (!fSupposition.isDecided()) fFacts.type = fFacts.values.allIntegers() ? FieldType::Integer : FieldType::Number;
  return std::move(fFacts);
}

}  // namespace runtime::data
