// A column whose type follows from its cells.
#pragma once

#include <memory>
#include <string>

#include "runtime/data/typing/columntyper.h"
#include "runtime/data/typing/missingentries.h"

namespace runtime::data {

class TextColumn;

/// What the cells of a column say of its type, in the order of the rows. The first cell that is neither blank nor a
/// missing entry decides; an integer column may widen to numbers; any other cell that does not fit makes it a string.
struct TypeSupposition {
  FieldType type = FieldType::Inferred;  // Inferred: undecided
  bool onlyBlanks = true;
  bool onlyCodes = true;  // every cell that is not blank is a missing entry that reads as a number
  bool isText = false;    // the supposition fell

  bool isDecided() const { return type != FieldType::Inferred; }
  /// Takes in what the rows that follow say.
  void Join(const TypeSupposition& next);
};

class InferredColumn : public ColumnTyper {
 public:
  InferredColumn(const ColumnPlan& plan, std::string header);
  ~InferredColumn() override;

  void LookAt(const CellBlock& block, std::size_t column) override;
  std::unique_ptr<ColumnPiece> NewPiece() const override;
  void Join(const ColumnPiece& piece, PiecePlace place, std::byte* cells) override;
  bool NeedsSecondReading() const override;
  bool isBlankText() const override;
  std::shared_ptr<const StringTable> strings() const override;
  ColumnFacts Finish() override;

 private:
  MissingEntries fMissing;
  FieldType fGuess = FieldType::Inferred;  // what the first rows say
  std::unique_ptr<TextColumn> fText;       // the first rows say that it is a string
  TypeSupposition fSupposition;
  ColumnFacts fFacts;
};

}  // namespace runtime::data
