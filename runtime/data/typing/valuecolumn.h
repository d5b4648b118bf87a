// A column of a declared numeric type.
#pragma once

#include <memory>
#include <string>

#include "runtime/data/typing/columntyper.h"
#include "runtime/data/typing/missingentries.h"
#include "runtime/data/typing/valuereader.h"

namespace runtime::data {

class ValueColumn : public ColumnTyper {
 public:
  /// Throws DataError for a dialect that cannot be used.
  ValueColumn(const ColumnPlan& plan, std::string header);

  std::unique_ptr<ColumnPiece> NewPiece() const override;
  void Join(const ColumnPiece& piece, PiecePlace place, std::byte* cells) override;
  ColumnFacts Finish() override { return std::move(fFacts); }

  /// What the cells are read with; shared by all pieces.
  struct Rules {
    ValueReader reader;
    MissingEntries missing;
    bool missingFirst = false;  // a missing entry could be taken for a value
  };

 private:
  Rules fRules;
  ColumnFacts fFacts;
};

}  // namespace runtime::data
