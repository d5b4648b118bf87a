#include "runtime/data/typing/textcolumn.h"

#include <utility>

namespace runtime::data {

namespace {

bool IsBlank(std::string_view text) { return text.find_first_not_of(' ') == std::string_view::npos; }

class TextPiece : public ColumnPiece {
 public:
  void Append(const CellBlock& block, std::size_t column) override {
    const Cell* cell = block.cells + column;
    for (std::size_t row = 0; row < block.rows; ++row, cell += block.stride) {
      const std::string_view text = block.Text(*cell);
      if (text.empty() || (text.front() == ' ' && IsBlank(text))) ++fBlankCells;
      fTexts.Append(text);
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
