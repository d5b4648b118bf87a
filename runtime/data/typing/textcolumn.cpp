#include "runtime/data/typing/textcolumn.h"

#include <algorithm>
#include <utility>

namespace runtime::data {

namespace {

class TextPiece : public ColumnPiece {
 public:
  void Append(const CellBlock& block, std::size_t column) override {
    constexpr std::size_t kBatch = 128;
    std::string_view texts[kBatch];
    const Cell* cell = block.cells + column;
    for (std::size_t row = 0; row < block.rows; row += kBatch) {
      const std::size_t count = std::min(kBatch, block.rows - row);
      for (std::size_t i = 0; i < count; ++i, cell += block.stride) texts[i] = block.Text(*cell);
      fTexts.Append(texts, count);
      // Trailing blanks are gone by now.
      for (std::size_t i = 0; i < count; ++i) fBlankCells += texts[i].empty() ? 1 : 0;
    }
  }

  void End() override {}
  ColumnStorage storage() const override { return ColumnStorage::StringCode; }
  const std::byte* cells() const override { return reinterpret_cast<const std::byte*>(fTexts.codes().data()); }
  std::size_t rows() const override { return fTexts.rows(); }
  void Clear() override {
    fTexts.Clear();
    fBlankCells = 0;
  }

  const TextPart& texts() const { return fTexts; }
  std::int64_t blankCells() const { return fBlankCells; }

 private:
  TextPart fTexts;
  std::int64_t fBlankCells = 0;
};

}  // namespace

TextColumn::TextColumn(std::string header, bool inferred) {
  fFacts.header = std::move(header);
  fFacts.type = FieldType::String;
  fFacts.inferred = inferred;
}

std::unique_ptr<ColumnPiece> TextColumn::NewPiece() const { return std::make_unique<TextPiece>(); }

void TextColumn::Join(const ColumnPiece& piece, PiecePlace, std::byte* cells) {
  const auto& texts = static_cast<const TextPiece&>(piece);
  texts.texts().JoinTo(*fTexts, reinterpret_cast<std::uint32_t*>(cells));
  fFacts.rows += static_cast<std::int64_t>(texts.rows());
  fFacts.blankCells += texts.blankCells();
}

ColumnFacts TextColumn::Finish() {
  fFacts.longestValue = fTexts->longestText();
  return std::move(fFacts);
}

}  // namespace runtime::data
