#include "runtime/data/typing/readcolumn.h"

#include <cstring>

namespace runtime::data {

bool NumbersServe(FieldType ofSource, FieldType declared) {
  if (ofSource == declared) return true;
  if (declared == FieldType::Number) return ofSource == FieldType::Integer;
  return declared == FieldType::Integer && ofSource == FieldType::Number;
}

ReadColumn::ReadColumn(const SourceColumn& column, const ColumnPlan& plan) {
  const bool inferred = plan.dialect.type == FieldType::Inferred;
  const FieldType type = inferred ? column.type : plan.dialect.type;
  if (type != FieldType::String && NumbersServe(column.type, type)) {
    fNumbers = std::make_unique<NumberColumn>(column, type, inferred);
    return;
  }
  fTyper = inferred ? MakeTextTyper(column.name) : MakeColumnTyper(plan, column.name);
  fPiece = fTyper->NewPiece();
}

void ReadColumn::Texts(const std::string_view* texts, std::size_t count) {
  for (auto cell = static_cast<std::uint32_t>(fCells.size()); cell < count; ++cell)
    fCells.push_back({cell, Cell::kOwnText});
  CellBlock block;
  block.cells = fCells.data();
  block.ownTexts = texts;
  block.columns = 1;
  block.stride = 1;
  block.rows = count;
  block.firstRow = static_cast<std::int64_t>(fPiece->rows());
  fPiece->Append(block, 0);
}

void ReadColumn::EndGroup() {
  if (fPiece) fPiece->End();
}

void ReadColumn::Store(std::byte* cells, std::size_t rows, std::int64_t rowsBefore) {
  std::memcpy(cells, fPiece ? fPiece->cells() : fNumbers->part().cells(), rows * BytesPerCell(storage()));
  if (!fPiece) return fNumbers->EndPart();
  fTyper->Join(*fPiece, {rowsBefore, 0}, cells);
  fPiece->Clear();
}

}  // namespace runtime::data
