#include "runtime/data/csv/segmentreader.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "runtime/data/csv/encoding.h"
#include "runtime/data/store/numericpart.h"

namespace runtime::data {

SegmentReader::SegmentReader(const ColumnTypers& typers) {
  for (const std::unique_ptr<ColumnTyper>& typer : typers) fPieces.push_back(typer ? typer->NewPiece() : nullptr);
}

SegmentReader::~SegmentReader() = default;

void SegmentReader::Read(const CsvPart& part, std::size_t begin, std::size_t end, bool isProven) {
  const std::string_view text = part.input->text();
  if (fPart != &part) {
    fScanner = std::make_unique<SegmentScanner>(text, part.dialect, part.header.names.size());
    fScanner->LeaveOut(part.header.leftOut);
    fPart = &part;
  }
  for (const std::unique_ptr<ColumnPiece>& piece : fPieces)
    if (piece) piece->Clear();
  fBegin = begin;
  fScanner->Begin(begin, std::max(begin, end),
                  isProven ? SegmentScanner::BeginIs::Proven : SegmentScanner::BeginIs::Guessed);
  CellBlock block;
  while (fScanner->Next(block)) {
    block.source = part.input->name();
    for (std::size_t column = 0; column < fPieces.size(); ++column)
      if (fPieces[column]) fPieces[column]->Append(block, column);
  }
  fFindings = fScanner->findings();
  fEnd = fScanner->position();
  fGaveUp = fScanner->gaveUp();
  fHasInvalidText = !fGaveUp && part.input->mayBeInvalid() && fScanner->sawNonAscii() &&
                    FirstInvalidUtf8(text.substr(fBegin, fEnd - fBegin)) != std::string_view::npos;
  if (!fGaveUp && !fHasInvalidText) Store();
}

void SegmentReader::Store() {
  fGroup = RowGroup(static_cast<std::size_t>(fFindings.rows), fPieces.size());
  for (const std::unique_ptr<ColumnPiece>& piece : fPieces) {
    if (!piece) continue;
    piece->End();
    fGroup.AddColumn(piece->storage());
  }
  fGroup.Allocate();
  std::size_t column = 0;
  for (const std::unique_ptr<ColumnPiece>& piece : fPieces) {
    if (!piece) continue;
    if (piece->rows() > 0)
      std::memcpy(fGroup.Cells(column), piece->cells(), piece->rows() * BytesPerCell(piece->storage()));
    ++column;
  }
}

}  // namespace runtime::data
