// A column of a table with types of its own, while it is read: its cells become stored values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "runtime/data/source/numbercolumn.h"
#include "runtime/data/source/tablesource.h"
#include "runtime/data/typing/columntyper.h"

namespace runtime::data {

/// Takes the column's numbers as the source has them, or its texts, to be read by a plan: a column without a declared
/// type keeps the source's; a declared type is read from the column's texts where the source has another one.
class ReadColumn : public ColumnSink {
 public:
  ReadColumn(const SourceColumn& column, const ColumnPlan& plan);

  /// Whether it wants the cells as texts.
  bool isText() const { return fTyper != nullptr; }

  void Bytes(const std::int8_t* values, std::size_t count) override { fNumbers->Append(values, count); }
  void Integers(const std::int32_t* values, std::size_t count) override { fNumbers->Append(values, count); }
  void Numbers(const double* values, std::size_t count) override { fNumbers->Append(values, count); }
  void WrittenDecimals(int decimals) override {
    if (fNumbers) fNumbers->WrittenDecimals(decimals);
  }
  void Unreadable(std::string_view text) override {
    if (fNumbers) fNumbers->Unreadable(text);
  }
  void Texts(const std::string_view* texts, std::size_t count) override;

  /// Ends the rows of a group; cells and storage are theirs until they are stored.
  void EndGroup();
  ColumnStorage storage() const { return fPiece ? fPiece->storage() : fNumbers->part().storage(); }
  /// Moves the cells to where they stay. `rowsBefore`: of the groups before.
  void Store(std::byte* cells, std::size_t rows, std::int64_t rowsBefore);

  // After the last group.
  std::shared_ptr<const StringTable> strings() const { return fTyper ? fTyper->strings() : nullptr; }
  ColumnFacts Finish() { return fTyper ? fTyper->Finish() : fNumbers->facts(); }

 private:
  // Either the numbers, or the typer and the piece that is being filled.
  std::unique_ptr<NumberColumn> fNumbers;
  std::unique_ptr<ColumnTyper> fTyper;
  std::unique_ptr<ColumnPiece> fPiece;
  std::vector<Cell> fCells;  // places of texts, the same for each call
};

/// Whether the numbers of a source's type serve for a declared type.
bool NumbersServe(FieldType ofSource, FieldType declared);

}  // namespace runtime::data
