// A string column.
#pragma once

#include <memory>
#include <string>

#include "runtime/data/store/textpart.h"
#include "runtime/data/typing/columntyper.h"

namespace runtime::data {

class TextColumn : public ColumnTyper {
 public:
  TextColumn(std::string header, bool inferred);

  std::unique_ptr<ColumnPiece> NewPiece() const override;
  void Join(const ColumnPiece& piece, PiecePlace place, std::byte* cells) override;
  std::shared_ptr<const StringTable> strings() const override { return fTexts; }
  ColumnFacts Finish() override;

 private:
  std::shared_ptr<ArenaStringTable> fTexts = std::make_shared<ArenaStringTable>();
  ColumnFacts fFacts;
};

}  // namespace runtime::data
